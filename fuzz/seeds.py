#!/usr/bin/env python3
"""Makes the fuzzers' seeds from the vectors: one file a text, in FOLDER/condition, FOLDER/archive and so on.

    seeds.py FOLDER
"""

import pathlib
import shutil
import sys

ROOT = pathlib.Path(__file__).resolve().parents[1]
VECTORS = ROOT / "tests/vectors"
ESCAPES = {"t": b"\t", "n": b"\n", "r": b"\r", "\\": b"\\"}
ARCHIVE_HEAD = '{"format":"vigil-archive","version":1,"root":{"$class":"Sample","$id":1,'


def unescaped(text):
    out, at = b"", 0
    while at < len(text):
        if text[at] != "\\":
            out += text[at].encode()
            at += 1
        elif text[at + 1] == "x":
            out += bytes([int(text[at + 2:at + 4], 16)])
            at += 4
        else:
            out += ESCAPES[text[at + 1]]
            at += 2
    return out


def conditions():
    for path in sorted((VECTORS / "conditions").glob("*.txt")):
        for line in path.read_text(encoding="utf-8").split("\n"):
            if line.startswith("text: "):
                yield line[len("text: "):].encode()
            elif line.startswith("text-bytes: "):
                yield unescaped(line[len("text-bytes: "):])


def archives():
    for path in sorted((VECTORS / "archive").glob("*.vectors")):
        text = None
        for line in path.read_text(encoding="utf-8", errors="surrogateescape").split("\n"):
            if line.startswith("== "):
                text = []
            elif line.startswith("=> ") and text is not None:
                whole = "\n".join(text)
                if whole.startswith("@@"):
                    whole = ARCHIVE_HEAD + whole[2:]
                    whole = whole[:-2] + "}}" if whole.endswith("@@") else whole
                yield whole.encode("utf-8", "surrogateescape")
                text = None
            elif text is not None:
                text.append(line)
    for path in sorted((ROOT / "examples").glob("*.json")):
        yield path.read_bytes()


def files(folder, suffix):
    for path in sorted((VECTORS / folder).glob("*" + suffix)):
        yield path.read_bytes()


SEEDS = {
    "condition": conditions,
    "archive": archives,
    "csv": lambda: files("csv", ".csv"),
    "json_lines": lambda: files("jsonlines", ".jsonl"),
}


def main():
    target = pathlib.Path(sys.argv[1])
    for name, texts in SEEDS.items():
        folder = target / name
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        count = 0
        for count, text in enumerate(dict.fromkeys(texts()), 1):
            (folder / f"{count:04}").write_bytes(text)
        if count == 0:
            sys.exit(f"no seed for {name}: the vectors have moved")
        print(f"{name}: {count} seeds")


main()
