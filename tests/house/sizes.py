"""One concern a file: a source longer than MOST_LINES needs a reason in long_files.txt, and a reason without a long
file is removed."""

import tree

MOST_LINES = 250
CODE = {".cpp", ".hpp", ".py", ".sh", ".cmake"}
REASONS = tree.ROOT / "tests/house/long_files.txt"


def reasons():
    found = {}
    for line in REASONS.read_text(encoding="utf-8").splitlines():
        if line.strip() and not line.startswith("#"):
            path, _, reason = line.partition(" ")
            found[path] = reason.strip()
    return found


def main():
    findings, excused = [], reasons()
    sources = tree.files(CODE)
    for path in sources:
        count = len(tree.lines(path))
        reason = excused.pop(path.as_posix(), None)
        if count > MOST_LINES and not reason:
            findings.append(f"{path}: {count} lines, wanted at most {MOST_LINES}; split it, or give a reason in {REASONS.name}")
        if count <= MOST_LINES and reason is not None:
            findings.append(f"{REASONS.name}: {path} is short enough, take its line out")
    findings += [f"{REASONS.name}: {path} does not exist" for path in excused]
    tree.finish(findings, f"{len(sources)} sources")


main()
