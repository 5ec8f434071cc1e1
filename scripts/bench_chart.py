#!/usr/bin/env python3
"""Turns a benchmark's JSON into a table on the terminal and an SVG chart: bars per kernel, ours beside libyuv and a copy."""
import html
import json
import sys

TARGETS = ["avx512", "avx2", "sse4", "neon", "portable"]
COLOURS = {"ours": "#1a7f64", "second": "#7cc4ad", "libyuv": "#d98032", "copy": "#9aa4ad"}


def load(path):
    """kernel -> size -> contender -> counters"""
    rows = {}
    with open(path) as file:
        for run in json.load(file)["benchmarks"]:
            kernel, contender, size = run["name"].split("/")[:3]
            rows.setdefault(kernel, {}).setdefault(size, {})[contender] = run
    return rows


def threads(rows):
    """The multi-threaded front beside one thread, and where it begins to pay."""
    print(f"\n{'on all cores':26}{'size':>11}{'one, us':>10}{'context, us':>13}{'speed-up':>10}")
    for kernel, by_size in rows.items():
        if not kernel.startswith("threads_"):
            continue
        breaks_even = None
        for size, runs in by_size.items():
            if "one" not in runs or "context" not in runs:
                continue
            one, all_cores = (runs[c]["real_time"] / 1e3 for c in ("one", "context"))
            if all_cores < one:
                breaks_even = breaks_even or size
            else:
                breaks_even = None
            print(f"{kernel.removeprefix('threads_zivColor'):26}{size:>11}{one:10.1f}{all_cores:13.1f}{one / all_cores:10.2f}")
        print(f"{'':26}pays from {breaks_even} on" if breaks_even else f"{'':26}does not pay at these sizes")


def table(rows):
    sizes = sorted({size for name, kernel in rows.items() if not name.startswith("threads_") for size in kernel}, key=lambda s: int(s.split("x")[0]))
    contenders = [c for c in TARGETS + ["libyuv"] if any(c in k[s] for k in rows.values() for s in k)]
    for size in sizes:
        print(f"\n{size}: ns per pixel; best target against libyuv and in copies")
        print(f"{'kernel':34}" + "".join(f"{c:>10}" for c in contenders) + f"{'x libyuv':>10}{'copies':>8}{'GB/s':>8}")
        for kernel, by_size in rows.items():
            runs = by_size.get(size)
            if not runs or kernel.startswith("threads_"):
                continue
            best = min((runs[t] for t in TARGETS if t in runs), key=lambda r: r["ns_per_px"], default=None)
            line = f"{kernel:34}" + "".join(f"{runs[c]['ns_per_px']:10.4f}" if c in runs else f"{'':10}" for c in contenders)
            if best:
                ratio = f"{runs['libyuv']['ns_per_px'] / best['ns_per_px']:10.2f}" if "libyuv" in runs else f"{'':10}"
                line += f"{ratio}{best['copies']:8.2f}{best['GB_per_s']:8.1f}"
            print(line)


def chart(rows, size, path):
    names, bars = [], []
    for kernel, by_size in rows.items():
        runs = by_size.get(size, {})
        ours = [(t, runs[t]["ns_per_px"]) for t in TARGETS if t in runs]
        if not ours or "libyuv" not in runs:
            continue
        best = ours[0]
        copy = best[1] / runs[best[0]]["copies"]
        names.append(kernel.removeprefix("zivColor"))
        row = [("ours", best[0], best[1])]
        if len(ours) > 1:
            row.append(("second", ours[1][0], ours[1][1]))
        bars.append(row + [("libyuv", "libyuv", runs["libyuv"]["ns_per_px"]), ("copy", "memcpy", copy)])
    if not names:
        return False
    longest = max(value for row in bars for _, _, value in row)
    left, width, bar, gap = 170, 620, 6, 10
    height = 64 + len(names) * (4 * bar + gap)
    out = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{left + width + 70}" height="{height}" font-family="sans-serif" '
           f'font-size="11"><rect width="100%" height="100%" fill="#fff"/>',
           f'<text x="12" y="20" font-size="14" fill="#222">Nanoseconds per pixel at {size}, one thread; shorter is better</text>']
    legend = {}
    for row in bars:
        for kind, label, _ in row:
            legend.setdefault(kind, f"zivcolor, {label}" if kind in ("ours", "second") else label)
    x = 12
    for kind, label in legend.items():
        out.append(f'<rect x="{x}" y="30" width="10" height="10" fill="{COLOURS[kind]}"/>'
                   f'<text x="{x + 15}" y="39" fill="#444">{html.escape(label)}</text>')
        x += 30 + 7 * len(label)
    y = 56
    for name, row in zip(names, bars):
        out.append(f'<text x="{left - 8}" y="{y + 2 * bar + 4}" text-anchor="end" fill="#222">{html.escape(name)}</text>')
        for kind, _, value in row:
            length = max(1.0, value / longest * width)
            out.append(f'<rect x="{left}" y="{y}" width="{length:.1f}" height="{bar - 1}" fill="{COLOURS[kind]}"/>'
                       f'<text x="{left + length + 4:.1f}" y="{y + bar - 1}" font-size="6.5" fill="#666">{value:.3f}</text>')
            y += bar
        y += gap
    out.append("</svg>")
    with open(path, "w") as file:
        file.write("\n".join(out) + "\n")
    return True


def main():
    rows = load(sys.argv[1])
    table(rows)
    threads(rows)
    if chart(rows, "320x240", sys.argv[2]):
        print(f"\nchart: {sys.argv[2]}")


main()
