"""clang-format has nothing to say about any source. Ends with 77 (skipped) where it is of another version."""

import re
import subprocess
import sys

import tree

VERSION = 14


def main():
    told = subprocess.run(["clang-format", "--version"], capture_output=True, text=True, check=True).stdout
    version = int(re.search(r"version (\d+)", told).group(1))
    if version != VERSION:
        print(f"clang-format is of version {version} and the sources are formatted by {VERSION}")
        sys.exit(77)
    sources = tree.files(tree.SOURCES)
    run = subprocess.run(["clang-format", "--dry-run", "--Werror", *map(str, sources)], cwd=tree.ROOT,
                         capture_output=True, text=True)
    findings = [line for line in run.stderr.splitlines() if "error:" in line]
    if run.returncode and not findings:
        findings = [run.stderr]
    tree.finish(findings, f"{len(sources)} sources")


main()
