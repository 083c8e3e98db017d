"""A disk that fills: alarms go on, the status and the log say what is wrong, and all recovers when there is room."""

import os
import pathlib
import subprocess

import service as rig


def main():
    with rig.service() as it:
        disk = it.folder / "disk"
        disk.mkdir()
        mounted = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=2m", "none", disk], capture_output=True)
        if mounted.returncode != 0:
            print("no file system can be mounted here, so none can be filled:", mounted.stderr.decode().strip())
            raise SystemExit(77)
        try:
            it.site = disk / "home.vigilsite"
            watch(it, disk)
        finally:
            it.end()
            subprocess.run(["umount", disk], check=True)


def watch(it, disk):
    ran = it.folder / "ran.txt"
    it.script("note.sh", f"#!/bin/sh\necho x >> {ran}\n")
    it.vigil("site", "create")
    it.vigil("station", "create", "Home", "--feed", "simulated:?speed=3000")
    it.vigil("monitor", "create", "Always", "--station", "Home", "--condition", "windSpeed.unitValue > -1",
             "--retrigger", "0.01", "--action", "Run script=note.sh", "--active")
    it.start()
    rig.until(lambda: ran.exists(), "the first action ran")
    filler = disk / "filler"
    with open(filler, "wb", buffering=0) as file:
        try:
            while True:
                file.write(os.urandom(4096))
        except OSError:
            pass
    rig.until(lambda: any("home.vigilsite" in problem for problem in it.status()["problems"]),
              "the status told that the disk is full")
    before = len(ran.read_text())
    rig.until(lambda: len(ran.read_text()) > before + 4, "alarms went on")
    filler.unlink()
    rig.until(lambda: not it.status()["problems"], "it recovered by itself")
    it.stop()
    it.vigil("site", "check")
    rig.require(pathlib.Path(it.site).exists(), "the site is gone")


main()
