"""The mutation rig on made-up lists: it refuses what does not fit, and tells killed, survived and broken apart."""

import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "scripts"))
import mutant_build
import mutant_list
import mutants

GOOD = "file: a.cpp\nold: x < 1\nnew: x <= 1\nwhy: a bound\n"


class MadeUpTree(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.root = pathlib.Path(scratch.name)
        (self.root / "tests/mutants").mkdir(parents=True)
        (self.root / "a.cpp").write_text("int a(int x) {\n    return x < 1;\n}\nint twice = 2 + 2;\n")

    def faults(self, text):
        (self.root / "tests/mutants/a.mutants").write_text(text)
        mutants_read, faults = mutant_list.read(self.root / "tests/mutants")
        for mutant in mutants_read:
            faults += mutant.faults(self.root)
        return "\n".join(faults)


class ListTest(MadeUpTree):
    def test_a_fitting_list_has_no_fault(self):
        self.assertEqual(self.faults("# two of them\n" + GOOD + "\n" + GOOD + "tests: a\n"), "")
        self.assertEqual(len(mutant_list.read(self.root / "tests/mutants")[0]), 2)

    def test_text_that_is_absent_or_not_unique_is_refused(self):
        self.assertIn("stands 0 times", self.faults(GOOD.replace("x < 1", "y < 1")))
        self.assertIn("stands 2 times", self.faults("file: a.cpp\nold: 2\nnew: 3\nwhy: w\n"))

    def test_a_mutant_that_changes_nothing_is_refused(self):
        self.assertIn("the same", self.faults(GOOD.replace("x <= 1", "x < 1")))

    def test_missing_and_unknown_fields_are_refused(self):
        self.assertIn("no 'why'", self.faults(GOOD.replace("why: a bound\n", "")))
        self.assertIn("wanted one of", self.faults(GOOD + "reason: none\n"))
        self.assertIn("a second 'new'", self.faults(GOOD + "new: x\n"))
        self.assertIn("no file", self.faults(GOOD.replace("a.cpp", "b.cpp")))

    def test_too_few_mutants_are_a_finding(self):
        self.faults(GOOD)
        self.assertEqual(mutants.check(self.root, least=1), 0)
        self.assertEqual(mutants.check(self.root, least=2), 1)

    def test_only_the_wanted_text_changes(self):
        self.faults(GOOD)
        mutant = mutant_list.read(self.root / "tests/mutants")[0][0]
        self.assertEqual(mutant.line(self.root), 2)
        self.assertEqual(mutant.mutated(self.root), (self.root / "a.cpp").read_text().replace("x < 1", "x <= 1"))


class FilterTest(unittest.TestCase):
    def test_a_filter_names_a_list_a_file_or_a_word_of_the_reason(self):
        edge = mutant_list.Mutant("edges.mutants:3", file="a/Cycle.cpp", why="a wait would not end")
        kit = mutant_list.Mutant("kit.mutants:3", file="b/Kit.cpp", why="edges would be lost")
        for wanted, found in [("^edges", [edge]), ("edges", [edge, kit]), ("Cycle", [edge]), ("lost$", [kit]),
                              ("", [edge, kit]), ("nothing", [])]:
            self.assertEqual(mutants.chosen_of([edge, kit], wanted), found, wanted)


class FakeTree(mutant_build.MutantTree):
    """Building and testing are told instead of done."""

    def __init__(self, root, builds, passes, output):
        super().__init__(root)
        self.root, self.builds, self.passes, self.told = root, builds, passes, output

    def build(self):
        return self.builds

    def tests(self, pattern, *more):
        self.output = self.told
        return self.passes


class VerdictTest(MadeUpTree):
    def verdict(self, builds, passes, output=""):
        self.faults(GOOD)
        mutant = mutant_list.read(self.root / "tests/mutants")[0][0]
        before = (self.root / "a.cpp").read_text()
        result = mutants.verdict(mutant, FakeTree(self.root, builds, passes, output))
        self.assertEqual((self.root / "a.cpp").read_text(), before)
        return result

    def test_verdicts(self):
        self.assertEqual(self.verdict(True, True)[0], "survived")
        self.assertEqual(self.verdict(False, True)[0], "broken")
        self.assertEqual(self.verdict(True, False, "\t  3 - unit.A thing (Failed)\n"), ("killed", "unit.A thing"))
        self.assertEqual(self.verdict(True, False, mutant_build.HUNG), ("killed", "the tests hang"))
        self.assertEqual(self.verdict(True, False, "ctest cannot run")[0], "broken")


class CommandTest(unittest.TestCase):
    def test_what_hangs_is_ended_with_all_that_it_started(self):
        tree = mutant_build.MutantTree(pathlib.Path("/nonexistent"))
        self.assertFalse(tree.command("bash", "-c", "echo begun; sleep 60 & wait", seconds=0.3))
        self.assertTrue(tree.output.startswith("begun"))
        self.assertTrue(tree.output.endswith(mutant_build.HUNG))


unittest.main()
