// What the operating system says about the running process.
#pragma once

namespace harness {

// The threads of this process.
int thread_count();

// True once there are exactly so many, which may take a moment after a thread was joined; false after some seconds.
bool thread_count_becomes(int expected);

// True if the build checks memory or threads at run time, so that the heap is not the system's own.
constexpr bool sanitized =
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
    true;
#else
    false;
#endif
#else
    false;
#endif

}  // namespace harness
