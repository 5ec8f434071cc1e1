// SPDX-License-Identifier: MIT
// The multi-threaded front: a conversion is divided into bands of rows, which the parallel engine runs.
#include "parallel/context.h"

#include <algorithm>

#include "parallel/bands.h"
#include "parallel/memory.h"

using namespace zivcolor;

namespace {

constexpr int32_t bands_per_core = 4;

}  // namespace

extern "C" {

void* zivColorCvtInit_MultiThreads(void* hMemMgr) {
    void* engine = zivParallelInit(nullptr, bands_per_core);
    if (!engine) return nullptr;
    zivTryFireCpu(engine);
    auto* context = static_cast<zivColorCvtContext_t*>(MemMgrAlloc(hMemMgr, sizeof(zivColorCvtContext_t)));
    if (!context) return nullptr;  // the engine stays behind
    context->hEngine = engine;
    context->bEngineReady = 1;
    context->lTaskCount = zivParallelEngineCores(engine) * bands_per_core;
    std::copy(band_tasks.begin(), band_tasks.end(), context->pfnTask);
    return context;
}

int32_t zivColorCvtProcess_MultiThreads(void* zivColorCvtHandle, const __tag_KOBR_OFFSCREEN* srcImg,
                                        const __tag_KOBR_OFFSCREEN* dstImg, const zivColorExtParam_ALPHA_t* extParam) {
    if (!zivColorCvtHandle || !srcImg || !dstImg) return zivStatus_NullPointer;
    const zivColorExtParam_ALPHA_t transparent{0};
    const int32_t task = zivColorCvtFunc(srcImg, dstImg);
    if (task < 0) return zivStatus_BadArgument;

    // Nothing is allocated: bands and ids stand here until the last wait.
    const auto& context = *static_cast<const zivColorCvtContext_t*>(zivColorCvtHandle);
    RowRange bands[most_bands];
    zivColorParam_t params[most_bands];
    int32_t ids[most_bands]{};
    const int32_t count = context.lTaskCount;
    split_into_bands(dstImg->height, count, bands);
    for (int32_t i = 0; i < count; ++i) {
        params[i] = {srcImg, dstImg, bands[i].start, bands[i].end, extParam ? extParam : &transparent};
        ids[i] = zivAddTask(context.hEngine, context.pfnTask[task], &params[i]);
    }
    for (int32_t i = 0; i < count; ++i) zivWaitTask(context.hEngine, ids[i]);
    return zivStatus_OK;
}

int32_t zivColorCvtUnInit_MultiThreads(void* hMemMgr, void* zivColorCvtHandle) {
    if (!zivColorCvtHandle) return zivStatus_NullPointer;
    const auto* context = static_cast<const zivColorCvtContext_t*>(zivColorCvtHandle);
    if (context->bEngineReady != 0) {
        zivTryRestoreCpu(context->hEngine);
        if (zivParallelUninit(context->hEngine) < 0) return zivStatus_EngineFailure;  // the record stays allocated
    }
    MemMgrFree(hMemMgr, zivColorCvtHandle);
    return zivStatus_OK;
}

}  // extern "C"
