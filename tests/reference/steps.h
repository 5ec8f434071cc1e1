// SPDX-License-Identifier: MIT
// What the repacking kernels share: the checks at entry, rows, and runs of bytes that a step loads whole before it stores.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/image.h"
#include "reference/memory.h"

namespace reference {

inline bool is_null(const void* a, const void* b) { return a == nullptr || b == nullptr; }

inline bool formats_are(const zivcolor::Image* src, int32_t from, const zivcolor::Image* dst, int32_t to) {
    return static_cast<int32_t>(src->format) == from && static_cast<int32_t>(dst->format) == to;
}

inline bool at_least(const zivcolor::Image* image, int32_t width, int32_t height) {
    return image->width >= width && image->height >= height;
}

// Start of row r of a plane.
template <typename Row>
inline uint8_t* row(const zivcolor::Image* image, int plane, Row r) {
    return image->plane[plane] + static_cast<int64_t>(r) * image->pitch[plane];
}

template <int N>
using Bytes = std::array<int, static_cast<size_t>(N)>;

template <int N>
Bytes<N> load(const uint8_t* p) {
    Bytes<N> bytes{};
    for (size_t i = 0; i < N; ++i) bytes[i] = get(p + i);
    return bytes;
}

template <size_t N>
void store(uint8_t* p, const std::array<int, N>& bytes) {
    for (size_t i = 0; i < N; ++i) put(p + i, bytes[i]);
}

// a0 b0 a1 b1 ...
template <size_t N>
std::array<int, 2 * N> interleave(const std::array<int, N>& a, const std::array<int, N>& b) {
    std::array<int, 2 * N> pairs{};
    for (size_t i = 0; i < N; ++i) pairs[2 * i] = a[i], pairs[2 * i + 1] = b[i];
    return pairs;
}

template <size_t N>
std::array<int, N / 2> even(const std::array<int, N>& pairs) {
    std::array<int, N / 2> lanes{};
    for (size_t i = 0; i < N / 2; ++i) lanes[i] = pairs[2 * i];
    return lanes;
}

template <size_t N>
std::array<int, N / 2> odd(const std::array<int, N>& pairs) {
    std::array<int, N / 2> lanes{};
    for (size_t i = 0; i < N / 2; ++i) lanes[i] = pairs[2 * i + 1];
    return lanes;
}

}  // namespace reference
