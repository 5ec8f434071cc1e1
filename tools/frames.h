// SPDX-License-Identifier: MIT
// Raw frames in files and streams: planes one after the other, rows as far apart as is told.
#pragma once

#include <stdint.h>
#include <stdio.h>

#include <string>
#include <vector>

#include "zivcolor_image.h"

namespace tool {

// A frame as a file has it.
struct Frame {
    int planes = 0;
    size_t pitch[3] = {}, row_bytes[3] = {}, rows[3] = {};
    size_t bytes = 0;
};

// Of a layout and size. Pitches are those of the first planes; the others follow from the last that is told, or are tight.
Frame frame_of(const zivcolor_layout& layout, int width, int height, const std::vector<int>& pitches);

// A stream of frames to be read; "-" is the standard input.
class Input {
public:
    explicit Input(const std::string& name);
    ~Input();
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    // Refuses a file that does not hold so many frames, or whole ones if that is 0. Tells how many will come, 0 if nobody
    // knows.
    uint64_t expect(const Frame& frame, uint64_t frames) const;
    // Reads a frame into an image's memory. False where there is no other.
    bool read(const Frame& frame, const zivcolor_room& room, uint8_t* memory);

    const std::string& name() const { return name_; }

private:
    std::string name_;
    FILE* file_;
    uint64_t read_ = 0;  // frames
};

// What is written: frames as they are, or one picture after the other.
enum class Kind : uint8_t { raw, ppm, pgm };
Kind kind_of(const std::string& name);

// A stream of frames to be written; "-" is the standard output. Refused before any work where it cannot be written.
class Output {
public:
    Output(const std::string& name, const Input& input);
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void write(const Frame& frame, const zivcolor_room& room, const uint8_t* memory);
    // RGB888 or BGR888.
    void write_ppm(const zivcolor_room& room, const uint8_t* memory);
    // Luma alone.
    void write_pgm(const zivcolor_room& room, const uint8_t* memory);
    void close();

private:
    void put(const uint8_t* bytes, size_t size);
    [[noreturn]] void fail() const;

    std::string name_;
    FILE* file_;
    std::vector<uint8_t> row_;
};

}  // namespace tool
