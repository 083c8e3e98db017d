"""A copy of the tree with a build of its own, in which a mutant lives for the time of its tests. The clone itself is
never touched, so an interrupted run leaves nothing behind that matters."""

import contextlib
import os
import re
import shutil
import signal
import subprocess
import time

SKIPPED = {"build", ".git", ".cache", "__pycache__"}
# A mutant may make a loop endless; what takes so many times longer than the sound code hangs.
PATIENCE = 5
LEAST_SECONDS = 30
BUILD_SECONDS = 1800
# Skipped ones stand in a list of the same form.
FAILED = re.compile(r"^\s+\d+ - (.*) \((?!Skipped|Disabled)(.+)\)$", re.MULTILINE)
CANNOT_START = "Error running test executable"


class MutantTree:
    def __init__(self, origin):
        self.origin = origin
        self.root = origin / "build/mutants/tree"
        self.binaries = origin / "build/mutants/build"
        self.jobs = os.environ.get("VIGIL_JOBS", "2")
        self.bound = BUILD_SECONDS
        self.output = ""

    def prepare(self):
        """Copies, configures, builds, and passes the tests once without any mutant."""
        mirror(self.origin, self.root)
        flags = ["-DCMAKE_CXX_COMPILER=g++", "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS=-O0",
                 "-DVIGIL_CHECK_HEADERS=OFF", "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST"]
        if shutil.which("mold"):
            flags += [f"-DCMAKE_{kind}_LINKER_FLAGS=-fuse-ld=mold" for kind in ("EXE", "SHARED")]
        if not self.command("cmake", "-S", self.root, "-B", self.binaries, "-G", "Ninja", *flags) or not self.build():
            return False
        start = time.monotonic()
        passed = self.tests("")
        self.bound = max(LEAST_SECONDS, PATIENCE * (time.monotonic() - start))
        return passed

    def build(self):
        return self.command("cmake", "--build", self.binaries, "--parallel", self.jobs, seconds=BUILD_SECONDS)

    def tests(self, pattern, *more):
        # The checks of the house would notice a mutant by its mere text, which shows nothing.
        return self.command("ctest", "--test-dir", self.binaries, "--parallel", self.jobs, "-LE", "house",
                            "--no-tests=error", *(["-R", pattern] if pattern else []), *more, seconds=self.bound)

    def count_tests(self, pattern):
        self.tests(pattern, "-N")
        return int(re.search(r"Total Tests: (\d+)", self.output + "Total Tests: 0").group(1))

    def judge(self, pattern):
        if self.tests(pattern, "--stop-on-failure"):
            return "survived", "every test passed"
        if self.output.endswith(HUNG):
            return "killed", "the tests hang"
        failed = FAILED.findall(self.output)
        if failed:
            return "killed", failed[0][0]
        if CANNOT_START in self.output:
            return "killed", "a test program does not start"
        return "broken", "ctest failed without a failing test"

    @contextlib.contextmanager
    def with_text(self, file, text):
        path = self.root / file
        sound = path.read_bytes()
        path.write_text(text, encoding="utf-8")
        try:
            yield
        finally:
            path.write_bytes(sound)

    def last_error(self):
        errors = [line for line in self.output.splitlines() if "error:" in line]
        return errors[0] if errors else self.output[-200:]

    def command(self, *words, seconds=600):
        """True where it ended with 0 in time; what it printed is in `output`. All that it started ends with it."""
        process = subprocess.Popen([str(word) for word in words], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                   stderr=subprocess.STDOUT, text=True, errors="replace", start_new_session=True)
        try:
            self.output, _ = process.communicate(timeout=seconds)
            return process.returncode == 0
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            self.output = process.communicate()[0] + HUNG
            return False


HUNG = "\nended: it took too long\n"


def mirror(origin, copy):
    """Makes `copy` the same as `origin`, touching only what differs, so that a second run builds next to nothing."""
    kept = set()
    for folder, folders, files in os.walk(origin):
        folders[:] = [name for name in folders if name not in SKIPPED]
        relative = os.path.relpath(folder, origin)
        for name in files:
            source, target = os.path.join(folder, name), os.path.normpath(os.path.join(copy, relative, name))
            kept.add(target)
            if not same(source, target):
                os.makedirs(os.path.dirname(target), exist_ok=True)
                shutil.copyfile(source, target)
                shutil.copymode(source, target)
    for folder, _, files in os.walk(copy):
        for name in files:
            if os.path.join(folder, name) not in kept:
                os.remove(os.path.join(folder, name))


def same(left, right):
    try:
        with open(left, "rb") as one, open(right, "rb") as other:
            return one.read() == other.read()
    except FileNotFoundError:
        return False
