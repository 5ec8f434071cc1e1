// SPDX-License-Identifier: MIT
#include "frames.h"

#include <ctype.h>
#include <errno.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "options.h"
#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#endif

namespace tool {

namespace fs = std::filesystem;

namespace {

constexpr size_t buffer_bytes = 1 << 18;

std::string reason() { return strerror(errno); }

void no_translation([[maybe_unused]] FILE* file) {
#if defined(_WIN32)
    _setmode(_fileno(file), _O_BINARY);
#endif
}

// The bytes of a file, where it has so many from the start.
bool size_of(const std::string& name, uint64_t& size) {
    std::error_code error;
    if (name == "-" || !fs::is_regular_file(name, error)) return false;
    size = fs::file_size(name, error);
    return !error;
}

}  // namespace

Frame frame_of(const zivcolor_layout& layout, int width, int height, const std::vector<int>& pitches) {
    zivcolor_room room;
    if (const int32_t status = zivcolor_room_of_layout(layout.format, width, height, 1, &room); status != zivStatus_OK)
        throw Refusal(std::string("no image of this size: ") + zivcolor_status_text(status));
    if (pitches.size() > static_cast<size_t>(room.planes))
        throw Refusal(std::string(layout.name) + " has " + std::to_string(room.planes) +
                      " planes, not as many as there are pitches");
    Frame frame;
    frame.planes = room.planes;
    for (size_t k = 0; k < static_cast<size_t>(room.planes); k++) {
        const auto row = static_cast<size_t>(room.row_bytes[k]);
        frame.row_bytes[k] = frame.pitch[k] = row;
        frame.rows[k] = static_cast<size_t>(room.rows[k]);
        if (k < pitches.size()) frame.pitch[k] = static_cast<size_t>(pitches[k]);
        else if (!pitches.empty())
            frame.pitch[k] = (frame.pitch[k - 1] * row + frame.row_bytes[k - 1] - 1) / frame.row_bytes[k - 1];
        if (frame.pitch[k] < row)
            throw Refusal("a pitch of " + std::to_string(frame.pitch[k]) + " is less than the " + std::to_string(row) +
                          " bytes of a row of plane " + std::to_string(k));
        frame.bytes += frame.pitch[k] * frame.rows[k];
    }
    return frame;
}

Input::Input(const std::string& name) : name_(name), file_(stdin) {
    std::error_code error;
    if (name == "-") {
        no_translation(stdin);
    } else {
        if (fs::is_directory(name, error)) throw Refusal(name + " is a directory");
        file_ = fopen(name.c_str(), "rb");
        if (!file_) throw Refusal(name + " cannot be read: " + reason());
    }
    setvbuf(file_, nullptr, _IOFBF, buffer_bytes);
}

Input::~Input() {
    if (file_ != stdin) fclose(file_);
}

uint64_t Input::expect(const Frame& frame, uint64_t frames) const {
    uint64_t size = 0;
    if (!size_of(name_, size)) return frames;
    const uint64_t held = size / frame.bytes;
    const bool enough = frames != 0 ? held >= frames : held > 0 && size % frame.bytes == 0;
    if (!enough)
        throw Refusal(name_ + " has " + std::to_string(size) + " bytes, which is not " +
                      (frames != 0 ? std::to_string(frames) + " frames" : "a whole number of frames") + " of " +
                      std::to_string(frame.bytes));
    return frames != 0 ? frames : held;
}

bool Input::read(const Frame& frame, const zivcolor_room& room, uint8_t* memory) {
    size_t got = 0;
    uint8_t padding[4096];
    const auto take = [&](uint8_t* to, size_t size) {
        const size_t count = fread(to, 1, size, file_);
        got += count;
        return count == size;
    };
    const auto pass = [&](size_t size) {
        for (; size > 0; size -= std::min(size, sizeof padding))
            if (!take(padding, std::min(size, sizeof padding))) return false;
        return true;
    };
    const auto take_plane = [&](size_t k) {
        uint8_t* const plane = memory + room.offset[k];
        if (frame.pitch[k] == frame.row_bytes[k] && static_cast<size_t>(room.step[k]) == frame.pitch[k])
            return take(plane, frame.rows[k] * frame.pitch[k]);
        for (size_t row = 0; row < frame.rows[k]; row++)
            if (!take(plane + static_cast<ptrdiff_t>(row) * room.step[k], frame.row_bytes[k]) ||
                !pass(frame.pitch[k] - frame.row_bytes[k]))
                return false;
        return true;
    };
    for (size_t k = 0; k < static_cast<size_t>(frame.planes); k++) {
        if (take_plane(k)) continue;
        if (ferror(file_)) throw std::runtime_error(name_ + " cannot be read on: " + reason());
        if (got == 0 && read_ > 0) return false;
        throw Refusal(name_ + " ends after " + std::to_string(got) + " of the " + std::to_string(frame.bytes) +
                      " bytes of frame " + std::to_string(read_ + 1));
    }
    read_++;
    return true;
}

Kind kind_of(const std::string& name) {
    std::string extension = fs::path(name).extension().string();
    for (char& c : extension) c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
    return extension == ".ppm" ? Kind::ppm : extension == ".pgm" ? Kind::pgm : Kind::raw;
}

Output::Output(const std::string& name, const Input& input) : name_(name), file_(stdout) {
    std::error_code error;
    if (name == "-") {
        if (isatty(STDOUT_FILENO)) throw Refusal("frames are not for a terminal: send the output to a file or a program");
        no_translation(stdout);
    } else {
        if (fs::is_directory(name, error)) throw Refusal(name + " is a directory");
        if (input.name() != "-" && fs::equivalent(name, input.name(), error)) throw Refusal(name + " is the input as well");
        file_ = fopen(name.c_str(), "wb");
        if (!file_) throw Refusal(name + " cannot be written: " + reason());
    }
    setvbuf(file_, nullptr, _IOFBF, buffer_bytes);
}

Output::~Output() {
    if (file_ && file_ != stdout) fclose(file_);
}

void Output::fail() const { throw std::runtime_error(name_ + " cannot be written: " + reason()); }

void Output::put(const uint8_t* bytes, size_t size) {
    if (fwrite(bytes, 1, size, file_) != size) fail();
}

void Output::close() {
    if (fflush(file_) != 0) fail();
    FILE* const file = file_ == stdout ? nullptr : file_;
    file_ = nullptr;
    if (file && fclose(file) != 0) fail();
}

void Output::write(const Frame& frame, const zivcolor_room& room, const uint8_t* memory) {
    for (size_t k = 0; k < static_cast<size_t>(frame.planes); k++) {
        const uint8_t* const plane = memory + room.offset[k];
        if (frame.pitch[k] == frame.row_bytes[k] && static_cast<size_t>(room.step[k]) == frame.pitch[k]) {
            put(plane, frame.rows[k] * frame.pitch[k]);
            continue;
        }
        row_.assign(frame.pitch[k], 0);
        for (size_t row = 0; row < frame.rows[k]; row++) {
            memcpy(row_.data(), plane + static_cast<ptrdiff_t>(row) * room.step[k], frame.row_bytes[k]);
            put(row_.data(), frame.pitch[k]);
        }
    }
}

void Output::write_ppm(const zivcolor_room& room, const uint8_t* memory) {
    if (fprintf(file_, "P6\n%d %d\n255\n", room.width, room.height) < 0) fail();
    row_.resize(static_cast<size_t>(room.row_bytes[0]));
    for (int32_t row = 0; row < room.height; row++) {
        const uint8_t* const from = memory + room.offset[0] + ptrdiff_t{row} * room.step[0];
        if (room.format == zivPixFmt_BGR888) zivColorRGB888toBGR888u8(from, row_.data(), room.width, 1);
        put(room.format == zivPixFmt_BGR888 ? row_.data() : from, row_.size());
    }
}

void Output::write_pgm(const zivcolor_room& room, const uint8_t* memory) {
    if (fprintf(file_, "P5\n%d %d\n255\n", room.width, room.height) < 0) fail();
    for (int32_t row = 0; row < room.height; row++)
        put(memory + room.offset[0] + ptrdiff_t{row} * room.step[0], static_cast<size_t>(room.row_bytes[0]));
}

}  // namespace tool
