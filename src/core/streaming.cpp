// SPDX-License-Identifier: MIT
#include "core/streaming.h"

#if defined(__x86_64__)

#include <emmintrin.h>
#include <string.h>

#include "core/capabilities.h"

namespace zivcolor {

// ---- Rows ----

namespace {

constexpr int line = 64;

void stream_line(uint8_t* to, const uint8_t* from) {
    for (int k = 0; k < line; k += 16)
        _mm_stream_si128(reinterpret_cast<__m128i*>(to + k), _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + k)));
}

}  // namespace

bool beyond_caches(int64_t bytes) {
    // Of a large last cache a core has but a share, as others use it too.
    static const int64_t share = last_cache_bytes() / 8;
    return bytes > cached_bytes && bytes >= share;
}

void stream_bytes(uint8_t* to, const uint8_t* from, int64_t bytes, bool first, bool last) {
    const int64_t into_line = static_cast<int64_t>(reinterpret_cast<uintptr_t>(to) % line);
    int64_t j = -into_line;
    if (first && into_line != 0) {
        j += line;
        memcpy(to, from, static_cast<size_t>(j < bytes ? j : bytes));
    }
    for (; j + line <= bytes; j += line) stream_line(to + j, from + j);
    if (last && j < bytes) memcpy(to + j, from + j, static_cast<size_t>(bytes - j));
}

void end_streaming() { _mm_sfence(); }

// ---- Images ----

