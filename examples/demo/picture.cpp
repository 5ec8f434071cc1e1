// SPDX-License-Identifier: MIT
#include "picture.h"

#include <png.h>
#include <turbojpeg.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

namespace demo {

namespace {

constexpr int least = 64, most = 16384;

Picture sized(const std::string& path, long width, long height) {
    if (width < least || height < least || width > most || height > most)
        throw std::runtime_error(path + ": " + std::to_string(width) + "x" + std::to_string(height) + " is not between " +
                                 std::to_string(least) + " and " + std::to_string(most) + " pixels a side");
    return {static_cast<int>(width), static_cast<int>(height)};
}

Picture decode_png(const std::string& path, const std::vector<uint8_t>& bytes) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    const auto fail = [&] {
        const std::string message = image.message;
        png_image_free(&image);
        throw std::runtime_error(path + ": not a readable PNG (" + message + ")");
    };
    if (!png_image_begin_read_from_memory(&image, bytes.data(), bytes.size())) fail();
    image.format = PNG_FORMAT_RGB;
    Picture picture;
    try {
        picture = sized(path, image.width, image.height);
    } catch (...) {
        png_image_free(&image);
        throw;
    }
    const png_color black{0, 0, 0};
    if (!png_image_finish_read(&image, &black, picture.rgb.data(), 0, nullptr)) fail();
    return picture;
}

Picture decode_jpeg(const std::string& path, const std::vector<uint8_t>& bytes) {
    const std::unique_ptr<void, int (*)(tjhandle)> decoder(tjInitDecompress(), tjDestroy);
    int width = 0, height = 0, subsampling = 0, colourspace = 0;
    const auto size = static_cast<unsigned long>(bytes.size());
    if (!decoder || tjDecompressHeader3(decoder.get(), bytes.data(), size, &width, &height, &subsampling, &colourspace) != 0)
        throw std::runtime_error(path + ": not a readable JPEG (" + tjGetErrorStr2(decoder.get()) + ")");
    Picture picture = sized(path, width, height);
    if (tjDecompress2(decoder.get(), bytes.data(), size, picture.rgb.data(), width, 3 * width, height, TJPF_RGB,
                      TJFLAG_ACCURATEDCT) != 0 &&
        tjGetErrorCode(decoder.get()) == TJERR_FATAL)
        throw std::runtime_error(path + ": not a readable JPEG (" + tjGetErrorStr2(decoder.get()) + ")");
    return picture;
}

}  // namespace

Picture read_picture(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error(path + ": cannot be opened");
    const std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(file), {}};
    if (bytes.size() > 8 && png_sig_cmp(bytes.data(), 0, 8) == 0) return decode_png(path, bytes);
    if (bytes.size() > 2 && bytes[0] == 0xFF && bytes[1] == 0xD8) return decode_jpeg(path, bytes);
    throw std::runtime_error(path + ": neither a PNG nor a JPEG image");
}

void write_png(const std::string& path, const Picture& picture) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = PNG_FORMAT_RGB;
    if (!png_image_write_to_file(&image, path.c_str(), 0, picture.rgb.data(), 0, nullptr))
        throw std::runtime_error(path + ": cannot be written (" + image.message + ")");
}

}  // namespace demo
