"""Reads tests/mutants/*.mutants: deliberate mistakes, each of which a test must notice.

Blocks separated by blank lines; a line that begins with # is a comment:

    file: conditions/Lexer.cpp
    old: if (depth > kMaximumDepth)
    new: if (depth > kMaximumDepth + 1)
    why: one level too many is accepted
    tests: conditions            (optional: a regular expression over ctest's names, to run only those)

`old` stands exactly once in its file, whole lines or a part of one; `new` may be empty.
"""

import dataclasses
import pathlib

FIELDS = ("file", "old", "new", "why", "tests")


@dataclasses.dataclass
class Mutant:
    place: str  # list and line, for messages
    file: str = ""
    old: str = ""
    new: str = ""
    why: str = ""
    tests: str = ""

    def faults(self, root):
        """What is wrong with the mutant itself, as sentences."""
        found = [f"{self.place}: no '{name}'" for name in ("file", "old", "why") if not getattr(self, name)]
        if found:
            return found
        path = root / self.file
        if not path.is_file():
            return [f"{self.place}: there is no file {self.file}"]
        count = path.read_text(encoding="utf-8").count(self.old)
        if count != 1:
            found.append(f"{self.place}: '{self.old}' stands {count} times in {self.file}, wanted once")
        if self.old == self.new:
            found.append(f"{self.place}: old and new are the same")
        return found

    def mutated(self, root):
        return (root / self.file).read_text(encoding="utf-8").replace(self.old, self.new, 1)

    def line(self, root):
        text = (root / self.file).read_text(encoding="utf-8")
        return text.count("\n", 0, text.index(self.old)) + 1


def read(folder):
    """All mutants of a folder's lists, and the faults of the lists' form."""
    mutants, faults = [], []
    for path in sorted(pathlib.Path(folder).glob("*.mutants")):
        block = None
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            if line.startswith("#"):
                continue
            if not line.strip():
                block = None
                continue
            name, colon, value = line.partition(":")
            place = f"{path.name}:{number}"
            if not colon or name not in FIELDS:
                faults.append(f"{place}: wanted one of {', '.join(FIELDS)}, and a colon")
                continue
            if block is None:
                block = Mutant(place)
                mutants.append(block)
            if getattr(block, name):
                faults.append(f"{place}: a second '{name}' in one block")
            # one blank behind the colon belongs to the form, any further one to the text
            setattr(block, name, value[1:] if value.startswith(" ") else value)
    return mutants, faults
