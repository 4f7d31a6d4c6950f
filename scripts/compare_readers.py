#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Compares what kestrune-cli reads from audio files with what mutagen and ffprobe read from them.

    compare_readers.py CLI FOLDER [--make]

With --make the folder is filled first: every format that ffmpeg and mpcenc encode here, with ID3v2.3 and 2.4 in each of
their text encodings, ID3v2.2 built byte by byte, tags at both ends, and pictures. Prints each disagreement, and a
count per reader and kind. Ends with 1 when a disagreement has no known reason.
"""
import argparse
import collections
import hashlib
import json
import os
import shutil
import struct
import subprocess
import sys

import mutagen
import mutagen.aiff
import mutagen.apev2
import mutagen.asf
import mutagen.dsf
import mutagen.flac
import mutagen.id3
import mutagen.mp4
import mutagen.wave

TEXTS = {"TITLE": "Tïtle Заголовок", "ARTIST": "Ärtist", "ALBUM": "Album 音楽", "TRACKNUMBER": "3/12", "GENRE": "Jazz",
         "ALBUMARTIST": "Band", "COMPOSER": "Jo Composer"}
ID3 = {"TITLE": "TIT2", "ARTIST": "TPE1", "ALBUM": "TALB", "TRACKNUMBER": "TRCK", "GENRE": "TCON",
       "ALBUMARTIST": "TPE2", "COMPOSER": "TCOM"}
APE = {"ALBUMARTIST": "Album Artist", "TRACKNUMBER": "Track"}
ASF = {"TITLE": "Title", "ARTIST": "Author", "ALBUM": "WM/AlbumTitle", "TRACKNUMBER": "WM/TrackNumber",
       "GENRE": "WM/Genre", "ALBUMARTIST": "WM/AlbumArtist", "COMPOSER": "WM/Composer"}
PROBE = {"TITLE": "title", "ARTIST": "artist", "ALBUM": "album", "TRACKNUMBER": "track", "GENRE": "genre",
         "ALBUMARTIST": "album_artist", "COMPOSER": "composer"}
ENCODERS = {"mp3": ["libmp3lame", "-b:a", "96k"], "vbr.mp3": ["libmp3lame", "-q:a", "4"], "mp2": ["mp2"],
            "flac": ["flac"], "ogg": ["libvorbis"], "opus": ["libopus"], "oga": ["flac"], "spx.ogg": ["libspeex"],
            "m4a": ["aac"], "alac.m4a": ["alac"], "wav": ["pcm_s16le"], "24.wav": ["pcm_s24le"],
            "aiff": ["pcm_s16be"], "wma": ["wmav2"], "wv": ["wavpack"], "tta": ["tta"]}
PICTURE = bytes.fromhex(
    "89504e470d0a1a0a0000000d49484452000000010000000108060000001f15c4890000000d4944415478da63f8cfc0f01f00050001ff"
    "a9c3b1a50000000049454e44ae426082")


def run(*arguments):
    subprocess.run(arguments, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def id3_tags(version, encoding):
    tags = mutagen.id3.ID3()
    for name, frame in ID3.items():
        text = TEXTS[name]
        if encoding == 0:
            text = text.encode("latin-1", "replace").decode("latin-1")
        tags.add(getattr(mutagen.id3, frame)(encoding=encoding, text=[text]))
    tags.add(mutagen.id3.APIC(encoding=0, mime="image/png", type=3, desc="", data=PICTURE))
    if version == 3:
        tags.update_to_v23()
    return tags


def id3_22(encoding):
    def frame(name, content):
        return name + struct.pack(">I", len(content))[1:] + content
    coded = {0: lambda t: b"\0" + t.encode("latin-1", "replace"), 1: lambda t: b"\1" + t.encode("utf-16")}[encoding]
    body = b"".join(frame(n, coded(TEXTS[k])) for k, n in (("TITLE", b"TT2"), ("ARTIST", b"TP1"), ("ALBUM", b"TAL"),
                                                           ("TRACKNUMBER", b"TRK"), ("GENRE", b"TCO"),
                                                           ("ALBUMARTIST", b"TP2"), ("COMPOSER", b"TCM")))
    body += frame(b"PIC", b"\0PNG\3\0" + PICTURE)
    size = len(body)
    return b"ID3\2\0\0" + bytes(size >> s & 0x7F for s in (21, 14, 7, 0)) + body


def make(folder):
    os.makedirs(folder, exist_ok=True)
    for name, encoder in ENCODERS.items():
        for rate, channels in ((44100, 2), (48000, 1), (22050, 1), (8000, 1), (96000, 2)):
            kind = name.split(".")[-1]
            path = os.path.join(folder, f"{name.replace('.', '-')}-{rate}-{channels}.{kind}")
            command = ["ffmpeg", "-v", "error", "-y", "-f", "lavfi", "-i", f"sine=duration=2.7:sample_rate={rate}",
                       "-ac", str(channels), "-ar", str(rate), "-map_metadata", "-1", "-c:a", *encoder]
            if kind in ("aiff", "mp3"):
                command += ["-write_id3v2", "0"] if kind == "aiff" else ["-id3v2_version", "0"]
            try:
                run(*command, path)
            except subprocess.CalledProcessError:
                if os.path.exists(path):
                    os.remove(path)  # the encoder does not take this rate
                continue
            tag(path, kind)
    base = os.path.join(folder, "mp3-44100-2.mp3")
    sound = open(base, "rb").read()
    sound = sound[mutagen.id3.ID3(base).size:] if sound.startswith(b"ID3") else sound
    for version in (3, 4):
        for encoding in (0, 1) if version == 3 else (0, 1, 2, 3):
            for extension, carrier in (("mp3", sound), ("wav", None), ("aiff", None)):
                path = os.path.join(folder, f"id3v2{version}-{encoding}.{extension}")
                if carrier is None:
                    shutil.copy(os.path.join(folder, f"{extension}-44100-2.{extension}"), path)
                    audio = mutagen.File(path)
                    audio.delete()
                    audio = mutagen.File(path)
                    audio.add_tags()
                    for frame in id3_tags(version, encoding).values():
                        audio.tags.add(frame)
                    audio.save(v2_version=version)
                else:
                    open(path, "wb").write(carrier)
                    id3_tags(version, encoding).save(path, v2_version=version)
    for encoding in (0, 1):
        open(os.path.join(folder, f"id3v22-{encoding}.mp3"), "wb").write(id3_22(encoding) + sound)
    both = os.path.join(folder, "both-ends.mp3")
    open(both, "wb").write(sound)
    id3_tags(4, 3).save(both, v1=2)
    if shutil.which("mpcenc"):
        path = os.path.join(folder, "musepack.mpc")
        run("mpcenc", "--overwrite", "--silent", os.path.join(folder, "wav-44100-2.wav"), path)
        tag(path, "mpc")


def tag(path, kind):
    audio = mutagen.File(path)
    if kind in ("mp3", "mp2", "tta"):
        id3_tags(4, 3).save(path)
    elif kind in ("wav", "aiff"):
        audio = mutagen.File(path)
        if audio.tags is None:
            audio.add_tags()
        for frame in id3_tags(4, 3).values():
            audio.tags.add(frame)
        audio.save()
    elif kind in ("wv", "mpc"):
        tags = mutagen.apev2.APEv2()
        for name, text in TEXTS.items():
            tags[APE.get(name, name.title())] = text
        tags["Cover Art (Front)"] = mutagen.apev2.APEValue(b"front.png\0" + PICTURE, mutagen.apev2.BINARY)
        tags.save(path)
    elif kind == "wma":
        for name, text in TEXTS.items():
            audio[ASF[name]] = text
        audio.save()
    elif kind == "m4a":
        audio["\xa9nam"], audio["aART"] = TEXTS["TITLE"], TEXTS["ALBUMARTIST"]
        audio["trkn"], audio["covr"] = [(3, 12)], [mutagen.mp4.MP4Cover(PICTURE, 14)]
        audio.save()
    else:
        for name, text in TEXTS.items():
            audio[name] = text
        picture = mutagen.flac.Picture()
        picture.data, picture.type, picture.mime = PICTURE, 3, "image/png"
        if kind == "flac":
            audio.add_picture(picture)
        else:
            import base64
            audio["METADATA_BLOCK_PICTURE"] = base64.b64encode(picture.write()).decode()
        audio.save()


def by_mutagen(path):
    audio = mutagen.File(path)
    if audio is None:
        return None
    texts, pictures, tags = {}, [], audio.tags or {}
    if isinstance(tags, mutagen.id3.ID3):
        texts = {n: "|".join(map(str, tags[f].text)) for n, f in ID3.items() if f in tags}
        pictures = [p.data for p in tags.getall("APIC")]
    elif isinstance(tags, mutagen.apev2.APEv2):
        texts = {n: str(tags[APE.get(n, n)]) for n in TEXTS if APE.get(n, n) in tags}
        pictures = [v.value.split(b"\0", 1)[1] for k, v in tags.items() if k.lower().startswith("cover art")]
    elif isinstance(tags, mutagen.asf.ASFTags):
        texts = {n: str(tags[a][0]) for n, a in ASF.items() if a in tags}
    elif isinstance(tags, mutagen.mp4.MP4Tags):
        texts = {"ALBUMARTIST": tags["aART"][0]} if "aART" in tags else {}
        if "trkn" in tags:
            texts["TRACKNUMBER"] = "%d/%d" % tags["trkn"][0]
        pictures = [bytes(c) for c in tags.get("covr", [])]
    else:
        texts = {n: "|".join(tags[n]) for n in TEXTS if n in tags}
        if isinstance(audio, mutagen.flac.FLAC):
            pictures = [p.data for p in audio.pictures]
        else:
            import base64
            pictures = [mutagen.flac.Picture(base64.b64decode(v)).data
                        for v in tags.get("metadata_block_picture", [])]
    info = audio.info
    return {"texts": texts, "pictures": [hashlib.sha1(p).hexdigest() for p in pictures], "duration": info.length,
            "rate": getattr(info, "sample_rate", None), "channels": getattr(info, "channels", None)}


def by_ffprobe(path):
    result = subprocess.run(["ffprobe", "-v", "error", "-show_format", "-show_streams", "-of", "json", path],
                            capture_output=True, check=False)
    try:
        answer = json.loads(result.stdout)
        stream = next(s for s in answer["streams"] if s["codec_type"] == "audio")
    except (ValueError, KeyError, StopIteration):
        return None
    tags = {k.lower(): v for part in (stream, answer["format"]) for k, v in part.get("tags", {}).items()}
    texts = {n: tags[k] for n, k in PROBE.items() if k in tags}
    return {"texts": texts, "pictures": None, "duration": float(stream.get("duration", 0)) or None,
            "rate": int(stream["sample_rate"]), "channels": stream["channels"]}


def ours(record):
    values = collections.defaultdict(list)
    for item in record["tags"]:
        values[item["name"].upper()].append(item["value"])
    texts = {n: "|".join(values[n]) for n in TEXTS if values[n]}
    if values["ALBUM ARTIST"]:  # APEv2 names are kept as they stand
        texts.setdefault("ALBUMARTIST", "|".join(values["ALBUM ARTIST"]))
    if "TRACKNUMBER" in texts and values["TOTALTRACKS"]:
        texts["TRACKNUMBER"] += "/" + values["TOTALTRACKS"][0]
    audio = record["audio"]
    return {"texts": texts, "pictures": [c["sha1"] for c in record["covers"]], "duration": audio["playTime"],
            "rate": audio["samplesPerSec"], "channels": audio["channels"]}


def reason(path, reader, kind, mine, other):
    """Why a disagreement is right as it is, or nothing."""
    extension = os.path.splitext(path)[1]
    if extension == ".m4a" and kind in ("TITLE", "ARTIST", "ALBUM", "GENRE", "COMPOSER") and mine is None:
        return "atoms that begin with 0xA9 are not carried over"
    if extension in (".aif", ".aiff") and kind == "duration" and mine == round(other):
        return "AIFF is told in whole seconds"
    if extension == ".tta" and kind in ("duration", "rate", "channels") and mine == 0:
        return "TTA has no attributes in the unified model"
    if kind == "TRACKNUMBER" and reader == "ffprobe" and mine and mine.split("/")[0] == other:
        return "ffprobe keeps the total apart"
    if kind == "rate" and reader == "ffprobe" and extension == ".opus":
        return "Opus decodes at 48,000"
    if kind == "duration" and extension in (".mp3", ".mp2") and 0 <= mine - other < 0.3:
        return "frames count whole, the encoder's delay and padding too"
    if kind == "duration" and extension == ".m4a" and 0 <= mine - other < 0.15:
        return "the media header counts the encoder's delay, the edit list not"
    if kind == "channels" and reader == "mutagen" and extension == ".m4a" and (mine, other) == (1, 2):
        return "the sample description says two channels, the AAC configuration one, as ffprobe"
    if kind == "duration" and reader == "ffprobe" and extension == ".mpc":
        return "ffprobe estimates Musepack 8 from its size; mutagen agrees with us"
    return None


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("cli")
    parser.add_argument("folder")
    parser.add_argument("--make", action="store_true")
    options = parser.parse_args()
    if options.make:
        make(options.folder)
    files = sorted(os.path.join(d, f) for d, _, names in os.walk(options.folder) for f in names)
    output = subprocess.run([options.cli, "tags", "--json", *files], capture_output=True, check=True).stdout
    records = {r["file"]: ours(r) for r in json.loads(output)}
    counts, unexplained = collections.Counter(), 0
    for path in files:
        mine = records[path]
        for reader, read in (("mutagen", by_mutagen), ("ffprobe", by_ffprobe)):
            try:
                other = read(path)
            except Exception as failure:  # a reader that fails on a file has no say
                print(f"{path}: {reader} fails: {failure}")
                continue
            if other is None:
                counts[reader, "not read"] += 1
                continue
            counts[reader, "compared"] += 1
            pairs = [(n, mine["texts"].get(n), v) for n, v in other["texts"].items()]
            pairs += [(k, mine[k], other[k]) for k in ("duration", "rate", "channels", "pictures") if other[k] is not None]
            for kind, a, b in pairs:
                if abs(a - b) <= 0.03 if kind == "duration" else a == b:
                    continue
                why = reason(path, reader, kind, a, b)
                counts[reader, why or "UNEXPLAINED " + kind] += 1
                if why is None:
                    unexplained += 1
                    print(f"{os.path.basename(path)}: {kind}: ours {a!r}, {reader} {b!r}")
    for (reader, what), count in sorted(counts.items()):
        print(f"{reader:8} {count:6} {what}")
    return 1 if unexplained else 0


if __name__ == "__main__":
    sys.exit(main())
