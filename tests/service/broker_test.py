"""A broker that is down at the start, comes, goes away and comes back: the service goes on and recovers by itself."""

import json
import subprocess

import service as rig


class Broker:
    def __init__(self, folder, port):
        self.config = folder / "broker.conf"
        self.config.write_text(f"listener {port} 127.0.0.1\nallow_anonymous true\npersistence false\n")
        self.port = port
        self.process = None

    def start(self):
        self.process = subprocess.Popen(["mosquitto", "-c", self.config], stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL)

    def stop(self):
        if self.process:
            self.process.kill()
            self.process.wait()
            self.process = None

    def publish(self, wind, *options):
        subprocess.run(["mosquitto_pub", "-h", "127.0.0.1", "-p", str(self.port), "-t", "weather/roof", "-m",
                        json.dumps({"readings": {"windSpeed": wind}}), *options], check=True, timeout=rig.PATIENCE)


def main():
    with rig.service() as it:
        broker = Broker(it.folder, rig.free_port())
        it.vigil("site", "create")
        it.vigil("station", "create", "Roof", "--feed", f"mqtt://127.0.0.1:{broker.port}/weather/roof")
        it.vigil("monitor", "create", "Wind", "--station", "Roof", "--condition", "windSpeed.unitValue > 1000",
                 "--active")

        def judged(count):
            return lambda: it.monitor("Wind")["cycles"]["missed"] >= count

        try:
            it.start()
            rig.until(lambda: it.station()["feedState"] == "retrying", "the missing broker was told")
            rig.require(any("Roof" in problem for problem in it.status()["problems"]), "the status says all is well")
            broker.start()
            rig.until(lambda: it.station()["feedState"] == "live", "the broker was found")
            rig.require(not it.status()["problems"], f"the status still says {it.status()['problems']}")
            broker.publish(3)
            rig.until(judged(1), "a message was judged")
            broker.stop()
            rig.until(lambda: it.station()["feedState"] == "retrying", "the lost broker was told")
            broker.start()
            rig.until(lambda: it.station()["feedState"] == "live", "the broker was found again")
            broker.publish(4)
            rig.until(judged(2), "a message was judged again")
            rig.require(not it.status()["problems"], f"the status still says {it.status()['problems']}")
            # What a broker has kept is no news for one that comes anew.
            broker.publish(5, "--retain")
            rig.until(judged(3), "the message itself was news")
            it.stop()
            it.start()
            rig.until(lambda: it.station()["drops"].get("retained") == 1, "the kept message was told apart")
            rig.require(it.monitor("Wind")["cycles"]["missed"] == 0, "a kept message was judged as news")
        finally:
            broker.stop()
        it.stop()


main()
