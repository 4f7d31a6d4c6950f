#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Imports one music library with our engine, beets and Strawberry by turns, each into a new collection.

    compare_import.py BENCH_IMPORT LIBRARY SCRATCH [ROUNDS]

Prints seconds and files per second of each round, and the medians of the ratios within a round. beets imports without
copying, writing and autotagging; Strawberry scans a collection folder, from its start to the last change of its
database. A program that is not installed is left out.
"""
import os
import re
import shutil
import sqlite3
import statistics
import subprocess
import sys
import time


def ours(bench, library, scratch):
    path = os.path.join(scratch, "ours.db")
    for name in (path, path + "-wal", path + "-shm"):
        if os.path.exists(name):
            os.remove(name)
    output = subprocess.run([bench, path, library], capture_output=True, text=True, check=True).stdout
    files, seconds, peak = (float(re.search(what + r" ([\d.]+)", output)[1]) for what in ("files", "seconds", "peak MB"))
    return files, seconds, peak


def beets(library, scratch):
    home = os.path.join(scratch, "beets")
    shutil.rmtree(home, ignore_errors=True)
    os.makedirs(home)
    with open(os.path.join(home, "config.yaml"), "w", encoding="utf-8") as config:
        config.write(f"library: {home}/library.db\ndirectory: {home}\nplugins: []\n"
                     "import: {copy: no, move: no, write: no, autotag: no}\n")
    start = time.monotonic()
    subprocess.run(["beet", "import", "-A", "-q", library], env={**os.environ, "BEETSDIR": home}, check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    seconds = time.monotonic() - start
    with sqlite3.connect(os.path.join(home, "library.db")) as database:
        return database.execute("SELECT count(*) FROM items").fetchone()[0], seconds


def strawberry_environment(home):
    runtime = os.path.join(home, "runtime")
    os.makedirs(runtime, mode=0o700, exist_ok=True)
    return {**os.environ, "HOME": home, "XDG_RUNTIME_DIR": runtime, "QT_QPA_PLATFORM": "offscreen",
            "XDG_DATA_HOME": os.path.join(home, ".local/share"), "XDG_CONFIG_HOME": os.path.join(home, ".config")}


def start_strawberry(home):
    return subprocess.Popen(["dbus-run-session", "--", "strawberry"], env=strawberry_environment(home),
                            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)


def stop(process):
    os.killpg(process.pid, 15)
    process.wait()


def strawberry(library, scratch):
    pristine = os.path.join(scratch, "strawberry-pristine")
    database = os.path.join(".local/share/strawberry/strawberry/strawberry.db")
    if not os.path.exists(os.path.join(pristine, database)):
        os.makedirs(pristine, exist_ok=True)
        process = start_strawberry(pristine)
        time.sleep(6)
        stop(process)
    home = os.path.join(scratch, "strawberry")
    shutil.rmtree(home, ignore_errors=True)
    shutil.copytree(pristine, home, ignore=shutil.ignore_patterns("runtime"))
    path = os.path.join(home, database)
    with sqlite3.connect(path) as connection:
        connection.execute("INSERT INTO directories(path, subdirs) VALUES(?, 1)", (os.path.abspath(library),))
    start = time.monotonic()
    process = start_strawberry(home)
    songs, changed = 0, start
    while time.monotonic() - changed < 4 or (songs == 0 and time.monotonic() - start < 60):
        time.sleep(0.1)
        try:
            with sqlite3.connect(f"file:{path}?mode=ro", uri=True, timeout=1) as connection:
                now = connection.execute("SELECT count(*) FROM songs").fetchone()[0]
        except sqlite3.OperationalError:
            continue
        if now != songs:
            songs, changed = now, time.monotonic()
    stop(process)
    return songs, changed - start


def main():
    bench, library, scratch = sys.argv[1:4]
    rounds = int(sys.argv[4]) if len(sys.argv) > 4 else 5
    os.makedirs(scratch, exist_ok=True)
    peers = {}
    if shutil.which("beet"):
        peers["beets"] = beets
    if shutil.which("strawberry"):
        peers["strawberry"] = strawberry
    ours(bench, library, scratch)  # the page cache
    ratios = {name: [] for name in peers}
    speeds = []
    for number in range(rounds):
        files, seconds, peak = ours(bench, library, scratch)
        speeds.append(files / seconds)
        print(f"round {number + 1}: ours {files:.0f} files in {seconds:.3f} s = {files / seconds:.0f}/s, "
              f"peak {peak:.0f} MB", flush=True)
        for name, run in peers.items():
            count, elapsed = run(library, scratch)
            ratios[name].append(files / seconds / (count / elapsed))
            print(f"round {number + 1}: {name} {count} files in {elapsed:.2f} s = {count / elapsed:.0f}/s, "
                  f"ours is {ratios[name][-1]:.1f} times as fast", flush=True)
    print(f"ours: median {statistics.median(speeds):.0f} files/s")
    for name, values in ratios.items():
        print(f"{name}: median ratio {statistics.median(values):.1f} ({min(values):.1f} to {max(values):.1f})")


if __name__ == "__main__":
    main()
