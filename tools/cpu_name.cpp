// SPDX-License-Identifier: MIT
#include "cpu_name.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <fstream>
#include <map>
#include <thread>

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#elif defined(__APPLE__)
#include <sys/sysctl.h>
#endif
#if defined(__linux__)
#include <sched.h>
#include <sys/auxv.h>
#endif

namespace tool {

namespace {

std::string trimmed(const std::string& text) {
    const char* const blanks = " \t\r\n";
    const size_t first = text.find_first_not_of(blanks);
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

#if defined(__x86_64__) || defined(__i386__)

// The brand string, which the CPU itself gives in three parts.
std::string name_of_cpu() {
    unsigned words[12] = {};
    for (unsigned part = 0; part < 3; part++) {
        unsigned* const w = words + size_t{4} * part;
        if (!__get_cpuid(0x80000002 + part, &w[0], &w[1], &w[2], &w[3])) return {};
    }
    char text[sizeof words + 1] = {};
    memcpy(text, words, sizeof words);
    return trimmed(text);
}

#elif defined(__APPLE__)

std::string name_of_cpu() {
    char text[128] = {};
    size_t size = sizeof text - 1;
    return sysctlbyname("machdep.cpu.brand_string", text, &size, nullptr, 0) == 0 ? trimmed(text) : "";
}

#else

// The parts of MIDR_EL1: who designed a core, and which it is.
struct Core {
    unsigned long implementer, part;
    const char* name;
};
constexpr Core cores[] = {
    {0x41, 0xd03, "Cortex-A53"},  {0x41, 0xd04, "Cortex-A35"},  {0x41, 0xd05, "Cortex-A55"},  {0x41, 0xd07, "Cortex-A57"},
    {0x41, 0xd08, "Cortex-A72"},  {0x41, 0xd09, "Cortex-A73"},  {0x41, 0xd0a, "Cortex-A75"},  {0x41, 0xd0b, "Cortex-A76"},
    {0x41, 0xd0c, "Neoverse-N1"}, {0x41, 0xd0d, "Cortex-A77"},  {0x41, 0xd40, "Neoverse-V1"}, {0x41, 0xd41, "Cortex-A78"},
    {0x41, 0xd44, "Cortex-X1"},   {0x41, 0xd46, "Cortex-A510"}, {0x41, 0xd47, "Cortex-A710"}, {0x41, 0xd48, "Cortex-X2"},
    {0x41, 0xd49, "Neoverse-N2"}, {0x41, 0xd4b, "Cortex-A78C"}, {0x41, 0xd4d, "Cortex-A715"}, {0x41, 0xd4e, "Cortex-X3"},
    {0x41, 0xd4f, "Neoverse-V2"}, {0x41, 0xd80, "Cortex-A520"}, {0x41, 0xd81, "Cortex-A720"}, {0x41, 0xd82, "Cortex-X4"},
    {0x41, 0xd84, "Neoverse-V3"}, {0x41, 0xd85, "Cortex-X925"}, {0x41, 0xd87, "Cortex-A725"}, {0x41, 0xd8e, "Neoverse-N3"},
};

std::string core_name(unsigned long implementer, unsigned long part) {
    for (const Core& core : cores)
        if (core.implementer == implementer && core.part == part) return core.name;
    char text[64];
    snprintf(text, sizeof text, "core 0x%02lx/0x%03lx", implementer, part);
    return text;
}

// That of the core that this runs on, where the system lets a program read it; 0 where not.
unsigned long own_midr() {
#if defined(__aarch64__) && defined(__linux__)
    constexpr unsigned long cpuid = 1 << 11;  // HWCAP_CPUID
    if ((getauxval(AT_HWCAP) & cpuid) != 0) {
        unsigned long midr;
        asm("mrs %0, MIDR_EL1" : "=r"(midr));
        return midr;
    }
#endif
    return 0;
}

// The first line of a file, which may end in a null byte.
std::string line_of(const char* path) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return trimmed(line.c_str());
}

// The cores, as many as there are of each kind, and the machine or its chip.
std::string name_of_cpu() {
    std::ifstream file("/proc/cpuinfo");
    std::map<std::string, int> counts;
    std::string machine, model;
    unsigned long implementer = 0;
    for (std::string line; std::getline(file, line);) {
        const size_t colon = line.find(':');
        if (colon == std::string::npos) continue;
        const std::string key = trimmed(line.substr(0, colon)), value = trimmed(line.substr(colon + 1));
        if (key == "CPU implementer") implementer = strtoul(value.c_str(), nullptr, 0);
        else if (key == "CPU part") counts[core_name(implementer, strtoul(value.c_str(), nullptr, 0))]++;
        else if (key == "Hardware") machine = value;
        else if (key == "model name") model = value;
    }
    const unsigned long midr = own_midr();
    if (counts.empty() && midr != 0) return core_name(midr >> 24 & 0xFF, midr >> 4 & 0xFFF);
    if (machine.empty()) machine = model;
    std::string text;
    for (const auto& [name, count] : counts) text += (text.empty() ? "" : " + ") + std::to_string(count) + " " + name;
    for (const char* path : {"/sys/devices/soc0/machine", "/proc/device-tree/model"})
        if (machine.empty()) machine = line_of(path);
    if (text.empty() || machine.empty()) return text + machine;
    return text + " (" + machine + ")";
}

#endif

}  // namespace

std::string cpu_name() {
    const std::string name = name_of_cpu();
    return name.empty() ? "unknown" : name;
}

int cpu_count() {
#if defined(__linux__)
    cpu_set_t set;
    if (sched_getaffinity(0, sizeof set, &set) == 0) return CPU_COUNT(&set);
#endif
    return static_cast<int>(std::thread::hardware_concurrency());
}

}  // namespace tool
