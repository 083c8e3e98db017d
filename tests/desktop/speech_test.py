"""While a long speech is heard on a sink of the test's own, the window goes on showing new readings and answers. The voice
of the settings is the one that speaks. Tells how long the answers took.

    speech_test.py BUILD-FOLDER
"""

import json
import pathlib
import sys
import time

import desk as desks
import field

sys.path.append(str(pathlib.Path(__file__).resolve().parent.parent / "sound"))
TEXT = "The wind chill in the field has fallen below zero, and fog lies over the road to the harbour. " * 3


def speech(desk):
    """The ledger's newest, where there is one."""
    spoken = [json.loads(line) for line in desk.vigil("actions", "--json").splitlines()]
    spoken = [one for one in spoken if one["kind"] == "speech"]
    return max(spoken, key=lambda one: one["queued"], default=None)


def speak_with(desk, voice):
    """A program that writes down how it is called, and speaks."""
    program, called = desk.home / "speaks", desk.home / "called"
    program.write_text(f"#!/bin/sh\necho \"$*\" >> {called}\nexec espeak-ng \"$@\"\n", encoding="utf-8")
    program.chmod(0o755)
    desk.settings.write_text(f"[speech]\nprogram = \"{program}\"\nvoice = \"{voice}\"\n", encoding="utf-8")
    return called


def answers_while_it_speaks(desk, screen):
    """Seconds that each answer took, and how often the reading was seen to change."""
    window, condition = pages.Window(screen), pages.Condition(screen)
    took, changes, last = [], 0, window.reading("Wind Chill")
    while speech(desk)["state"] == "running":
        for _ in range(20):
            began = time.monotonic()
            condition.text()
            took.append(time.monotonic() - began)
            time.sleep(0.02)
        now = window.reading("Wind Chill")
        changes, last = changes + (now != last), now
    return took, changes


def story(desk):
    pulse.programs("pulseaudio", "pactl", "parec", "espeak-ng")
    sink = pulse.Sink(desk.home)
    desk.environment["PULSE_SERVER"] = sink.environment["PULSE_SERVER"]
    desk.environment.pop("SDL_AUDIODRIVER", None)
    # The one that is shown; the other one's readings wait until its monitor has spoken.
    field.make(desk, "Pond", "Field")
    field.monitor(desk, "Quiet", "windChill.unitValue < 0", f"Speak Text={TEXT}", station="Pond", is_on=False)
    field.monitor(desk, "Cold", "windChill.unitValue < 0", f"Speak Text={TEXT}")
    called = speak_with(desk, "en-gb-scotland")
    try:
        sink.start()
        sink.record()
        screen = desk.open_window()
        wait_for("a speech that is heard", lambda: speech(desk)["state"] == "running")
        began = time.monotonic()
        took, changes = answers_while_it_speaks(desk, screen)
        lasted = time.monotonic() - began
        ended = speech(desk)
        assert ended["state"] == "succeeded", ended
        assert sink.recorded().peak() > 0.05, "nothing was heard"
    finally:
        sink.end()
    assert changes >= 3, f"the readings stood still: {changes} changes in {lasted:.1f} s"
    assert " en-gb-scotland" in called.read_text(encoding="utf-8"), called.read_text(encoding="utf-8")
    took.sort()
    print(f"{len(took)} answers in {lasted:.1f} s of speech: half within {1000 * took[len(took) // 2]:.1f} ms, "
          f"the slowest {1000 * took[-1]:.1f} ms; {changes} changes of the reading were seen")


if desks.on_the_bus():
    import pages
    import pulse
    from screen import wait_for

desks.sit_down(story)
