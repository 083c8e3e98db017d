"""A test by hand on a recorded sink: one speech has its true length, two come one after another, sounds overlap."""

import pulse
import service as rig

TEXT = "Gale at the harbour"
BELL, DAWN = 1.3, 2.64  # seconds


def heard(sink, it, title, status=0):
    sink.record()
    it.vigil("monitor", "test", title, status=status)
    return sink.recorded()


def main():
    with pulse.sink_and_service() as (sink, it):
        pulse.monitor(it, "One", f"Speak Text={TEXT}", active=False)
        pulse.monitor(it, "Two", f"Speak Text={TEXT}", f"Speak Text={TEXT}", active=False)
        pulse.monitor(it, "Sounds", "Play Sound=dawn.mp3", "Play Sound=bell.wav", active=False)
        pulse.monitor(it, "Markup", "Speak Text=<b>Gale</b> & storm [[x]] \"'", active=False)
        pulse.monitor(it, "Empty", "Speak Text=", active=False)
        sink.start()

        length = pulse.spoken_length(TEXT)
        one = heard(sink, it, "One")
        rig.require(one.peak() > 0.05, f"nothing was heard: {one.peak()}")
        rig.require(abs(one.span() - length) < 0.15 * length, f"{one.span():.2f} s were heard of {length:.2f} s")
        two = heard(sink, it, "Two")
        rig.require(1.9 * length < two.span() < 2 * length + 3, f"two of {length:.2f} s took {two.span():.2f} s")
        both = heard(sink, it, "Sounds")
        rig.require(abs(both.span() - DAWN) < 0.5, f"two sounds at once took {both.span():.2f} s, alone {DAWN} s")
        rig.require(heard(sink, it, "Markup").peak() > 0.05, "markup was not spoken")
        empty = it.vigil("monitor", "test", "Empty", status=3)
        rig.require("there is nothing to say" in empty.stderr, f"it said {empty.stderr}")
        print(f"one {one.span():.2f} s of {length:.2f} s, two {two.span():.2f} s, sounds {both.span():.2f} s")


main()
