"""Makes the sounds of a monitor from sums of decaying sines.

    make_sounds.py FOLDER       writes bell.wav, chime.wav, drop.wav, knock.wav and dawn.wav
"""

import array
import math
import pathlib
import sys
import wave

RATE = 22050
PEAK = 0.6
FADE = 0.02  # seconds at the end, so that no sound ends in a click


def samples(seconds):
    return [0.0] * int(seconds * RATE)


def add(sound, start, pitch, loudness, decay, attack=0.004):
    """A sine that begins at `start` seconds, rises within `attack` and falls to a third every `decay` seconds. `pitch`
    is in hertz, or a function of the seconds since its start."""
    first, phase = int(start * RATE), 0.0
    for i in range(first, len(sound)):
        t = (i - first) / RATE
        hertz = pitch(t) if callable(pitch) else pitch
        phase += 2 * math.pi * hertz / RATE
        sound[i] += loudness * min(1.0, t / attack) * math.exp(-t / decay) * math.sin(phase)


def bell():
    """One stroke of a small ship's bell: partials that are no multiples of each other, the high ones short."""
    sound = samples(1.3)
    for ratio, loudness, decay in ((0.5, 0.35, 0.7), (1, 1, 0.45), (1.19, 0.5, 0.35), (1.56, 0.3, 0.25), (2, 0.55, 0.2),
                                   (2.74, 0.3, 0.12), (4.07, 0.15, 0.06)):
        add(sound, 0, 784 * ratio, loudness, decay)
    return sound


def chime():
    """Three rising notes of a major chord, as of glass."""
    sound = samples(1.3)
    for start, pitch in ((0, 1046.5), (0.16, 1318.5), (0.32, 1568)):
        add(sound, start, pitch, 1, 0.3)
        add(sound, start, pitch * 3.01, 0.18, 0.09)
    return sound


def drop():
    """Two drops of water: short tones that glide upwards."""
    sound = samples(0.6)
    for start, low in ((0, 420), (0.2, 560)):
        add(sound, start, lambda t, low=low: low + 5200 * t, 1, 0.045)
    return sound


def knock():
    """Three knocks on wood: low, dry."""
    sound = samples(0.75)
    for start in (0, 0.18, 0.36):
        add(sound, start, 196, 1, 0.035, 0.002)
        add(sound, start, 523, 0.5, 0.018, 0.001)
        add(sound, start, 1180, 0.2, 0.008, 0.001)
    return sound


def dawn():
    """A slow chord that opens upwards, for news that are no alarm."""
    sound = samples(2.6)
    for start, pitch in ((0, 261.6), (0.25, 392), (0.5, 523.3), (0.75, 659.3), (1.0, 987.8)):
        add(sound, start, pitch, 1, 0.7, 0.12)
        add(sound, start, pitch * 2.004, 0.25, 0.4, 0.12)
    return sound


def write(path, sound):
    scale = PEAK / max(abs(value) for value in sound)
    fade = int(FADE * RATE)
    left = len(sound)
    words = array.array("h")
    for value in sound:
        words.append(round(32767 * scale * value * min(1.0, left / fade)))
        left -= 1
    if sys.byteorder == "big":
        words.byteswap()
    with wave.open(str(path), "wb") as file:
        file.setnchannels(1)
        file.setsampwidth(2)
        file.setframerate(RATE)
        file.writeframes(words.tobytes())


def main():
    folder = pathlib.Path(sys.argv[1])
    for make in (bell, chime, drop, knock, dawn):
        write(folder / f"{make.__name__}.wav", make())


main()
