// SPDX-License-Identifier: GPL-3.0-or-later
// Reads a megabyte of each tag that was built to keep a reader busy, as the folder import reads it:
//     bench_hostile_tags [ROUNDS] [NAME]
// Prints the best time per case, and whether one is over 50 ms; then the peak memory of a million comments, each read
// by a process of its own, whose bound is 100 MB.
#include "uMP3File.h"
#include "uTagBuilders.h"
#include "uTestFiles.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>

using namespace Kestrune;
using namespace Kestrune::Kit;
using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype Megabyte = 1024 * 1024;
constexpr double MostMilliseconds = 50;
constexpr long MostKilobytes = 100'000;

struct TCase {
    const char* Name;
    const char* FileName;
    std::function<QByteArray()> Build;
};

// Pieces, each made from its number, until they fill the size.
QByteArray Fill(const std::function<QByteArray(int)>& piece, qsizetype size = Megabyte)
{
    QByteArray out;
    out.reserve(size + size / 8);
    for (int i = 0; out.size() < size; ++i)
        out += piece(i);
    return out;
}

QByteArray Repeat(const QByteArray& piece, qsizetype size = Megabyte) { return piece.repeated(size / piece.size()); }

QList<QByteArray> Comments(int count, const std::function<QByteArray(int)>& comment)
{
    QList<QByteArray> list;
    list.reserve(count);
    for (int i = 0; i < count; ++i)
        list.append(comment(i));
    return list;
}

QByteArray Flac(const QByteArray& blocks)
{
    return "fLaC" + FlacBlock(0, FlacStreamInfo(44100, 2, 16, 44100)) + blocks;
}

QByteArray FlacOf(const QList<QByteArray>& comments) { return Flac(FlacBlock(4, VorbisComments(comments), true)); }

QByteArray TextFrame(const QByteArray& id, const QByteArray& text) { return Id3Frame(4, id, Id3Text(3, text)); }

QByteArray UserTexts(int count)
{
    QByteArray frames;
    for (int i = 0; i < count; ++i)
        frames += TextFrame("TXXX", "N" + QByteArray::number(i) + '\0' + 'v');
    return Id3v2(4, frames);
}

QByteArray ApeOfNames(int count)
{
    return ApeTag(Comments(count, [](int i) { return ApeItem("N" + QByteArray::number(i), "v"); }));
}

QByteArray Packed(const QByteArray& id, const QByteArray& content)
{
    const QByteArray packed = qCompress(content, 9).mid(4);
    return Id3v2(4, Id3Frame(4, id, SyncSafe32(static_cast<quint32>(content.size())) + packed, 0x09));
}

QByteArray NumberList(int from, char end)
{
    return Fill([=](int i) { return QByteArray::number(i + from) + end; });
}

QByteArray AsfOf(const std::function<QByteArray(int)>& attribute)
{
    QByteArray objects;
    for (int at = 0; objects.size() < Megabyte;) {
        QList<QByteArray> attributes;
        for (int i = 0; i < 50000; ++i, ++at)
            attributes.append(attribute(at));
        objects += AsfExtended(attributes, 50000);
    }
    return AsfFile(objects.first(std::min(objects.size(), Megabyte)));
}

QByteArray OggFlac(const QByteArray& packets)
{
    return OggPage(OggFirst, 0, 7,
                   QByteArray("\x7F"
                              "FLAC\x01\0\0\0",
                              9) +
                       Flac({})) +
           packets;
}

// Pages of 255 packets of four bytes: blocks of FLAC without content.
QByteArray OggSmallPackets()
{
    return Repeat(QByteArray("OggS\0\0", 6) + LE64(0) + LE32(7) + LE32(0) + LE32(0) + '\xFF' + QByteArray(255, 4) +
                  QByteArray("\2\0\0\0", 4).repeated(255));
}

