"""A whole session in a real window, from outside: what a person with a screen reader does. A monitor is made from the
toolbar, gets a condition with two rows and a group, and two actions, fires and is saved; the window is killed, and shows
all of it when it is opened again.

    end_to_end_test.py BUILD-FOLDER

Ends with 77 (skipped) where Xvfb or the accessibility bus is missing.
"""

import signal

import desk as desks
import field

CONDITION = 'windChill.unitValue < 0 AND windSpeed.unitValue > 25 AND (sky.stringValue == "Fog" OR windChill.unitValue < -20)'


def story(desk):
    field.make(desk)
    note = desk.home / "noted"
    (desk.scripts / "note.sh").write_text(f"#!/bin/sh\necho \"$1\" >> {note}\n", encoding="utf-8")
    build_monitor(desk.open_window(), note)
    desk.end_window(signal.SIGKILL)
    find_again(desk.open_window())
    desk.end_window(signal.SIGKILL)
    shown = desk.vigil("monitor", "show", "Vigil", "--json")
    assert CONDITION.replace('"', '\\"') in shown, shown
    print("the session went as it should")


def build_monitor(screen, note):
    window = pages.Window(screen)
    window.reading("Sky")
    screen.press("Vigil")
    condition = pages.Condition(screen)
    condition.wait_for_rows(2)  # a new monitor has them
    condition.set_number(0, "0")
    condition.set_connective(0, "all of these")
    condition.add_group()
    condition.add_comparison(group=1)
    condition.set_connective(1, "any of these")
    condition.set_reading(2, "sky")
    condition.set_text(0, "Fog")
    condition.set_reading(3, "Wind Chill")
    condition.set_operator(3, "is less than")
    condition.set_number(2, "-20")
    wait_for("the condition, now: " + condition.text(), lambda: condition.text() == CONDITION)
    actions = pages.Actions(screen)
    actions.set_text(0, "note.sh roof")
    actions.add("note.sh garden")
    pages.Switch(screen).turn()
    wait_for("a fire", lambda: note.exists() and "roof" in note.read_text(encoding="utf-8"))
    window.menu("Save")
    wait_for("the word that all is saved", lambda: window.labels_that_begin("Everything is saved"))
    wait_for("the fire in the window", lambda: window.labels_that_begin("FIRED at", "waiting until"))


def find_again(screen):
    condition = pages.Condition(screen)
    wait_for("the condition", lambda: condition.text() == CONDITION)
    wait_for("both actions", lambda: pages.Actions(screen).texts() == ["note.sh garden", "note.sh roof"])
    assert pages.Switch(screen).is_on(), "the switch is off"
    unnamed = pages.Window(screen).unnamed_buttons()
    assert not unnamed, f"{len(unnamed)} buttons have no name"


if desks.on_the_bus():
    import pages
    from screen import wait_for

desks.sit_down(story)
