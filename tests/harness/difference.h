// SPDX-License-Identifier: MIT
// Where the bytes of a plane are not those that were expected, told so that a person can see what happened.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace harness {

// What a buffer holds, for reports alone. Without a pitch it is a run of bytes.
struct Plane {
    const char* name = "buffer";
    int pitch = 0;
    int row_bytes = 0;  // of a tight row
    int columns = 0;    // of the image
};

// Both memories have `size` bytes; the plane's pointer is `origin` bytes from their start. Tells how many bytes differ, where
// the first of them is, and shows the rows around it, ours beside the reference. Empty if there is no difference.
std::string difference(const Plane& plane, const uint8_t* expected, const uint8_t* actual, size_t size, ptrdiff_t origin);

}  // namespace harness