std::vector<TCase> ID3Cases()
{
    return {
        {"ID3v2 TRCK of 1/2", "a.mp3", [] { return Id3v2(4, TextFrame("TRCK", Repeat(QByteArray("1/2\0", 4)))); }},
        {"ID3v2 TCON values", "a.mp3", [] { return Id3v2(4, TextFrame("TCON", NumberList(1000, '\0'))); }},
        {"ID3v2 TCON references", "a.mp3",
         [] {
             return Id3v2(4, TextFrame("TCON", Fill([](int i) { return '(' + QByteArray::number(i + 999) + ')'; })));
         }},
        {"ID3v2 TPE1 values", "a.mp3", [] { return Id3v2(4, TextFrame("TPE1", Repeat(QByteArray("a\0", 2)))); }},
        {"ID3v2 TIPL values", "a.mp3", [] { return Id3v2(4, TextFrame("TIPL", Repeat(QByteArray("a\0", 2)))); }},
        {"ID3v2 small frames", "a.mp3", [] { return Id3v2(4, Repeat(TextFrame("TIT2", "a"))); }},
        {"ID3v2 small TXXX frames", "a.mp3", [] { return UserTexts(60000); }},
        {"ID3v2 COMM frames", "a.mp3",
         [] { return Id3v2(4, Repeat(Id3Frame(4, "COMM", Id3Text(3, QByteArray("eng\0x", 5))))); }},
        {"ID3v2 unknown frames", "a.mp3", [] { return Id3v2(4, Repeat(Id3Frame(4, "a!#?", "x"))); }},
        {"ID3v2.2 pictures", "a.mp3",
         [] { return Id3v2(2, Repeat(Id3Frame(2, "PIC", QByteArray("\0PNG\3\0\x89P", 8)))); }},
        {"ID3v2 APIC frames", "a.mp3",
         [] { return Id3v2(4, Repeat(Id3Frame(4, "APIC", Id3Picture("", 3, "", "\x89P")))); }},
        {"ID3v2 unsynchronised", "a.mp3",
         [] { return Id3v2(3, Id3Frame(3, "TIT2", Repeat(QByteArray("\xFF\0", 2))), 0x80); }},
        {"ID3v2 UTF-16 of unknown order", "a.mp3",
         [] { return Id3v2(4, Id3Frame(4, "TPE1", '\1' + Repeat(QByteArray("a\0\0\0", 4)))); }},
        {"ID3v2 compressed", "a.mp3", [] { return Packed("TIT2", QByteArray(60 * Megabyte, 'x')); }},
        {"ID3v2 compressed TRCK", "a.mp3",
         [] { return Packed("TRCK", '\0' + Repeat(QByteArray("1/2\0", 4), 60 * Megabyte)); }},
        {"two tags of 50,000 names", "a.mp3", [] { return UserTexts(50000) + "sound" + ApeOfNames(50000); }},
        {"three tags of 20,000 names", "a.flac",
         [] {
             return UserTexts(20000) +
                    FlacOf(Comments(20000, [](int i) { return "n" + QByteArray::number(i) + "=v"; })) +
                    ApeOfNames(20000);
         }},
        {"MPEG headers without frames", "a.mp3", [] { return Repeat("\xFF\xFB\x92"); }},
    };
}

