// SPDX-License-Identifier: MIT
// Band tasks: one conversion over a run of rows, in the form that the parallel engine runs.
#pragma once

#include <array>

#include "core/image.h"
#include "core/kernel_list.h"
#include "parallel/engine.h"

// One band. The record and all that it points to must live until its task has finished.
struct zivColorParam_t {
    const zivcolor::Image* srcImg;  // the whole images
    const zivcolor::Image* dstImg;
    int32_t lStartLine;    // first row, even
    int32_t lEndLine;      // the row after the last
    const void* extParam;  // a zivColorExtParam_ALPHA_t, never null
};

namespace zivcolor {

constexpr int NoTask = -1;

#define ZIVCOLOR_HAS_TASK(name, source, destination, alpha, dispatch, slot, tile) +(slot != NoTask)
inline constexpr size_t band_task_count = 0 ZIVCOLOR_CONVERSIONS(ZIVCOLOR_HAS_TASK);
#undef ZIVCOLOR_HAS_TASK

// The tasks by the index that zivColorCvtFunc returns.
using BandTasks = std::array<TaskFunction, band_task_count>;
extern const BandTasks band_tasks;

}  // namespace zivcolor
