// SPDX-License-Identifier: MIT
// Names the kernel that touches memory which is not there, before the process ends of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace harness {

// From now on a fault is reported: the test, the target and the case that run, and where the address lies.
void report_faults();

// A call of one target's kernel, for as long as it runs.
class Running {
public:
    struct Area {
        const char* name;
        const uint8_t *first, *past;
    };
    // Both arguments are used only if there is a fault, and must live as long as this.
    Running(const char* target, const std::function<std::string()>& what, const std::vector<Area>* areas = nullptr);
    ~Running();
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
};

}  // namespace harness
