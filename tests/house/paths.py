"""No file names a place on the machine of whoever wrote it, and no file is there that nobody has named."""

import re

import tree

# A user's or a work folder at the root of a file system; what a program is given at run time is not in a source.
PLACE = re.compile(r"(?<![\w.~*}\])])/(?:work|home|root|Users)/[A-Za-z]")
BINARY = {".png", ".wav", ".ogg", ".flac", ".mp3", ".aiff", ".sqlite", ".bin"}
# What a program leaves behind that was given a path of its own memory's choosing.
NAME = re.compile(r"[\w.+@-]+", re.ASCII)
LEFT_BEHIND = ("-wal", "-shm")
SEEDS = ("fuzz", "corpus")


def main():
    findings, count = [], 0
    for path in tree.files():
        if path.parts[:2] != SEEDS and (not NAME.fullmatch(path.name) or path.name.endswith(LEFT_BEHIND)):
            findings.append(f"{str(path)!a}: is this file wanted? its name is not one that a person gives")
        if path.suffix in BINARY or path.parts[:2] == SEEDS:
            continue
        count += 1
        text = (tree.ROOT / path).read_bytes().decode("utf-8", "replace")
        for number, line in enumerate(text.splitlines(), 1):
            if PLACE.search(line):
                findings.append(f"{path}:{number}: {line.strip()[:100]}")
    tree.finish(findings, f"{count} files")


main()
