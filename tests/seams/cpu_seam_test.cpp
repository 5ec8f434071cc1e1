// SPDX-License-Identifier: MIT
// The choice of a target on CPUs that are made up: every combination of what it looks at.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>

#include "core/capabilities.h"
#include "core/targets.h"
#include "core/x86_cpu.h"

#include "built_targets.h"

namespace {

struct Cpu {
    std::map<std::pair<unsigned, unsigned>, zivcolor::Leaf> leaves;
    unsigned state = 0;
};
Cpu cpu;

constexpr int os_uses_xsave = 27;  // of leaf 1, c

}  // namespace

namespace zivcolor {

Leaf cpuid(unsigned number, unsigned part) {
    const auto leaf = cpu.leaves.find({number, part});
    return leaf == cpu.leaves.end() ? Leaf{} : leaf->second;
}

unsigned saved_state() {
    EXPECT_TRUE(cpuid(1, 0).c >> os_uses_xsave & 1) << "an instruction that such a CPU lacks";
    return cpu.state;
}

// Tables of no kernels: all that counts is which one it is.
#define ZIVCOLOR_TABLE(target, condition) \
    namespace target {                    \
    extern const KernelTable kernels;     \
    const KernelTable kernels{};          \
    }
ZIVCOLOR_BUILT_TARGETS(ZIVCOLOR_TABLE)
#undef ZIVCOLOR_TABLE

}  // namespace zivcolor

