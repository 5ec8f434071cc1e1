// SPDX-License-Identifier: MIT
// A run of pages between two unmapped ones.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <new>

namespace harness {

class GuardedPages {
public:
    explicit GuardedPages(size_t least) {
        const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        size_ = (least + page - 1) / page * page;
        mapped_ = size_ + 2 * page;
        base_ = static_cast<uint8_t*>(mmap(nullptr, mapped_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        first_ = base_ + page;
        if (base_ == MAP_FAILED || mprotect(first_, size_, PROT_READ | PROT_WRITE) != 0) throw std::bad_alloc();
    }
    ~GuardedPages() { munmap(base_, mapped_); }
    GuardedPages(const GuardedPages&) = delete;
    GuardedPages& operator=(const GuardedPages&) = delete;
    uint8_t* first() const { return first_; }
    uint8_t* past() const { return first_ + size_; }
    size_t size() const { return size_; }

private:
    uint8_t *base_, *first_;
    size_t size_, mapped_;
};

}  // namespace harness
