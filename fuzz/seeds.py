#!/usr/bin/env python3
"""Makes the fuzzers' seeds from the vectors: one file a text, in FOLDER/condition, FOLDER/archive and so on.

    seeds.py FOLDER
"""

import itertools
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


def fields(prefix, *names):
    """The values of the fields of that name in the feeds' vectors."""
    for path in sorted((VECTORS / "feeds").glob(prefix + "*.txt")):
        for line in path.read_text(encoding="utf-8").split("\n"):
            name, colon, value = line.partition(":")
            value = value.removeprefix(" ")
            if colon and name in names:
                yield value.encode()
            elif colon and name.removesuffix("-bytes") in names:
                yield unescaped(value)


def hand_overs():
    """Names of stations, and whole texts."""
    for path in sorted((VECTORS / "automation").glob("*.txt")):
        for line in path.read_text(encoding="utf-8").split("\n"):
            name, colon, value = line.partition(":")
            value = value.removeprefix(" ")
            if colon and name in ("site", "whole"):
                yield value.encode()
            elif colon and name in ("site-bytes", "whole-bytes"):
                yield unescaped(value)


def files(folder, suffix):
    for path in sorted((VECTORS / folder).glob("*" + suffix)):
        yield path.read_bytes()


SEEDS = {
    "condition": conditions,
    "archive": archives,
    "csv": lambda: files("csv", ".csv"),
    "feed_url": lambda: fields("feed_urls", "url"),
    "upload": lambda: itertools.chain(fields("uploads", "path", "query", "body"), fields("wire_uploads", "message")),
    "message": lambda: itertools.chain.from_iterable(
        fields(form, "message") for form in ("wire_lines", "wire_rtl433", "wire_weewx", "wire_guessed")),
    "hand_over": hand_overs,
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
