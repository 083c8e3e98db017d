"""A whole session in a real window, from outside: what a person with a screen reader does, through the accessibility
bus, on a screen of its own. Starts the window on a station that replays a file, makes a monitor from the toolbar,
builds a condition with two rows and a group, sets two actions, sees it fire, saves, kills the window, opens it again,
and finds all of it.

    end_to_end_test.py BUILD-FOLDER [FOLDER-FOR-PICTURES-OF-FAILURES]

Ends with 77 (skipped) where Xvfb or the accessibility bus is missing.
"""

import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time

NEEDED = ("Xvfb", "dbus-run-session")
SKIPPED = 77


def again_on_a_bus_and_screen():
    """This program again, inside a bus and on a screen that end with it."""
    for tool in NEEDED:
        if not shutil.which(tool):
            print(f"{tool} is missing")
            sys.exit(SKIPPED)
    read, write = os.pipe()
    screen = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", "1600x1000x24", "-noreset"], pass_fds=[write],
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(write)
    number = os.read(read, 16).decode().strip()
    if not number:
        print("Xvfb does not start")
        sys.exit(SKIPPED)
    environment = {**os.environ, "DISPLAY": ":" + number, "VIGIL_ON_THE_BUS": "1", "QT_QPA_PLATFORM": "xcb",
                   "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"}
    environment.pop("WAYLAND_DISPLAY", None)
    try:
        run = subprocess.run(["dbus-run-session", "--", "/usr/bin/python3", *sys.argv], env=environment, timeout=150)
        sys.exit(run.returncode)
    finally:
        screen.terminate()
        screen.wait()


def start(build, site, log):
    return subprocess.Popen([build / "bin/vigil-window", "--site", site, "--appearance", "light"], stdout=log,
                            stderr=log)


def vigil(build, *words):
    run = subprocess.run([build / "bin/vigil", *map(str, words)], capture_output=True, text=True, timeout=60)
    assert run.returncode in (0, 1), f"vigil {words}: {run.stderr}"
    return run.stdout


def records(path):
    """Fog and cold every other minute, for hours."""
    lines = ["dateTime,windChill,windSpeed,sky"]
    for i in range(2000):
        cold = i % 2 == 0
        stamp = time.strftime("%Y-%m-%d %H:%M:%S", time.gmtime(1_700_000_000 + 60 * i))
        lines.append(f"{stamp},{-5 if cold else 15},{30 if cold else 3},{'Fog' if cold else 'Clear'}")
    path.write_text("\n".join(lines) + "\n", encoding="utf-8")


CONDITION = 'windChill.unitValue < 0 AND windSpeed.unitValue > 25 AND (sky.stringValue == "Fog" OR windChill.unitValue < -20)'


def session(build, home):
    site = home / "field.vigilsite"
    records(home / "storm.csv")
    scripts = home / ".config/vigil/scripts"
    scripts.mkdir(parents=True)
    note = home / "noted"
    (scripts / "note.sh").write_text(f"#!/bin/sh\necho \"$1\" >> {note}\n", encoding="utf-8")
    vigil(build, "site", "create", "--site", site)
    vigil(build, "station", "create", "Field", "--site", site, "--feed", f"csv:{home}/storm.csv?speed=60")
    log = open(home / "window.log", "w", encoding="utf-8")
    window = start(build, site, log)
    try:
        build_monitor(build, site, Screen(window.pid), note)
    finally:
        window.send_signal(signal.SIGKILL)
        window.wait()
    window = start(build, site, log)
    try:
        find_again(Screen(window.pid))
    finally:
        window.send_signal(signal.SIGKILL)
        window.wait()
    shown = vigil(build, "monitor", "show", "Vigil", "--site", site, "--json")
    assert CONDITION.replace('"', '\\"') in shown, shown


