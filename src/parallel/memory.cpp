// SPDX-License-Identifier: MIT
#include "parallel/memory.h"

#include <stdlib.h>
#include <string.h>

#if defined(_WIN32)
#include <malloc.h>
#endif

namespace zivcolor {

namespace {

constexpr size_t heap_alignment = 64;  // the widest vector

#if defined(_WIN32)
void* heap_allocate(size_t size) { return _aligned_malloc(size, heap_alignment); }
void heap_release(void* pointer) { _aligned_free(pointer); }
#else
void* heap_allocate(size_t size) {
    void* pointer = nullptr;
    return posix_memalign(&pointer, heap_alignment, size) == 0 ? pointer : nullptr;
}
void heap_release(void* pointer) { free(pointer); }
#endif

}  // namespace

void* MemMgrAlloc(void* hMemMgr, int64_t size) {
    if (size < 0) return nullptr;
    if (hMemMgr) {
        const MemMgrRecord& manager = *static_cast<const MemMgrRecord*>(hMemMgr);
        return manager.allocate ? manager.allocate(manager.user, size) : nullptr;
    }
    const uint64_t bytes = static_cast<uint64_t>(size);
    if (bytes > SIZE_MAX) return nullptr;
    // The least request is one byte, since the C heap may answer a request of none with null.
    return heap_allocate(bytes ? static_cast<size_t>(bytes) : 1);
}

void MemMgrFree(void* hMemMgr, void* pointer) {
    if (!pointer) return;
    if (!hMemMgr) return heap_release(pointer);
    const MemMgrRecord& manager = *static_cast<const MemMgrRecord*>(hMemMgr);
    if (manager.release) manager.release(manager.user, pointer);
}

void MemMgrCpy(void* destination, const void* source, int64_t size) {
    if (size > 0) memmove(destination, source, static_cast<size_t>(size));
}

void MemMgrSet(void* destination, uint8_t value, int64_t size) {
    if (size > 0) memset(destination, value, static_cast<size_t>(size));
}

}  // namespace zivcolor
