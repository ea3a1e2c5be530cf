#!/usr/bin/env python3
"""Compares the includes of the product with the table "What may include what" of doc/architecture.md.

Fails for an include that its row doesn't allow, a folder without a row, an arrow that points down the table without being
marked, more than two that do, and a permission that no file uses.
"""
import re
import subprocess
import sys

MOST_UPWARD = 2
errors = []
rows = {}  # folder: what it may include, in the order of the table
upward = {}  # folder: the part of it that is marked
for line in open("doc/architecture.md", encoding="utf-8"):
    cells = [cell.strip() for cell in line.strip().strip("|").split("|")]
    folder = re.fullmatch(r"`([a-z0-9/]+/)`", cells[0])
    if len(cells) != 3 or not folder:
        continue
    plain, _, marked = cells[2].partition("*up:*")
    upward[folder[1]] = re.findall(r"`([^`]+)`", marked)
    rows[folder[1]] = re.findall(r"`([^`]+)`", plain) + upward[folder[1]]

if not rows:
    sys.exit("style: doc/architecture.md has no table of folders")
order = list(rows)


def row_of(path):
    """The folder of the longest name that the path lies in, or None."""
    return max((folder for folder in rows if path.startswith(folder)), key=len, default=None)


used = set()
listed = subprocess.run(["git", "ls-files", "*.h", "*.cpp", "*.c"], capture_output=True, text=True, check=True).stdout
tops = {folder.split("/")[0] for folder in rows}
for path in listed.split():
    if path.split("/")[0] not in tops:
        continue
    folder = row_of(path)
    if folder is None:
        errors.append(f"{path} lies in a folder without a row")
        continue
    for number, text in enumerate(open(path, encoding="utf-8"), 1):
        include = re.match(r'#\s*include "([^"]+)"', text)
        if not include:
            continue
        name = "include/" + include[1] if "/" not in include[1] else include[1]
        if row_of(name) == folder:
            continue
        allowed = [entry for entry in rows[folder] if entry in (name, row_of(name))]
        used.update((folder, entry) for entry in allowed)
        if not allowed:
            errors.append(f'{path}:{number} includes "{include[1]}", which the row of {folder} doesn\'t allow')

arrows = 0
for folder, entries in rows.items():
    for entry in entries:
        target = row_of(entry)
        if target is None:
            errors.append(f"the row of {folder} names {entry}, which has no row")
            continue
        down = order.index(target) > order.index(folder)
        arrows += down
        if down != (entry in upward[folder]):
            errors.append(f"{entry} in the row of {folder} is " + ("not marked as up" if down else "marked as up, and is not"))
        if (folder, entry) not in used:
            errors.append(f"no file of {folder} includes {entry}: the row says more than is true")
if arrows > MOST_UPWARD:
    errors.append(f"{arrows} rows point down the table; {MOST_UPWARD} are the most")

for error in errors:
    print("style:", error, file=sys.stderr)
sys.exit(1 if errors else 0)
