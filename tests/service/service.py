"""A service under test: the real program on a site of its own, in a folder of its own."""

import contextlib
import json
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
import urllib.parse
import urllib.request

VIGIL = pathlib.Path(sys.argv[1]).resolve() / "vigil"
# A sanitizer build is several times slower.
PATIENCE = float(os.environ.get("VIGIL_PATIENCE", "40"))
IS_LONG = bool(os.environ.get("VIGIL_LONG"))


def require(condition, sentence):
    if not condition:
        raise AssertionError(sentence)


def until(condition, what, patience=None):
    """Waits for something that only a broken program never does, and gives it."""
    end = time.monotonic() + (patience or PATIENCE)
    while True:
        value = condition()
        if value:
            return value
        require(time.monotonic() < end, f"waited in vain until {what}")
        time.sleep(0.02)


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class Service:
    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.site = self.folder / "home.vigilsite"
        self.scripts = self.folder / "scripts"
        self.scripts.mkdir()
        self.log = self.folder / "log.txt"
        self.process = None
        self.environment = {**os.environ, "HOME": str(self.folder), "XDG_DATA_HOME": str(self.folder / "data"),
                            "XDG_CONFIG_HOME": str(self.folder / "config")}

    def vigil(self, *words, status=0):
        run = subprocess.run([VIGIL, *words, "--site", self.site], capture_output=True, text=True,
                             env=self.environment, timeout=PATIENCE)
        require(status is None or run.returncode == status,
                f"vigil {' '.join(map(str, words))} ended with {run.returncode}: {run.stderr}{run.stdout}")
        return run

    def vigil_alone(self, *words, status=0):
        """A command that needs no site."""
        run = subprocess.run([VIGIL, *words], capture_output=True, text=True, env=self.environment, timeout=PATIENCE)
        require(run.returncode == status,
                f"vigil {' '.join(map(str, words))} ended with {run.returncode}: {run.stderr}{run.stdout}")
        return run

    def script(self, name, text):
        (self.scripts / name).write_text(text)

    def start(self, *options, wait=True):
        with open(self.log, "a") as log:
            self.process = subprocess.Popen(
                [VIGIL, "run", "--site", self.site, "--scripts", self.scripts, *options], stderr=log, stdout=log,
                env=self.environment, start_new_session=True)
        if wait:
            until(self.runs, "the service answered")

    def runs(self):
        require(self.process.poll() is None, f"the service ended with {self.process.returncode}: {self.log_text()}")
        status = self.status()
        return status and status["pid"] == self.process.pid

    def status(self):
        run = self.vigil("status", "--json", status=None)
        return json.loads(run.stdout) if run.stdout else None

    def station(self, name=None):
        """Of that name, or the only one."""
        return next(station for station in self.status()["stations"] if name in (None, station["name"]))

    def monitor(self, title):
        return next(monitor for station in self.status()["stations"] for monitor in station["monitors"]
                    if monitor["title"] == title)

    def actions(self, *options):
        run = self.vigil("actions", "--json", "--limit", "100000", *options, status=None)
        return [json.loads(line) for line in run.stdout.splitlines()]

    def log_text(self):
        return self.log.read_text() if self.log.exists() else ""

    def stop(self, with_signal=signal.SIGTERM):
        """Asks it to end, and gives the seconds that it took."""
        began = time.monotonic()
        self.process.send_signal(with_signal)
        self.process.wait(PATIENCE)
        seconds = time.monotonic() - began
        if with_signal != signal.SIGKILL:
            require(self.process.returncode == 0,
                    f"the service ended with {self.process.returncode}: {self.log_text()}")
        self.process = None
        return seconds

    def end(self):
        if self.process and self.process.poll() is None:
            self.process.kill()
            self.process.wait()


@contextlib.contextmanager
def service():
    folder = tempfile.mkdtemp(prefix="vigil-service-")
    made = Service(folder)
    try:
        yield made
    except BaseException:
        print(f"--- the service's log:\n{made.log_text()}", file=sys.stderr)
        raise
    finally:
        made.end()
        shutil.rmtree(folder, ignore_errors=True)


def upload(port, **fields):
    """One upload as a console of the wunderground kind sends it; gives the answer's text."""
    query = urllib.parse.urlencode({"ID": "CONSOLE1", "PASSWORD": "secret", "dateutc": "now", "action": "updateraw",
                                    **fields})
    url = f"http://127.0.0.1:{port}/weatherstation/updateweatherstation.php?{query}"
    with urllib.request.urlopen(url, timeout=PATIENCE) as answer:
        return answer.read().decode()
