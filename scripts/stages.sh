# SPDX-License-Identifier: MIT
# The stages of the proof and what they are made of; scripts/test runs them.
# shellcheck shell=bash disable=SC2034,SC2154  # the lists are read there, the stage is named there

# Name, longest time in seconds, what it proves; each is a function of the same name below. The first list is the quick proof; `all`
# runs the second.
quick_stages="
format          120  clang-format changes nothing; every file of code names its licence
quick           900  GCC: every target of this CPU by every test; of the 2^24 colours one strip in 15
quick_aarch64   900  GCC: the kernels' tables on emulated AArch64 against the reference, without walks over colours; exported names
quick_package   300  an installation is found and used from C and from C++
"
all_stages="
format          120  clang-format changes nothing; every file of code names its licence
release        1200  GCC: every target of this CPU by every test, all 2^24 colours; exported names, no stray symbols
clang          1200  clang 14: benchmarks compile, the demo says what it should; every target by every test, a sample of the colours
clang19        1200  clang 19: every target by every test, all 2^24 colours; exported names, no stray symbols
lto            1200  link-time optimisation, GCC with -Werror=odr and clang 19 with lld: two targets by every test, a sample of the colours
tidy            900  clang-tidy 14 finds nothing in library, benchmark, demo and tool
coverage        900  the tests reach 99 % of the library's lines; no stray symbols without optimisation
asan            900  address and undefined behaviour sanitizers, all tests but the walks over all colours
fuzz            600  fuzzers from a fixed seed, under both sanitizers
tsan            900  thread sanitizer: engine, context, bands, memory service
package         600  installation, find_package, pkg-config, add_subdirectory, archive, .deb for two architectures; the headers by themselves in C99, C11, C++11 to C++20
docs            600  links, samples, the example in Python, generated tables and the API reference are sound
old_cpus        900  emulated Haswell, Nehalem, Conroe meet no instruction that they lack, each in the kernels chosen for it
aarch64         900  GCC: every test on emulated AArch64 with and without the dot product, a sample of the colours; exported names, no stray symbols
aarch64_clang14 900  clang 14: the same tests on emulated AArch64, a sample of the colours
aarch64_clang19 1500  clang 19: the same tests on emulated AArch64, all 2^24 colours
tools           900  the tool: its tests; every function by its digests, natively and by a static build on three emulated AArch64 CPUs
riscv64         900  GCC: the portable kernels' tables on an emulated machine without vectors, a sample of the colours
armhf           900  clang 14: the portable kernels' tables on emulated 32-bit ARM, a sample of the colours
homes          1200  zig's compiler: macOS, Windows and musl build without a warning and export the listed functions; musl's kernels, emulated
"

# ---- What stages are made of ----

jobs=$(nproc)
logs=build/logs
library_and_tests=(-DZIVCOLOR_BUILD_BENCHMARKS=OFF -DZIVCOLOR_BUILD_EXAMPLES=OFF)
cmake_packages=(git g++ cmake ninja-build googletest libgtest-dev)
demo_packages=(libpng-dev libturbojpeg0-dev libfreetype-dev fonts-dejavu-core)
aarch64_packages=("${cmake_packages[@]}" g++-aarch64-linux-gnu qemu-user)

# Runs a command with its output in a log of the stage's own; the end of that is shown if it fails.
#   logged NAME COMMAND...
logged() {
    local log=$logs/$stage.$1.log
    shift
    "$@" >"$log" 2>&1 || { tail -60 "$log"; return 1; }
}

