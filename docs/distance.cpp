// SPDX-License-Identifier: MIT
// Pictures in which every colour occurs and neighbours have nothing to do with each other, taken through the reference and
// compared, sample by sample, with the exact conversion of the pixel that stands there; chroma with that of the pixel at the
// even column (and row) of those that share it. A second kind, of extreme values, counts for the greatest distances only: it
// finds those of kernels that take a sample from a wrong place.
#include "distance.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <mutex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>

#include "facts_table.h"
#include "harness/random.h"
#include "reference/memory.h"
#include "reference/reference.h"

namespace distance {
namespace {

using std::size_t;
using zivcolor::Image;

// A strip is a picture of so many pixels, in cells of 2 by 2.
constexpr int cells = 16384, strip_pixels = 4 * cells, strips = 256, extreme_strips = 16;

// Columns that are measured, and those of the image: what lies between them is a tail behind blocks, or left out by some tails.
struct Shape {
    int columns, width;
    int across() const { return columns / 2; }
    int cell_rows() const { return (cells + across() - 1) / across(); }
    int height() const { return 2 * cell_rows(); }
    bool operator==(const Shape& other) const { return columns == other.columns && width == other.width; }
};
constexpr Shape shape_of(Columns columns) {
    switch (columns) {
        case Columns::Blocks: return {1024, 1040};
        case Columns::TailOf16: return {12, 14};
        case Columns::TailOf8: return {4, 6};
        case Columns::Both: break;
    }
    return {28, 30};
}

struct Kernel {
    std::string_view name;
    uint32_t source, destination;
    bool to_row_one;
};

int32_t call(zivcolor::OpaqueConversion* kernel, const Image* src, const Image* dst) { return kernel(src, dst); }
int32_t call(zivcolor::AlphaConversion* kernel, const Image* src, const Image* dst) { return kernel(src, dst, 255); }

int32_t convert(const Kernel& kernel, const Image& src, const Image& dst) {
#define ZIVCOLOR_CALL(id, source, destination, alpha, dispatch, task, tile) \
    if (kernel.name == #id) return call(reference::kernels.id, &src, &dst);
    ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CALL)
#undef ZIVCOLOR_CALL
    return zivStatus_BadArgument;
}

Kernel kernel_of(std::string_view name) {
#define ZIVCOLOR_FIND(id, source, destination, alpha, dispatch, task, tile) \
    if (name == #id)                                                        \
        return {name, zivPixFmt_##source, zivPixFmt_##destination,          \
                facts::find(facts::conversions, #id)->odd_height == facts::RowOne};
    ZIVCOLOR_CONVERSIONS(ZIVCOLOR_FIND)
#undef ZIVCOLOR_FIND
    throw std::invalid_argument("no kernel " + std::string(name));
}

// ---- Pictures ----

struct Picture {
    const zivcolor::Layout* layout;
    Image image;
    std::vector<uint8_t> bytes[3];

    // Rows are tight, as some kernels want; a kernel that reads ahead of a row finds the next one, or what stands behind the
    // last.
    Picture(uint32_t format, Shape shape, int height)
        : layout(zivcolor::layout_of(format)), image{format, shape.width, height, {}, {}} {
        for (int k = 0; k < layout->planes; k++) {
            image.pitch[k] = layout->row_bytes(k, shape.width);
            bytes[k].assign(static_cast<size_t>(image.pitch[k] * (layout->rows(k, height) + 2) + 64), 0);
            image.plane[k] = bytes[k].data();
        }
    }
    Picture(Picture&&) = default;
    Image as(uint32_t format) const {
        Image i = image;
        i.format = format;
        return i;
    }
};

// Where a component stands: one sample for so many columns and rows, each so many bytes behind the one before.
struct Place {
    int plane = 0, offset = 0, stride = 0, columns = 0, rows = 0;
    ptrdiff_t at(const Image& image, int x, int y) const {
        return y / rows * image.pitch[plane] + x / columns * stride + offset;
    }
    bool shared() const { return columns * rows > 1; }
};

bool is_yuv(uint32_t format) { return format >= zivPixFmt_YUV; }
const char* letters(uint32_t format) { return is_yuv(format) ? "YUV" : "RGB"; }

// From the row of the layout in kernel_facts.h.
std::array<Place, 3> places_of(uint32_t format) {
    const zivcolor::Layout& l = *zivcolor::layout_of(format);
    const facts::LayoutFacts& words = *facts::find(facts::layouts, l.name);
    std::array<Place, 3> places{};
    for (int plane = 0; plane < l.planes; plane++) {
        std::string text(plane ? words.chroma : words.luma);
        if (const size_t semicolon = text.find(';'); semicolon != std::string::npos)
            text = plane == 1 ? text.substr(0, semicolon) : text.substr(semicolon + 1);
        const auto& unit = plane ? l.chroma : l.luma;
        std::istringstream in(text);
        std::string word;
        for (int offset = 0; in >> word; offset++)
            for (size_t c = 0; c < 3; c++) {
                if (word[0] != letters(format)[c]) continue;
                // Y0 and Y1 of a unit: two samples, half a unit apart.
                const int samples = word.size() > 1 && word[1] < '2' ? 2 : 1;
                if (samples == 2 && word[1] == '1') continue;
                places[c] = {plane, offset, unit.bytes / samples, unit.columns / samples, unit.rows};
            }
    }
    return places;
}

// ---- Colours ----

using Colour = std::array<uint8_t, 3>;

// The colours of a strip, by the four pixels of a cell and by component.
struct Colours {
    std::vector<uint8_t> of[4][3];
    Colours() {
        for (auto& pixel : of)
            for (std::vector<uint8_t>& component : pixel) component.resize(cells);
    }
    Colour get(size_t cell, size_t k) const { return {of[k][0][cell], of[k][1][cell], of[k][2][cell]}; }
    void set(size_t cell, size_t k, Colour colour) {
        for (size_t c = 0; c < 3; c++) of[k][c][cell] = colour[c];
    }
};

uint32_t mixed(uint32_t n, int bits) {
    const uint32_t mask = (uint32_t{1} << bits) - 1;
    for (int round = 0; round < 3; round++) {
        n = (n * 0x9E3779B1u + 0x7F4A7C15u) & mask;
        n ^= n >> (bits / 2);
    }
    return n;
}

// The four colours of a cell share U and V, or have nothing to do with each other. Over all strips each colour comes once.
void choose(int strip, bool yuv, Colours& colours) {
    harness::Random random{harness::base_seed + static_cast<uint64_t>(strip)};
    if (strip >= strips) {
        const auto extreme = [&] {
            const uint32_t n = random.next();
            return static_cast<uint8_t>(n & 256 ? n : n & 512 ? 255 : 0);
        };
        for (size_t cell = 0; cell < cells; cell++) {
            const uint8_t u = extreme(), v = extreme();
            for (size_t k = 0; k < 4; k++)
                colours.set(cell, k, yuv ? Colour{extreme(), u, v} : Colour{extreme(), extreme(), extreme()});
        }
        return;
    }
    static const std::array<uint8_t, 256> shuffled = [] {
        std::array<uint8_t, 256> bytes{};
        for (size_t i = 0; i < 256; i++) bytes[i] = static_cast<uint8_t>(i);
        harness::Random order{harness::base_seed};
        for (int i = 255; i > 0; i--) std::swap(bytes[static_cast<size_t>(i)], bytes[static_cast<size_t>(order.below(i + 1))]);
        return bytes;
    }();
    for (uint32_t i = 0; i < strip_pixels; i++) {
        const uint32_t pixel = static_cast<uint32_t>(strip) * strip_pixels + i;
        const uint32_t n = yuv ? mixed(pixel / 4, 22) : mixed(pixel, 24);
        const uint32_t u = n & 255, v = n >> 8 & 255, luma = 4 * (n >> 16) + pixel % 4;
        const uint32_t first = yuv ? shuffled[(luma + 37 * u + 91 * v) & 255] : n >> 16;
        colours.set(i / 4, i % 4, {static_cast<uint8_t>(first), static_cast<uint8_t>(u), static_cast<uint8_t>(v)});
    }
}

// The nearest whole number of a quotient, limited to a byte. Halves go up.
uint8_t nearest(int numerator, int denominator) {
    const int doubled = 2 * numerator + denominator;
    return doubled < 0 ? 0 : static_cast<uint8_t>(std::min(doubled / (2 * denominator), 255));
}

// BT.601: Y = 0.299 R + 0.587 G + 0.114 B, U = (B - Y) / 1.772, V = (R - Y) / 1.402.
Colour exact(const Colour& from, bool from_yuv) {
    const int a = from[0], b = from[1], c = from[2];
    if (from_yuv) {
        const int u = b - 128, v = c - 128;
        return {nearest(1000 * a + 1402 * v, 1000), nearest(587000 * a - 114 * 1772 * u - 299 * 1402 * v, 587000),
                nearest(1000 * a + 1772 * u, 1000)};
    }
    const int y = 299 * a + 587 * b + 114 * c;
    return {nearest(y, 1000), nearest(128 * 1772 + 1000 * c - y, 1772), nearest(128 * 1402 + 1000 * a - y, 1402)};
}

// ---- A road on a picture ----

struct Job {
    Road* road;
    Shape shape;
    std::vector<Kernel> kernels;
    std::array<Place, 3> places;
    int passes;                       // a sample that pixels share takes as many, to come from each colour
    std::vector<uint8_t> written[3];  // whether a sample is, by the columns of two rows
    Distances found;

    explicit Job(Road& r) : road(&r), shape(shape_of(r.columns)), places(places_of(r.destination)) {
        for (const std::string_view name : r.kernels) kernels.push_back(kernel_of(name));
        const Place& chroma = places[1];
        passes = is_yuv(r.source) ? 1 : chroma.columns * chroma.rows;
        find_written();
    }

    std::vector<Picture> pictures(int height) const {
        std::vector<Picture> p;
        for (const Kernel& kernel : kernels) p.emplace_back(kernel.destination, shape, height);
        return p;
    }
    void run(const Picture& source, std::vector<Picture>& between) const {
        const Picture* from = &source;
        for (size_t step = 0; step < kernels.size(); step++) {
            const Kernel& kernel = kernels[step];
            const Image src = from->as(kernel.source), dst = between[step].image;
            if (!kernel.to_row_one) {
                if (convert(kernel, src, dst) != zivStatus_OK) throw std::logic_error("refused: " + std::string(kernel.name));
            } else {
                // All rows land on row 1: each is an image of its own, with no step from row to row.
                for (int y = 0; y < src.height; y++) {
                    Image s = src, d = dst;
                    s.height = d.height = 2;
                    for (int k = 0; k < 3; k++) s.plane[k] += y / (k ? 2 : 1) * s.pitch[k], s.pitch[k] = 0;
                    d.plane[0] += y * d.pitch[0], d.pitch[0] = 0;
                    if (convert(kernel, s, d) != zivStatus_OK) throw std::logic_error("refused: " + std::string(kernel.name));
                }
            }
            from = &between[step];
        }
    }

private:
    void find_written() {
        struct Record : reference::Trace {
            std::vector<const uint8_t*> places;
            void read(const uint8_t*) override {}
            void written(const uint8_t* p) override { places.push_back(p); }
        } record;
        const Picture source(road->source, shape, 2);
        std::vector<Picture> between = pictures(2);
        reference::g_trace = &record;
        run(source, between);
        reference::g_trace = nullptr;
        std::sort(record.places.begin(), record.places.end());
        const Image& last = between.back().image;
        for (size_t c = 0; c < 3; c++)
            for (int y = 0; y < 2; y++)
                for (int x = 0; x < shape.columns; x++) {
                    const uint8_t* p = last.plane[places[c].plane] + places[c].at(last, x, y);
                    written[c].push_back(std::binary_search(record.places.begin(), record.places.end(), p));
                }
    }
};

// The pixel of a cell that stands in its row and column; from pass to pass they change places.
size_t pixel_of_cell(int row, int column, int pass) { return static_cast<size_t>((2 * (row & 1) + (column & 1) + pass) & 3); }

// Calls body(row, cells before it, its cells).
template <class Body>
void each_row(Shape shape, Body body) {
    for (int row = 0; row < shape.height(); row++) {
        const int first = row / 2 * shape.across();
        body(row, first, std::min(shape.across(), cells - first));
    }
}

void fill(Picture& picture, Shape shape, const Colours& colours, int pass) {
    const std::array<Place, 3> places = places_of(picture.image.format);
    for (size_t c = 0; c < 3; c++) {
        const Place& place = places[c];
        each_row(shape, [&](int row, int first, int count) {
            for (int column = 0; column < 2; column++) {
                uint8_t* to = picture.bytes[place.plane].data() + place.at(picture.image, column, row);
                const uint8_t* from = colours.of[pixel_of_cell(row, column, pass)][c].data() + first;
                const int step = 2 / place.columns * place.stride;
                for (int i = 0; i < count; i++) to[i * step] = from[i];
            }
        });
    }
}

void compare(Job& job, const Picture& result, const Colours& expected, int pass, bool means) {
    for (size_t c = 0; c < 3; c++) {
        const Place& place = job.places[c];
        if (pass > 0 && !place.shared()) continue;
        int greatest = 0;
        int64_t sum = 0, samples = 0;
        each_row(job.shape, [&](int row, int first, int count) {
            if (row % place.rows != 0) return;
            for (int column = 0; column < 2; column += place.columns) {
                const uint8_t* at = result.bytes[place.plane].data() + place.at(result.image, column, row);
                const uint8_t* exact_at = expected.of[pixel_of_cell(row, column, pass)][c].data() + first;
                const uint8_t* written = job.written[c].data() + row % 2 * job.shape.columns + column;
                const int step = 2 / place.columns * place.stride;
                int row_sum = 0;
                for (int i = 0; i < count; i++) {
                    if (!written[2 * i]) continue;
                    const int off = std::abs(at[i * step] - exact_at[i]);
                    greatest = std::max(greatest, off);
                    row_sum += off;
                    samples++;
                }
                sum += row_sum;
            }
        });
        Component& found = job.found.of[c];
        found.greatest = std::max(found.greatest, greatest);
        if (means) found.sum += sum, found.samples += samples;
    }
}

// Roads that start from the same pictures.
struct Group {
    Picture source;
    std::vector<Job> jobs;
    Shape shape() const { return jobs.front().shape; }
    bool from_yuv() const { return is_yuv(source.image.format); }
    int passes() const {
        int most = 0;
        for (const Job& job : jobs) most = std::max(most, job.passes);
        return most;
    }
};

std::vector<Group> group(const std::vector<Job>& jobs) {
    std::vector<Group> groups;
    for (const Job& job : jobs) {
        auto found = std::find_if(groups.begin(), groups.end(), [&](const Group& g) {
            return g.source.image.format == job.road->source && g.shape() == job.shape;
        });
        if (found == groups.end()) {
            groups.push_back({Picture(job.road->source, job.shape, job.shape.height()), {}});
            found = groups.end() - 1;
            // What fill() leaves out has nothing to do with its neighbours either.
            harness::Random random{harness::base_seed};
            for (std::vector<uint8_t>& plane : found->source.bytes)
                for (uint8_t& byte : plane) byte = static_cast<uint8_t>(random.next());
        }
        found->jobs.push_back(job);
    }
    return groups;
}

void measure_strip(int strip, std::vector<Group>& groups) {
    Colours colours, expected;
    for (const bool yuv : {true, false}) {
        choose(strip, yuv, colours);
        for (size_t cell = 0; cell < cells; cell++)
            for (size_t k = 0; k < 4; k++) expected.set(cell, k, exact(colours.get(cell, k), yuv));
        for (Group& g : groups)
            for (int pass = 0; g.from_yuv() == yuv && pass < g.passes(); pass++) {
                fill(g.source, g.shape(), colours, pass);
                for (Job& job : g.jobs) {
                    if (pass >= job.passes) continue;
                    std::vector<Picture> between = job.pictures(g.source.image.height);
                    job.run(g.source, between);
                    const bool same_space = is_yuv(job.road->destination) == yuv;
                    compare(job, between.back(), same_space ? colours : expected, pass, strip < strips);
                }
            }
    }
}

}  // namespace

void measure(std::vector<Road>& roads) {
    std::vector<Job> jobs;
    for (Road& road : roads) jobs.emplace_back(road);
    std::atomic<int> next{0};
    std::mutex adding;
    const auto work = [&] {
        std::vector<Group> groups = group(jobs);
        for (int strip; (strip = next++) < strips + extreme_strips;) measure_strip(strip, groups);
        const std::lock_guard<std::mutex> lock(adding);
        for (const Group& g : groups)
            for (const Job& job : g.jobs)
                for (size_t c = 0; c < 3; c++) {
                    Component& whole = job.road->found.of[c];
                    const Component& part = job.found.of[c];
                    whole.greatest = std::max(whole.greatest, part.greatest);
                    whole.sum += part.sum, whole.samples += part.samples;
                }
    };
    std::vector<std::thread> threads;
    for (unsigned n = std::max(std::thread::hardware_concurrency(), 1u); n > 0; n--) threads.emplace_back(work);
    for (std::thread& thread : threads) thread.join();
}

}  // namespace distance
