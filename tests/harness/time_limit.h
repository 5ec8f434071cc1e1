// SPDX-License-Identifier: MIT
// A limit on how long the tests of a suite may take: a thread that sleeps for ever ends the program instead of holding it up.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

namespace harness {

// Wide enough for the sanitizers and for emulation.
constexpr unsigned time_limit_seconds = 300;

// For all suites whose names begin with prefix. The value has no meaning: a constant of a file may hold it.
inline bool limit_time_of(const std::string& prefix) {
    struct Limit : testing::EmptyTestEventListener {
        std::string prefix;
        void OnTestStart(const testing::TestInfo& test) override {
            if (std::string(test.test_suite_name()).rfind(prefix, 0) == 0) alarm(time_limit_seconds);
        }
        void OnTestEnd(const testing::TestInfo&) override { alarm(0); }
    };
    auto* limit = new Limit;
    limit->prefix = prefix;
    testing::UnitTest::GetInstance()->listeners().Append(limit);
    return true;
}

}  // namespace harness
