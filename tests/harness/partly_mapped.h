// SPDX-License-Identifier: MIT
// A record of which only so many bytes from its start on can be read: what lies behind them, or all of it, is not mapped.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <new>

namespace harness {

template <class Record>
class PartlyMapped {
public:
    explicit PartlyMapped(const Record& record, size_t readable = 0)
        : page_(static_cast<size_t>(sysconf(_SC_PAGESIZE))),
          pages_(static_cast<uint8_t*>(mmap(nullptr, 2 * page_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {
        static_assert(alignof(Record) <= 8);
        if (pages_ == MAP_FAILED || mprotect(pages_, page_, PROT_READ | PROT_WRITE) != 0) throw std::bad_alloc();
        uint8_t* const first = pages_ + page_ - readable;
        std::memcpy(first, &record, readable);
        record_ = reinterpret_cast<const Record*>(first);
    }
    ~PartlyMapped() { munmap(pages_, 2 * page_); }
    PartlyMapped(const PartlyMapped&) = delete;
    PartlyMapped& operator=(const PartlyMapped&) = delete;

    const Record* get() const { return record_; }

private:
    size_t page_;
    uint8_t* pages_;
    const Record* record_;
};

// An image of which all but the format lies out of reach: with the width beside it, for the sake of alignment.
class FormatOnly : public PartlyMapped<__tag_KOBR_OFFSCREEN> {
public:
    explicit FormatOnly(uint32_t format) : PartlyMapped({format, 64, 64, {}, {}}, 8) {}
};
// One of which nothing can be read.
class OutOfReach : public PartlyMapped<__tag_KOBR_OFFSCREEN> {
public:
    OutOfReach() : PartlyMapped({}) {}
};

}  // namespace harness
