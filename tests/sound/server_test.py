"""Sound servers that are missing, killed or hung: no monitor waits for long, each failure stands in the ledger with its
reason, and the next sound is heard again."""

import pulse
import service as rig

TEXT = "one, two, three, four, five, six, seven, eight, nine, ten, eleven, twelve"
SLACK = 4.0


def speech_begins(it, before):
    """Waits for a speech that is heard now; gives it."""

    def look():
        running = [one for one in it.actions() if one["kind"] == "speech" and one["state"] == "running"]
        return running and running[-1]["queued"] > before and running[-1]

    return rig.until(look, "a speech began")


def outcome(it, speech):
    def look():
        found = [one for one in it.actions() if one["kind"] == "speech" and one["queued"] == speech["queued"]]
        return found and "ended" in found[0] and found[0]

    return rig.until(look, "the speech ended")


def main():
    with pulse.sink_and_service() as (sink, it):
        length = pulse.spoken_length(TEXT)
        # every six seconds
        pulse.monitor(it, "Voice", f"Speak Text={TEXT}", "Play Sound=bell.wav", retrigger="0.1")
        it.vigil("station", "create", "Pond", "--feed", "simulated:?speed=3000")
        it.script("note.sh", "#!/bin/sh\n")
        pulse.monitor(it, "Other", "Run script=note.sh", station="Pond", retrigger="0.05")

        it.start()  # without a sound server
        missing, sound = pulse.ended(it, 2, "Voice")[:2]
        for one in (missing, sound):
            rig.require(one["state"] == "failed" and "there is no sound device" in one["detail"], f"it was {one}")
        rig.require(pulse.seconds(missing, "ended") - pulse.seconds(missing, "queued") < SLACK, f"it took {missing}")

        sink.start()  # one that comes later is used
        begun = speech_begins(it, missing["queued"])
        sink.kill()
        killed = outcome(it, begun)
        took = pulse.seconds(killed, "ended") - pulse.seconds(killed, "started")
        rig.require(killed["state"] == "failed" and "lost" in killed["detail"], f"it was {killed}")
        rig.require(took < length + SLACK, f"it took {took:.1f} s")

        sink.start()
        begun = speech_begins(it, killed["queued"])
        sink.pause()
        scripts = len(it.actions("--monitor", "Other"))
        hung = outcome(it, begun)
        took = pulse.seconds(hung, "ended") - pulse.seconds(hung, "started")
        rig.require(hung["state"] == "timed out", f"it was {hung}")
        rig.require(took < length + SLACK + 1, f"it took {took:.1f} s, the speech has {length:.1f} s")
        rig.require(len(it.actions("--monitor", "Other")) > scripts, "the other monitor stood still")
        print(f"killed and hung after {took:.1f} s of a speech of {length:.1f} s")

        # what is asked of a server that hangs from the start
        def look():
            later = [one for one in it.actions("--monitor", "Voice") if one["kind"] == "speech" and "ended" in one
                     and one["queued"] > hung["queued"]]
            return later and later[0]

        later = rig.until(look, "the next speech ended")
        took = pulse.seconds(later, "ended") - pulse.seconds(later, "queued")
        rig.require(later["state"] == "timed out" and took < SLACK + 1, f"it was {later}")

        sink.kill()
        sink.start()
        begun = speech_begins(it, later["queued"])
        rig.require(outcome(it, begun)["state"] == "succeeded", "it did not recover")
        seconds = it.stop()
        print(f"ended after {seconds:.2f} s")


main()
