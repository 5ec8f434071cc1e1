// SPDX-License-Identifier: MIT
// Every kernel on every target that runs here, beside libyuv and a memory copy of the same bytes.
//   zivcolor_bench [google benchmark's flags]
// Names read kernel/target/width:W/height:H/offset:BYTES. Each is repeated, the repetitions of all interleaved, and reported by
// mean, median and deviation, unless flags say otherwise.
#include <string>
#include <vector>

#include "core/targets.h"
#include "measure.h"

int main(int argc, char** argv) {
    // What flags do not say; of two the later holds.
    static char defaults[][64] = {"--benchmark_repetitions=5", "--benchmark_report_aggregates_only=true",
                                  "--benchmark_min_time=0.01", "--benchmark_enable_random_interleaving=true",
                                  "--benchmark_counters_tabular=true"};
    std::vector<char*> arguments = {argv[0]};
    for (char* flag : defaults) arguments.push_back(flag);
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);

    std::string targets;
    for (const zivcolor::Target& target : zivcolor::built_targets()) targets.append(target.name).append(" ");
    benchmark::AddCustomContext("targets", targets);  // best first, for the report
    bench::add_conversions();
    bench::add_routines();
    bench::add_threads();
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
