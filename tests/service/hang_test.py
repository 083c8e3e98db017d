"""A script that hangs keeps nobody waiting but the station's next script, is seen while it hangs, and is ended."""

import service as rig


def main():
    with rig.service() as it:
        hangs, quick = it.folder / "hangs.txt", it.folder / "quick.txt"
        it.script("hang.sh", f"#!/bin/sh\ntrap '' TERM\necho x > {hangs}\nwhile :; do sleep 1; done\n")
        it.script("quick.sh", f"#!/bin/sh\necho x >> {quick}\n")
        it.vigil("site", "create")
        for station, script in (("First", "hang.sh"), ("Second", "quick.sh")):
            it.vigil("station", "create", station, "--feed", "simulated:?speed=3000")
            it.vigil("monitor", "create", f"Of {station}", "--station", station, "--condition",
                     "windSpeed.unitValue > -1", "--retrigger", "60", "--action", f"Run script={script}", "--active")
        it.start()
        rig.until(hangs.exists, "the script hung")
        rig.until(quick.exists, "the other station's script ran")
        rig.until(lambda: [action["state"] for action in it.actions("--station", "First")] == ["running"],
                  "the ledger knew that it runs")
        before = it.station("First")["notifications"]
        rig.until(lambda: it.station("First")["notifications"] > before + 5, "its own station went on")
        rig.require(it.monitor("Of First")["state"] == "waiting", "its monitor does not wait")
        it.stop()
        rig.require([action["state"] for action in it.actions("--station", "First")] == ["interrupted"],
                    "the ledger does not tell how it ended")


main()
