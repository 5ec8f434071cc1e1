#include "harness/options.h"

#include <cstdio>
#include <cstring>

#include "harness/conversions.h"

namespace harness {

namespace {

std::string g_kernel, g_target;
bool g_sample = false;

// Kernels with a signature of their own are tested by suites that do not bear their names.
struct Suite {
    const char *kernel, *filter;
};
constexpr Suite suites[] = {
    {"zivRotate", "*Geometry*:RotateExamples*:*TurnsAndMirrors*"},
    {"zivflip_horizontal_nv21", "*Geometry*:MirrorExamples*:*TurnsAndMirrors*"},
    {"zivflip_vertical_nv21", "*Geometry*:MirrorExamples*:*TurnsAndMirrors*"},
    {"HSL888u8", "*Hsl*"},
    {"_SkinWhitenByMask_YUV420_VUVU", "*Whiten*"},
    {"CalcMergeWeightMap_neon", "*MergeWeight*"},
    {"NV41", "*NV41*:*Nv41*"},
};

bool known_kernel(const std::string& name) {
    for (const char* kernel : {
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, reach, task) #name,
#define ZIVCOLOR_ROUTINE(result, name, parameters, arguments) #name,
             ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION) ZIVCOLOR_ROUTINES(ZIVCOLOR_ROUTINE)
#undef ZIVCOLOR_ROUTINE
#undef ZIVCOLOR_CONVERSION
         })
        if (std::strstr(kernel, name.c_str())) return true;
    return false;
}

bool sound() {
    if (!g_kernel.empty() && !known_kernel(g_kernel)) {
        std::printf("no kernel's name contains '%s'\n", g_kernel.c_str());
        return false;
    }
    if (targets().empty()) {
        std::printf("target '%s' is not in this build, or does not run here\n", g_target.c_str());
        return false;
    }
    return true;
}

}  // namespace

bool take_options(int* argc, char** argv) {
    const auto value = [](const char* argument, const char* flag) {
        const size_t length = std::strlen(flag);
        return std::strncmp(argument, flag, length) == 0 ? argument + length : nullptr;
    };
    int kept = 1;
    for (int i = 1; i < *argc; i++) {
        if (const char* kernel = value(argv[i], "--kernel=")) {
            g_kernel = kernel;
        } else if (const char* target = value(argv[i], "--target=")) {
            g_target = target;
        } else if (const char* colours = value(argv[i], "--colours=")) {
            g_sample = std::strcmp(colours, "sample") == 0;
            if (!g_sample && std::strcmp(colours, "all") != 0) {
                std::printf("--colours is 'all' or 'sample', not '%s'\n", colours);
                return false;
            }
        } else {
            argv[kept++] = argv[i];
        }
    }
    *argc = kept;
    return sound();
}

std::string filter_of_options() {
    if (g_kernel.empty()) return {};
    std::string filter = "*" + g_kernel + "*";
    for (const Suite& suite : suites)
        if (std::strstr(suite.kernel, g_kernel.c_str()) || g_kernel.find(suite.kernel) != std::string::npos)
            filter += std::string(":") + suite.filter;
    return filter;
}

const std::vector<zivcolor::Target>& targets() {
    static const std::vector<zivcolor::Target> chosen = [] {
        std::vector<zivcolor::Target> list;
        for (const zivcolor::Target& target : zivcolor::built_targets())
            if (target.runs_here() && (g_target.empty() || g_target == target.name)) list.push_back(target);
        return list;
    }();
    return chosen;
}

const std::vector<int>& first_components() {
    static const std::vector<int> chosen = [] {
        std::vector<int> list;
        for (int value = 0; value < 256; value += g_sample ? 15 : 1) list.push_back(value);
        return list;
    }();
    return chosen;
}

bool all_colours() { return !g_sample; }

}  // namespace harness
