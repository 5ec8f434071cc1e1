#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Turns a benchmark's JSON into tables on the terminal and a chart: every kernel at every size, and how the pairs that libyuv has too
compare with it, each target with libyuv held to the same instruction set.
usage: report.py BENCH.json CHART.svg"""
import json
import math
import sys

HELD_PEERS = {"avx2": "libyuv_avx2", "sse4": "libyuv_sse4"}  # libyuv held to the instructions of a target; all of them for others
SHADES = {0: "#14604d", 1: "#1f9273", 16: "#7cc4ad"}  # by offset


def load(path):
    """names of the targets, best first; kernel -> (width, height, offset) -> contender -> medians"""
    rows = {}
    with open(path) as file:
        results = json.load(file)
        for run in results["benchmarks"]:
            if run.get("aggregate_name", "median") != "median":
                continue
            kernel, contender, *arguments = run["run_name"].split("/")
            named = dict(part.split(":") for part in arguments if ":" in part)
            shape = (int(named["width"]), int(named["height"]), int(named["offset"]))
            rows.setdefault(kernel, {}).setdefault(shape, {})[contender] = run
    return results["context"]["targets"].split(), rows


def peer_of(target):
    return HELD_PEERS.get(target, "libyuv")


def size_name(shape):
    return f"{shape[0]}x{shape[1]}"


def geometric_mean(values):
    return math.exp(sum(map(math.log, values)) / len(values))


def kernel_table(targets, rows):
    shapes = sorted({s for k, by_shape in rows.items() if not k.startswith("threads_") for s in by_shape})
    for shape in shapes:
        here = {k: by_shape[shape] for k, by_shape in rows.items() if shape in by_shape and not k.startswith("threads_")}
        contenders = [c for c in targets + ["libyuv"] if any(c in runs for runs in here.values())]
        print(f"\n{size_name(shape)}, {shape[2]} bytes past a page: ns a pixel (median); the best target against libyuv, and in copies")
        print(f"{'kernel':36}" + "".join(f"{c:>10}" for c in contenders) + f"{'x libyuv':>10}{'copies':>8}{'GB/s':>8}")
        for kernel, runs in here.items():
            line = f"{kernel:36}"
            line += "".join(f"{runs[c]['time_per_pixel'] * 1e9:10.4f}" if c in runs else f"{'':10}" for c in contenders)
            best = min((runs[t] for t in targets if t in runs), key=lambda r: r["cpu_time"], default=None)
            if best:
                line += f"{runs['libyuv']['real_time'] / best['real_time']:10.2f}" if "libyuv" in runs else f"{'':10}"
                line += f"{best['copies']:8.2f}{best['bytes_per_second'] * 1e-9:8.1f}"
            print(line)


def summary(targets, rows):
    """target -> (width, height, offset) -> geometric mean of the ratios, least ratio and its kernel, geometric mean of the copies"""
    result = {}
    for target in (t for t in targets if t != "portable"):
        peer = peer_of(target)
        for shape in sorted({s for by_shape in rows.values() for s in by_shape}):
            both = {k: b[shape] for k, b in rows.items() if shape in b and target in b[shape] and peer in b[shape]}
            if not both:
                continue
            ratios = {k: runs[peer]["cpu_time"] / runs[target]["cpu_time"] for k, runs in both.items()}
            worst = min(ratios, key=ratios.get)
            result.setdefault(target, {})[shape] = (geometric_mean(ratios.values()), ratios[worst], worst,
                                                    geometric_mean([runs[target]["copies"] for runs in both.values()]), len(both))
    return result


def summary_table(table):
    for target, by_shape in table.items():
        count = max(row[4] for row in by_shape.values())
        print(f"\n{target} beside libyuv held to the same instructions, {count} pairs: times its speed (geometric mean, least), copies")
        for shape, (mean, least, kernel, copies, _) in by_shape.items():
            print(f"  {size_name(shape):>10} +{shape[2]:<3}{mean:6.2f} {least:6.2f} {kernel:30}{copies:6.2f}")


def thread_table(rows):
    for kernel, by_shape in rows.items():
        if not kernel.startswith("threads_"):
            continue
        print(f"\n{kernel.removeprefix('threads_')}: microseconds on one thread and on all cores")
        for shape, runs in by_shape.items():
            if "one" in runs and "all" in runs:
                one, every = runs["one"]["real_time"], runs["all"]["real_time"]
                print(f"  {size_name(shape):>10}{one:10.1f}{every:10.1f}   x {one / every:.2f}")


def chart(table, path):
    """Bars of the geometric mean for every target, size and offset; a line across each at its least pair."""
    sizes = sorted({shape[:2] for by_shape in table.values() for shape in by_shape})
    offsets = sorted({shape[2] for by_shape in table.values() for shape in by_shape})
    top = max(row[0] for by_shape in table.values() for row in by_shape.values()) * 1.08
    bar, panel_height, left = 26, 150, 40
    group = bar * len(offsets) + 22
    panel = group * len(sizes) + 50
    width, height = left + panel * len(table), panel_height + 130
    out = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" font-family="sans-serif" font-size="11">'
           f'<rect width="100%" height="100%" fill="#fff"/>',
           '<text x="12" y="20" font-size="14" fill="#222">Times libyuv\'s speed, one thread: geometric mean of the pairs that both have; '
           'a mark at the least of them</text>']
    base = 60 + panel_height

    def y(ratio):
        return base - ratio / top * panel_height

    for n, (target, by_shape) in enumerate(table.items()):
        x0 = left + n * panel
        note = "" if peer_of(target) == "libyuv" else f" (libyuv held to {target})"
        out.append(f'<text x="{x0}" y="44" font-size="12" fill="#222">{target}{note}</text>')
        out.append(f'<line x1="{x0}" x2="{x0 + panel - 40}" y1="{y(1):.1f}" y2="{y(1):.1f}" stroke="#d98032" stroke-dasharray="4 3"/>'
                   f'<text x="{x0 - 6}" y="{y(1) + 4:.1f}" text-anchor="end" fill="#d98032">1</text>')
        for k, size in enumerate(sizes):
            x = x0 + k * group + 8
            copies = [by_shape[(*size, o)][3] for o in offsets if (*size, o) in by_shape]
            for j, offset in enumerate(offsets):
                row = by_shape.get((*size, offset))
                if not row:
                    continue
                bx = x + j * bar
                out.append(f'<rect x="{bx}" y="{y(row[0]):.1f}" width="{bar - 3}" height="{base - y(row[0]):.1f}" '
                           f'fill="{SHADES.get(offset, "#9aa4ad")}"/>'
                           f'<text x="{bx + (bar - 3) / 2}" y="{y(row[0]) - 3:.1f}" text-anchor="middle" font-size="9" fill="#444">'
                           f'{row[0]:.2f}</text>'
                           f'<line x1="{bx}" x2="{bx + bar - 3}" y1="{y(row[1]):.1f}" y2="{y(row[1]):.1f}" stroke="#fff" '
                           f'stroke-width="2"/>')
            middle = x + (bar * len(offsets) - 3) / 2
            out.append(f'<text x="{middle}" y="{base + 14}" text-anchor="middle" fill="#222">{size[0]}x{size[1]}</text>')
            if copies:
                out.append(f'<text x="{middle}" y="{base + 28}" text-anchor="middle" font-size="9.5" fill="#666">'
                           f'{geometric_mean(copies):.2f} copies</text>')
    x = left
    for offset in offsets:
        place = "planes at a page" if offset == 0 else f"{offset} byte{'s' if offset > 1 else ''} past it"
        out.append(f'<rect x="{x}" y="{base + 44}" width="10" height="10" fill="{SHADES.get(offset, "#9aa4ad")}"/>'
                   f'<text x="{x + 15}" y="{base + 53}" fill="#444">{place}</text>')
        x += 130
    out.append("</svg>")
    with open(path, "w") as file:
        file.write("\n".join(out) + "\n")


def main():
    targets, rows = load(sys.argv[1])
    kernel_table(targets, rows)
    thread_table(rows)
    table = summary(targets, rows)
    summary_table(table)
    if table:
        chart(table, sys.argv[2])
        print(f"\nchart: {sys.argv[2]}")


main()
