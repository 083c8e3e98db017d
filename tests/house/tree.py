"""What every check of the house starts from: the files of the clone, and how findings are told."""

import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
SKIPPED = {".git", "build", ".cache", "__pycache__"}
ROOMS = ("platform", "host_contract", "conditions", "plugins", "host")
SOURCES = {".cpp", ".hpp"}


def files(suffixes=None, under=()):
    """Relative paths, sorted; the file tree itself and not a version control's list, so that a file that was only
    just written is checked too."""
    found = []
    for path in walk(ROOT):
        relative = path.relative_to(ROOT)
        if suffixes and path.suffix not in suffixes:
            continue
        if under and relative.parts[0] not in under:
            continue
        found.append(relative)
    if not found:
        finish([f"no file was found under {ROOT}: the check would check nothing"])
    return sorted(found)


def walk(folder):
    for path in folder.iterdir():
        if path.is_symlink() or path.name in SKIPPED:
            continue
        if path.is_dir():
            yield from walk(path)
        elif path.suffix != ".pyc":
            yield path


def lines(relative):
    return (ROOT / relative).read_text(encoding="utf-8").splitlines()


def finish(findings, checked=""):
    """Prints one finding a line and ends with 1 where there is any."""
    for finding in findings:
        print(finding)
    if findings:
        sys.exit(1)
    print(f"{checked}: no finding")
    sys.exit(0)
