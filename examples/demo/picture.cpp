// SPDX-License-Identifier: MIT
#include "picture.h"

#include <png.h>
#include <turbojpeg.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

namespace demo {

namespace {

constexpr int least = 64;
constexpr int64_t most_pixels = 64 << 20;

Picture sized(const std::string& path, int64_t width, int64_t height) {
    const std::string size = path + ": " + std::to_string(width) + "x" + std::to_string(height);
    if (width < least || height < least)
        throw std::runtime_error(size + " is too small, the demo takes " + std::to_string(least) + "x" + std::to_string(least) +
                                 " and more");
    if (width > most_pixels / height)
        throw std::runtime_error(size + " is too large, the demo takes up to " + std::to_string(most_pixels >> 20) +
                                 " megapixels");
    return {static_cast<int>(width), static_cast<int>(height)};
}

void warn(const std::string& path, const std::string& what) {
    std::fprintf(stderr, "zivcolor_demo: warning: %s: %s\n", path.c_str(), what.c_str());
}

Picture decode_png(const std::string& path, const std::vector<uint8_t>& bytes) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    const std::unique_ptr<png_image, void (*)(png_image*)> owner(&image, png_image_free);
    const auto expect = [&](int done) {
        if (!done) throw std::runtime_error(path + ": not a readable PNG (" + image.message + ")");
        if (image.warning_or_error & PNG_IMAGE_WARNING) warn(path, image.message);
    };
    expect(png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()));
    Picture picture = sized(path, image.width, image.height);
    const bool has_alpha = image.format & PNG_FORMAT_FLAG_ALPHA;
    image.format = has_alpha ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
    std::vector<uint8_t> pixels(PNG_IMAGE_SIZE(image));
    expect(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr));
    if (!has_alpha) {
        picture.rgb = std::move(pixels);
        return picture;
    }
    for (int y = 0; y < picture.height; y++)
        for (int x = 0; x < picture.width; x++) {
            uint8_t* pixel = picture.at(x, y);
            const uint8_t* rgba = &pixels[static_cast<size_t>(pixel - picture.rgb.data()) / 3 * 4];
            std::memcpy(pixel, rgba, 3);
            blend(pixel, rgba[3], checkerboard(x, y, 16));
        }
    warn(path, "has alpha, which no conversion takes from a picture: it is laid before a checkerboard");
    return picture;
}

Picture decode_jpeg(const std::string& path, const std::vector<uint8_t>& bytes) {
    const std::unique_ptr<void, int (*)(tjhandle)> decoder(tjInitDecompress(), tjDestroy);
    int width = 0, height = 0, subsampling = 0, colourspace = 0;
    const auto size = static_cast<unsigned long>(bytes.size());
    // What libjpeg-turbo only warns of leaves a picture, with grey where data are missing.
    const auto expect = [&](int result) {
        if (result == 0) return;
        const std::string message = tjGetErrorStr2(decoder.get());
        if (tjGetErrorCode(decoder.get()) == TJERR_FATAL || width < 1 || height < 1)
            throw std::runtime_error(path + ": not a readable JPEG (" + message + ")");
        warn(path, "damaged: " + message);
    };
    if (!decoder) throw std::runtime_error(path + ": no JPEG decoder (" + tjGetErrorStr2(nullptr) + ")");
    expect(tjDecompressHeader3(decoder.get(), bytes.data(), size, &width, &height, &subsampling, &colourspace));
    Picture picture = sized(path, width, height);
    expect(tjDecompress2(decoder.get(), bytes.data(), size, picture.rgb.data(), width, 3 * width, height, TJPF_RGB,
                         TJFLAG_ACCURATEDCT));
    return picture;
}

}  // namespace

Picture read_picture(const std::string& path) {
    std::error_code unknown;
    if (std::filesystem::is_directory(path, unknown)) throw std::runtime_error(path + ": is a directory, not a picture");
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error(path + ": cannot be read (" + std::strerror(errno) + ")");
    const std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(file), {}};
    constexpr size_t too_few = 64;
    if (bytes.size() < too_few)
        throw std::runtime_error(path + ": " + std::to_string(bytes.size()) + " bytes are too few for a PNG or a JPEG picture");
    if (png_sig_cmp(bytes.data(), 0, 8) == 0) return decode_png(path, bytes);
    if (bytes[0] == 0xFF && bytes[1] == 0xD8) return decode_jpeg(path, bytes);
    throw std::runtime_error(path + ": neither a PNG nor a JPEG picture");
}

void expect_writable(const std::string& path) {
    std::error_code unknown;
    if (std::filesystem::is_directory(path, unknown))
        throw std::runtime_error(path + ": is a directory, name a file for the sheet");
    const bool is_new = !std::filesystem::exists(path, unknown);
    errno = 0;
    if (!std::ofstream(path, std::ios::binary | std::ios::app))
        throw std::runtime_error(path + ": cannot be written (" + std::strerror(errno) + ")");
    if (is_new) std::filesystem::remove(path, unknown);
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
