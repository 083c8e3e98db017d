"""SIGTERM ends the service at once, also in the middle of a long speech with more rows behind it: the speech and the
sound stand in the ledger as interrupted, and nothing further begins."""

import pulse
import service as rig

LONG = "the wind blows and the water rises, " * 25


def main():
    with pulse.sink_and_service() as (sink, it):
        it.script("note.sh", f"#!/bin/sh\necho x >> {it.folder}/noted\n")
        it.vigil("station", "create", "Pond", "--feed", "simulated:?speed=3000")
        pulse.monitor(it, "Rows", "Play Sound=dawn.mp3", f"Speak Text={LONG}", "Run script=note.sh", "Speak Text=more")
        pulse.monitor(it, "Inner", f"Speak Text={LONG}", station="Pond")
        sink.start()
        it.start()
        rig.until(lambda: any(one["kind"] == "speech" and one["state"] == "running" for one in it.actions()),
                  "a speech began")
        rig.until(lambda: len({one["monitor"] for one in it.actions()}) == 2, "the other fire began inside it")
        took = it.stop()
        # The time itself is a figure; this is a few times what is wanted.
        rig.require(took < 4, f"it took {took:.1f} s to end")
        actions = it.actions()
        rig.require(all("ended" in one for one in actions), f"something has no end: {actions}")
        speeches = [one["state"] for one in actions if one["kind"] == "speech"]
        rig.require(speeches and set(speeches) == {"interrupted"}, f"the speeches are {speeches}")
        rig.require(not (it.folder / "noted").exists(), "a script began after the end had begun")
        print(f"ended after {took:.2f} s")


main()
