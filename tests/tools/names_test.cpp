// SPDX-License-Identifier: MIT
#include "names.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <sstream>

#include "options.h"

namespace {

using tool::Refusal;

TEST(Tool, KnowsEveryNameOnce) {
    std::map<std::string, uint32_t> known;
    int layouts = 0;
    for (int32_t i = 0; const zivcolor_layout* layout = zivcolor_layout_at(i); i++, layouts++) {
        const tool::OtherNames& others = tool::other_names(layout->format);
        EXPECT_EQ(others.format, layout->format) << layout->name;
        std::istringstream all(std::string(layout->name) + " " + others.fourcc + " " + others.ffmpeg);
        for (std::string name; all >> name;) {
            EXPECT_EQ(tool::layout_named(name).format, layout->format) << name;
            for (char& c : name) c = static_cast<char>(tolower(c));
            EXPECT_EQ(tool::layout_named(name).format, layout->format) << name;
            const auto [row, is_new] = known.try_emplace(name, layout->format);
            EXPECT_TRUE(is_new || row->second == layout->format) << name << " is two layouts";
        }
    }
    EXPECT_EQ(layouts, 22);
    EXPECT_THROW(tool::layout_named("yuv410p"), Refusal);
    EXPECT_THROW(tool::layout_named(""), Refusal);
}

std::string refusal(const char* from, const char* to) {
    try {
        tool::pair_named(from, to);
        return "";
    } catch (const Refusal& refusal) {
        return refusal.what();
    }
}

TEST(Tool, NamesTheNearestPairs) {
    EXPECT_EQ(refusal("nv12", "bgr24"), "");
    EXPECT_EQ(
        refusal("NV12", "RGB888"),
        "NV12 is not converted to RGB888; nearest: NV12 to BGR888, NV21 to RGB888, NV12 to RGBA8888, NV12 to BGRA8888, I420 "
        "to RGB888; or by way of NV21");
    EXPECT_EQ(refusal("ARGB8888", "NV21").rfind("ARGB8888 is not converted to NV21; nearest: ", 0), 0u);
    // Every pair that is not converted is refused in one line that names those that are.
    for (int32_t i = 0; const zivcolor_layout* from = zivcolor_layout_at(i); i++)
        for (int32_t k = 0; const zivcolor_layout* to = zivcolor_layout_at(k); k++) {
            const std::string text = refusal(from->name, to->name);
            EXPECT_EQ(text.empty(), zivcolor_pair_of(from->format, to->format) != nullptr);
            EXPECT_EQ(text.find('\n'), std::string::npos);
            EXPECT_LT(text.size(), 200u);
        }
}

}  // namespace
