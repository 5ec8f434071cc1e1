// SPDX-License-Identifier: MIT
#include "distance_tables.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "distance.h"
#include "facts_table.h"
#include "roads.h"

namespace {

using namespace facts;
using distance::Columns;
using distance::Component;
using distance::Distances;
using distance::Road;
using std::string;

// A component further off than this is a trap.
constexpr int tolerable = 3;

string layout_name(uint32_t format) { return zivcolor::layout_of(format)->name; }
bool is_yuv(uint32_t format) { return format >= zivPixFmt_YUV; }

// A kernel between YUV and RGB, and where its distances are.
struct Measured {
    std::string_view name;
    uint32_t source, destination;
    size_t blocks, tail;  // places among the roads; the same where block and tail give the same bytes
};

int greatest(const Distances& d) { return std::max({d.of[0].greatest, d.of[1].greatest, d.of[2].greatest}); }
bool trap(const Distances& d) { return greatest(d) > tolerable; }

string mean(const Component& c) {
    const int64_t hundredths = (200 * c.sum + c.samples) / (2 * c.samples);
    string digits = std::to_string(hundredths);
    if (digits.size() < 3) digits.insert(0, 3 - digits.size(), '0');
    return digits.insert(digits.size() - 2, 1, '.');
}
template <class Text>
string of_three(const Distances& d, Text text) {
    string all;
    for (const Component& c : d.of) all += (all.empty() ? "" : ", ") + (c.samples ? text(c) : string("unwritten"));
    return all;
}
string greatest_of_each(const Distances& d) {
    return of_three(d, [](const Component& c) { return std::to_string(c.greatest); });
}
string mean_of_each(const Distances& d) { return of_three(d, mean); }

// Whether a kernel converts the whole image at every even size and steps each plane by its own pitch.
bool plain(const Facts& f) {
    const auto whole = [](int odd) { return odd == LeftOut || odd == Exact || odd == Past; };
    const auto planes = [](uint32_t format) { return (1 << zivcolor::layout_of(format)->planes) - 1; };
    bool own_pitches = false;
#define ZIVCOLOR_PITCHES(name_, source, destination, alpha, dispatch, task, tile) \
    if (f.name == #name_)                                                         \
        own_pitches =                                                             \
            f.source_pitches == planes(zivPixFmt_##source) && f.destination_pitches == planes(zivPixFmt_##destination);
    ZIVCOLOR_CONVERSIONS(ZIVCOLOR_PITCHES)
#undef ZIVCOLOR_PITCHES
    return own_pitches && whole(f.odd_width) && whole(f.odd_height);
}

struct Tables {
    std::vector<Road> roads;
    std::vector<Measured> kernels;
    std::vector<size_t> advised;  // by advice: its place among the roads
    string text;

    Tables() {
#define ZIVCOLOR_MEASURE(name, source, destination, alpha, dispatch, task, tile) \
    add_kernel(#name, zivPixFmt_##source, zivPixFmt_##destination);
        ZIVCOLOR_YUV2RGB_CONVERSIONS(ZIVCOLOR_MEASURE)
        ZIVCOLOR_RGB2YUV_CONVERSIONS(ZIVCOLOR_MEASURE)
#undef ZIVCOLOR_MEASURE
        for (const Advice& advice : advices) {
            const Measured* own = kernel(advice.source, advice.destination);
            if (own && own->tail == own->blocks && advice.steps.size() == 1 && own->name == advice.steps[0].kernel) {
                advised.push_back(own->blocks);
                continue;
            }
            advised.push_back(roads.size());
            Road road{advice.source, advice.destination, {}, Columns::Both, {}};
            for (const Step& step : advice.steps) road.kernels.push_back(step.kernel);
            roads.push_back(road);
        }
        distance::measure(roads);
        check_advices();
    }
    void add_kernel(std::string_view name, uint32_t source, uint32_t destination) {
        const Facts& f = *find(conversions, name);
        kernels.push_back({name, source, destination, roads.size(), roads.size()});
        roads.push_back({source, destination, {name}, Columns::Blocks, {}});
        if (f.tail == Same) return;
        kernels.back().tail = roads.size();
        roads.push_back({source, destination, {name}, f.block == 8 ? Columns::TailOf8 : Columns::TailOf16, {}});
    }
    const Measured* kernel(uint32_t source, uint32_t destination) const {
        for (const Measured& k : kernels)
            if (k.source == source && k.destination == destination) return &k;
        return nullptr;
    }
    // Several kernels are a good advice where they are closer than the pair's own, or where it has none; and no advice is a
    // trap.
    void check_advices() const {
        for (size_t i = 0; i < advices.size(); i++) {
            const Advice& advice = advices[i];
            const string name = layout_name(advice.source) + " to " + layout_name(advice.destination);
            const Distances& found = roads[advised[i]].found;
            if (trap(found)) throw std::logic_error("bad advice, " + greatest_of_each(found) + " off: " + name);
            for (const Step& step : advice.steps)
                if (!plain(*find(conversions, step.kernel)))
                    throw std::logic_error("bad advice, not at every size and pitch: " + name);
            for (const Component& c : found.of)
                if (c.samples == 0) throw std::logic_error("bad advice, leaves bytes unwritten: " + name);
            if (is_yuv(advice.source) == is_yuv(advice.destination) && greatest(found) > 0)
                throw std::logic_error("bad advice, changes bytes: " + name);
            const Measured* own = kernel(advice.source, advice.destination);
            if (own && advice.steps.size() > 1 && !trap(roads[own->blocks].found) && !trap(roads[own->tail].found))
                throw std::logic_error("needless advice: " + name);
        }
    }

    template <class... Parts>
    void print(const Parts&... parts) {
        ((text += parts), ...);
    }

    void print_advices() {
        print(
            "## What to take\n\n"
            "For every source and destination that phones have: kernels whose colours are close at every even width and "
            "height, in "
            "the\norder in which they are called, each on what the one before it wrote. *In place* means that both descriptors "
            "name "
            "the same\nplanes; what must stay as it is takes a buffer of its own instead. `zivColorCvt` picks the same kernels "
            "by the "
            "two codes.\n\n"
            "YV12 is I420 with its chroma planes exchanged: exchange `plane[1]` and `plane[2]`, and their pitches, in the "
            "descriptor, "
            "call\nit I420, and take the rows of I420.\n\n"
            "| You have | You want | Take | Off at most | In the mean | Why |\n|---|---|---|---|---|---|\n");
        for (size_t i = 0; i < advices.size(); i++) {
            const Advice& advice = advices[i];
            string steps;
            for (const Step& step : advice.steps)
                steps += (steps.empty() ? "`" : ", then `") + string(step.kernel) + "`" + (step.in_place ? " in place" : "");
            const Distances& found = roads[advised[i]].found;
            const bool moves = is_yuv(advice.source) == is_yuv(advice.destination);
            print("| ", layout_name(advice.source), " | ", layout_name(advice.destination), " | ", steps, " | ",
                  moves ? "0" : greatest_of_each(found), " | ", moves ? "0" : mean_of_each(found), " | ", advice.why, " |\n");
        }
        print("\n");
    }

    void print_traps() {
        print(
            "## Traps\n\n"
            "Kernels that are more than ",
            std::to_string(tolerable),
            " steps off somewhere, by the table below: in blocks, that is at every width, or in the tail alone, at\n"
            "widths that blocks do not fill. Their notes stand under their tables.\n\n"
            "| Pair | Kernel | Where | Components | Off at most | In the mean |\n|---|---|---|---|---|---|\n");
        for (const bool in_tail : {false, true})
            for (const Measured& k : kernels) {
                const Distances& found = roads[in_tail ? k.tail : k.blocks].found;
                if (!trap(found) || (in_tail && k.tail == k.blocks)) continue;
                print("| ", layout_name(k.source), " to ", layout_name(k.destination), " | `", k.name, "` | ",
                      in_tail ? "tail" : "blocks", " | ", is_yuv(k.destination) ? "Y, U, V" : "R, G, B", " | ",
                      greatest_of_each(found), " | ", mean_of_each(found), " |\n");
            }
        print("\n");
    }

    void print_distances() {
        print(
            "## Distance from BT.601\n\n"
            "How far the bytes that a kernel writes are from the exact conversion at full range, rounded to the nearest byte "
            "and "
            "limited\nto 0..255:\n\n"
            "- `R = Y + 1.402 v`, `G = Y - (0.114 * 1.772 u + 0.299 * 1.402 v) / 0.587`, `B = Y + 1.772 u`;\n"
            "- `Y = 0.299 R + 0.587 G + 0.114 B`, `U = (B - Y) / 1.772 + 128`, `V = (R - Y) / 1.402 + 128`.\n\n"
            "Measured over all 2^24 colours, in pictures whose neighbouring colours have nothing to do with each other, so "
            "that a\n"
            "sample taken from a wrong place counts in full; in a real picture, where neighbours are alike, it counts for "
            "less, in "
            "a flat\none not at all. The greatest distance is also sought in pictures of extreme values. A chroma sample is "
            "compared "
            "with that of\nthe pixel at the even column (and row) of those that share it. A mean of 0.00 is below 0.005.\n\n");
        for (const bool to_yuv : {false, true}) {
            print(to_yuv ? "| RGB to YUV: Y, U, V |" : "| YUV to RGB: R, G, B |",
                  " Off at most | In the mean | Tail: off at most | In the mean |\n|---|---|---|---|---|\n");
            for (const Measured& k : kernels) {
                if (is_yuv(k.destination) != to_yuv) continue;
                const Distances &blocks = roads[k.blocks].found, &tail = roads[k.tail].found;
                print("| ", layout_name(k.source), " to ", layout_name(k.destination), " | ", greatest_of_each(blocks), " | ",
                      mean_of_each(blocks), " | ");
                if (k.tail == k.blocks) print("same | same |\n");
                else print(greatest_of_each(tail), " | ", mean_of_each(tail), " |\n");
            }
            print("\n");
        }
    }
};

}  // namespace

string distance_tables() {
    Tables tables;
    tables.print_advices();
    tables.print_traps();
    tables.print_distances();
    return tables.text;
}
