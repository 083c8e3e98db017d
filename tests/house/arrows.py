"""The arrows between the rooms, asked of the compiler: with the flags of each room, a header of a room that it sees
may be found and a header of any other room must not. That the asking works at all is shown by headers that every
room does find: its own and the platform's.

    arrows.py BUILD-FOLDER        (its compile_commands.json)
"""

import json
import pathlib
import shlex
import subprocess
import sys

import tree

HOUSE = ("platform", "host_contract", "conditions", "conditions/editor")
WITHOUT_CONDITIONS = ("platform", "host_contract")
FEEDS = ("host/readings", "host/feeds", "host/feeds/wire", "host/feeds/live")
BUILDING_BLOCKS = ("host/kit", "host/services", "host/services/automation", "host/site", *FEEDS)
# Seen by whoever needs them.
WORDS = ("host/words",)
# A room, and the rooms that it may see. Every room that stands here and not in the list behind it stays out of reach.
MAY_SEE = {
    "platform": (),
    "host_contract": ("platform",),
    "conditions": WITHOUT_CONDITIONS,
    "conditions/editor": HOUSE,
    "plugins/VigilPlugIn/VigilPlugIn": HOUSE,
    "plugins/ContractProbe": WITHOUT_CONDITIONS,
    "host/services": WITHOUT_CONDITIONS,
    "host/services/automation": (*WITHOUT_CONDITIONS, "host/services", *WORDS),
    "host/readings": WITHOUT_CONDITIONS,
    "host/words": ("platform",),
    "host/settings": ("platform", *WORDS),
    "host/feeds": (*WITHOUT_CONDITIONS, "host/readings", *WORDS),
    "host/feeds/wire": (*WITHOUT_CONDITIONS, "host/readings", "host/feeds", *WORDS),
    "host/feeds/live": (*WITHOUT_CONDITIONS, "host/readings", "host/feeds", "host/feeds/wire", "host/services",
                        *WORDS),
    "host/site": WITHOUT_CONDITIONS,
    "host/run": (*HOUSE, *BUILDING_BLOCKS, *WORDS),
    "host/helper": ("platform", "host/services", "host/services/automation"),
    "host/helper/media": ("platform", "host/services", "host/services/automation", "host/helper"),
    "host/kit": (*HOUSE, "host/services"),
    "host/setup": (*HOUSE, *BUILDING_BLOCKS, *WORDS, "host/settings", "host/run"),
    "host/command": (*HOUSE, *BUILDING_BLOCKS, *WORDS, "host/settings", "host/run", "host/setup"),
    "host/desktop": (*HOUSE, *BUILDING_BLOCKS, *WORDS, "host/settings", "host/run", "host/setup"),
}
# These are drawn so that a header that is not found there shows that the asking itself went wrong.
MUST_EXIST = HOUSE
MUST_SEE = "platform"


def room_of(source):
    for room in sorted(MAY_SEE, key=len, reverse=True):
        if str(source).startswith(room + "/"):
            return room
    return None


def commands(build):
    """For each folder that holds sources, the flags of one of them; unit tests see more than their room."""
    found = {}
    for entry in json.loads((build / "compile_commands.json").read_text(encoding="utf-8")):
        source = pathlib.Path(entry["file"])
        if not source.is_relative_to(tree.ROOT) or source.is_relative_to(build):
            continue
        relative = source.relative_to(tree.ROOT)
        if relative.stem.endswith(("_test", "_main")) or relative.parts[0] not in tree.ROOMS:
            continue
        found.setdefault(relative.parent.as_posix(), (flags_of(entry["command"]), entry["directory"]))
    return found


def flags_of(command):
    words = shlex.split(command)
    compiler = next(i for i, word in enumerate(words) if word.rsplit("/", 1)[-1] in ("g++", "c++", "clang++"))
    kept, skip = [words[compiler]], False
    for word in words[compiler + 1:]:
        if skip:
            skip = False
        elif word in ("-o", "-MF", "-MT"):
            skip = True
        elif word not in ("-c", "-MD") and not word.endswith(".cpp"):
            kept.append(word)
    return kept


def is_inside(room, rooms):
    return any(room.startswith(outer + "/") for outer in rooms)


def includes_inner(home, room):
    """Sources of a room that include a room inside it, which the compiler cannot forbid: it lies below the same
    include root."""
    for path in tree.files(tree.SOURCES, (home.split("/")[0],)):
        if room_of(path) == home and f'#include "{room}/' in "\n".join(tree.lines(path)):
            yield path


def reaches(flags, directory, header):
    """Whether an include of the header would find it. The header is not read: what it includes itself would only
    blur the answer."""
    question = f'#if __has_include("{header}")\nhouse_found\n#else\nhouse_not_found\n#endif\n'
    run = subprocess.run([*flags, "-E", "-x", "c++", "-"], input=question, text=True, capture_output=True,
                         cwd=directory)
    answer = run.stdout.splitlines()[-1:]
    if run.returncode or answer not in (["house_found"], ["house_not_found"]):
        sys.exit(f"the compiler did not answer about {header}:\n{run.stderr}")
    return answer == ["house_found"]


def first_headers():
    """A header of each room; nothing for a room that has none yet."""
    found = dict.fromkeys(MAY_SEE)
    for header in reversed(tree.files({".hpp"}, tree.ROOMS)):
        if room_of(header):
            found[room_of(header)] = header.as_posix()
    return found


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    headers = first_headers()
    findings, asked = [], 0
    known = commands(build)
    for room in MUST_EXIST:
        if headers[room] is None or not any(room_of(folder + "/x") == room for folder in known):
            findings.append(f"{room}: no header or no compiled source, so its arrows cannot be checked")
    for folder, (flags, directory) in sorted(known.items()):
        home = room_of(folder + "/x")
        if home is None:
            findings.append(f"{folder}: a room that this check has no arrows for")
            continue
        for room, header in headers.items():
            if header is None:
                continue
            asked += 1
            if room.startswith(home + "/") or (room not in (home, *MAY_SEE[home])
                                                   and is_inside(room, MAY_SEE[home])):
                findings += [f"{path} includes {room}" for path in includes_inner(home, room)]
                continue
            seen = reaches(flags, directory, header)
            # a module's folder could also be an include root by itself
            if room.startswith("plugins/") and room != home:
                seen = seen or reaches(flags, directory, header.rsplit("/", 1)[1])
            if seen and room != home and room not in MAY_SEE[home]:
                findings.append(f"{folder} sees {header}")
            if not seen and room in (home, MUST_SEE):
                findings.append(f"{folder} does not see {header}")
    tree.finish(findings, f"{asked} arrows from {len(known)} folders")


main()