namespace {

// A tile, its source and the next one's source stay in the first level of the cache.
struct TileSize {
    int32_t columns, rows;
};
constexpr TileSize any_tile{256, 4}, tight_tile{512, 2}, most{512, 4};

int32_t at_most(int32_t value, int32_t limit) { return value < limit ? value : limit; }

// So many columns have less than 2^31 bytes in every layout. Where there are more, a pitch of an image is less than its row.
constexpr int32_t widest_row = INT32_MAX / 4;

// Whether tiles of the image are told by its pitches, in products of 32 bits, and whole rows of it share no byte.
bool is_sound(const Image& image, const Layout& layout, Tiles tiles) {
    for (int k = 0; k < layout.planes; ++k) {
        const int64_t pitch = image.pitch[k], row_bytes = layout.row_bytes(k, image.width),
                      distance = pitch < 0 ? -pitch : pitch;
        if (tiles == Tiles::TightTile ? pitch != row_bytes : distance < row_bytes) return false;
        if (distance * image.height > INT32_MAX) return false;
    }
    return true;
}

struct Extent {
    uintptr_t first, past;
};
Extent extent_of(const Image& image, const Layout& layout, int plane) {
    const uintptr_t first = reinterpret_cast<uintptr_t>(image.plane[plane]);
    const int64_t last_row = int64_t{layout.rows(plane, image.height) - 1} * image.pitch[plane];
    const uintptr_t last = first + static_cast<uintptr_t>(last_row),
                    row_bytes = static_cast<uintptr_t>(layout.row_bytes(plane, image.width));
    return last_row < 0 ? Extent{last, first + row_bytes} : Extent{first, last + row_bytes};
}
bool apart(Extent a, Extent b) { return a.past <= b.first || b.past <= a.first; }

// Whether nothing that is written is read or written by another tile.
bool destination_is_apart(const Image& src, const Layout& from, const Image& dst, const Layout& to) {
    for (int k = 0; k < to.planes; ++k) {
        const Extent written = extent_of(dst, to, k);
        for (int n = 0; n < k; ++n)
            if (!apart(written, extent_of(dst, to, n))) return false;
        for (int n = 0; n < from.planes; ++n)
            if (!apart(written, extent_of(src, from, n))) return false;
    }
    return true;
}

constexpr int stage_pitch(const Layout& layout, int plane) { return line + layout.row_bytes(plane, most.columns); }
constexpr int stage_bytes() {
    int needed = 0;
    for (const Layout& layout : layouts) {
        int bytes = 0;
        for (int k = 0; k < layout.planes; ++k) bytes += layout.rows(k, most.rows) * stage_pitch(layout, k);
        if (bytes > needed) needed = bytes;
    }
    return needed;
}

// The buffer that tiles are converted to: an image with room for a line before every row.
struct Stage {
    alignas(line) uint8_t bytes[stage_bytes()];
};
Image image_of(Stage& stage, const Layout& layout) {
    Image image{};
    image.format = layout.format;
    uint8_t* at = stage.bytes;
    for (int k = 0; k < layout.planes; ++k) {
        image.plane[k] = at + line;
        image.pitch[k] = stage_pitch(layout, k);
        at += layout.rows(k, most.rows) * image.pitch[k];
    }
    return image;
}

// A kernel, one of the two, and what it takes beside the images.
struct KernelCall {
    bool takes_alpha;
    OpaqueConversion* opaque;
    AlphaConversion* with_alpha;
    uint8_t alpha;
};
int32_t call(const KernelCall& kernel, const Image& src, const Image& dst) {
    return kernel.takes_alpha ? kernel.with_alpha(&src, &dst, kernel.alpha) : kernel.opaque(&src, &dst);
}

void prefetch(const Image& tile, const Layout& layout) {
    asm volatile("");  // or else the compiler drops the call
    for (int k = 0; k < layout.planes; ++k) {
        const int rows = layout.rows(k, tile.height), bytes = layout.row_bytes(k, tile.width);
        const uint8_t* row = tile.plane[k];
        for (int i = 0; i < rows; ++i, row += tile.pitch[k])
            for (int j = 0; j < bytes; j += line) __builtin_prefetch(row + j);
    }
}

void stream(const Image& staged, const Image& tile, const Layout& layout, bool first, bool last) {
    for (int k = 0; k < layout.planes; ++k) {
        const int rows = layout.rows(k, tile.height), bytes = layout.row_bytes(k, tile.width);
        for (int i = 0; i < rows; ++i) {
            uint8_t* const row = staged.plane[k] + int64_t{i} * staged.pitch[k];
            stream_bytes(tile.plane[k] + int64_t{i} * tile.pitch[k], row, bytes, first, last);
            if (!last) memcpy(row - line, row + bytes - line, line);
        }
    }
}

// Whether the tiles of these images can be converted by themselves, in any order.
bool has_tiles(StreamedPair pair, const Image& src, const Image& dst) {
    const Layout &from = layouts[pair.source], &to = layouts[pair.destination];
    return src.format == from.format && dst.format == to.format && src.width == dst.width && src.height == dst.height &&
           dst.width >= 2 * line && dst.width <= widest_row && dst.height >= 2 && dst.width % 2 == 0 && dst.height % 2 == 0 &&
           is_sound(src, from, pair.tiles) && is_sound(dst, to, pair.tiles) && destination_is_apart(src, from, dst, to);
}

[[gnu::noinline]] int32_t convert_tiles(const KernelCall& kernel, StreamedPair pair, const Image& src, const Image& dst) {
    if (!has_tiles(pair, src, dst)) return call(kernel, src, dst);
    const Layout &from = layouts[pair.source], &to = layouts[pair.destination];
    const TileSize size = pair.tiles == Tiles::TightTile ? tight_tile : any_tile;
    // The last columns go the kernel's own way, with the end of the row: no tile is narrower than a line.
    const int32_t width = dst.width, streamed = width % line == 0 ? width : (width / line - 1) * line;
    Stage stage;
    Image staged = image_of(stage, to);
    int32_t status = zivStatus_OK;
    for (int32_t row = 0; row < dst.height; row += size.rows) {
        const int32_t rows = at_most(size.rows, dst.height - row), next_rows = at_most(size.rows, dst.height - row - rows);
        for (int32_t column = 0, next; column < streamed; column = next) {
            const int32_t columns = at_most(size.columns, streamed - column);
            next = column + columns;
            if (next < streamed) prefetch(tile_of(src, from, next, row, at_most(size.columns, streamed - next), rows), from);
            else prefetch(tile_of(src, from, 0, row + rows, at_most(size.columns, streamed), next_rows), from);
            staged.width = columns;
            staged.height = rows;
            status = call(kernel, tile_of(src, from, column, row, columns, rows), staged);
            stream(staged, tile_of(dst, to, column, row, columns, rows), to, column == 0, next == streamed);
        }
        if (streamed < width)
            call(kernel, tile_of(src, from, streamed, row, width - streamed, rows),
                 tile_of(dst, to, streamed, row, width - streamed, rows));
    }
    end_streaming();
    return status;
}

bool is_large(int64_t pixels, StreamedPair pair) {
    return beyond_caches(pixels / 8 * (bytes_of_8(layouts[pair.source]) + bytes_of_8(layouts[pair.destination])));
}

}  // namespace

int32_t convert_streaming(OpaqueConversion* kernel, StreamedPair pair, const Image* src, const Image* dst) {
    return convert_tiles({false, kernel, nullptr, 0}, pair, *src, *dst);
}
int32_t convert_streaming(AlphaConversion* kernel, StreamedPair pair, const Image* src, const Image* dst, uint8_t alpha) {
    return convert_tiles({true, nullptr, kernel, alpha}, pair, *src, *dst);
}

int32_t convert_large(int64_t pixels, OpaqueConversion* kernel, StreamedPair pair, const Image* src, const Image* dst) {
    return is_large(pixels, pair) ? convert_streaming(kernel, pair, src, dst) : kernel(src, dst);
}
int32_t convert_large(int64_t pixels, AlphaConversion* kernel, StreamedPair pair, const Image* src, const Image* dst,
                      uint8_t alpha) {
    return is_large(pixels, pair) ? convert_streaming(kernel, pair, src, dst, alpha) : kernel(src, dst, alpha);
}

}  // namespace zivcolor

#endif
