"""The stations that the stories are about: fog and cold every other minute, a minute a second."""

import time

MINUTES = 2000


def make(desk, *names):
    desk.vigil("site", "create")
    lines = ["dateTime,windChill,windSpeed,sky"]
    for i in range(MINUTES):
        cold = i % 2 == 0
        stamp = time.strftime("%Y-%m-%d %H:%M:%S", time.gmtime(1_700_000_000 + 60 * i))
        lines.append(f"{stamp},{-5 if cold else 15},{30 if cold else 3},{'Fog' if cold else 'Clear'}")
    (desk.home / "storm.csv").write_text("\n".join(lines) + "\n", encoding="utf-8")
    for name in names or ("Field",):
        desk.vigil("station", "create", name, "--feed", f"csv:{desk.home}/storm.csv?speed=60")


def monitor(desk, title, condition, *actions, station="Field", is_on=True):
    """One that waits for an hour after its alert."""
    words = [word for action in actions for word in ("--action", action)]
    desk.vigil("monitor", "create", title, "--station", station, "--condition", condition, "--retrigger", "60",
               *words, *(["--active"] if is_on else []))
