"""A monitor's rows from a fire: speech, sound and script in their order, the second speech after the first, heard as
they are; a speech of another monitor waits for its turn, and meanwhile all others go on."""

import pulse
import service as rig

FIRST, SECOND = "Frost at the harbour, please look after the pumps", "This is the second word"
THIRD = "And another station has something to say"


def main():
    with pulse.sink_and_service() as (sink, it):
        it.script("note.sh", f"#!/bin/sh\necho $1 >> {it.folder}/noted\n")
        it.vigil("station", "create", "Pond", "--feed", "simulated:?speed=3000")
        pulse.monitor(it, "Rows", f"Speak Text={FIRST}", "Play Sound=bell.wav", "Run script=note.sh rows",
                      f"Speak Text={SECOND}")
        pulse.monitor(it, "Other", "Run script=note.sh other", station="Pond")
        it.vigil("station", "create", "Lake", "--feed", "simulated:?speed=3000")
        pulse.monitor(it, "Third", f"Speak Text={THIRD}", station="Lake")
        sink.start()
        sink.record()
        it.start()
        rows = pulse.ended(it, 4, "Rows")
        other = pulse.ended(it, 1, "Other")[0]
        third = pulse.ended(it, 1, "Third")[0]
        recording = sink.recorded()
        it.stop()

        rig.require([(row["kind"], row["state"]) for row in rows] ==
                    [(kind, "succeeded") for kind in ("speech", "sound", "script", "speech")],
                    f"the ledger holds {rows}")
        rig.require([rows[0]["what"], rows[3]["what"]] == [FIRST, SECOND], f"the ledger holds {rows}")
        for row in rows[1:]:
            rig.require(pulse.seconds(row, "started") >= pulse.seconds(rows[0], "ended"),
                        f"{row} began before the first speech had ended")
        rig.require(pulse.seconds(other, "ended") < pulse.seconds(rows[0], "ended") + 1,
                    "another monitor waited for the speech")
        rig.require(third["state"] == "succeeded", f"it was {third}")
        speeches = sorted([rows[0], rows[3], third], key=lambda speech: speech["started"])
        for before, after in zip(speeches, speeches[1:]):
            rig.require(pulse.seconds(after, "started") >= pulse.seconds(before, "ended"), f"{before} and {after} overlap")

        rig.require(recording.peak() > 0.05, f"nothing was heard: {recording.peak()}")
        lengths = [pulse.spoken_length(text) for text in (FIRST, SECOND, THIRD)]
        heard, least = recording.span(), sum(lengths)
        rig.require(least * 0.9 < heard < least + 5, f"{heard:.2f} s were heard, {least:.2f} s were said")
        print(f"said {' + '.join(f'{length:.2f}' for length in lengths)} s, heard from end to end {heard:.2f} s")


main()