std::vector<TCase> XiphCases()
{
    return {
        {"FLAC TRACK=1/2", "a.flac", [] { return FlacOf(Comments(80000, [](int) { return "TRACK=1/2"; })); }},
        {"FLAC small comments", "a.flac", [] { return FlacOf(Comments(150000, [](int) { return "A=b"; })); }},
        {"FLAC comments of six letters", "a.flac",
         [] {
             return FlacOf(Comments(65536, [](int i) { return "ARTIS" + QByteArray(1, char('A' + i % 19)) + "=b"; }));
         }},
        {"FLAC TIPL", "a.flac", [] { return FlacOf(Comments(100000, [](int) { return "TIPL=b"; })); }},
        {"FLAC COVERART", "a.flac", [] { return FlacOf(Comments(60000, [](int) { return "COVERART=AAAA"; })); }},
        {"FLAC small blocks", "a.flac", [] { return Flac(Repeat(FlacBlock(2, {}))); }},
        {"FLAC comment blocks", "a.flac",
         [] {
             return Flac(Fill([](int i) { return FlacBlock(4, VorbisComments({QByteArray::number(i) + "=v"}, {})); }));
         }},
        {"FLAC picture blocks", "a.flac", [] { return Flac(Repeat(FlacBlock(6, FlacPicture(3, "", "", "\x89P")))); }},
        {"Ogg TRACK=1/2", "a.ogg", [] { return OggVorbis(Comments(80000, [](int) { return "TRACK=1/2"; })); }},
        {"Ogg pages without content", "a.ogg",
         [] {
             return OggPage(OggFirst, 0, 7, VorbisIdentification(2, 44100, 96000)) +
                    Repeat(OggPage(0, 0, 7, {}, false));
         }},
        {"Ogg pages of other streams", "a.ogg",
         [] { return OggVorbis({"A=b"}) + Repeat(OggPage(0, 5, 8, {}, false)); }},
        {"Ogg page marks", "a.ogg", [] { return OggVorbis({"A=b"}) + Repeat("OggS"); }},
        {"Ogg FLAC packets", "a.oga", [] { return OggFlac(OggSmallPackets()); }},
        {"Opus page marks", "a.opus", [] { return OggOpus({"A=b"}) + Repeat(QByteArray("OggS\0\0", 6)); }},
    };
}

std::vector<TCase> ContainerCases()
{
    const auto info = [](const QByteArray& texts) {
        return Riff("WAVE", WavFmt(1, 1, 8000, 8) + RiffChunk("LIST", "INFO" + texts));
    };
    return {
        {"WAV small texts", "a.wav", [=] { return info(Repeat(RiffChunk("INAM", "ab"))); }},
        {"WAV ITRK of 1/2", "a.wav", [=] { return info(Repeat(RiffChunk("ITRK", "1/2"))); }},
        {"WAV lists", "a.wav",
         [] { return Riff("WAVE", Repeat(RiffChunk("LIST", "INFO" + RiffChunk("INAM", "ab")))); }},
        {"WAV chunks", "a.wav", [] { return Riff("WAVE", Repeat(RiffChunk("fmt ", {}))); }},
        {"AIFF chunks", "a.aiff", [] { return Aiff("AIFF", Repeat(AiffChunk("COMM", {}))); }},
        {"DSDIFF chunks", "a.dff",
         [] {
             const QByteArray prop = DffChunk("PROP", "SND " + Repeat(DffChunk("FS  ", {}), 40000));
             return "FRM8" + BE64(Megabyte) + "DSD " + Repeat(prop);
         }},
        {"MP4 small atoms", "a.m4a",
         [] {
             const QByteArray data = Mp4Atom("udta", Repeat(Mp4Atom("free", {}), 100000));
             return Mp4Atom("ftyp", "M4A ") + Mp4Atom("moov", Repeat(data));
         }},
        {"MP4 items", "a.m4a", [] { return Mp4File(Repeat(Mp4Atom("aART", Mp4Data(1, "a")))); }},
        {"MP4 data of one item", "a.m4a", [] { return Mp4File(Mp4Atom("aART", Repeat(Mp4Data(1, "a")))); }},
        {"MP4 free-form data", "a.m4a",
         [] { return Mp4File(Mp4Atom("----", Mp4Atom("name", BE32(0) + "N") + Repeat(Mp4Data(1, "a")))); }},
        {"MP4 pictures", "a.m4a", [] { return Mp4File(Mp4Atom("covr", Repeat(Mp4Data(14, "\x89P")))); }},
        {"MP4 item lists", "a.m4a",
         [] {
             const QByteArray list = Mp4Atom("meta", BE32(0) + Mp4Atom("ilst", Mp4Atom("aART", Mp4Data(1, "a"))));
             return Mp4File({}, Repeat(list));
         }},
        {"MP4 Xtra values", "a.m4a", [] { return Mp4File({}, Mp4Atom("Xtra", Repeat(Mp4Xtra("WM/Mood", 8, "a\0")))); }},
        {"MP4 tracks", "a.m4a",
         [] { return Mp4Atom("ftyp", "M4A ") + Mp4Atom("moov", Repeat(Mp4Atom("trak", Mp4Atom("mdia", {})))); }},
        {"MP4 fragments", "a.m4a",
         [] {
             const QByteArray sound = Mp4Atom("hdlr", BE32(0) + BE32(0) + "soun") +
                                      Mp4Atom("mdhd", QByteArray(12, '\0') + BE32(8000) + BE32(0) + BE32(0));
             return Mp4Atom("ftyp", "M4A ") + Mp4Atom("moov", Mp4Atom("trak", Mp4Atom("mdia", sound))) +
                    Repeat(Mp4Atom("moof", Repeat(Mp4Atom("traf", Mp4Atom("trun", BE32(0) + BE32(1))), 100000)));
         }},
    };
}

