"""How much the service takes, how fast it acts and how small it is, against a real broker on loopback:

    cmake --preset bench && cmake --build --preset bench
    benchmarks/service.py build/bench/bin [MESSAGES]

1,000 monitors on 100 stations get messages of 40 readings. Prints a table; nothing here passes or fails.
"""

import statistics
import sys
import time

from rig import MONITORS, STATIONS, Site, broker, load, matched, scratch, settle

MESSAGES = int(sys.argv[2]) if len(sys.argv) > 2 else 100_000


def main():
    with scratch() as folder:
        with broker(folder) as port:
            starts = []
            small = Site(folder, "small", port, 1, 1)
            for _ in range(20):
                starts.append(small.start() * 1000)
                small.stop()
            small.start()
            time.sleep(3)
            print(f"one station, one monitor: start {statistics.median(starts):.1f} ms (median of 20, "
                  f"{min(starts):.1f} to {max(starts):.1f}), RssAnon {small.memory():.1f} MiB")
            small.stop()

            bare = Site(folder, "bare", port, STATIONS, 0)
            bare.start()
            bare.wait_live()
            load(port, 2000, 1000, 0)
            settle(bare)
            without = bare.memory()
            bare.stop()

            site = Site(folder, "full", port, STATIONS, MONITORS)
            ready = site.start()
            site.wait_live()
            load(port, 2000, 1000, 0)
            settle(site)
            print(f"{STATIONS} stations: RssAnon {without:.1f} MiB without monitors, {site.memory():.1f} MiB with "
                  f"{MONITORS} (start {ready * 1000:.0f} ms)")
            before, used = settle(site), site.processor()
            load(port, MESSAGES, 0, 10_000)
            judged = settle(site) - before
            used = site.processor() - used
            status = site.status()
            drops = {}
            for station in status["stations"]:
                for why, count in station["drops"].items():
                    drops[why] = drops.get(why, 0) + count
            print(f"as fast as the broker brings them: {judged} cycles in {used:.2f} processor seconds, "
                  f"{judged / used:.0f} a second a core; left out {drops}, history lost {status['historyLost']}")
            rate = judged / used / (MONITORS / STATIONS) / 10
            for share in ("a tenth of that",):
                since = time.time()
                sent, seconds = load(port, int(rate * 20), rate, 100)
                settle(site)
                found = sorted(matched(sent, site.fires(since)))
                print(f"at {share} ({rate:.0f} messages a second): {len(found)} of {len(sent)} fires found, from "
                      f"publication to the actions p50 {statistics.median(found):.3f} ms, "
                      f"p99 {found[int(len(found) * 0.99)]:.3f} ms")
            print(f"afterwards: RssAnon {site.memory():.1f} MiB; it ends")
            site.stop()


main()
