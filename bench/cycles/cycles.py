#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Estimated cycles a pixel of AArch64 code on several cores, ours and libyuv's.

The blocks of instructions that a conversion runs are counted under qemu's user emulation; what a block costs is what llvm-mca's model of the
core says of a loop of it with all data in the first-level cache. So it is an estimate: of instruction throughput, not of memory.
usage: cycles.py PROGRAM BLOCKS.so LIBRARY_PATH CHART.svg [PATTERN]    PATTERN is a regular expression over names"""
import collections
import concurrent.futures
import math
import os
import re
import subprocess
import sys
import tempfile

CORES = ["cortex-a55", "cortex-a510", "neoverse-n1", "neoverse-v1", "neoverse-v2"]
# What is emulated: a CPU with the dot product, as all of the cores above, and one without.
CPU, OLD_CPU = "cortex-a76", "cortex-a53"
PIXELS = 640 * 64  # of the program's picture
FEW, MANY = 2, 12  # calls; their difference leaves out what happens once

# What phones convert: camera and video frames to the screen and to neural networks, pictures to the encoder, and between frames.
PHONE_PAIRS = ["NV21toRGBA8888u8", "NV21toBGR888u8", "NV21toRGB888u8", "NV12toRGBA8888u8", "I420toRGBA8888u8", "I420toRGB888u8",
               "RGBA8888toNV12u8", "RGBA8888toI420u8", "RGB888toNV21u8", "NV21toI420u8", "I420toNV21u8", "RGBA8888toBGR888u8"]


class Counter:
    """Runs the program and counts its blocks."""

    def __init__(self, program, plugin, library_path):
        self.program = ["qemu-aarch64", "-L", "/usr/aarch64-linux-gnu", "-E", f"LD_LIBRARY_PATH={library_path}"]
        self.plugin, self.path = plugin, program

    def names(self):
        return subprocess.run(self.program + [self.path], check=True, capture_output=True, text=True).stdout.split()

    def blocks(self, name, side, calls):
        """(address, instruction words) -> runs"""
        cpu, code = (OLD_CPU, "ours") if side == "ours without" else (CPU, side)
        with tempfile.NamedTemporaryFile("r") as file:
            subprocess.run(self.program + ["-cpu", cpu, "-plugin", f"{self.plugin},out={file.name}", self.path, name, code, str(calls)],
                           check=True, stdout=subprocess.DEVNULL)
            counts = collections.Counter()
            for line in file:
                address, runs, words = line.split()
                counts[int(address, 16), words] += int(runs)
        return counts

    def calls(self, job):
        """The blocks of MANY - FEW calls: instruction words -> runs"""
        few, many = self.blocks(*job, FEW), self.blocks(*job, MANY)
        return job, joined({key: runs - few[key] for key, runs in many.items() if runs > few[key]})


def ends_in_branch(words):
    word = int(words[-8:], 16)
    return (word >> 26 in (0b000101, 0b100101)  # b, bl
            or word >> 24 in (0x54, 0x34, 0x35, 0x36, 0x37, 0xB4, 0xB5, 0xB6, 0xB7)  # b.cond, cbz, cbnz, tbz, tbnz
            or word & 0xFE000000 == 0xD6000000)  # br, blr, ret


def joined(counts):
    """The emulator also ends a block at the end of a page; put together what runs on, or half a loop would be modelled as a loop of its
    own."""
    at = {address: [words, runs] for (address, words), runs in counts.items()}
    for address in sorted(at):
        while address in at:
            words, runs = at[address]
            after = address + len(words) // 2
            if ends_in_branch(words) or after not in at:
                break
            more, more_runs = at[after]
            if min(runs, more_runs) < 0.5 * max(runs, more_runs):
                break
            shared = min(runs, more_runs)
            at[address] = [words + more, shared]
            if more_runs > shared:
                at[after][1] -= shared
            else:
                del at[after]
    result = collections.Counter()
    for words, runs in at.values():
        result[words] += runs
    return result


def split(words):
    return [words[i:i + 8] for i in range(0, len(words), 8)]


def disassemble(words):
    """instruction word -> text"""
    words = sorted(words)
    # llvm-mc takes bytes in memory order
    lines = "\n".join(" ".join("0x" + w[i:i + 2] for i in (6, 4, 2, 0)) for w in words)
    out = subprocess.run(["llvm-mc-19", "--disassemble", "-triple=aarch64", "-mattr=+all"], input=lines, capture_output=True, text=True)
    texts = [line.strip() for line in out.stdout.splitlines() if line.strip() and not line.strip().startswith(".")]
    if len(texts) != len(words):
        sys.exit(f"{len(texts)} of {len(words)} instructions could be disassembled")
    return dict(zip(words, texts))


def model(core, blocks, texts):
    """instruction words -> cycles of one run in a loop. A branch is modelled as something that takes an issue slot and no more: its target
    means nothing out of its program."""
    left_out = re.compile(r"(b|bl|br|blr|ret|svc|mrs|msr|brk)\b")
    source = []
    for n, words in enumerate(blocks):
        source.append(f"# LLVM-MCA-BEGIN {n}")
        source += [texts[w] for w in split(words) if not left_out.match(texts[w])]
        source += ["nop", "# LLVM-MCA-END"]
    rounds = 100
    out = subprocess.run(["llvm-mca-19", "-march=aarch64", f"-mcpu={core}", "-mattr=+all", f"-iterations={rounds}", "-instruction-info=0",
                          "-resource-pressure=0", "-skip-unsupported-instructions=any"], input="\n".join(source) + "\n",
                         capture_output=True, text=True).stdout
    found = re.findall(r"Code Region - (\d+)\n.*?Total Cycles:\s+(\d+)", out, re.S)
    if len(found) != len(blocks):
        sys.exit(f"{core}: {len(found)} of {len(blocks)} blocks could be modelled")
    return {blocks[int(n)]: int(cycles) / rounds for n, cycles in found}


def estimate(counter, names):
    """kernel -> core -> (ours, libyuv's, ours without the dot product or None where that is the same code), in cycles a pixel"""
    jobs = [(name, side) for name in names for side in ("ours", "ours without", "libyuv")]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        counts = dict(pool.map(counter.calls, jobs))
        blocks = sorted({words for count in counts.values() for words in count})
        texts = disassemble({w for words in blocks for w in split(words)})
        models = dict(zip(CORES, pool.map(lambda core: model(core, blocks, texts), CORES)))

    def cycles(name, side, core):
        return sum(runs * models[core][words] for words, runs in counts[name, side].items()) / ((MANY - FEW) * PIXELS)

    def without(name, core):
        return None if counts[name, "ours"] == counts[name, "ours without"] else cycles(name, "ours without", core)

    return {name: {core: (cycles(name, "ours", core), cycles(name, "libyuv", core), without(name, core)) for core in CORES}
            for name in names}


def table(results):
    print(f"\n{'cycles a pixel: ours, libyuv':34}" + "".join(f"{core:>22}" for core in CORES))
    for name, by_core in results.items():
        print(f"{name:34}" + "".join(f"{ours:8.3f}{peer:7.3f}{ours / peer:7.2f}" for ours, peer, _ in by_core.values()))
        if by_core[CORES[0]][2] is not None:
            print(f"{'  without the dot product':34}" + "".join(f"{old:8.3f}{'':7}{old / peer:7.2f}" for _, peer, old in by_core.values()))
    for core in CORES:
        ratios = {name: by_core[core][0] / by_core[core][1] for name, by_core in results.items()}
        worst = max(ratios, key=ratios.get)
        mean = math.exp(sum(map(math.log, ratios.values())) / len(ratios))
        print(f"{core}: {mean:.2f} of libyuv's cycles in the geometric mean, at most {ratios[worst]:.2f} ({worst})")


def chart(results, path):
    left, panel, bar = 150, 150, 9
    colours = {"zivcolor": "#1a7f64", "libyuv": "#d98032", "zivcolor without the dot product, where that differs": "#9ccbbd"}
    longest = {core: max(cycles for by_core in results.values() for cycles in by_core[core] if cycles is not None) for core in CORES}
    bars = [sum(cycles is not None for cycles in by_core[CORES[0]]) for by_core in results.values()]
    width, height = left + panel * len(CORES) + 16, 66 + sum(count * (bar + 1) + 10 for count in bars)
    out = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" font-family="sans-serif" font-size="11">'
           '<rect width="100%" height="100%" fill="#fff"/>'
           '<text x="12" y="20" font-size="14" fill="#222">Estimated cycles a pixel on AArch64 cores; shorter is better</text>']
    for x, (what, colour) in zip((12, 90, 155), colours.items()):
        out.append(f'<rect x="{x}" y="30" width="10" height="10" fill="{colour}"/><text x="{x + 15}" y="39" fill="#444">{what}</text>')
    for n, core in enumerate(CORES):
        out.append(f'<text x="{left + n * panel}" y="54" fill="#222">{core}</text>')
    y = 62
    for (name, by_core), count in zip(results.items(), bars):
        short = name.removeprefix("zivColor").removesuffix("u8").replace("to", " to ")
        out.append(f'<text x="{left - 8}" y="{y + count * (bar + 1) / 2 + 3:.0f}" text-anchor="end" fill="#222">{short}</text>')
        for n, core in enumerate(CORES):
            ours, peer, old = by_core[core]
            for j, (value, colour) in enumerate(zip((ours, peer, old)[:count], colours.values())):
                length = max(1.0, value / longest[core] * (panel - 48))
                out.append(f'<rect x="{left + n * panel}" y="{y + j * (bar + 1)}" width="{length:.1f}" height="{bar}" fill="{colour}"/>'
                           f'<text x="{left + n * panel + length + 3:.1f}" y="{y + j * (bar + 1) + 8}" font-size="8.5" fill="#555">'
                           f'{value:.2f}</text>')
        y += count * (bar + 1) + 10
    out.append("</svg>")
    with open(path, "w") as file:
        file.write("\n".join(out) + "\n")


def main():
    program, plugin, library_path, svg = sys.argv[1:5]
    counter = Counter(program, plugin, library_path)
    pattern = sys.argv[5] if len(sys.argv) > 5 else "^zivColor(" + "|".join(PHONE_PAIRS) + ")$"
    names = [name for name in counter.names() if re.search(pattern, name)]
    if not names:
        sys.exit(f"libyuv has no twin of a conversion that matches '{pattern}'")
    results = estimate(counter, names)
    table(results)
    if len(sys.argv) <= 5:
        chart({"zivColor" + pair: results["zivColor" + pair] for pair in PHONE_PAIRS}, svg)
        print(f"chart: {svg}")


main()
