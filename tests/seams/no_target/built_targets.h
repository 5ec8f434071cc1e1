// SPDX-License-Identifier: MIT
// A build whose targets need what the CPU lacks, in the place of the file that the build generates.
#pragma once
#define ZIVCOLOR_BUILT_TARGETS(X) X(best, false) X(middle, false) X(last, false)
