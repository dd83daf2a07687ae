#!/usr/bin/env python3
# SPDX-FileCopyrightText: Nightjar contributors
# SPDX-License-Identifier: Apache-2.0
"""Writes data/sounds/tink.wav, the cue of the finder: a small struck bar of metal, 90 ms.

Usage: make_tink.py [FILE]. The same bytes each time.
"""
import math
import pathlib
import struct
import sys
import wave

RATE = 48_000  # samples per second
LENGTH = 0.09  # seconds
ATTACK = 0.0008  # seconds, short enough to be heard as a stroke, long enough not to click
RELEASE = 0.012  # seconds
PEAK = 0.7  # of the full range

# A free bar's overtones lie at 2.76 and 5.40 times its lowest tone and die away sooner.
FUNDAMENTAL = 1_760.0  # Hz
PARTIALS = [(1.0, 0.60, 38.0), (2.76, 0.28, 75.0), (5.40, 0.12, 130.0)]  # ratio, weight, decay per second


def sample(index: int, count: int) -> float:
    time = index / RATE
    swing = sum(
        weight * math.exp(-decay * time) * math.sin(2 * math.pi * FUNDAMENTAL * ratio * time)
        for ratio, weight, decay in PARTIALS
    )
    rise = min(1.0, time / ATTACK)
    fall = min(1.0, (count - index) / (RELEASE * RATE))
    return swing * rise * fall


def main() -> None:
    default = pathlib.Path(__file__).resolve().parent.parent / "data" / "sounds" / "tink.wav"
    path = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else default
    count = int(RATE * LENGTH)
    samples = [sample(index, count) for index in range(count)]
    scale = PEAK * 32_767 / max(map(abs, samples))
    with wave.open(str(path), "wb") as file:
        file.setnchannels(1)
        file.setsampwidth(2)
        file.setframerate(RATE)
        file.writeframes(struct.pack(f"<{count}h", *(round(value * scale) for value in samples)))


if __name__ == "__main__":
    main()
