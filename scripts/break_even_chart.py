#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Turns the lines of zivcolor_break_even into a table on the terminal and an SVG chart of the speed-up by size."""
import html
import json
import math
import sys

COLOURS = ["#1a7f64", "#d98032", "#4a6fa5"]


def load(path):
    with open(path) as file:
        return [json.loads(line) for line in file]


def table(rows):
    """Medians, and whether a context takes more than 1 microsecond and more than 5 percent above one thread."""
    print(f"{'':31}{'images in a row':^40}  {'with pauses':^40}")
    print(f"{'pair':20}{'size':>11}" + 2 * f"{'one, us':>10}{'all, us':>10}{'speed-up':>10}{'more, us':>10}  ")
    for row in rows:
        line = f"{row['pair']:20}{row['size']:>11}"
        for one, all_cores in ((row["one"], row["all"]), (row["one_apart"], row["all_apart"])):
            more = all_cores - one
            slower = " !" if more > max(1, 0.05 * one) else "  "
            line += f"{one:10.2f}{all_cores:10.2f}{one / all_cores:10.2f}{more:10.2f}{slower}"
        print(line)


def pixels(size):
    width, height = map(int, size.split("x"))
    return width * height


def chart(rows, path):
    """Sizes across, speed-up of images in a row upward."""
    left, top, width, height = 48, 44, 560, 220
    sizes = sorted({row["size"] for row in rows}, key=pixels)
    cores = f"{rows[0]['cores']} cores" if rows[0]["cores"] > 1 else "one core"
    fastest = max(2.0, max(row["one"] / row["all"] for row in rows))

    def x(size):
        return left + width * math.log(pixels(size) / pixels(sizes[0])) / math.log(pixels(sizes[-1]) / pixels(sizes[0]))

    def y(speed):
        return top + height * (1 - speed / fastest)

    out = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{left + width + 40}" height="{top + height + 62}" '
           f'font-family="sans-serif" font-size="11"><rect width="100%" height="100%" fill="#fff"/>',
           '<text x="12" y="18" font-size="14" fill="#222">'
           f'Speed of a context of {cores}, times that of one thread</text>']
    for step in range(int(fastest * 2) + 1):
        speed = step / 2
        colour = "#888" if speed == 1 else "#ddd"
        out.append(f'<line x1="{left}" y1="{y(speed):.1f}" x2="{left + width}" y2="{y(speed):.1f}" stroke="{colour}"/>'
                   f'<text x="{left - 6}" y="{y(speed) + 4:.1f}" text-anchor="end" fill="#444">{speed:g}</text>')
    for size in sizes:
        out.append(f'<text transform="translate({x(size) + 4:.1f},{top + height + 12}) rotate(-40)" text-anchor="end" '
                   f'fill="#444">{size}</text>')
    legend = left
    for colour, pair in zip(COLOURS, dict.fromkeys(row["pair"] for row in rows)):
        points = " ".join(f"{x(r['size']):.1f},{y(r['one'] / r['all']):.1f}" for r in rows if r["pair"] == pair)
        out.append(f'<polyline points="{points}" fill="none" stroke="{colour}" stroke-width="2"/>'
                   f'<rect x="{legend}" y="26" width="10" height="10" fill="{colour}"/>'
                   f'<text x="{legend + 15}" y="35" fill="#444">{html.escape(pair)}</text>')
        legend += 40 + 7 * len(pair)
    out.append("</svg>")
    with open(path, "w") as file:
        file.write("\n".join(out) + "\n")


def main():
    rows = load(sys.argv[1])
    table(rows)
    chart(rows, sys.argv[2])
    print(f"\nchart: {sys.argv[2]}")


main()
