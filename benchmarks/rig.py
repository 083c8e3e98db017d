"""What the benchmarks of whole programs share: a site with its service, a broker, and the load on both."""

import contextlib
import json
import os
import pathlib
import signal
import socket
import sqlite3
import subprocess
import sys
import tempfile
import time

BIN = pathlib.Path(sys.argv[1]).resolve()
STATIONS, MONITORS = 100, 1000
TICKS = os.sysconf("SC_CLK_TCK")
REFERENCE = 978307200.0  # 2001-01-01 in Unix time


def processor_seconds(pid):
    """Of a process with all its threads and of its children that have ended."""
    fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()
    return sum(int(field) for field in fields[11:15]) / TICKS


def anonymous_memory(pid):
    """RssAnon, MiB."""
    for line in pathlib.Path(f"/proc/{pid}/status").read_text().splitlines():
        if line.startswith("RssAnon"):
            return int(line.split()[1]) / 1024


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def archive(title, script):
    return {"format": "vigil-archive", "version": 1, "root": {
        "$class": "QRVVigilPlugIn", "$id": 1, "agent": {"$station": True}, "title": title,
        "ruleEdStoredCriteria": [[{"$class": "RunScriptCriterion", "$id": 2, "agent": {"$station": True},
                                   "name": "Run script", "children": [{"$class": "TextFieldCriterion", "$id": 3,
                                                                       "agent": {"$station": True}}]}, {"$ref": 3}]],
        "ruleEdStoredDisplayValues": [["Run script", {"$class": "TextField", "$id": 4, "stringValue": script}]],
        "evaluating": True, "retriggerInterval": 0.0, "triggerOnlyOnChange": False,
        "predicate": {"$class": "ConditionPredicate", "$id": 5,
                      "text": "windChill.unitValue < -100 OR reading2.unitValue > 1000"}}}


class Site:
    def __init__(self, folder, name, port, stations, monitors, acting=None):
        """`acting` monitors run a script, one a station unless told otherwise; the others only judge."""
        self.path = folder / f"{name}.vigilsite"
        self.folder = folder
        lines = [{"format": "vigil-site", "version": 1, "highestId": 0}]
        lines += [{"station": {"id": s + 1, "name": f"s{s}", "feed": f"mqtt://127.0.0.1:{port}/load/s{s}?form=lines",
                               "usUnits": False, "units": [], "rolling": []}} for s in range(stations)]
        for m in range(monitors):
            script = "true.sh" if m < (stations if acting is None else acting) else ""
            lines.append({"plugIn": {"id": m + 1, "station": m % stations + 1, "className": "QRVVigilPlugIn",
                                     "title": f"m{m}", "edition": 0, "archive": archive(f"m{m}", script)}})
        copy = folder / f"{name}.jsonl"
        copy.write_text("".join(json.dumps(line) + "\n" for line in lines))
        subprocess.run([BIN / "vigil", "site", "import", copy, "--site", self.path], check=True,
                       stdout=subprocess.DEVNULL)
        (folder / "true.sh").write_text("#!/bin/true\n")

    def start(self, *options, quiet=False):
        """Gives the seconds from its start until it watches; with its log thrown away it cannot tell."""
        began = time.time()
        self.log = open("/dev/null" if quiet else self.folder / "log.txt", "w+")
        self.process = subprocess.Popen([BIN / "vigil", "run", "--site", self.path, "--scripts", self.folder,
                                         *options], stderr=self.log)
        if quiet:
            self.status()
            return None
        while True:
            text = pathlib.Path(self.log.name).read_text()
            ready = [line for line in text.splitlines() if " active" in line]
            if ready:
                stamp = ready[0].split()[0].rstrip("Z")
                seconds = time.mktime(time.strptime(stamp[:19], "%Y-%m-%dT%H:%M:%S")) - time.timezone
                return seconds + float("0" + stamp[19:]) - began
            if self.process.poll() is not None:
                sys.exit(f"the service ended: {text}")
            time.sleep(0.002)

    def processor(self):
        return processor_seconds(self.process.pid)

    def memory(self):
        return anonymous_memory(self.process.pid)

    def status(self):
        """On a busy machine it may take more than one question."""
        for _ in range(20):
            run = subprocess.run([BIN / "vigil", "status", "--json", "--site", self.path], capture_output=True,
                                 text=True)
            if run.stdout:
                return json.loads(run.stdout)
            time.sleep(0.1)
        sys.exit(f"no status: {run.stderr}")

    def fires(self, since):
        """Unix times at which actions began, in order."""
        with contextlib.closing(sqlite3.connect(f"file:{self.path}?mode=ro", uri=True)) as database:
            return [row[0] + REFERENCE for row in
                    database.execute("SELECT time FROM fires WHERE time >= ? ORDER BY time", (since - REFERENCE,))]

    def judged(self):
        return sum(sum(monitor["cycles"][how] for how in ("missed", "fired", "waiting"))
                   for station in self.status()["stations"] for monitor in station["monitors"])

    def wait_live(self):
        while any(station["feedState"] != "live" for station in self.status()["stations"]):
            time.sleep(0.05)

    def stop(self):
        self.process.send_signal(signal.SIGTERM)
        self.process.wait(30)


@contextlib.contextmanager
def scratch():
    with tempfile.TemporaryDirectory(prefix="vigil-bench-") as name:
        yield pathlib.Path(name)


@contextlib.contextmanager
def broker(folder):
    port = free_port()
    config = folder / "broker.conf"
    config.write_text(f"listener {port} 127.0.0.1\nallow_anonymous true\npersistence false\nset_tcp_nodelay true\n"
                      "max_queued_messages 0\n")
    process = subprocess.Popen(["mosquitto", "-c", config], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    time.sleep(0.5)
    try:
        yield port
    finally:
        process.kill()
        process.wait()


def load(port, messages, rate, fire_every, stations=STATIONS):
    """Publishes, and gives the Unix time of each message that lets monitors fire."""
    run = subprocess.run([BIN / "mqtt_load", str(port), str(stations), str(messages), str(rate), str(fire_every)],
                         capture_output=True, text=True, check=True)
    return [float(line.split()[1]) for line in run.stdout.splitlines()], float(run.stderr.split()[-1])


def settle(site):
    before = -1
    while (now := site.judged()) != before:
        before = now
        time.sleep(0.5)
    return now


def matched(sent, fires):
    """From publication to the entry of the actions, milliseconds: the first fire behind each publication."""
    found, i = [], 0
    for moment in sent:
        while i < len(fires) and fires[i] < moment:
            i += 1
        if i < len(fires) and fires[i] - moment < 1:
            found.append((fires[i] - moment) * 1000)
    return found
