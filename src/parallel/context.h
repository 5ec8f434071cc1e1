// SPDX-License-Identifier: MIT
// The record behind the handle of the multi-threaded front.
#pragma once

#include "parallel/band_tasks.h"

struct zivColorCvtContext_t {
    void* hEngine;
    int32_t bEngineReady;  // if 0, the engine is left alone when the context ends
    int32_t lTaskCount;    // bands of a conversion
    zivcolor::TaskFunction pfnTask[zivcolor::band_task_count];
};
