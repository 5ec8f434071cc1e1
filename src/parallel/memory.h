// SPDX-License-Identifier: MIT
// The memory service: the one place where the library takes and gives back memory, copies blocks and fills them.
// Its names stand in the library's namespace: a program's own MemMgrAlloc is another function.
#pragma once

#include <stdint.h>

namespace zivcolor {

// What a memory manager handle points to when it is not null: an allocator of the caller. A null handle is the C heap.
struct MemMgrRecord {
    // Memory of size bytes that suits any scalar type, or null. size is 0 or more.
    void* (*allocate)(void* user, int64_t size);
    // Takes back what allocate gave; never called with null.
    void (*release)(void* user, void* pointer);
    void* user;  // handed to both
};

// Memory of size bytes, not cleared; from the C heap it starts at a multiple of 64 bytes. Null when it cannot be had, when size
// is negative, and when the record of hMemMgr has no allocate. 0 bytes are a valid request.
void* MemMgrAlloc(void* hMemMgr, int64_t size);

// Gives back memory to the manager that it came from. A null pointer is nothing.
void MemMgrFree(void* hMemMgr, void* pointer);

// Copies size bytes; the blocks may overlap. Fills size bytes with a value. Nothing happens for a size of 0 or less.
void MemMgrCpy(void* destination, const void* source, int64_t size);
void MemMgrSet(void* destination, uint8_t value, int64_t size);

}  // namespace zivcolor