namespace {

// What the choice looks at, by bits of one number.
struct Feature {
    const char* name;
    unsigned zivcolor::Leaf::*word;  // null: the saved state
    unsigned leaf;
    int bit;
};
constexpr Feature features[] = {
    {"SSE4.2", &zivcolor::Leaf::c, 1, 20},
    {"XSAVE", &zivcolor::Leaf::c, 1, os_uses_xsave},
    {"AVX", &zivcolor::Leaf::c, 1, 28},
    {"AVX2", &zivcolor::Leaf::b, 7, 5},
    {"AVX512F", &zivcolor::Leaf::b, 7, 16},
    {"AVX512BW", &zivcolor::Leaf::b, 7, 30},
    {"AVX512VL", &zivcolor::Leaf::b, 7, 31},
    {"AVX512VBMI", &zivcolor::Leaf::c, 7, 1},
    {"XMM", nullptr, 0, 1},
    {"upper YMM", nullptr, 0, 2},
    {"masks", nullptr, 0, 5},
    {"upper ZMM", nullptr, 0, 6},
    {"more ZMM", nullptr, 0, 7},
};
constexpr unsigned sse4 = 0x0001, avx2_alone = 0x030E, avx512_alone = 0x1FF2, avx2 = sse4 | avx2_alone,
                   avx512 = avx2 | avx512_alone;

// A CPU of these features; of what the choice does not look at it has all or nothing.
Cpu cpu_of(unsigned set, bool all_else) {
    const unsigned rest = all_else ? ~0u : 0;
    Cpu made;
    made.leaves[{1, 0}] = made.leaves[{7, 0}] = {rest, rest, rest, rest};
    made.state = rest;
    for (unsigned k = 0; k < sizeof features / sizeof *features; k++) {
        const Feature& f = features[k];
        unsigned& word = f.word ? made.leaves[{f.leaf, 0}].*f.word : made.state;
        word = (word & ~(1u << f.bit)) | (set >> k & 1) << f.bit;
    }
    return made;
}

std::string names_of(unsigned set) {
    std::string text;
    for (unsigned k = 0; k < sizeof features / sizeof *features; k++)
        if (set >> k & 1) text += std::string(features[k].name) + ", ";
    return text;
}

bool has(unsigned set, unsigned needed) { return (set & needed) == needed; }

bool runs(const std::string& target, unsigned set) {
    return has(set, target == "avx512" ? avx512 : target == "avx2" ? avx2 : target == "sse4" ? sse4 : 0);
}

TEST(CpuSeam, EveryCombinationOfFeaturesGetsItsTarget) {
    for (unsigned set = 0; set < 1u << (sizeof features / sizeof *features); set++)
        for (const bool all_else : {false, true}) {
            cpu = cpu_of(set, all_else);
            ASSERT_EQ(zivcolor::cpu_has_SSE4_2(), has(set, sse4)) << names_of(set);
            ASSERT_EQ(zivcolor::cpu_has_AVX2(), has(set, avx2_alone)) << names_of(set);
            ASSERT_EQ(zivcolor::cpu_has_AVX512_VBMI(), has(set, avx512_alone)) << names_of(set);
            const zivcolor::Target* best = zivcolor::built_targets().past - 1;
            for (const zivcolor::Target& target : zivcolor::built_targets()) {
                ASSERT_EQ(target.runs_here(), runs(target.name, set)) << target.name << " with " << names_of(set);
                if (runs(target.name, set)) {
                    best = &target;
                    break;
                }
            }
            ASSERT_EQ(&zivcolor::best_kernels(), best->kernels) << best->name << " with " << names_of(set);
        }
}

TEST(CpuSeam, ACpuThatTellsNothingGetsTheLast) {
    cpu = {};
    EXPECT_EQ(&zivcolor::best_kernels(), (zivcolor::built_targets().past - 1)->kernels);
    EXPECT_EQ(zivcolor::last_cache_bytes(), 0);
}

// It is chosen at the first call and stays, as kernels of two targets must not meet in one process.
TEST(CpuSeam, TheChoiceIsKept) {
    cpu = cpu_of(avx512, false);
    const zivcolor::KernelTable* const chosen = &zivcolor::chosen_kernels();
    EXPECT_EQ(chosen, &zivcolor::best_kernels());
    cpu = {};
    EXPECT_EQ(&zivcolor::chosen_kernels(), chosen);
}

zivcolor::Leaf cache(unsigned type, unsigned ways, unsigned partitions, unsigned line, unsigned sets) {
    return {type, (ways - 1) << 22 | (partitions - 1) << 12 | (line - 1), sets - 1, 0};
}

TEST(CpuSeam, TheLargestCacheIsTheLast) {
    constexpr unsigned intel = 4, amd = 0x8000001D;
    for (const unsigned vendor : {intel, amd}) {
        cpu = {};
        cpu.leaves[{vendor, 0}] = cache(1, 12, 1, 64, 64);  // 48 KB
        EXPECT_EQ(zivcolor::last_cache_bytes(), 48 << 10);
        cpu.leaves[{vendor, 1}] = cache(2, 8, 2, 64, 64);  // 64 KB
        EXPECT_EQ(zivcolor::last_cache_bytes(), 64 << 10);
        cpu.leaves[{vendor, 2}] = cache(3, 16, 1, 64, 1 << 11);  // 2 MB
        EXPECT_EQ(zivcolor::last_cache_bytes(), 2 << 20);
        cpu.leaves[{vendor, 3}] = cache(3, 1024, 1, 4096, 1 << 16);  // 256 GB
        EXPECT_EQ(zivcolor::last_cache_bytes(), int64_t{256} << 30);
        cpu.leaves[{vendor, 1}].a = 0;  // no more caches from here on
        EXPECT_EQ(zivcolor::last_cache_bytes(), 48 << 10);
    }
    // Parts up to the eighth are asked for, and of two vendors' leaves the larger counts.
    cpu = {};
    for (unsigned part = 0; part < 9; part++) cpu.leaves[{intel, part}] = cache(3, 1, 1, 64, 1u << part);
    EXPECT_EQ(zivcolor::last_cache_bytes(), 64 << 7);
    cpu.leaves[{amd, 0}] = cache(3, 2, 1, 64, 1 << 8);
    EXPECT_EQ(zivcolor::last_cache_bytes(), 128 << 8);
    cpu.leaves[{amd, 0}] = cache(3, 1, 1, 64, 2);
    EXPECT_EQ(zivcolor::last_cache_bytes(), 64 << 7);
}

}  // namespace
