#!/usr/bin/env python3
"""Breaks the code on purpose and expects the tests to notice.

    mutants.py check            every mutant fits its file, and there are enough of them
    mutants.py run [FILTER]     each one built and tested in build/mutants; FILTER: regular expression over list, file and why

A mutant is killed when a test fails or the tests hang, survived when all pass, broken when it does not fit or does
not compile. Status 1 where any survived or is broken.
"""

import pathlib
import re
import sys
import time

import mutant_build
import mutant_list

ROOT = pathlib.Path(__file__).resolve().parents[1]
LEAST = 60


def check(root=ROOT, least=LEAST):
    mutants, faults = mutant_list.read(root / "tests/mutants")
    for mutant in mutants:
        faults += mutant.faults(root)
    if len(mutants) < least:
        faults.append(f"{len(mutants)} mutants in all, wanted at least {least}")
    print("\n".join(faults) if faults else f"{len(mutants)} mutants fit their files")
    return 1 if faults else 0


def verdict(mutant, tree):
    """killed, survived or broken, and by what."""
    faults = mutant.faults(tree.root)
    if faults:
        return "broken", faults[0]
    if mutant.tests and not tree.count_tests(mutant.tests):
        return "broken", f"no test matches '{mutant.tests}'"
    with tree.with_text(mutant.file, mutant.mutated(tree.root)):
        if not tree.build():
            return "broken", "it does not compile: " + tree.last_error()
        return tree.judge(mutant.tests)


def chosen_of(mutants, wanted):
    """`^edges` is a whole list, `AlertCause` a file's, any word of a reason the mutants with that word."""
    return [m for m in mutants if re.search(wanted, f"{m.place} {m.file} {m.why}")]


def run(wanted):
    mutants, faults = mutant_list.read(ROOT / "tests/mutants")
    chosen = chosen_of(mutants, wanted)
    if faults or not chosen:
        print("\n".join(faults) or f"no mutant matches '{wanted}'")
        return 1
    tree = mutant_build.MutantTree(ROOT)
    print(f"{len(chosen)} mutants; first the code as it is", flush=True)
    if not tree.prepare():
        print(tree.output + "\nthe code as it is does not build or does not pass its tests")
        return 1
    counts = {"killed": 0, "survived": 0, "broken": 0}
    for number, mutant in enumerate(chosen, 1):
        start = time.monotonic()
        result, by = verdict(mutant, tree)
        counts[result] += 1
        print(f"{number:3}/{len(chosen)} {result:8} {time.monotonic() - start:5.1f} s  {mutant.file}  {mutant.why}  [{by}]",
              flush=True)
    print(", ".join(f"{count} {result}" for result, count in counts.items()))
    return 1 if counts["survived"] or counts["broken"] else 0


def main(words):
    if words == ["check"]:
        return check()
    if words[:1] == ["run"] and len(words) <= 2:
        return run(words[1] if len(words) == 2 else "")
    print(__doc__, file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
