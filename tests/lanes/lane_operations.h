// SPDX-License-Identifier: MIT
// The lane vocabulary of one target as functions over plain bytes, so that one test can run each operation on every target.
// Built once for each target, like the kernels; the tests themselves are compiled without knowing which targets there are.
#pragma once

#include <stdint.h>

namespace harness {

struct LaneOperation {
    const char* name;
    int bytes;  // of a vector
    // in: four vectors a, b, c, d; out: up to four vectors.
    void (*run)(const uint8_t* in, uint8_t* out);
};

struct LaneOperations {
    const LaneOperation* rows;
    int count;
};

// Of every target of this build; one without a name ends the list.
struct TargetOperations {
    const char* target;
    const LaneOperations* operations;
};
extern const TargetOperations built_operations[];

}  // namespace harness
