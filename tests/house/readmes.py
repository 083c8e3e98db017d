"""Every folder with code says in a few lines what it is for; a room's folder also what it sees, on which thread it
runs and what never belongs there."""

import tree

MOST_LINES = 15
LEAST_LINES = 3
CODE = {".cpp", ".hpp", ".py", ".sh"}
WORDS_OF_A_ROOM = ("sees", "thread", "never")


def main():
    findings = []
    folders = {path.parent for path in tree.files(CODE) if path.parent.parts}
    for folder in sorted(folders):
        readme = folder / "README.md"
        if not (tree.ROOT / readme).is_file():
            findings.append(f"{folder}: no README.md")
            continue
        text = tree.lines(readme)
        if not LEAST_LINES <= len(text) <= MOST_LINES:
            findings.append(f"{readme}: {len(text)} lines, wanted {LEAST_LINES} to {MOST_LINES}")
        if folder.parts[0] in tree.ROOMS:
            whole = "\n".join(text).lower()
            findings += [f"{readme}: says nothing with '{word}'" for word in WORDS_OF_A_ROOM if word not in whole]
    tree.finish(findings, f"{len(folders)} folders")


main()
