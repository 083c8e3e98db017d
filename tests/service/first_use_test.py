"""The commands of somebody's first evening, and what stands after a crash."""

import signal

import service as rig


def main():
    with rig.service() as it:
        port = rig.free_port()
        ran = it.folder / "ran.txt"
        it.script("gust.sh", f'#!/bin/sh\necho "$1" >> {ran}\n')
        it.vigil("site", "create")
        it.vigil("station", "create", "Home", "--feed", f"upload://127.0.0.1:{port}/", "--unit",
                 "windGust=km/h")
        it.vigil("monitor", "create", "Gust", "--station", "Home", "--condition", "windGust.unitValue > 60",
                 "--retrigger", "15", "--action", "Run script=gust.sh roof", "--active")
        it.start()
        rig.until(lambda: it.station()["feedState"] == "live", "the listener was live")
        rig.require(rig.upload(port, windgustmph=10).startswith("success"), "the console was not answered")
        rig.until(lambda: it.monitor("Gust")["cycles"]["missed"] == 1, "a calm gust was judged")
        rig.upload(port, windgustmph=150)
        rig.until(ran.exists, "the script ran")
        rig.until(lambda: it.monitor("Gust")["lastResult"] == "succeeded", "the ledger knew the script's end")
        rig.require(ran.read_text() == "roof\n", f"the script wrote {ran.read_text()!r}")
        rig.require(it.monitor("Gust")["state"] == "waiting", "the monitor does not wait")

        it.stop(signal.SIGKILL)
        it.start()
        rig.until(lambda: it.station()["feedState"] == "live", "the listener was live again")
        rig.require(it.monitor("Gust")["state"] == "waiting", "the wait was lost with the process")
        rig.upload(port, windgustmph=151)
        rig.until(lambda: it.monitor("Gust")["cycles"]["waiting"] == 1, "the second gust was waited out")
        rig.require(ran.read_text() == "roof\n", "what acted acted again")
        actions = it.actions()
        rig.require(len(actions) == 1 and actions[0]["state"] == "succeeded" and actions[0]["what"] == "gust.sh roof",
                    f"the ledger holds {actions}")
        rig.require(it.stop() < 5, "it did not end in time")


main()
