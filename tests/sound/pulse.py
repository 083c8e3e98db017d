"""A sound server of a test's own: its sink plays to nobody, and what it plays is recorded."""

import array
import contextlib
import datetime
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import wave

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "service"))
import service as rig  # noqa: E402

RATE = 48000
STEP = 0.01  # seconds of one value of loudness
QUIET = 0.005  # of full scale


def programs(*names):
    missing = [name for name in names if not shutil.which(name)]
    if missing and os.environ.get("CI"):
        raise SystemExit(f"missing: {', '.join(missing)}")
    if missing:
        print(f"skipped: missing {', '.join(missing)}")
        sys.exit(77)


class Sink:
    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.socket = self.folder / "native"
        self.server = self.recorder = None
        self.environment = {**os.environ, "XDG_RUNTIME_DIR": str(self.folder), "PULSE_SERVER": f"unix:{self.socket}",
                            "HOME": str(self.folder), "PULSE_COOKIE": str(self.folder / "cookie")}
        self.environment.pop("SDL_AUDIODRIVER", None)
        self.environment.pop("DISPLAY", None)

    def start(self):
        log = open(self.folder / "server.log", "a")
        self.server = subprocess.Popen(
            ["pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "-L",
             f"module-native-protocol-unix auth-anonymous=1 socket={self.socket}", "-L",
             f"module-null-sink sink_name=vigil rate={RATE} channels=2"],
            env=self.environment, stdout=log, stderr=log)
        rig.until(lambda: subprocess.run(["pactl", "info"], env=self.environment, capture_output=True,
                                         timeout=rig.PATIENCE).returncode == 0, "the sound server answered")

    def record(self):
        self.raw = self.folder / f"record-{time.monotonic_ns()}.raw"
        with open(self.raw, "wb") as raw:
            self.recorder = subprocess.Popen(
                ["parec", "-d", "vigil.monitor", "--format=s16le", f"--rate={RATE}", "--channels=1",
                 "--latency-msec=20"], env=self.environment, stdout=raw, stderr=subprocess.DEVNULL)
        rig.until(lambda: self.raw.stat().st_size > 0, "the recording began")

    def recorded(self):
        """Ends the recording once it has been quiet for a while, and gives it."""
        rig.until(lambda: Recording(self.raw).quiet_since() > 1.0, "it was quiet")
        self.recorder.terminate()
        self.recorder.wait(rig.PATIENCE)
        self.recorder = None
        return Recording(self.raw)

    def pause(self):
        self.server.send_signal(signal.SIGSTOP)

    def kill(self):
        self.server.kill()
        self.server.wait()
        with contextlib.suppress(FileNotFoundError):
            self.socket.unlink()

    def end(self):
        for process in (self.recorder, self.server):
            if process and process.poll() is None:
                process.kill()
                process.wait()


class Recording:
    """What was heard, as its loudness from step to step."""

    def __init__(self, raw):
        samples = array.array("h")
        data = pathlib.Path(raw).read_bytes()
        samples.frombytes(data[:len(data) // 2 * 2])
        step = int(RATE * STEP)
        self.loudness = [max(map(abs, samples[at:at + step]), default=0) / 32768 for at in range(0, len(samples), step)]

    def quiet_since(self):
        loud = [i for i, value in enumerate(self.loudness) if value > QUIET]
        return (len(self.loudness) - (loud[-1] + 1 if loud else 0)) * STEP

    def peak(self):
        return max(self.loudness, default=0)

    def parts(self, gap):
        """(begin, length) of each part that is heard; what is quiet for less than `gap` seconds belongs to it."""
        found = []
        for i, value in enumerate(self.loudness):
            if value <= QUIET:
                continue
            if found and (i - found[-1][1]) * STEP <= gap:
                found[-1][1] = i
            else:
                found.append([i, i])
        return [(first * STEP, (last - first + 1) * STEP) for first, last in found]

    def span(self):
        parts = self.parts(gap=0)
        return parts[-1][0] + parts[-1][1] - parts[0][0] if parts else 0


def spoken_length(text):
    """Seconds from the first to the last sound of a text, by the program itself."""
    made = subprocess.run(["espeak-ng", "--stdin", "--stdout", "-b", "1"], input=text.encode(), capture_output=True,
                          check=True).stdout
    at = made.index(b"data") + 8
    samples = array.array("h")
    samples.frombytes(made[at:at + (len(made) - at) // 2 * 2])
    loud = [i for i, value in enumerate(samples) if abs(value) > QUIET * 32768]
    return (loud[-1] - loud[0]) / 22050


def seconds(action, name):
    return datetime.datetime.fromisoformat(action[name].replace("Z", "+00:00")).timestamp()


@contextlib.contextmanager
def sink_and_service():
    programs("pulseaudio", "pactl", "parec", "espeak-ng")
    folder = tempfile.mkdtemp(prefix="vigil-sound-")
    sink = Sink(folder)
    try:
        with rig.service() as it:
            for name in ("XDG_RUNTIME_DIR", "PULSE_SERVER", "PULSE_COOKIE"):
                it.environment[name] = sink.environment[name]
            it.environment.pop("SDL_AUDIODRIVER", None)
            it.environment.pop("DISPLAY", None)
            it.vigil("site", "create")
            it.vigil("station", "create", "Roof", "--feed", "simulated:?speed=3000")
            yield sink, it
    finally:
        sink.end()
        shutil.rmtree(folder, ignore_errors=True)


def monitor(it, title, *actions, station="Roof", retrigger="60", active=True):
    words = [word for action in actions for word in ("--action", action)]
    it.vigil("monitor", "create", title, "--station", station, "--condition", "windSpeed.unitValue > -1", "--retrigger",
             retrigger, *words, *(["--active"] if active else []))


def ended(it, count, title=None):
    """The actions, oldest first, once so many have ended."""
    options = ["--monitor", title] if title else []

    def look():
        actions = sorted(it.actions(*options), key=lambda action: action["queued"])
        return actions if sum("ended" in action for action in actions) >= count else None

    return rig.until(look, f"{count} actions ended")
