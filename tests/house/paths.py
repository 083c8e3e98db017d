"""No file names a place on the machine of whoever wrote it."""

import re

import tree

# A user's or a work folder at the root of a file system; what a program is given at run time is not in a source.
PLACE = re.compile(r"(?<![\w.~*}\])])/(?:work|home|root|Users)/[A-Za-z]")
BINARY = {".png", ".wav", ".ogg", ".flac", ".mp3", ".aiff", ".sqlite", ".bin"}
SEEDS = ("fuzz", "corpus")


def main():
    findings, count = [], 0
    for path in tree.files():
        if path.suffix in BINARY or path.parts[:2] == SEEDS:
            continue
        count += 1
        text = (tree.ROOT / path).read_bytes().decode("utf-8", "replace")
        for number, line in enumerate(text.splitlines(), 1):
            if PLACE.search(line):
                findings.append(f"{path}:{number}: {line.strip()[:100]}")
    tree.finish(findings, f"{count} files")


main()
