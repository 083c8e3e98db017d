"""Every law of docs/laws.md names tests, and each of them exists.

    laws.py BUILD-FOLDER CTEST
"""

import fnmatch
import re
import subprocess
import sys

import tree

LAWS = "docs/laws.md"
TEST = re.compile(r"^ *Test +#\d+: (.*)$", re.MULTILINE)


def laws():
    """A law is a table row: its words, then one or more names in backticks; * stands for any text in a name."""
    found = []
    for number, line in enumerate(tree.lines(LAWS), 1):
        cells = [cell.strip() for cell in line.strip().strip("|").split("|")]
        if not line.startswith("|") or len(cells) != 2 or set(cells[0]) <= set("-: ") or cells[0] == "Law":
            continue
        found.append((number, re.findall(r"`([^`]+)`", cells[1])))
    return found


def main():
    build, ctest = sys.argv[1:3]
    listing = subprocess.run([ctest, "--test-dir", build, "-N"], capture_output=True, text=True, check=True).stdout
    tests = TEST.findall(listing)
    findings, rows = [], laws()
    if not rows:
        findings.append(f"{LAWS}: no law was found")
    for number, names in rows:
        if not names:
            findings.append(f"{LAWS}:{number}: names no test")
        findings += [f"{LAWS}:{number}: there is no test {name}" for name in names
                     if not any(fnmatch.fnmatchcase(test, name) for test in tests)]
    tree.finish(findings, f"{len(rows)} laws against {len(tests)} tests")


main()
