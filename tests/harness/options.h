// SPDX-License-Identifier: MIT
// What the test program was asked for on its command line, beside the test framework's own flags.
//   --kernel=NAME     only the tests of the kernels whose names contain NAME
//   --target=NAME     only this target beside the reference
//   --colours=sample  a sample of the 2^24 colours, not all of them
#pragma once

#include <string>
#include <vector>

#include "core/targets.h"

namespace harness {

// Takes these flags out of the arguments, before the test framework looks at them. False, and a line on the terminal, if one
// has a value that means nothing here.
bool take_options(int* argc, char** argv);

// Narrows the test framework's filter to what --kernel asks for, once the framework has taken its flags. False, and a line on
// the terminal, if no test is left.
bool select_tests();

// The tests of a kernel that pass a filter of the framework's, as such a filter.
std::string tests_of_kernel(const std::string& kernel, const std::string& filter);

// The targets to test: those that run here, or the one that was asked for.
const std::vector<zivcolor::Target>& targets();
// Those of them whose kernel of this name is not that of a target before them: one that extends another may have taken it from
// there. All of them if there is no such kernel.
const std::vector<zivcolor::Target>& targets_with_own(const std::string& kernel);

// The values of the first component in walks over all colours: every one, or a sample with both ends.
const std::vector<int>& first_components();
bool all_colours();

}  // namespace harness
