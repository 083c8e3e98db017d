"""Killed at random moments under load: the site opens each time, nothing that began is repeated, and every action
that began stands in the ledger."""

import collections
import json
import random
import signal
import threading
import time

import service as rig

ROUNDS = 500 if rig.IS_LONG else 25


class Sender:
    """Appends numbered lines to a file that the station follows."""

    def __init__(self, path):
        self.path = path
        self.number = 0
        self.over = False
        self.thread = threading.Thread(target=self.run)
        path.touch()
        self.thread.start()

    def run(self):
        with open(self.path, "a") as file:
            while not self.over:
                self.number += 1
                file.write(json.dumps({"readings": {"count": self.number, "windSpeed": self.number % 7}}) + "\n")
                file.flush()
                time.sleep(0.004)

    def end(self):
        self.over = True
        self.thread.join()


def main():
    seed = random.randrange(1 << 30)
    print("seed", seed)
    random.seed(seed)
    with rig.service() as it:
        lines, began = it.folder / "lines.jsonl", it.folder / "began.txt"
        it.script("note.sh", f'#!/bin/sh\necho "$1 $VIGIL_count" >> {began}\n')
        it.vigil("site", "create")
        it.vigil("station", "create", "Home", "--feed", f"lines:{lines}")
        for monitor in ("A", "B"):
            it.vigil("monitor", "create", monitor, "--station", "Home", "--condition", "windSpeed.unitValue > 3",
                     "--retrigger", "0", "--action", f"Run script=note.sh {monitor}", "--active")
        sender = Sender(lines)
        try:
            for _ in range(ROUNDS):
                it.start(wait=False)
                time.sleep(random.uniform(0.02, 0.6))
                it.stop(signal.SIGKILL)
        finally:
            sender.end()
        it.vigil("site", "check")
        it.start()
        it.stop()
        noted = collections.Counter(began.read_text().splitlines()) if began.exists() else {}
        twice = {line for line, count in noted.items() if count > 1}
        rig.require(not twice, f"begun twice: {sorted(twice)[:5]}")
        rig.require(len(noted) > ROUNDS, f"only {len(noted)} actions began: the load was none")
        actions = it.actions()
        rig.require(all(action["state"] not in ("queued", "running") for action in actions),
                    "an action without an end stands in the ledger")
        ledger = collections.Counter(action["what"] for action in actions)
        for monitor in ("A", "B"):
            count = sum(1 for line in noted if line.startswith(monitor + " "))
            rig.require(ledger[f"note.sh {monitor}"] >= count,
                        f"{count} actions of {monitor} began, {ledger[f'note.sh {monitor}']} stand in the ledger")
        print(f"{ROUNDS} rounds, {len(noted)} actions began, {len(actions)} in the ledger, {sender.number} lines")


main()