std::vector<TCase> OtherCases()
{
    const auto wide = [](const char* text) { return Utf16(QString::fromLatin1(text), false); };
    return {
        {"APEv2 small items", "a.ape", [] { return ApeTag(Comments(90000, [](int) { return ApeItem("A", "b"); })); }},
        {"APEv2 Track of 1/2", "a.ape", [] { return ApeTag({ApeItem("Track", Repeat(QByteArray("1/2\0", 4)))}); }},
        {"APEv2 TMCL", "a.ape", [] { return ApeTag({ApeItem("TMCL", Repeat(QByteArray("a\0", 2)))}); }},
        {"APEv2 covers", "a.ape",
         [] { return ApeTag(Comments(30000, [](int) { return ApeItem("Cover Art (x)", "a\0b", 2); })); }},
        {"WMA small attributes", "a.wma",
         [=] { return AsfOf([=](int i) { return AsfAttribute(QString::number(i), 0, wide("v")); }); }},
        {"WMA one attribute", "a.wma",
         [=] { return AsfOf([=](int i) { return AsfAttribute(u"A"_s, 3, LE32(static_cast<quint32>(i))); }); }},
        {"WMA WM/TrackNumber of 1/2", "a.wma",
         [=] {
             return AsfOf([=](int i) { return AsfAttribute(u"WM/TrackNumber"_s, 0, Utf16(u"1/%1"_s.arg(i), false)); });
         }},
        {"WMA objects", "a.wma", [] { return AsfFile(Repeat(AsfObject("00112233445566778899aabbccddeeff", {}))); }},
        {"WavPack block marks", "a.wv",
         [] { return WavPackBlock(0xFFFFFFFF, 0, 1, 0x1801 | 9u << 23, "x") + Repeat("wvpk"); }},
        {"Musepack packets", "a.mpc", [] { return "MPCK" + Repeat(QByteArray("XX\3", 3)); }},
        {"Lyrics3 fields", "a.mp3",
         [] {
             const QByteArray fields = "LYRICSBEGIN" + Repeat("LYR00000", 900000);
             return "sound" + fields + QByteArray::number(fields.size()) + "LYRICS200" + Id3v1({"T"});
         }},
    };
}

// One megabyte of text in the fields that the import looks into.
std::vector<TCase> TextCases()
{
    static const char* names[] = {"TITLE", "ALBUM", "DATE", "YEAR", "TRACKNUMBER", "CUESHEET", "GENRE"};
    std::vector<TCase> cases;
    for (const char* name : names) {
        for (const char* unit : {"1-", "( 2001)", "FILE x\n", " "}) {
            cases.push_back({name, "a.flac", [=] { return FlacOf({QByteArray(name) + "=x" + Repeat(unit) + "x"}); }});
        }
    }
    return cases;
}

