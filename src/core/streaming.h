// SPDX-License-Identifier: MIT
// Images beyond the caches. A kernel's stores read every line of the destination only to overwrite it: a third of the traffic
// where nothing stays in the caches. There an image is converted by tiles small enough for the first level, each into a buffer,
// from where whole lines go out by streaming stores, which read nothing. The kernels know nothing of it.
#pragma once

#include <type_traits>

#include "core/kernels.h"
#include "core/layout_list.h"
#include "core/rounding.h"
#include "core/streamed_rows.h"

namespace zivcolor {

// The tiles of an image that a kernel converts to the same bytes as within the whole. All are of even sizes and start at even
// rows and at whole multiples of 16 columns; those that do not end where the image does are whole multiples of 64 columns wide.
enum class Tiles : uint8_t {
    AnyTile,    // planes lie where the pitches say
    TightTile,  // two rows at a time, where the rows of all planes follow each other without a gap
    NoTile,
};

// A pair of layouts, as places in the layout list, and what is known of the kernel between them.
struct StreamedPair {
    uint8_t source, destination;
    Tiles tiles;
};
constexpr StreamedPair streamed_pair(uint32_t source, uint32_t destination, Tiles tiles) {
    return {static_cast<uint8_t>(layout_of(source) - layouts), static_cast<uint8_t>(layout_of(destination) - layouts), tiles};
}

// Converts by tiles and streaming stores, where sizes, pitches and addresses allow it, else as the kernel does.
int32_t convert_streaming(OpaqueConversion* kernel, StreamedPair pair, const Image* src, const Image* dst);
int32_t convert_streaming(AlphaConversion* kernel, StreamedPair pair, const Image* src, const Image* dst, uint8_t alpha);

// The same for images from the bound on that pays on this machine, which belong to a whole of so many pixels.
int32_t convert_large(int64_t pixels, OpaqueConversion* kernel, StreamedPair pair, const Image* src, const Image* dst);
int32_t convert_large(int64_t pixels, AlphaConversion* kernel, StreamedPair pair, const Image* src, const Image* dst,
                      uint8_t alpha);

// The bytes of 8 pixels.
constexpr int bytes_of_8(const Layout& layout) {
    const int chroma = layout.planes == 1 ? 0 : 8 * layout.chroma.bytes / (layout.chroma.columns * layout.chroma.rows);
    return 8 * layout.luma.bytes / layout.luma.columns + (layout.planes - 1) * chroma;
}

template <Tiles tiles>
inline constexpr bool may_stream = tiles != Tiles::NoTile&& has_streaming_stores;

template <uint32_t source, uint32_t destination, Tiles tiles, class Kernel, class... Alpha>
int32_t convert_by(const Image* src, const Image* dst, Alpha... alpha, Kernel* kernel, int64_t pixels) {
    constexpr int64_t bytes = bytes_of_8(*layout_of(source)) + bytes_of_8(*layout_of(destination));
    if (pixels > cached_bytes * 8 / bytes) [[unlikely]] {
        constexpr StreamedPair pair = streamed_pair(source, destination, tiles);
        return convert_large(pixels, kernel, pair, src, dst, alpha...);
    }
    return kernel(src, dst, alpha...);
}
// Converts an image that belongs to a whole of so many pixels: itself, or one that goes in bands, which share the caches.
// `kernel` is a member of KernelTable.
template <auto kernel, uint32_t source, uint32_t destination, Tiles tiles, class... Alpha>
int32_t convert_within(int64_t pixels, const KernelTable& kernels, const Image* src, const Image* dst, Alpha... alpha) {
    const auto function = kernels.*kernel;
    if constexpr (may_stream<tiles>) {
        using Kernel = std::remove_pointer_t<decltype(function)>;
        return call<has_floats<kernel>>(convert_by<source, destination, tiles, Kernel, Alpha...>, src, dst, alpha..., function,
                                        pixels);
    } else {
        return call<has_floats<kernel>>(function, src, dst, alpha...);
    }
}
constexpr int64_t pixels_of(const Image& image) { return int64_t{image.width} * image.height; }
// Looks at no more than the kernel: at the size behind the formats.
template <auto kernel, uint32_t source, uint32_t destination, Tiles tiles, class... Alpha>
int32_t convert(const KernelTable& kernels, const Image* src, const Image* dst, Alpha... alpha) {
    int64_t pixels = 0;
    if constexpr (may_stream<tiles>)
        if (src && dst && src->format == source && dst->format == destination) pixels = pixels_of(*dst);
    return convert_within<kernel, source, destination, tiles>(pixels, kernels, src, dst, alpha...);
}

// The rows and columns of an image from one on, as an image of its own. A chroma row belongs to the first of its rows.
inline Image tile_of(const Image& whole, const Layout& layout, int32_t column, int32_t row, int32_t columns, int32_t rows) {
    Image tile{};
    tile.format = whole.format;
    tile.width = columns;
    tile.height = rows;
    for (int k = 0; k < layout.planes; ++k) {
        const int64_t plane_row = k == 0 ? row : row / layout.chroma.rows;
        tile.plane[k] = whole.plane[k] + plane_row * whole.pitch[k] + layout.row_bytes(k, column);
        tile.pitch[k] = whole.pitch[k];
    }
    return tile;
}

}  // namespace zivcolor
