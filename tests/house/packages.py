"""What CMake looks for is in scripts/packages.txt, so that a fresh machine gets it."""

import re

import tree

# Part of the compiler or of the tool itself.
ALWAYS_THERE = {"Threads"}
# What this tree itself installs; the examples look for it.
OUR_OWN = {"VigilKit"}
LOOKS_FOR = re.compile(r"^\s*(?:find_package|pkg_check_modules|pkg_search_module)\s*\(([^)]*)\)", re.MULTILINE)
WORDS_OF_CMAKE = {"REQUIRED", "QUIET", "COMPONENTS", "CONFIG", "IMPORTED_TARGET", "GLOBAL"}
STAGES = {"run", "test", "long", "lint", "bench", "package"}


def table():
    names, findings = {}, []
    for number, line in enumerate(tree.lines("scripts/packages.txt"), 1):
        if not line.strip() or line.startswith("#"):
            continue
        words = line.split(None, 3)
        if len(words) != 4 or not set(words[1].split(",")) <= STAGES:
            findings.append(f"scripts/packages.txt:{number}: wanted: package, stages, found as, why")
            continue
        names.setdefault(words[2], []).append(words[0])
    return names, findings


def main():
    names, findings = table()
    looked_for = 0
    for path in tree.files():
        if path.name != "CMakeLists.txt" and path.suffix != ".cmake":
            continue
        for match in LOOKS_FOR.finditer((tree.ROOT / path).read_text(encoding="utf-8")):
            words = match.group(1).split()
            # pkg_check_modules(PREFIX [REQUIRED] module...): the modules; find_package(NAME ...): the name
            wanted = words[:1] if "find_package" in match.group(0) else [
                re.split("[<>=]", word)[0] for word in words[1:] if word not in WORDS_OF_CMAKE]
            for name in wanted:
                looked_for += 1
                if name not in names and name not in ALWAYS_THERE | OUR_OWN:
                    findings.append(f"{path}: {name} has no line in scripts/packages.txt")
    if looked_for == 0:
        findings.append("no find_package was found at all")
    tree.finish(findings, f"{looked_for} packages looked for")


main()
