#!/usr/bin/env python3
# SPDX-FileCopyrightText: Nightjar contributors
# SPDX-License-Identifier: Apache-2.0
"""Measures how long the headless program takes to its first line, its settled state and its end, with empty and with
full stores. Usage: start-time.py path/to/nightjar [runs]"""

import json
import os
import statistics
import subprocess
import sys
import tempfile
import time
import uuid

POSITIONS = 10_000
MESSAGES = 5_000
FIRST_LINE_LIMITS = {"empty": 0.060, "full": 0.150}


def fill(folder):
    os.makedirs(folder)
    date = "2025-05-01T12:34:56Z"
    positions = [
        {"id": str(uuid.uuid4()).upper(), "nodeNumber": 1 + i % 50, "latitude": 50 + i * 1e-5, "longitude": 4 + i * 1e-5,
         "altitude": 30, "timestamp": date}
        for i in range(POSITIONS)
    ]
    messages = [
        {"id": str(uuid.uuid4()).upper(), "packetID": i + 1, "sender": 1 + i % 50, "recipient": 0xFFFFFFFF, "channel": 0,
         "text": f"Message number {i}, as people write them.", "timestamp": date, "isOutgoing": False}
        for i in range(MESSAGES)
    ]
    for name, records in (("positions.json", positions), ("messages.json", messages)):
        with open(os.path.join(folder, name), "w", encoding="utf-8") as file:
            json.dump(records, file, indent=2, sort_keys=True)


def run(program, home):
    environment = dict(os.environ, HOME=home, XDG_DATA_HOME=home + "/data", XDG_CONFIG_HOME=home + "/config",
                       NIGHTJAR_DEVICE_FOLDER=home + "/dev", DBUS_SESSION_BUS_ADDRESS="unix:path=" + home + "/no-bus")
    start = time.perf_counter()
    with subprocess.Popen([program, "--headless", "--jsonl"], env=environment, stdin=subprocess.PIPE,
                          stdout=subprocess.PIPE) as process:
        process.stdout.readline()
        first = time.perf_counter() - start
        for line in process.stdout:
            if b"Choose a USB radio in Settings." in line:
                break
        settled = time.perf_counter() - start
        process.stdin.close()
        process.stdout.read()
        process.wait()
        return first, settled, time.perf_counter() - start


def main():
    program = os.path.abspath(sys.argv[1])
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 20
    missed = False
    for stores, limit in FIRST_LINE_LIMITS.items():
        with tempfile.TemporaryDirectory() as home:
            os.mkdir(home + "/dev")
            if stores == "full":
                fill(home + "/data/Halvard Nightjar")
            times = [run(program, home) for _ in range(runs)]
        first, settled, end = (statistics.median(column) * 1000 for column in zip(*times))
        print(f"{stores:5} stores: first line {first:.0f} ms (limit {limit * 1000:.0f}), settled {settled:.0f} ms, "
              f"everything printed and ended {end:.0f} ms")
        missed |= first > limit * 1000
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
