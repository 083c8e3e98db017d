"""From the start of the window on a new site to the first reading, as the accessibility bus tells it, on a screen and a
bus of its own. Several builds take turns, so that what disturbs one disturbs all.

    window_start.py [--rounds N] BIN-FOLDER...

Told of each folder: the milliseconds until the window stands on the bus, until the table has a value, and what of
them the window's processor time was (its helpers and children left out).
"""

import os
import pathlib
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile
import time

WAIT = 0.002  # between two looks, which cost the window time themselves
PATIENCE = 20


def again_on_a_bus_and_screen():
    """This program again, inside a bus and on a screen that end with it."""
    read, write = os.pipe()
    screen = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", "1600x1000x24", "-noreset"],
                              pass_fds=[write], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(write)
    environment = {**os.environ, "DISPLAY": ":" + os.read(read, 16).decode().strip(), "VIGIL_ON_THE_BUS": "1",
                   "QT_QPA_PLATFORM": "xcb", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"}
    environment.pop("WAYLAND_DISPLAY", None)
    try:
        sys.exit(subprocess.run(["dbus-run-session", "--", "/usr/bin/python3", *sys.argv], env=environment).returncode)
    finally:
        screen.terminate()
        screen.wait()


def program_of(pid):
    desktop = Atspi.get_desktop(0)
    for i in range(desktop.get_child_count()):
        child = desktop.get_child_at_index(i)
        if child and child.get_process_id() == pid:
            return child
    return None


def table_of(program):
    """The table of readings; the search leaves out what it cannot be in."""
    waiting = [program]
    while waiting:
        one = waiting.pop()
        for i in range(one.get_child_count()):
            child = one.get_child_at_index(i)
            if child is None:
                continue
            if child.get_role() == Atspi.Role.TABLE and child.get_name() == "Readings":
                return child
            if child.get_role() not in (Atspi.Role.MENU_BAR, Atspi.Role.TOOL_BAR, Atspi.Role.LIST, Atspi.Role.TABLE):
                waiting.append(child)
    return None


def has_value(table):
    cells = table.get_table_iface()
    return any(any(letter.isdigit() for letter in cells.get_accessible_at(row, 1).get_name() or "")
               for row in range(min(3, cells.get_n_rows())))


def look_for(find, window):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        try:
            if found := find():
                return found
        except GLib.Error:  # it has not come yet, or has gone meanwhile
            pass
        if window.poll() is not None:
            sys.exit(f"the window ended: {window.returncode}")
        time.sleep(WAIT)
    sys.exit("waited in vain")


def processor_milliseconds(pid):
    fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()
    return sum(int(field) for field in fields[11:13]) * 1000 / os.sysconf("SC_CLK_TCK")


def start(build):
    """Milliseconds until the window is on the bus and until a value is, and those of the processor."""
    with tempfile.TemporaryDirectory(prefix="vigil-window-") as folder:
        run = pathlib.Path(folder) / "run"
        run.mkdir(mode=0o700)
        environment = {**os.environ, "HOME": folder, "XDG_RUNTIME_DIR": str(run)}
        for name in ("XDG_CONFIG_HOME", "XDG_DATA_HOME"):
            environment.pop(name, None)
        began = time.monotonic()
        window = subprocess.Popen([build / "vigil-window"], env=environment, stdout=subprocess.DEVNULL,
                                  stderr=subprocess.DEVNULL)
        try:
            program = look_for(lambda: program_of(window.pid), window)
            there = time.monotonic()
            table = look_for(lambda: table_of(program), window)
            look_for(lambda: has_value(table), window)
            read = time.monotonic()
            return (there - began) * 1000, (read - began) * 1000, processor_milliseconds(window.pid)
        finally:
            window.send_signal(signal.SIGTERM)
            window.kill()
            window.wait()


def main():
    words = sys.argv[1:]
    rounds = 15
    if words[:1] == ["--rounds"]:
        rounds, words = int(words[1]), words[2:]
    for tool in ("Xvfb", "dbus-run-session"):
        if not shutil.which(tool):
            sys.exit(f"{tool} is missing")
    if not os.environ.get("VIGIL_ON_THE_BUS"):
        again_on_a_bus_and_screen()
    builds = [pathlib.Path(word).resolve() for word in words]
    measured = {build: [] for build in builds}
    for build in builds:
        start(build)  # the first finds cold files, and starts the accessibility bus
    for turn in range(rounds):
        for build in builds[turn % len(builds):] + builds[:turn % len(builds)]:
            measured[build].append(start(build))
    print(f"load average {os.getloadavg()[0]:.1f}, {rounds} rounds; median (least to most), milliseconds")
    for build in builds:
        print(build)
        for what, column in zip(("on the bus", "first reading", "processor time"), zip(*measured[build])):
            print(f"  {what:15} {statistics.median(column):6.0f} ({min(column):.0f} to {max(column):.0f})")


if __name__ == "__main__":
    if os.environ.get("VIGIL_ON_THE_BUS"):
        import gi
        gi.require_version("Atspi", "2.0")
        from gi.repository import Atspi, GLib
    main()
