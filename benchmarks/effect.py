"""How long it takes from a fire to its effect, beside what that cannot do without: a commit that reaches the disk, and
the start of the helper:

    cmake --preset bench && cmake --build --preset bench
    python3 benchmarks/effect.py build/bench/bin [ROUNDS]

In each round the service fires ten times, one station and one monitor with a script that does nothing; then the rows of
such a fire are committed ten times into a copy of its site, on the same disk and as durably; then the helper alone runs
the script ten times. Prints a table; nothing here passes or fails.
"""

import contextlib
import sqlite3
import statistics
import subprocess
import sys
import time

from rig import BIN, Site, broker, load, scratch

ROUNDS = int(sys.argv[2]) if len(sys.argv) > 2 else 20
EACH = 10


def ended(site):
    """Of each fire that is over: its time, and when its effect was queued, started and ended."""
    with contextlib.closing(sqlite3.connect(f"file:{site.path}?mode=ro", uri=True)) as database:
        return database.execute("SELECT fires.time, queued, started, ended FROM fires JOIN effects ON fire = fires.id "
                                "WHERE state = 'ended' ORDER BY fires.id").fetchall()


def fire(site, port, count):
    before = len(ended(site))
    load(port, count, 10, 1, stations=1)
    until = time.monotonic() + 20
    while len(ended(site)) < before + count:
        if time.monotonic() > until:
            sys.exit("fires without their effects")
        time.sleep(0.1)


def copy_of(site):
    path = site.folder / "copy.vigilsite"
    with contextlib.closing(sqlite3.connect(f"file:{site.path}?mode=ro", uri=True)) as source, \
            contextlib.closing(sqlite3.connect(path)) as target:
        source.backup(target)
    return path


class Disk:
    """Commits of the rows that the service writes before an effect begins."""

    def __init__(self, path):
        self.database = sqlite3.connect(path, isolation_level=None)
        self.database.execute("PRAGMA journal_mode = WAL")
        self.database.execute("PRAGMA synchronous = FULL")
        self.rows = {}
        for table in ("fires", "effects"):
            rows = self.database.execute(f"SELECT * FROM {table} ORDER BY id DESC LIMIT 1")
            self.rows[table] = (list(rows.fetchone()), len(rows.description))
        self.number = 1 << 40

    def commit(self):
        """Milliseconds."""
        self.number += 1
        began = time.perf_counter()
        self.database.execute("BEGIN IMMEDIATE")
        for table, (row, count) in self.rows.items():
            self.database.execute(f"INSERT INTO {table} VALUES({','.join('?' * count)})", [self.number, *row[1:]])
        self.database.execute("COMMIT")
        return (time.perf_counter() - began) * 1000


def helper_starts(count):
    run = subprocess.run([BIN / "helper_start", BIN / "vigil-helper", str(count)], capture_output=True, text=True,
                         check=True)
    return [float(line) for line in run.stdout.splitlines()]


def show(what, values):
    values = sorted(values)
    print(f"| {what} | {statistics.median(values):.2f} | {values[int(len(values) * 0.9)]:.2f} | {values[0]:.2f} |")
    return statistics.median(values)


def main():
    with scratch() as folder, broker(folder) as port:
        site = Site(folder, "effect", port, 1, 1)
        site.start()
        site.wait_live()
        fire(site, port, 3)
        disk = Disk(copy_of(site))
        skipped = len(ended(site))
        commits, starts = [], []
        for _ in range(ROUNDS):
            fire(site, port, EACH)
            commits += [disk.commit() for _ in range(EACH)]
            starts += helper_starts(EACH)
        rows = ended(site)[skipped:]
        site.stop()
        print(f"{len(rows)} fires, {len(commits)} commits, {len(starts)} starts, in turns of {EACH}\n")
        print("| milliseconds | median | p90 | least |\n|---|---|---|---|")
        effect = show("from the entry of the actions to the script's end", [(r[3] - r[0]) * 1000 for r in rows])
        show("of it until the script is queued", [(r[1] - r[0]) * 1000 for r in rows])
        show("of it until the helper says that it starts the script", [(r[2] - r[0]) * 1000 for r in rows])
        commit = show("a commit of its rows that reaches the disk", commits)
        start = show("the helper with that script alone", starts)
        print(f"\nthe effect takes {effect / (commit + start):.2f} times a commit and a start together")


main()
