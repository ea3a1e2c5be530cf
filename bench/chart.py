"""Draws the speed compared with libjpeg-turbo from a file of results. Usage: bench/chart.py RESULTS.jsonl CHART.svg"""

import json
import math
import pathlib
import sys

TURBO, FFMPEG = "libjpeg-turbo", "FFmpeg"
BLUE, GREY, INK, FAINT = "#1f5fbf", "#8a8f98", "#24292f", "#d8dee4"
WIDTH, LEFT, PANEL, GAP, TOP, ROW = 860, 96, 350, 40, 94, 46


def mean(values):
    return math.exp(sum(map(math.log, values)) / len(values))


def text(x, y, content, size=13, color=INK, anchor="start", weight="normal"):
    return (f'<text x="{x:.1f}" y="{y:.1f}" font-size="{size}" fill="{color}" text-anchor="{anchor}" '
            f'font-weight="{weight}">{content}</text>')


def diamond(x, y, size, color):
    return f'<path d="M{x:.1f} {y - size:.1f}l{size} {size}l-{size} {size}l-{size} -{size}z" fill="{color}"/>'


def bar(x, y, half, color):
    return f'<rect x="{x - 2:.1f}" y="{y - half:.1f}" width="4" height="{2 * half}" rx="1.5" fill="{color}"/>'


def axis(left, scale, most, bottom):
    parts = []
    step = 0.5 if most <= 4 else 1
    for i in range(int(most / step) + 1):
        x = left + i * step * scale
        peer = i * step == 1
        parts.append(f'<line x1="{x:.1f}" y1="{TOP - 8}" x2="{x:.1f}" y2="{bottom}" stroke="{INK if peer else FAINT}"/>')
        parts.append(text(x, bottom + 16, f"{i * step:g}", 12, INK if peer else GREY, "middle"))
    return parts


def panel(left, title, matches, level, sizes, most):
    """A row for each size: a dot for every match, and the means."""
    scale, bottom = PANEL / most, TOP + ROW * len(sizes)
    parts = [text(left, TOP - 22, title, 15, weight="bold")] + axis(left, scale, most, bottom)
    for row, (width, height) in enumerate(sizes):
        y = TOP + ROW * row + ROW / 2
        here = [match for match in matches if (match["width"], match["height"]) == (width, height)]
        own = [match["ratio"][level][TURBO] for match in here]
        for match, ratio in zip(here, own):
            fill = BLUE if match["kind"] == "photograph" else "none"
            parts.append(f'<circle cx="{left + ratio * scale:.1f}" cy="{y:.1f}" r="3.5" fill="{fill}" stroke="{BLUE}" '
                         'fill-opacity="0.35" stroke-opacity="0.6"/>')
        parts.append(bar(left + mean(own) * scale, y, 13, BLUE))
        parts.append(text(left + mean(own) * scale, y - 16, f"{mean(own):.2f}", 12, BLUE, "middle", "bold"))
        if "plain" in here[0]["ratio"] and level != "plain":
            parts.append(bar(left + mean([match["ratio"]["plain"][TURBO] for match in here]) * scale, y, 6, GREY))
        peer = mean([match["ms"][TURBO] / match["ms"][FFMPEG] for match in here])
        parts.append(diamond(left + peer * scale, y, 5, GREY))
    return parts


def legend(y, level):
    entries = [(lambda x: [f'<circle cx="{x}" cy="{y}" r="3.5" fill="{BLUE}" fill-opacity="0.35" stroke="{BLUE}"/>'], "photograph"),
               (lambda x: [f'<circle cx="{x}" cy="{y}" r="3.5" fill="none" stroke="{BLUE}"/>'], "rendered scene"),
               (lambda x: [bar(x, y, 8, BLUE)], f"geometric mean, {level} kernels")]
    if level != "plain":
        entries.append((lambda x: [bar(x, y, 6, GREY)], "plain kernels"))
    entries.append((lambda x: [diamond(x, y, 5, GREY)], "FFmpeg"))
    parts, x = [], LEFT
    for draw, name in entries:
        parts += draw(x) + [text(x + 10, y + 4, name, 12)]
        x += 34 + 6.4 * len(name)
    return parts


def draw(records, path):
    matches = [record for record in records if record["type"] == "match"]
    about = next(record for record in records if record["type"] == "about")
    level = list(matches[0]["ratio"])[-1]
    sizes = sorted({(match["width"], match["height"]) for match in matches})
    most = max(max(match["ratio"][level][TURBO], match["ms"][TURBO] / match["ms"][FFMPEG]) for match in matches)
    most = max(1.5, math.ceil(most * 2 + 0.2) / 2)
    height = TOP + ROW * len(sizes) + 72
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{height}" viewBox="0 0 {WIDTH} {height}" '
             'font-family="Liberation Sans, Arial, Helvetica, sans-serif">',
             f'<rect width="{WIDTH}" height="{height}" fill="#ffffff"/>',
             text(LEFT, 26, "Speed on one thread, libjpeg-turbo = 1 (to the right is faster)", 16, weight="bold"),
             text(LEFT, 44, f"{about['processor']}, {about['compiler']}, libjpeg-turbo {about[TURBO]}, FFmpeg {about[FFMPEG]}", 12, GREY)]
    for row, (width, rows) in enumerate(sizes):
        parts.append(text(LEFT - 14, TOP + ROW * row + ROW / 2 + 4, f"{width}x{rows}", 13, anchor="end"))
    for index, (work, title) in enumerate((("decode", "Decoding to 24-bit pixels"), ("encode", "Encoding"))):
        chosen = [match for match in matches if match["work"] == work]
        parts += panel(LEFT + index * (PANEL + GAP), title, chosen, level, sizes, most)
    parts += legend(height - 22, level)
    pathlib.Path(path).write_text("\n".join(parts) + "\n</svg>\n")


if __name__ == "__main__":
    draw([json.loads(line) for line in pathlib.Path(sys.argv[1]).read_text().splitlines()], sys.argv[2])
