"""What somebody changes while it runs is taken over at SIGHUP; all else goes on."""

import signal

import service as rig


def main():
    with rig.service() as it:
        it.vigil("site", "create")
        it.vigil("station", "create", "Home", "--feed", "simulated:?speed=3000")
        for title in ("Kept", "Changed", "Removed"):
            it.vigil("monitor", "create", title, "--station", "Home", "--condition", "windSpeed.unitValue > 1000",
                     "--active")
        it.start()
        rig.until(lambda: it.monitor("Kept")["cycles"]["missed"] > 20, "it was judged")
        before = it.monitor("Kept")["cycles"]["missed"]
        it.vigil("monitor", "edit", "Changed", "--condition", "windSpeed.unitValue > -1", "--retrigger", "60")
        it.vigil("monitor", "remove", "Removed")
        it.vigil("monitor", "create", "Added", "--station", "Home", "--condition", "windSpeed.unitValue > 1000",
                 "--active")
        it.vigil("station", "create", "Second", "--feed", "simulated:?seed=7&speed=3000")
        it.process.send_signal(signal.SIGHUP)
        rig.until(lambda: it.monitor("Changed")["cycles"]["fired"] == 1, "the changed monitor fired")
        rig.until(lambda: it.monitor("Added")["cycles"]["missed"] > 0, "the added monitor was judged")
        rig.until(lambda: it.station("Second")["notifications"] > 0, "the second station had news")
        titles = {monitor["title"] for station in it.status()["stations"] for monitor in station["monitors"]}
        rig.require(titles == {"Kept", "Changed", "Added"}, f"there are {titles}")
        rig.require(it.monitor("Kept")["cycles"]["missed"] >= before, "the kept monitor began anew")
        it.stop()
        shown = it.vigil("monitor", "show", "Changed").stdout
        rig.require("windSpeed.unitValue > -1" in shown, f"the change was lost: {shown}")


main()