def build_monitor(build, site, screen, note):
    wait_for("the station's readings", lambda: screen.every(Atspi.Role.TABLE, "Readings"))
    wait_for("readings", lambda: [n for n in screen.names(Atspi.Role.TABLE_CELL) if n.startswith("Sky")]
             or [n for n in screen.names(Atspi.Role.TABLE_CELL) if n.lower().startswith("sky")])
    screen.press("Vigil")
    wait_for("the monitor", lambda: screen.every(name="The whole condition as text"))
    rows = lambda: len(screen.every(name="Comparison"))
    wait_for("the two rows that a new monitor has", lambda: rows() == 2)
    screen.retype(screen.every(Atspi.Role.TEXT, "Value")[0], "0")
    screen.choose(screen.one(Atspi.Role.COMBO_BOX, "Of the rows below"), "all of these")
    screen.press("Add a group to this group")
    wait_for("a group with a row", lambda: rows() == 3)
    screen.press("Add a comparison to this group", nth=1)
    wait_for("two rows in the group", lambda: rows() == 4)
    screen.choose(wait_for("its words", lambda: screen.every(Atspi.Role.COMBO_BOX, "Of the rows below")[1]),
                  "any of these")
    screen.choose(screen.every(Atspi.Role.COMBO_BOX, "Reading")[2], "sky")
    screen.retype(wait_for("a place for a text", lambda: screen.every(Atspi.Role.COMBO_BOX, "Value")[0]
                           .get_child_at_index(1)), "Fog")
    screen.choose(screen.every(Atspi.Role.COMBO_BOX, "Reading")[3], "Wind Chill")
    screen.choose(screen.every(Atspi.Role.COMBO_BOX, "Comparison")[3], "is less than")
    screen.retype(screen.every(Atspi.Role.TEXT, "Value")[2], "-20")
    condition = screen.one(Atspi.Role.TEXT, "The whole condition as text").get_text_iface()
    wait_for("the condition, now: " + condition.get_text(0, -1), lambda: condition.get_text(0, -1) == CONDITION)
    set_actions(screen)
    screen.press("Activate", role=Atspi.Role.CHECK_BOX)
    wait_for("a fire", lambda: note.exists() and "roof" in note.read_text(encoding="utf-8"))
    save = next(iter(screen.every(Atspi.Role.MENU_ITEM, "Save", hidden=True)))
    save.get_action_iface().do_action(0)
    wait_for("the word that all is saved",
             lambda: [n for n in screen.names(Atspi.Role.LABEL) if n.startswith("Everything is saved")])
    wait_for("the fire in the window",
             lambda: [n for n in screen.names(Atspi.Role.LABEL) if n.startswith(("FIRED at", "waiting until"))])


def set_actions(screen):
    field = wait_for("the first action's text", lambda: screen.every(Atspi.Role.TEXT, "Text of the action")[0])
    screen.retype(field, "note.sh roof")
    screen.press("Add an action")
    second = wait_for("the second action", lambda: screen.every(Atspi.Role.TEXT, "Text of the action")[1])
    screen.retype(second, "note.sh garden")


def find_again(screen):
    text = screen.one(Atspi.Role.TEXT, "The whole condition as text")
    wait_for("the condition", lambda: text.get_text_iface().get_text(0, -1) == CONDITION)
    wait_for("both actions", lambda: sorted(
        one.get_text_iface().get_text(0, -1) for one in screen.every(Atspi.Role.TEXT, "Text of the action"))
        == ["note.sh garden", "note.sh roof"])
    switch = screen.one(Atspi.Role.CHECK_BOX, "Activate")
    assert switch.get_state_set().contains(Atspi.StateType.CHECKED), "the switch is off"
    unnamed = [one for one in screen.every(Atspi.Role.PUSH_BUTTON) if not one.get_name()]
    assert not unnamed, f"{len(unnamed)} buttons have no name"


def main():
    if not os.environ.get("VIGIL_ON_THE_BUS"):
        again_on_a_bus_and_screen()
    build = pathlib.Path(sys.argv[1]).resolve()
    with tempfile.TemporaryDirectory(prefix="vigil-window-") as folder:
        home = pathlib.Path(folder)
        (home / "run").mkdir(mode=0o700)
        os.environ.update(HOME=folder, XDG_RUNTIME_DIR=str(home / "run"))
        for name in ("XDG_CONFIG_HOME", "XDG_DATA_HOME"):
            os.environ.pop(name, None)
        try:
            session(build, home)
        except Exception:
            print((home / "window.log").read_text(encoding="utf-8"))
            raise
    print("the session went as it should")


if __name__ == "__main__":
    if os.environ.get("VIGIL_ON_THE_BUS"):
        from screen import Atspi, Screen, wait_for
    main()
