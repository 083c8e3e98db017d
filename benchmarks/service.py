"""How much the service takes, how fast it acts and how small it is, against a real broker on loopback:

    cmake --preset bench && cmake --build --preset bench
    benchmarks/service.py build/bench/bin [MESSAGES]

1,000 monitors on 100 stations get messages of 40 readings. Prints a table; nothing here passes or fails.
"""

import contextlib
import json
import os
import pathlib
import signal
import socket
import sqlite3
import statistics
import subprocess
import sys
import tempfile
import time

BIN = pathlib.Path(sys.argv[1]).resolve()
MESSAGES = int(sys.argv[2]) if len(sys.argv) > 2 else 100_000
STATIONS, MONITORS = 100, 1000
TICKS = os.sysconf("SC_CLK_TCK")
REFERENCE = 978307200.0  # 2001-01-01 in Unix time


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
    def __init__(self, folder, name, port, stations, monitors):
        self.path = folder / f"{name}.vigilsite"
        self.folder = folder
        lines = [{"format": "vigil-site", "version": 1, "highestId": 0}]
        lines += [{"station": {"id": s + 1, "name": f"s{s}", "feed": f"mqtt://127.0.0.1:{port}/load/s{s}?form=lines",
                               "usUnits": False, "units": [], "rolling": []}} for s in range(stations)]
        for m in range(monitors):
            # One monitor a station acts; the others only judge.
            script = "true.sh" if m < stations else ""
            lines.append({"plugIn": {"id": m + 1, "station": m % stations + 1, "className": "QRVVigilPlugIn",
                                     "title": f"m{m}", "edition": 0, "archive": archive(f"m{m}", script)}})
        copy = folder / f"{name}.jsonl"
        copy.write_text("".join(json.dumps(line) + "\n" for line in lines))
        subprocess.run([BIN / "vigil", "site", "import", copy, "--site", self.path], check=True,
                       stdout=subprocess.DEVNULL)
        (folder / "true.sh").write_text("#!/bin/true\n")

    def start(self):
        began = time.time()
        self.log = open(self.folder / "log.txt", "w+")
        self.process = subprocess.Popen([BIN / "vigil", "run", "--site", self.path, "--scripts", self.folder],
                                        stderr=self.log)
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
        fields = pathlib.Path(f"/proc/{self.process.pid}/stat").read_text().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / TICKS

    def memory(self):
        for line in pathlib.Path(f"/proc/{self.process.pid}/status").read_text().splitlines():
            if line.startswith("RssAnon"):
                return int(line.split()[1]) / 1024

    def status(self):
        run = subprocess.run([BIN / "vigil", "status", "--json", "--site", self.path], capture_output=True, text=True)
        return json.loads(run.stdout)

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


def load(port, messages, rate, fire_every):
    """Publishes, and gives the Unix time of each message that lets monitors fire."""
    run = subprocess.run([BIN / "mqtt_load", str(port), str(STATIONS), str(messages), str(rate), str(fire_every)],
                         capture_output=True, text=True, check=True)
    return [float(line.split()[1]) for line in run.stdout.splitlines()], float(run.stderr.split()[-1])


def settle(site):
    before = -1
    while (now := site.judged()) != before:
        before = now
        time.sleep(0.5)
    return now


def latencies(site, sent, since):
    """From publication to the entry of the actions, milliseconds: the first fire behind each publication."""
    with sqlite3.connect(f"file:{site.path}?mode=ro", uri=True) as database:
        fires = [row[0] + REFERENCE for row in
                 database.execute("SELECT time FROM fires WHERE time >= ? ORDER BY time", (since - REFERENCE,))]
    found, i = [], 0
    for moment in sent:
        while i < len(fires) and fires[i] < moment:
            i += 1
        if i < len(fires) and fires[i] - moment < 1:
            found.append((fires[i] - moment) * 1000)
    return found


def main():
    with tempfile.TemporaryDirectory(prefix="vigil-bench-") as name:
        folder = pathlib.Path(name)
        with broker(folder) as port:
            starts = []
            small = Site(folder, "small", port, 1, 1)
            for _ in range(20):
                starts.append(small.start() * 1000)
                small.stop()
            small.start()
            time.sleep(3)
            print(f"one station, one monitor: start {statistics.median(starts):.1f} ms (median of 20, "
                  f"{min(starts):.1f} to {max(starts):.1f}), RssAnon {small.memory():.1f} MiB")
            small.stop()

            bare = Site(folder, "bare", port, STATIONS, 0)
            bare.start()
            bare.wait_live()
            load(port, 2000, 1000, 0)
            settle(bare)
            without = bare.memory()
            bare.stop()

            site = Site(folder, "full", port, STATIONS, MONITORS)
            ready = site.start()
            site.wait_live()
            load(port, 2000, 1000, 0)
            settle(site)
            print(f"{STATIONS} stations: RssAnon {without:.1f} MiB without monitors, {site.memory():.1f} MiB with "
                  f"{MONITORS} (start {ready * 1000:.0f} ms)")
            before, used = settle(site), site.processor()
            load(port, MESSAGES, 0, 10_000)
            judged = settle(site) - before
            used = site.processor() - used
            status = site.status()
            drops = {}
            for station in status["stations"]:
                for why, count in station["drops"].items():
                    drops[why] = drops.get(why, 0) + count
            print(f"as fast as the broker brings them: {judged} cycles in {used:.2f} processor seconds, "
                  f"{judged / used:.0f} a second a core; left out {drops}, history lost {status['historyLost']}")
            rate = judged / used / (MONITORS / STATIONS) / 10
            for share in ("a tenth of that",):
                since = time.time()
                sent, seconds = load(port, int(rate * 20), rate, 100)
                settle(site)
                found = sorted(latencies(site, sent, since))
                print(f"at {share} ({rate:.0f} messages a second): {len(found)} of {len(sent)} fires found, from "
                      f"publication to the actions p50 {statistics.median(found):.3f} ms, "
                      f"p99 {found[int(len(found) * 0.99)]:.3f} ms")
            print(f"afterwards: RssAnon {site.memory():.1f} MiB; it ends")
            site.stop()


main()
