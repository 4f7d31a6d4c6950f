#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Compares a collection with the manifest of the music library from which it was filled.

    check_library.py MANIFEST COLLECTION LIBRARY [--strict]

The manifest lists per release what a scan must store ("expect") with paths relative to LIBRARY. Releases whose
expectation is marked as soft are reported, but fail the check only with --strict. Ends with 1 on any difference.
"""
import argparse
import collections
import hashlib
import json
import os
import sqlite3
import sys

RELEASE_COLUMNS = {"artist": "Artist", "release_name": "ReleaseName", "year": "ReleaseYear",
                   "release_date": "ReleaseDate", "disc_count": "DiscCount", "genre": "Genre", "label": "Label",
                   "catalog_no": "CatalogNO", "barcode": "Barcode", "asin": "ASIN", "country": "CountryCode",
                   "discogs_id": "DiscogsID", "mb_album_id": "MusicBrainzID"}
TRACK_COLUMNS = {"artist": "Artist", "title": "TrackTitle", "no": "TrackNo", "disc_no": "DiscNo", "genre": "Genre",
                 "file_type": "FileType"}


def plain(value):
    """Null, zero and the empty text are the same absence here; numbers compare as their text."""
    return "" if value in (None, 0, "") else str(value)


def compare(where, expected, columns, row, problems):
    for key, column in columns.items():
        if plain(expected[key]) != plain(row[column]):
            problems.append(f"{where}: {column} is {row[column]!r}, not {expected[key]!r}")


def check_tracks(expect, rows, library, problems):
    stored = collections.Counter((os.path.relpath(r["FilePath"], library), plain(r["FileType"])) for r in rows)
    wanted = collections.Counter((t["path"], t["file_type"]) for t in expect["tracks"])
    for path, kind in wanted - stored:
        problems.append(f"track is missing: {path} {kind}")
    for path, kind in stored - wanted:
        problems.append(f"track should not be there: {path} {kind}")
    by_key = {(os.path.relpath(r["FilePath"], library), plain(r["FileType"])): r for r in rows}
    for track in expect["tracks"]:
        row = by_key.get((track["path"], track["file_type"]))
        if row is None:
            continue
        wanted_track = dict(track, disc_no=track["disc_no"] or 1, artist=track["artist"] or expect["artist"],
                            genre=track["genre"] or expect["genre"])
        compare(track["path"], wanted_track, TRACK_COLUMNS, row, problems)
        if round((row["TrackLength"] or 0) * 86400) != track["duration_sec"]:
            problems.append(f"{track['path']}: {row['TrackLength'] * 86400:.2f} s, not {track['duration_sec']}")


def check_pictures(expect, release, library, problems):
    front = release["LargePicture"]
    if bool(front) != bool(expect["front"]):
        problems.append(f"front picture: {expect['front']} expected, {'one' if front else 'none'} stored")
    elif expect["front"] == "folder":
        with open(os.path.join(library, expect["folder"], "folder.jpg"), "rb") as f:
            if hashlib.sha1(f.read()).digest() != hashlib.sha1(front).digest():
                problems.append("front picture is not folder.jpg")
    if bool(front) != bool(release["ThumbPicture"]):
        problems.append("thumbnail and front picture do not go together")
    for key, column in (("back", "LargePictureBack"), ("media", "LargePictureMedia")):
        if bool(release[column]) != bool(expect[key]):
            problems.append(f"{column}: {bool(release[column])}, not {expect[key]}")


def main():
    ap = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    ap.add_argument("manifest")
    ap.add_argument("collection")
    ap.add_argument("library")
    ap.add_argument("--strict", action="store_true")
    args = ap.parse_args()
    library = os.path.abspath(args.library)
    with open(args.manifest, encoding="utf-8") as f:
        releases = json.load(f)["releases"]
    db = sqlite3.connect(f"file:{args.collection}?mode=ro", uri=True)
    db.row_factory = sqlite3.Row
    stored = {}
    for row in db.execute("SELECT * FROM Releases2"):
        stored.setdefault(os.path.relpath(row["FolderPath"], library), []).append(row)

    failed = soft = tracks = 0
    for release in releases:
        expect, problems = release["expect"], []
        rows = stored.pop(expect["folder"], [])
        if len(rows) != 1:
            problems.append(f"stored {len(rows)} times")
        else:
            compare("release", expect, RELEASE_COLUMNS, rows[0], problems)
            check_pictures(expect, rows[0], library, problems)
            track_rows = db.execute("SELECT * FROM Tracks2 WHERE ReleaseId = ?", (rows[0]["ID"],)).fetchall()
            check_tracks(expect, track_rows, library, problems)
            tracks += len(track_rows)
        if problems:
            failed, soft = (failed, soft + 1) if expect["soft"] and not args.strict else (failed + 1, soft)
            print(f"{expect['folder']} ({release['written']['format']}, {release['written']['kind']}"
                  f"{', soft: ' + '; '.join(expect['soft']) if expect['soft'] else ''})")
            for problem in problems:
                print(f"    {problem}")
    for folder, rows in stored.items():
        failed += 1
        print(f"{folder}: stored, but not in the manifest")
    print(f"{len(releases)} releases, {tracks} tracks: {failed} differ, {soft} differ where the expectation is soft")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
