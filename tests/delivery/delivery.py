"""A service with mail and short messages set up, and the real servers and daemons that they go to."""

import contextlib
import json
import os
import pathlib
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "tests/service"))
import service as rig  # noqa: E402

SERVER = ROOT / "host/services/automation/testing/smtp_server.py"
MAIL, SMS = ("SendEmailCriterion", "Send an email to"), ("SendSMSCriterion", "Send an SMS message to")


def needs(what, *checks):
    """Skips the test where one of the commands cannot be run; where a build server runs it that is a failure."""
    for check in checks:
        if shutil.which(check[0]) and subprocess.run(check, capture_output=True, check=False).returncode == 0:
            continue
        if os.environ.get("CI"):
            raise SystemExit(f"missing: {what}")
        print(f"skipped: missing {what}")
        sys.exit(77)


@contextlib.contextmanager
def folder():
    path = tempfile.mkdtemp(prefix="vigil-delivery-")
    try:
        yield pathlib.Path(path)
    finally:
        shutil.rmtree(path, ignore_errors=True)


@contextlib.contextmanager
def running(words, log, **more):
    """A program of the test's own, ended by its number."""
    with open(log, "ab") as out:
        process = subprocess.Popen(words, stdin=subprocess.DEVNULL, stdout=out, stderr=out, **more)
    try:
        yield process
    finally:
        process.kill()
        process.wait()


class MailServer:
    def __init__(self, path, *options):
        self.path, self.options = path, options

    def __enter__(self):
        self.stack = contextlib.ExitStack()
        self.process = self.stack.enter_context(
            running(["/usr/bin/python3", "-B", SERVER, self.path, *self.options], self.path / "server.log"))
        port = rig.until(lambda: (self.path / "port").exists() and (self.path / "port").read_text(),
                         "the mail server listened")
        self.port = int(port)
        return self

    def __exit__(self, *failure):
        self.stack.close()

    def mail(self, number):
        path = self.path / f"{number}.eml"
        rig.until(path.exists, f"mail {number} came")
        return path.read_bytes(), json.loads((self.path / f"{number}.json").read_text())

    def mails(self):
        return len(list(self.path.glob("*.eml")))

    def asked(self):
        path = self.path / "asked"
        return path.read_text().splitlines() if path.exists() else []


def settings(it, text, **secrets):
    """Writes the user's settings and secrets."""
    home = pathlib.Path(it.environment["XDG_CONFIG_HOME"]) / "vigil"
    home.mkdir(parents=True, exist_ok=True)
    (home / "vigil.toml").write_text(text)
    file = home / "secrets"
    file.write_text("".join(f"{name} = {value}\n" for name, value in secrets.items()))
    file.chmod(0o600)


def row_of(kind, typed, monitor):
    """Makes the monitor's one row, which speaks, one that sends: no command offers such a row, archives hold them."""
    name, shown = kind
    archive = monitor["archive"]["root"]
    archive["ruleEdStoredCriteria"][0][0] |= {"$class": name, "name": shown}
    values = archive["ruleEdStoredDisplayValues"][0]
    values[0] = shown
    values[1]["stringValue"] = typed


def site(it, station, **monitors):
    """A site with that station and a monitor for each title: its kind and what is typed. All fire once an hour."""
    it.vigil("site", "create")
    it.vigil("station", "create", station, "--feed", "simulated:?speed=3000")
    for title in monitors:
        it.vigil("monitor", "create", title, "--station", station, "--condition", "windSpeed.unitValue > -1", "--retrigger",
                 "60", "--action", "Speak Text=x", "--active")
    copy = it.folder / "copy.json"
    it.vigil("site", "export", "--json", copy)
    lines = [json.loads(line) for line in copy.read_text().splitlines()]
    for line in lines:
        if "plugIn" in line:
            row_of(*monitors[line["plugIn"]["title"]], line["plugIn"])
    copy.write_text("".join(json.dumps(line) + "\n" for line in lines))
    it.vigil("site", "import", copy, "--force")


def attempts(it, title, states):
    """The monitor's records, oldest first, once they are in these states."""

    def look():
        found = sorted(it.actions("--monitor", title), key=lambda action: action["queued"])
        return found if [one["state"] for one in found] == list(states) else None

    try:
        return rig.until(look, "so")
    except AssertionError:
        raise AssertionError(f"{title}: {states} was expected, and there is {it.actions('--monitor', title)}") from None


def crash(it):
    it.stop(signal.SIGKILL)


def let_time_pass(it, seconds):
    """Sets what waits for another attempt back, as if the service had rested so long."""
    with contextlib.closing(sqlite3.connect(it.site)) as database, database:
        database.execute("UPDATE effects SET again = again - ? WHERE again IS NOT NULL", (seconds,))
