// SPDX-License-Identifier: MIT
// Writes tools/digests.h to standard output: what the functions of the library give in every case of `zivcolor check`, by the
// scalar reference.
//   zivcolor_tool_digests [FILE]   with a file, says whether it holds what would be written
// Fails where a case reads or writes outside of its memory, or where its result is not determined.
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include "../tools/check_cases.h"
#include "reference/memory.h"
#include "reference/reference.h"
#include "reference/work_buffer.h"

namespace {

struct Bounds final : reference::Trace {
    const uint8_t *first = nullptr, *past = nullptr;
    bool outside = false;
    void read(const uint8_t* p) override { outside = outside || p < first || p >= past; }
    void written(const uint8_t* p) override { read(p); }
};

bool sound = true;
void complain(const tool::Function& function, const std::string& what, const char* of) {
    std::fprintf(stderr, "%s, %s: %s\n", function.name, what.c_str(), of);
    sound = false;
}

std::vector<uint32_t> digests_of(const tool::Function& function, std::vector<uint8_t>& memory) {
    std::vector<uint32_t> digests;
    if (function.cases.empty()) complain(function, "all", "no cases");
    for (const tool::Case& c : function.cases) {
        Bounds bounds;
        const auto call = [&](uint8_t* at) {
            bounds.first = at;
            bounds.past = at + c.bytes;
            return c.call(reference::kernels, at);
        };
        // Small cases go by every path that large ones do.
        reference::g_trace = c.bytes < 100000 ? &bounds : nullptr;
        digests.push_back(tool::run(c, call, memory));
        reference::g_trace = nullptr;
        if (bounds.outside) complain(function, c.what, "outside of its memory");
        reference::g_work_buffer_fill = 0xA5;
        if (tool::run(c, call, memory) != digests.back()) complain(function, c.what, "not determined");
        reference::g_work_buffer_fill = 0;
    }
    return digests;
}

}  // namespace

int main(int argc, char** argv) {
    std::string text =
        "// SPDX-License-Identifier: MIT\n"
        "// The digests of the scalar reference, one for each case of each function. Written by scripts/tool --digests.\n"
        "#pragma once\n\n#include <stdint.h>\n\n#include <iterator>\n\nnamespace tool {\n\n// clang-format off\n";
    std::string rows;
    std::vector<uint8_t> memory;
    for (const tool::Function& function : tool::functions()) {
        const std::string name = function.name, array = "digests_of_" + name;
        text += "inline constexpr uint32_t " + array + "[] = {";
        size_t column = 0;
        for (const uint32_t digest : digests_of(function, memory)) {
            char number[16];
            std::snprintf(number, sizeof number, " 0x%08x,", digest);
            text += (column++ % 10 == 0 ? "\n   " : "") + std::string(number);
        }
        text += "\n};\n";
        rows.append("    {\"").append(name).append("\", ").append(array).append(", std::size(").append(array).append(")},\n");
    }
    text +=
        "\nstruct Digests {\n    const char* function;\n    const uint32_t* digests;\n    size_t count;\n};\n"
        "inline constexpr Digests digests[] = {\n" +
        rows + "};\n// clang-format on\n\n}  // namespace tool\n";
    if (!sound) return 1;
    if (argc < 2) return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() ? 0 : 1;
    std::ifstream file(argv[1]);
    if (std::string(std::istreambuf_iterator<char>(file), {}) == text) return 0;
    std::fprintf(stderr, "%s is not what the scalar reference gives: scripts/tool --digests renews it\n", argv[1]);
    return 1;
}
