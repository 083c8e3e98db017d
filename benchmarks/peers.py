"""The service beside a plain node script and a Node-RED flow that do the same job, in one run, under the same broker,
publisher and load, counting every processor second of each process:

    cmake --preset bench && cmake --build --preset bench
    python3 benchmarks/peers.py build/bench/bin [ROUNDS [FOLDER-OF-THE-NPM-PACKAGES]]

"light" judges and keeps no line (the service at its usual log level, which archives and keeps its history all the
same); "full" makes the line of each judgement (the service at log level 3, into nothing) and, with the others, copies
all readings. The broker and the publisher are in no figure. Prints a table; nothing here passes or fails.
"""

import pathlib
import statistics
import sys
import time

from contestants import CONTESTANTS, install, memory, rest, warm_up
from rig import MONITORS, STATIONS, broker, load, matched, scratch

ROUNDS = int(sys.argv[2]) if len(sys.argv) > 2 else 3
BLAST, STEADY, RATE, FIRE_EVERY = 20_000, 3000, 300, 50


def spread(values, digits):
    return f"{statistics.median(values):,.{digits}f} ({min(values):,.{digits}f} to {max(values):,.{digits}f})"


def one(contestant, port, found):
    warm_up(contestant, port)
    cycles, used = contestant.cycles(), rest(contestant)
    load(port, BLAST, 0, 10_000)
    used = rest(contestant) - used
    cycles = contestant.cycles() - cycles
    if cycles != BLAST * MONITORS / STATIONS:
        sys.exit(f"{cycles} cycles of {BLAST} messages")
    found["blast"].append(cycles / used)
    used, since = rest(contestant), time.time()
    contestant.fires(since)
    sent, _ = load(port, STEADY, RATE, FIRE_EVERY)
    used = rest(contestant) - used
    found["steady"].append(used / STEADY * 1e6)
    late = matched(sent, contestant.fires(since))
    if len(late) < len(sent) * 0.9:
        sys.exit(f"only {len(late)} of {len(sent)} fires were found")
    found["late"] += late
    found["memory"].append(memory(contestant))


def main():
    with scratch() as folder, broker(folder) as port:
        packages = install(pathlib.Path(sys.argv[3]) if len(sys.argv) > 3 else folder / "npm")
        all_found = {(name, form): {"blast": [], "steady": [], "late": [], "memory": []}
                     for form in ("light", "full") for name in CONTESTANTS}
        order = list(all_found)
        for turn in range(ROUNDS):
            for name, form in order[turn:] + order[:turn]:
                contestant = CONTESTANTS[name](folder, packages, port, form, turn)
                try:
                    one(contestant, port, all_found[name, form])
                finally:
                    contestant.stop()
        print(f"{ROUNDS} rounds; median (least to most)\n")
        print("| | | cycles a second a core, as fast as they come | vigil's to it | µs of processor time a message at "
              f"{RATE} a second | from publication to the fire, p50 | RssAnon at the end |")
        print("|---|---|---|---|---|---|---|")
        for (name, form), found in all_found.items():
            ratio = statistics.median(all_found["vigil", form]["blast"]) / statistics.median(found["blast"])
            print(f"| {name} | {form} | {spread(found['blast'], 0)} | {ratio:.1f} | {spread(found['steady'], 0)} | "
                  f"{statistics.median(found['late']):.2f} ms | {statistics.median(found['memory']):.0f} MiB |")


main()