# Configures a preset and builds these of its things, or all.
#   build PRESET [TARGET...] [-- CMAKE_OPTION...]
build() {
    local preset=$1 things=() options=()
    shift
    while [ $# -gt 0 ] && [ "$1" != -- ]; do things+=("$1"); shift; done
    [ $# -eq 0 ] || options=("${@:2}")
    logged "$preset.configure" cmake --preset "$preset" "${options[@]}"
    logged "$preset.build" cmake --build "build/$preset" --parallel "$jobs" ${things[0]:+--target "${things[@]}"}
}

# The test program's own code, compiled once for each architecture and linked with every build of the library for it.
#   test_code PRESET
test_code() { build "$1" zivcolor_test_archive; }

# Runs a test program in many small shards, as many at a time as there are cores.
#   run_tests PROGRAM FLAGS [LAUNCHER...]     FLAGS is one word list for the program
run_tests() {
    local program=$1 flags=$2 shards=$((6 * jobs))
    shift 2
    export GTEST_TOTAL_SHARDS=$shards
    # shellcheck disable=SC2016
    seq 0 $((shards - 1)) | xargs -P "$jobs" -I{} bash -c '
        set -f
        log=$1 flags=$2 program=$3; shift 3
        GTEST_SHARD_INDEX={} "$@" "$program" --gtest_brief=1 $flags >"$log.{}.log" 2>&1 ||
            { tail -n 60 "$log.{}.log"; echo "failed: $program, shard {} of $GTEST_TOTAL_SHARDS"; exit 255; }
        sed -n "s/^\[==========\] \(.*\) ran\. \(.*\)/  part {}: \1 \2/p" "$log.{}.log"
    ' _ "$logs/$stage.tests" "$flags" "$program" "$@" || return 1  # not the status of xargs, which is that of a stage out of time
    unset GTEST_TOTAL_SHARDS
}
other_programs() { CTEST_OUTPUT_ON_FAILURE=1 ctest --test-dir "build/$1" -j "$jobs" -R 'Seam|Limits|Unload|EngineModel' | tail -3; }

# The targets of an architecture, best first, as cmake/targets.cmake lists them.
#   targets_of AARCH64|X86_64
targets_of() { sed -n "/if(ZIVCOLOR_FOR_$1)/{ n; s/.*set(zivcolor_all_targets \(.*\))/\1/p }" cmake/targets.cmake; }
aarch64_targets=$(targets_of AARCH64)
x86_targets=$(targets_of X86_64)

# What looks at numbers or at the reference alone, not at a kernel, needs one compiler.
no_kernel='*Identit*:FineSet*:HslAllColours.Ranges:LayoutFacts*:Options*:*ToldIsTouched*'
# Without walks over colours, and without what takes millions of pixels.
slow_emulated="*Colours*:$no_kernel:*LargeImages*:*PowerOfTwo*"
# This one has the dot product, so every target runs; the cortex-a53 has not.
qemu_aarch64=(qemu-aarch64 -L /usr/aarch64-linux-gnu -cpu cortex-a76)
qemu_cortex_a53=(qemu-aarch64 -L /usr/aarch64-linux-gnu -cpu cortex-a53)

# ---- The quick proof ----

format() {
    scripts/packages git clang-format-14
    scripts/format --check
}

quick() {
    scripts/packages "${cmake_packages[@]}"
    build release zivcolor_tests zivcolor zivcolor_other_kind -- "${library_and_tests[@]}"
    run_tests build/release/tests/zivcolor_tests --colours=sample
    scripts/check_exports build/release/src/libzivcolor.so
    scripts/check_size build/release/src/libzivcolor.so
    scripts/check_objects build/release
}

quick_aarch64() {
    scripts/packages "${aarch64_packages[@]}"
    build aarch64 zivcolor_table_tests zivcolor
    run_tests build/aarch64/tests/zivcolor_table_tests "--gtest_filter=-$slow_emulated" "${qemu_aarch64[@]}"
    NM=aarch64-linux-gnu-nm scripts/check_exports build/aarch64/src/libzivcolor.so
    scripts/check_size build/aarch64/src/libzivcolor.so
}

quick_package() {
    scripts/packages "${cmake_packages[@]}"
    local kind program folder=build/quick_package
    build release zivcolor zivcolor_other_kind zivcolor_tool -- "${library_and_tests[@]}"
    rm -rf "$folder"
    logged install cmake --install build/release --component Unspecified --prefix "$folder/prefix" # without the tool
    for kind in find_package_c find_package_cpp; do
        logged "$kind" cmake -S "tests/package/$kind" -B "$folder/$kind" -G Ninja -DCMAKE_PREFIX_PATH="$PWD/$folder/prefix"
        logged "$kind.build" cmake --build "$folder/$kind"
        for program in "$folder/$kind"/convert_{shared,static,zivcolor}; do echo "$kind, ${program##*/}: $("$program")"; done
    done
}

# ---- Everything ----

release() {
    scripts/packages "${cmake_packages[@]}"
    build release all zivcolor_test_archive -- "${library_and_tests[@]}"
    run_tests build/release/tests/zivcolor_tests ""
    other_programs release
    scripts/check_exports build/release/src/libzivcolor.so
    scripts/check_size build/release/src/libzivcolor.so
    scripts/check_objects build/release
    scripts/check_targets build/toy
}

clang() {
    scripts/packages "${cmake_packages[@]}" clang-14 libbenchmark-dev libyuv-dev "${demo_packages[@]}"
    test_code release
    build clang -- -DZIVCOLOR_TEST_CODE="$PWD/build/release"
    run_tests build/clang/tests/zivcolor_tests "--colours=sample --gtest_filter=-$no_kernel"
    other_programs clang
    scripts/check_demo build/clang/examples/zivcolor_demo
    scripts/check_objects build/clang
}

clang19() {
    scripts/packages "${cmake_packages[@]}" clang-19
    test_code release
    build clang19 zivcolor_tests zivcolor -- -DZIVCOLOR_TEST_CODE="$PWD/build/release"
    run_tests build/clang19/tests/zivcolor_tests "--gtest_filter=-$no_kernel"
    scripts/check_exports build/clang19/src/libzivcolor.so
    scripts/check_size build/clang19/src/libzivcolor.so
    scripts/check_objects build/clang19
}

lto() {
    scripts/packages "${cmake_packages[@]}" clang-19 lld-19
    test_code release
    local preset
    for preset in lto thinlto; do
        build "$preset" zivcolor_tests zivcolor -- -DZIVCOLOR_TEST_CODE="$PWD/build/release"
        run_tests "build/$preset/tests/zivcolor_tests" "--colours=sample --gtest_filter=-$no_kernel"
        scripts/check_exports "build/$preset/src/libzivcolor.so"
    done
}

# The best target's kernels include the lane files of all others of the architecture.
tidy() {
    scripts/packages "${cmake_packages[@]}" clang-14 clang-tidy-14 libbenchmark-dev libyuv-dev "${demo_packages[@]}"
    logged configure cmake --preset clang -B build/tidy -DZIVCOLOR_TARGETS="${x86_targets%% *}"
    run-clang-tidy-14 -quiet -p build/tidy -j "$jobs" '/(src|bench|examples|tools)/.*\.cpp$' >"$logs/tidy.log" 2>&1 ||
        { grep -E 'error|warning' "$logs/tidy.log" | sort -u | head -40; return 1; }
    echo "clang-tidy: clean"
}

coverage() {
    scripts/packages "${cmake_packages[@]}" gcovr
    scripts/coverage
}

asan() {
    scripts/packages "${cmake_packages[@]}" clang-19 libclang-rt-19-dev
    test_code release
    build asan zivcolor_tests -- -DZIVCOLOR_TEST_CODE="$PWD/build/release"
    # A refused allocation gives null, as it does without the sanitizer.
    ASAN_OPTIONS=allocator_may_return_null=1 run_tests build/asan/tests/zivcolor_tests "--gtest_filter=-*Colours*:$no_kernel"
}

# From the build of asan; scripts/fuzz goes on for as long as it is told.
fuzz() {
    scripts/packages "${cmake_packages[@]}" clang-19 libclang-rt-19-dev
    scripts/fuzz --deterministic
}

# What threads touch, with the programs that stand between it and the system; threads of the tests must be seen too.
tsan() {
    scripts/packages "${cmake_packages[@]}"
    build tsan zivcolor_thread_tests zivcolor_seam_tests
    # A refused allocation gives null, as it does without the sanitizer.
    export TSAN_OPTIONS=allocator_may_return_null=1
    run_tests build/tsan/tests/zivcolor_thread_tests ""
    other_programs tsan
}

package() {
    scripts/packages "${cmake_packages[@]}" clang-14 ccache pkg-config dpkg-dev debhelper lintian g++-aarch64-linux-gnu qemu-user
    scripts/check_package
}

docs() {
    scripts/packages "${cmake_packages[@]}" doxygen python3 python3-numpy
    scripts/check_docs
}

# Each kernel's every path runs; what takes millions of pixels, what repeats the same instructions at other sizes and addresses, and
# what counts threads, runs natively.
old_cpus() {
    scripts/packages "${cmake_packages[@]}" qemu-user
    build release zivcolor_tests -- "${library_and_tests[@]}"
    local cpu target left_out="*Colours*:$no_kernel:Engine*:Context*:*IndependentBands*:*BandTask*"
    left_out+=':*FarRows*:*LargeImages*:*PowerOfTwo*:*KernelFacts*:*ImageRoom*:*EverySumAndChroma*:*SingleLanes*:LaneOperations*Random*'
    left_out+=':*UnequalSizes*:*NegativePitches*:*PaddedUnequalPitches*:*PitchesOfAnyKind*'
    left_out+=':*Streaming.P*:*Streaming.N*:*Streaming.R*:*Streaming.U*:*Streaming.I*:*Streaming.S*:*Streaming.TightImagesOf*'
    while read -r cpu target; do
        echo "$cpu, $target:"
        run_tests build/release/tests/zivcolor_tests "--target=$target --gtest_filter=-$left_out" qemu-x86_64 -cpu "$cpu"
    done <<<"Haswell avx2
Nehalem sse4
Conroe portable"
}

aarch64() {
    scripts/packages "${aarch64_packages[@]}"
    build aarch64 zivcolor_tests zivcolor zivcolor_test_archive
    run_tests build/aarch64/tests/zivcolor_tests "--colours=sample --gtest_filter=-Engine.EndsAllItsThreads:$no_kernel" "${qemu_aarch64[@]}"
    echo "without the dot product:"
    run_tests build/aarch64/tests/zivcolor_tests "--gtest_filter=Targets*:Dispatch*:*StayInside*:*EveryBlockEdge*" \
        "${qemu_cortex_a53[@]}"
    NM=aarch64-linux-gnu-nm scripts/check_exports build/aarch64/src/libzivcolor.so
    scripts/check_size build/aarch64/src/libzivcolor.so
    NM=aarch64-linux-gnu-nm scripts/check_objects build/aarch64
}

#   aarch64_clang VERSION COLOURS
aarch64_clang() {
    local preset=aarch64_clang$1
    test_code aarch64
    build "$preset" zivcolor_tests zivcolor -- -DZIVCOLOR_TEST_CODE="$PWD/build/aarch64"
    run_tests "build/$preset/tests/zivcolor_tests" "--colours=$2 --gtest_filter=-Engine.EndsAllItsThreads:$no_kernel" \
        "${qemu_aarch64[@]}"
    NM=aarch64-linux-gnu-nm scripts/check_exports "build/$preset/src/libzivcolor.so"
    NM=aarch64-linux-gnu-nm scripts/check_objects "build/$preset"
}
aarch64_clang14() {
    scripts/packages "${aarch64_packages[@]}" clang-14
    aarch64_clang 14 sample
}
aarch64_clang19() {
    scripts/packages "${aarch64_packages[@]}" clang-19
    aarch64_clang 19 all
    scripts/check_size build/aarch64_clang19/src/libzivcolor.so
}

# From the builds of release and aarch64.
tools() {
    scripts/packages "${aarch64_packages[@]}" file
    build release zivcolor_tool zivcolor_tool_damaged zivcolor_tool_digests zivcolor_tool_tests -- "${library_and_tests[@]}"
    CTEST_OUTPUT_ON_FAILURE=1 ctest --test-dir build/release -j "$jobs" -R '^(Check|Convert|Tool)\.|^tool_' | tail -3
    local architecture cpu
    for architecture in x86_64 aarch64; do
        scripts/tool "$architecture"
        file -b "build/tool/zivcolor-$architecture" | grep -o 'statically linked'
    done
    for cpu in cortex-a53 cortex-a76 max; do
        echo "$cpu: $(qemu-aarch64 -cpu "$cpu" build/tool/zivcolor-aarch64 check | tail -1)"
    done
    echo "this CPU: $(build/tool/zivcolor-x86_64 check --target all | tail -1)"
}

riscv64() {
    scripts/packages "${cmake_packages[@]}" g++-riscv64-linux-gnu qemu-user
    build riscv64 zivcolor_table_tests zivcolor
    run_tests build/riscv64/tests/zivcolor_table_tests "--colours=sample --gtest_filter=-$no_kernel" qemu-riscv64 -L /usr/riscv64-linux-gnu
    NM=riscv64-linux-gnu-nm scripts/check_exports build/riscv64/src/libzivcolor.so
}

armhf() {
    scripts/packages "${cmake_packages[@]}" clang-14 g++-arm-linux-gnueabihf qemu-user
    build armhf zivcolor_table_tests zivcolor
    run_tests build/armhf/tests/zivcolor_table_tests "--colours=sample --gtest_filter=-$no_kernel" qemu-arm -L /usr/arm-linux-gnueabihf
    NM=arm-linux-gnueabihf-nm scripts/check_exports build/armhf/src/libzivcolor.so
}

# Where zig cannot be had it says so, and there is no test program.
homes() {
    scripts/packages qemu-user
    scripts/check_homes
    local program=build/zig/aarch64-linux-musl/tests/zivcolor_table_tests
    [ ! -x "$program" ] || run_tests "$program" "--gtest_filter=-$slow_emulated" "${qemu_aarch64[@]}"
}