double BestMilliseconds(const QString& path, int rounds)
{
    TMP3ScanOptions options;
    double best = 1e9;
    for (int i = 0; i < rounds && (i == 0 || best < 1000); ++i) {
        const auto start = std::chrono::steady_clock::now();
        ProcessFile(path, options, true);
        best =
            std::min(best, std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    return best;
}

// Runs the work in a process of its own; its peak memory in KiB.
long PeakOf(const std::function<void()>& work)
{
    const pid_t child = ::fork();
    if (child == 0) {
        work();
        ::_exit(0);
    }
    int status = 0;
    rusage usage = {};
    return ::wait4(child, &status, 0, &usage) == child && status == 0 ? usage.ru_maxrss : -1;
}

bool ReportMemory(const TTempDir& dir, const TCase& memory)
{
    const QString path = dir.File(QString::fromLatin1(memory.FileName));
    PeakOf([&] { dir.Write(QString::fromLatin1(memory.FileName), memory.Build()); });
    const long none = PeakOf([] {});
    const long peak = PeakOf([&] { ProcessFile(path, {}, true); });
    const bool good = peak >= 0 && peak <= MostKilobytes;
    std::printf("%-32s %8.1f MB peak, %.1f MB of it the program%s\n", memory.Name, static_cast<double>(peak) / 1000,
                static_cast<double>(none) / 1000, good ? "" : "  TOO MUCH");
    std::fflush(stdout);
    return good;
}

std::vector<TCase> MillionCases()
{
    constexpr int million = 1'000'000;
    return {
        {"a million FLAC comments", "m.flac",
         [] { return FlacOf(Comments(million, [](int i) { return "N=" + QByteArray::number(i); })); }},
        {"a million Ogg comments", "m.ogg",
         [] { return OggVorbis(Comments(million, [](int i) { return QByteArray::number(i) + "=v"; })); }},
        {"a million COMM frames", "m.mp3",
         [] { return Id3v2(4, Id3Frame(4, "COMM", Id3Text(3, QByteArray("eng\0x", 5))).repeated(million)); }},
        {"a million values", "v.mp3",
         [] { return Id3v2(4, TextFrame("TPE1", QByteArray("ab\0", 3).repeated(million))); }},
        {"a million APEv2 items", "m.ape",
         [] { return ApeTag(Comments(million, [](int) { return ApeItem("A", "b"); })); }},
        {"a million WAV texts", "m.wav",
         [] { return Riff("WAVE", RiffChunk("LIST", "INFO" + RiffChunk("ICMT", "ab").repeated(million))); }},
        {"a million MP4 values", "m.m4a",
         [] { return Mp4File(Mp4Atom("----", Mp4Atom("name", BE32(0) + "N") + Mp4Data(1, "a").repeated(million))); }},
        {"a million WMA attributes", "m.wma",
         [] {
             const QByteArray attribute = AsfAttribute(u"A"_s, 0, Utf16(u"v"_s, false));
             return AsfFile(AsfExtended({attribute.repeated(50000)}, 50000).repeated(20));
         }},
    };
}

} // namespace

int main(int argc, char** argv)
{
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
    const QByteArray wanted = argc > 2 ? argv[2] : "";
    const TTempDir dir;
    int bad = 0;
    for (const TCase& memory : MillionCases())
        if (QByteArray(memory.Name).contains(wanted))
            bad += !ReportMemory(dir, memory);
    double worst = 0;
    for (const auto& cases : {ID3Cases(), XiphCases(), ContainerCases(), OtherCases(), TextCases()})
        for (const TCase& one : cases) {
            if (!QByteArray(one.Name).contains(wanted))
                continue;
            const QByteArray bytes = one.Build();
            const double best = BestMilliseconds(dir.Write(QString::fromLatin1(one.FileName), bytes), rounds);
            worst = std::max(worst, best);
            bad += best > MostMilliseconds;
            std::printf("%-32s %8.1f ms  %6.2f MB%s\n", one.Name, best, static_cast<double>(bytes.size()) / 1e6,
                        best > MostMilliseconds ? "  TOO LONG" : "");
            std::fflush(stdout);
        }
    std::printf("worst %.1f ms, %d over their bound\n", worst, bad);
    return bad > 0 ? 1 : 0;
}
