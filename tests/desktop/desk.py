"""A desk for the window under test: a screen, a session bus and a home of its own, which end with the test."""

import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile

NEEDED = ("Xvfb", "dbus-run-session")
SKIPPED = 77
PATIENCE = 240


def skip(why):
    print(f"skipped: {why}")
    sys.exit(SKIPPED)


def on_the_bus():
    """Whether this is the run inside; only there the bus can be asked."""
    return bool(os.environ.get("VIGIL_ON_THE_BUS"))


def sit_down(story):
    """Runs the story, which gets a Desk, inside a bus and on a screen that end with it."""
    if not on_the_bus():
        sys.exit(_again_on_a_bus_and_screen())
    with tempfile.TemporaryDirectory(prefix="vigil-window-") as folder:
        desk = Desk(pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(folder))
        try:
            story(desk)
        except Exception:
            print(desk.log_text())
            raise
        finally:
            desk.leave()


def _again_on_a_bus_and_screen():
    for tool in NEEDED:
        if not shutil.which(tool):
            skip(f"{tool} is missing")
    read, write = os.pipe()
    screen = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", "1600x1000x24", "-noreset"],
                              pass_fds=[write], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(write)
    number = os.read(read, 16).decode().strip()
    if not number:
        skip("Xvfb does not start")
    environment = {**os.environ, "DISPLAY": ":" + number, "VIGIL_ON_THE_BUS": "1", "QT_QPA_PLATFORM": "xcb",
                   "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"}
    environment.pop("WAYLAND_DISPLAY", None)
    try:
        run = ["dbus-run-session", "--", "/usr/bin/python3", "-B", *sys.argv]
        return subprocess.run(run, env=environment, timeout=PATIENCE, check=False).returncode
    finally:
        screen.terminate()
        screen.wait()


class Desk:
    def __init__(self, build, home):
        self.build = build
        self.home = home
        self.site = home / "field.vigilsite"
        self.environment = {**os.environ, "HOME": str(home), "XDG_RUNTIME_DIR": str(home / "run")}
        for name in ("XDG_CONFIG_HOME", "XDG_DATA_HOME"):
            self.environment.pop(name, None)
        (home / "run").mkdir(mode=0o700)
        self.scripts = home / ".config/vigil/scripts"
        self.scripts.mkdir(parents=True)
        self.settings = home / ".config/vigil/vigil.toml"
        self.window = None

    def vigil(self, *words):
        """A command on the site; gives what it prints. 1 says that something was found."""
        run = subprocess.run([self.build / "bin/vigil", *words, "--site", self.site], capture_output=True, text=True,
                             env=self.environment, timeout=60)
        assert run.returncode in (0, 1), f"vigil {words}: {run.stderr}"
        return run.stdout

    def open_window(self):
        """Gives what the accessibility bus tells of it."""
        from screen import Screen
        with open(self.home / "window.log", "a", encoding="utf-8") as log:
            self.window = subprocess.Popen(
                [self.build / "bin/vigil-window", "--site", self.site, "--appearance", "light"], stdout=log, stderr=log,
                env=self.environment)
        return Screen(self.window.pid)

    def end_window(self, by=signal.SIGTERM):
        if self.window and self.window.poll() is None:
            self.window.send_signal(by)
            self.window.wait(60)
        self.window = None

    def log_text(self):
        log = self.home / "window.log"
        return log.read_text(encoding="utf-8") if log.exists() else ""

    def leave(self):
        self.end_window(signal.SIGKILL)
