// SPDX-License-Identifier: MIT
#include "parallel/threads.h"

#if defined(_WIN32)
#define ZIVCOLOR_POSIX 0
#else
#define ZIVCOLOR_POSIX 1
#include <pthread.h>
#include <signal.h>
#include <unistd.h>
#endif

#if defined(__linux__)
#include <sched.h>
#endif

namespace zivcolor {

Thread start_without_signals(void (*function)(void*), void* argument) {
#if ZIVCOLOR_POSIX
    // A thread inherits the mask of the one that starts it.
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    Thread thread;
    try {
        thread = Thread(function, argument);
    } catch (...) {
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
        throw;
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return thread;
#else
    return Thread(function, argument);
#endif
}

void name_this_thread() {
#if defined(__linux__)
    pthread_setname_np(pthread_self(), "zivcolor");
#elif defined(__APPLE__)
    pthread_setname_np("zivcolor");
#endif
}

#if ZIVCOLOR_POSIX && !defined(__EMSCRIPTEN__)

namespace {

// A loader does not unload a library whose thread-local objects are still to be destroyed.
struct Holder {
    volatile bool holds = false;
    ~Holder() { holds = false; }
};
thread_local Holder holder;

}  // namespace

void keep_library_loaded() { holder.holds = true; }

#else

void keep_library_loaded() {}

#endif

int32_t this_cpu() {
#if defined(__linux__)
    return sched_getcpu();
#else
    return -1;
#endif
}

int32_t leave_cpu(int32_t cpu, int32_t avoided) {
#if defined(__linux__)
    cpu_set_t cpus;
    if (sched_getaffinity(0, sizeof cpus, &cpus) != 0) return avoided;
    if (avoided >= 0) CPU_SET(static_cast<size_t>(avoided), &cpus);
    CPU_CLR(static_cast<size_t>(cpu), &cpus);
    return sched_setaffinity(0, sizeof cpus, &cpus) == 0 ? cpu : avoided;
#else
    static_cast<void>(cpu);
    return avoided;
#endif
}

int64_t process_id() {
#if ZIVCOLOR_POSIX
    return getpid();
#else
    return 0;
#endif
}

}  // namespace zivcolor
