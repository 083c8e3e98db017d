"""Prints gcovr's summary a folder a line: lines, executed lines, percent."""

import collections
import json
import os
import sys


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        summary = json.load(file)
    folders = collections.defaultdict(lambda: [0, 0])
    for source in summary["files"]:
        folder = folders[os.path.dirname(source["filename"]) or "."]
        folder[0] += source["line_total"]
        folder[1] += source["line_covered"]
    if not folders:
        sys.exit("no source was counted")
    print(f"{'folder':40} {'lines':>7} {'executed':>9} {'':>7}")
    for name, (total, covered) in sorted(folders.items()):
        print(f"{name:40} {total:7} {covered:9} {percent(covered, total)}")
    total, covered = (sum(folder[i] for folder in folders.values()) for i in (0, 1))
    print(f"{'all':40} {total:7} {covered:9} {percent(covered, total)}")


def percent(covered, total):
    return f"{100 * covered / total:6.1f}%" if total else "     -"


main()
