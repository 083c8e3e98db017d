"""SIGTERM ends it within a second, also while an action runs; what ran is ended and stands in the ledger."""

import service as rig


def main():
    with rig.service() as it:
        began = it.folder / "began.txt"
        ended = it.folder / "ended.txt"
        it.script("long.sh", f"#!/bin/sh\necho x > {began}\nsleep 50\necho x > {ended}\n")
        it.vigil("site", "create")
        it.vigil("station", "create", "Home", "--feed", "simulated:?speed=3000")
        it.vigil("monitor", "create", "Always", "--station", "Home", "--condition", "windSpeed.unitValue > -1",
                 "--retrigger", "60", "--action", "Run script=long.sh", "--active")
        it.start()
        rig.until(began.exists, "the script began")
        seconds = it.stop()
        # The time itself is a figure, not a test; this is ten times what is wanted.
        rig.require(seconds < 10, f"it took {seconds:.1f} s to end")
        print(f"ended after {seconds:.2f} s")
        rig.require(not ended.exists(), "the script went on")
        actions = it.actions()
        rig.require([action["state"] for action in actions] == ["interrupted"], f"the ledger holds {actions}")


main()
