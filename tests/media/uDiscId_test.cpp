// SPDX-License-Identifier: GPL-3.0-or-later
#include "uCD.h"
#include "uMediaKit.h"

#include <QMap>
#include <QRegularExpression>

#include <limits>
#include <random>

namespace Kestrune {

using namespace Qt::StringLiterals;
using namespace Kit;

namespace {

constexpr int A = 0; // control of an audio track
constexpr int D = 4; // control of a data track
constexpr int FarOff = std::numeric_limits<int>::max();

// The tracks of a disc from `first` on, in pairs of control and address.
TRawTOC Table(int first, const std::vector<TRawTOCEntry>& tracks, int leadOut)
{
    TRawTOC toc;
    toc.First = first;
    toc.Last = first + static_cast<int>(tracks.size()) - 1;
    toc.Entries[0].Address = leadOut;
    std::copy(tracks.begin(), tracks.end(), toc.Entries.begin() + first);
    return toc;
}

// A table of which only the numbers of the tracks matter.
TRawTOC Numbered(int first, int last)
{
    TRawTOC toc;
    toc.First = first;
    toc.Last = last;
    return toc;
}

// What a drive answers, and what was asked of it.
struct TFakeDisc {
    TRawTOC FirstRead, SecondRead;
    int FailingHeader = 0; // which header is not read
    int FailingEntry = 0;  // which of all entries is not read
    bool EjectResult = true;

    QString Device;
    QList<int> Asked;
    int Headers = 0;
    int Closed = 0;

    TOpenCDDrive Opener();
};

class TFakeDrive final : public TCDDrive {
public:
    explicit TFakeDrive(TFakeDisc& disc) : FDisc(disc) {}
    ~TFakeDrive() override { ++FDisc.Closed; }
    bool ReadHeader(int& first, int& last) override
    {
        first = ++FDisc.Headers == 1 ? FDisc.FirstRead.First : FDisc.SecondRead.First;
        last = FDisc.Headers == 1 ? FDisc.FirstRead.Last : FDisc.SecondRead.Last;
        return FDisc.Headers != FDisc.FailingHeader;
    }
    bool ReadEntry(int track, TRawTOCEntry& entry) override
    {
        FDisc.Asked += track;
        const TRawTOC& toc = FDisc.Headers == 1 ? FDisc.FirstRead : FDisc.SecondRead;
        entry = toc.Entries.at(track == LeadOutTrack ? 0 : static_cast<size_t>(track));
        return FDisc.Asked.size() != FDisc.FailingEntry;
    }
    bool Eject() override { return FDisc.EjectResult; }

private:
    TFakeDisc& FDisc;
};

TOpenCDDrive TFakeDisc::Opener()
{
    return [this](const QString& device) {
        Device = device;
        return std::make_unique<TFakeDrive>(*this);
    };
}

TFakeDisc Inserted(const TRawTOC& toc)
{
    TFakeDisc disc;
    disc.FirstRead = disc.SecondRead = toc;
    return disc;
}

// "first last lead-out: offsets" of what was kept, or the error.
QString Kept(const TRawTOC& toc)
{
    TDiscId disc;
    if (!disc.ReadRaw(toc))
        return disc.ErrorMsg();
    const int last = disc.GetLastTrackNum();
    QString text = u"%1 %2 %3:"_s.arg(disc.GetFirstTrackNum())
                       .arg(last)
                       .arg(disc.GetTrackOffset(last) + disc.GetTrackLength(last));
    for (int track = disc.GetFirstTrackNum(); track <= last; ++track)
        text += u" %1"_s.arg(disc.GetTrackOffset(track));
    return text;
}

const QString NoFirst = u"Invalid CD TOC - first track number must be 1 or higher"_s;
const QString NoLast = u"Invalid CD TOC - last track number must be 99 or lower"_s;
const QString NoAudio = u"No actual audio tracks on disc: CDROM or DVD?"_s;
const QString Unreadable = u"Error while reading the CD TOC"_s;

} // namespace

TEST(DiscId, DiscsHaveTheirPublishedIdentifiers)
{
    const struct {
        QString Numbers, DiscID, TOC, TOC_Microsoft;
    } rows[] = {
        {u"1 22 303602 150 9700 25887 39297 53795 63735 77517 94877 107270 123552 135522 148422 161197 174790 192022 "
         "205545 218010 228700 239590 255470 266932 288750"_s,
         u"xUp1F2NkfP8s8jaeFn_Av3jNEI4-"_s,
         u"96 96 25E4 651F 9981 D223 F8F7 12ECD 1729D 1A306 1E2A0 21162 243C6 275AD 2AAC6 2EE16 322E9 3539A 37D5C "
         "3A7E6 3E5EE 412B4 467EE 4A1F2"_s,
         u"16 96 25E4 651F 9981 D223 F8F7 12ECD 1729D 1A306 1E2A0 21162 243C6 275AD 2AAC6 2EE16 322E9 3539A 37D5C "
         "3A7E6 3E5EE 412B4 467EE 4A1F2"_s},
        {u"1 8 212075 182 33322 52597 73510 98882 136180 169185 187490"_s, u"xp5tz6rE4OHrBafj0bLfDRMGK48-"_s,
         u"96 B6 822A CD75 11F26 18242 213F4 294E1 2DC62 33C6B"_s,
         u"8 B6 822A CD75 11F26 18242 213F4 294E1 2DC62 33C6B"_s},
        {u"1 8 212115 222 33362 52637 73550 98922 136220 169225 187530"_s, u"5sQ7UZcKjJaCH43UKtt_61W7avw-"_s,
         u"96 DE 8252 CD9D 11F4E 1826A 2141C 29509 2DC8A 33C93"_s,
         u"8 DE 8252 CD9D 11F4E 1826A 2141C 29509 2DC8A 33C93"_s},
        {u"1 8 212043 150 33290 52565 73478 98850 136148 169153 187458"_s, u"DNlrvGROpc28aJtprTzehV.XE7o-"_s,
         u"96 96 820A CD55 11F06 18222 213D4 294C1 2DC42 33C4B"_s,
         u"8 96 820A CD55 11F06 18222 213D4 294C1 2DC42 33C4B"_s},
        {u"1 8 211912 150 33150 52428 73340 98715 136015 169015 187323"_s, u"eXuIBrzsHYjtlF_OQgrFxUCg0NA-"_s,
         u"96 96 817E CCCC 11E7C 1819B 2134F 29437 2DBBB 33BC8"_s,
         u"8 96 817E CCCC 11E7C 1819B 2134F 29437 2DBBB 33BC8"_s},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.DiscID.toStdString());
        TRawTOC toc;
        TDiscTexts texts;
        QString error;
        ASSERT_TRUE(ParseDecimalTOC(row.Numbers, toc, error)) << error.toStdString();
        ASSERT_TRUE(DiscTextsOf(toc, texts, error)) << error.toStdString();
        EXPECT_EQ(texts.DiscID, row.DiscID);
        EXPECT_EQ(texts.TOC, row.TOC);
        EXPECT_EQ(texts.TOC_Microsoft, row.TOC_Microsoft);
        EXPECT_EQ(texts.TOC_DECIMAL, QString(row.Numbers).replace(u' ', u'+'));
        TRawTOC again;
        ASSERT_TRUE(ParseDecimalTOC(texts.TOC_DECIMAL, again, error)) << "what is shown is understood";
        EXPECT_EQ(Kept(again), Kept(toc));
    }
}

TEST(DiscId, SampleVectorsHold)
{
    if (SamplesFolder().isEmpty())
        GTEST_SKIP() << "no samples folder";
    static const QRegularExpression pattern(u"first=(\\d+) last=(\\d+) offsets=([\\d,]+) leadout=(\\d+)"_s);
    int compared = 0;
    for (const QByteArray& line : ReadAll(SamplesFolder() + u"/discid/expected.tsv"_s).split('\n')) {
        const QStringList cells = QString::fromUtf8(line).split(u'\t');
        if (line.startsWith('#') || cells.size() < 4)
            continue;
        SCOPED_TRACE(line.constData());
        const auto match = pattern.match(cells[1]);
        ASSERT_TRUE(match.hasMatch());
        const QString numbers =
            u"%1 %2 %4 %3"_s.arg(match.captured(1), match.captured(2), match.captured(3), match.captured(4))
                .replace(u',', u' ');
        TRawTOC toc;
        TDiscTexts texts;
        QString error;
        ASSERT_TRUE(ParseDecimalTOC(numbers, toc, error) && DiscTextsOf(toc, texts, error)) << error.toStdString();
        const QMap<QString, QString> actual{
            {u"DISCID"_s, texts.DiscID}, {u"TOC"_s, texts.TOC}, {u"TOC_Microsoft"_s, texts.TOC_Microsoft}};
        ASSERT_TRUE(actual.contains(cells[2]));
        EXPECT_EQ(actual[cells[2]], cells[3]);
        ++compared;
    }
    EXPECT_GE(compared, 15);
}

TEST(DiscId, OnlyTheAudioSessionIsKept)
{
    std::vector<TRawTOCEntry> enhanced(10);
    for (int i = 0; i < 10; ++i)
        enhanced[static_cast<size_t>(i)] = {A, i * 10000};
    enhanced.push_back({D, 120000});
    const struct {
        const char* Name;
        TRawTOC TOC;
        QString Kept;
    } rows[] = {
        {"one track at 0", Table(1, {{A, 0}}, 200000), u"1 1 200150: 150"_s},
        {"other control bits", Table(1, {{1, 0}, {2, 500}, {11, 900}}, 2000), u"1 3 2150: 150 650 1050"_s},
        {"address below 0", Table(1, {{A, -20}, {A, 500}}, 2000), u"1 2 2150: 150 650"_s},
        {"enhanced", Table(1, enhanced, 200000),
         u"1 10 108750: 150 10150 20150 30150 40150 50150 60150 70150 80150 90150"_s},
        {"mixed mode, data first", Table(1, {{D, 0}, {A, 30000}, {A, 50000}}, 70000), u"1 3 70150: 150 30150 50150"_s},
        {"two data tracks at the end", Table(1, {{A, 0}, {A, 20000}, {D, 50000}, {6, 90000}}, 99000),
         u"1 2 38750: 150 20150"_s},
        {"first above 1", Table(5, {{A, 0}, {A, 700}, {A, 1400}}, 3000), u"5 7 3150: 150 850 1550"_s},
        {"first above 1, enhanced", Table(5, {{A, 0}, {A, 700}, {D, 30000}}, 50000), u"5 6 18750: 150 850"_s},
        {"only track 99", Table(99, {{A, 10}}, 3000), u"99 99 3150: 160"_s},
        {"audio up to the lead-out", Table(1, {{A, 0}, {A, 5000}}, 5000), u"1 2 5150: 150 5150"_s},
        {"one track behind the lead-out", Table(1, {{A, 0}, {A, 5000}, {A, 60000}, {D, 65000}}, 90000),
         u"1 2 48750: 150 5150"_s},
        {"several behind the lead-out", Table(1, {{A, 0}, {A, 30000}, {A, 40000}, {A, 50000}, {D, 55000}}, 90000),
         u"1 1 18750: 150"_s},
        {"lead-out too early on an audio disc", Table(1, {{A, 0}, {A, 5000}, {A, 60000}}, 59999),
         u"1 2 48750: 150 5150"_s},
        {"all behind the lead-out", Table(1, {{A, 0}, {A, 100}, {D, 300}}, 5000), NoAudio},
        {"all behind, first above 1", Table(3, {{A, 0}, {D, 300}}, 5000), NoAudio},
        {"data only", Table(1, {{D, 0}, {D, 5000}}, 90000), NoAudio},
        {"data only, of the size of a Blu-ray disc", Table(1, {{D, 0}}, 62000000), NoAudio},
        {"first is 0", Numbered(0, 5), NoFirst},
        {"first below 0", Numbered(-1, 5), NoFirst},
        {"both are 0", Numbered(0, 0), NoFirst},
        {"last is 0", Numbered(1, 0), NoLast},
        {"last is 100", Numbered(1, 100), NoLast},
        {"last of a drive without a disc", Numbered(1, 255), NoLast},
        {"last below first", Numbered(9, 3), NoAudio},
        {"first is 255", Numbered(255, 3), NoAudio},
        {"address that overflows", Table(1, {{A, 0}, {A, FarOff}}, 5000), Unreadable},
        {"data address that underflows", Table(1, {{A, 0}, {D, -FarOff}}, 5000), Unreadable},
        {"lead-out that overflows", Table(1, {{A, 0}}, FarOff), Unreadable},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        EXPECT_EQ(Kept(row.TOC), row.Kept);
        TDiscTexts texts{u"t"_s, u"m"_s, u"i"_s, u"d"_s};
        QString error = u"e"_s;
        const bool readable = row.Kept.contains(u':') && row.Kept[0].isDigit();
        EXPECT_EQ(DiscTextsOf(row.TOC, texts, error), readable);
        EXPECT_EQ(error, readable ? QString() : row.Kept);
        EXPECT_EQ(texts.TOC.isEmpty() && texts.TOC_Microsoft.isEmpty() && texts.DiscID.isEmpty() &&
                      texts.TOC_DECIMAL.isEmpty(),
                  !readable);
    }
}

TEST(DiscId, DroppedTracksLeaveNoTraceInTheIdentifier)
{
    // The identifier counts all 99 places, so a track that is left out must count as absent.
    const TRawTOC whole = Table(1, {{A, 0}, {A, 5000}, {A, 60000}, {D, 65000}}, 90000);
    TDiscId dropped;
    TDiscId plain;
    ASSERT_TRUE(dropped.ReadRaw(whole));
    ASSERT_TRUE(plain.ReadRaw(Table(1, {{A, 0}, {A, 5000}}, 48600)));
    EXPECT_EQ(dropped.GetId(), plain.GetId());
    TDiscId moved;
    ASSERT_TRUE(moved.ReadRaw(Table(2, {{A, 0}, {A, 5000}}, 48600)));
    EXPECT_NE(moved.GetId(), plain.GetId()) << "the numbers of the tracks count";
}

TEST(DiscId, NumbersOutOfTheDiscHaveNoOffset)
{
    TDiscId disc;
    ASSERT_TRUE(disc.ReadRaw(Table(5, {{A, 0}, {A, 700}, {A, 1500}}, 3000)));
    const struct {
        int Track, Offset, Length;
    } rows[] = {{-1, -1, -1}, {0, -1, -1},   {4, -1, -1},     {5, 150, 700},   {6, 850, 800},
                {8, -1, -1},  {100, -1, -1}, {7, 1650, 1500}, {FarOff, -1, -1}};
    for (const auto& row : rows) {
        EXPECT_EQ(disc.GetTrackOffset(row.Track), row.Offset) << row.Track;
        EXPECT_EQ(disc.GetTrackLength(row.Track), row.Length) << row.Track;
    }
    // A failure takes everything of the disc before away.
    EXPECT_FALSE(disc.GetId().isEmpty());
    EXPECT_FALSE(disc.ReadRaw(Table(1, {{D, 0}}, 5000)));
    EXPECT_FALSE(disc.Success());
    EXPECT_EQ(disc.GetId(), QByteArray());
    EXPECT_EQ(disc.GetTrackOffset(5), -1);
    EXPECT_EQ(disc.GetTrackLength(5), -1);
    EXPECT_EQ(disc.GetLastTrackNum(), 0);
    EXPECT_TRUE(disc.ReadRaw(Table(1, {{A, 0}}, 5000)));
    EXPECT_EQ(disc.ErrorMsg(), QString());
}

TEST(DiscId, AnyTableIsTakenOrRefused)
{
    static const QRegularExpression form(u"\\A[A-Za-z0-9._]{27}-\\z"_s);
    const QStringList errors{NoFirst, NoLast, NoAudio, Unreadable};
    std::mt19937 random(4);
    int taken = 0;
    for (int round = 0; round < 4000; ++round) {
        TRawTOC toc;
        const bool wild = round % 4 == 0;
        toc.First = static_cast<int>(random() % (wild ? 256 : 20));
        toc.Last = toc.First + static_cast<int>(random() % (wild ? 256 : 20)) - 1;
        int address = 0;
        for (TRawTOCEntry& entry : toc.Entries) {
            address += static_cast<int>(random() % 20000) - (round % 3) * 3000;
            entry = {random() % 8 == 0 ? D : A, wild ? static_cast<int>(random()) : address};
        }
        toc.Entries[0] = {A, address};
        TDiscId disc;
        if (!disc.ReadRaw(toc)) {
            EXPECT_TRUE(errors.contains(disc.ErrorMsg())) << disc.ErrorMsg().toStdString();
            continue;
        }
        ++taken;
        EXPECT_GE(disc.GetTrackOffset(disc.GetFirstTrackNum()), 150);
        EXPECT_GE(disc.GetTrackLength(disc.GetLastTrackNum()), 0);
        EXPECT_TRUE(form.match(QString::fromLatin1(disc.GetId())).hasMatch()) << disc.GetId().constData();
    }
    EXPECT_GT(taken, 500);
}

TEST(DiscDrive, TheSecondReadCounts)
{
    const TRawTOC old = Table(1, {{A, 0}, {A, 100}, {A, 200}}, 300);
    const TRawTOC now = Table(2, {{A, 0}, {A, 9000}}, 20000);
    TFakeDisc disc;
    disc.FirstRead = old;
    disc.SecondRead = now;
    TLogged log;
    TDiscTexts texts;
    QString error;
    ASSERT_TRUE(GetTOCAndDiscID(u"/dev/sr1:x"_s, texts, error, disc.Opener()));
    EXPECT_EQ(disc.Device, u"/dev/sr1:x"_s) << "used whole";
    EXPECT_EQ(disc.Asked, (QList<int>{1, 2, 3, 0xAA, 2, 3, 0xAA}));
    EXPECT_EQ(disc.Closed, 1);
    EXPECT_EQ(texts.TOC, u"96 96 23BE 4EB6"_s);
    EXPECT_EQ(texts.TOC_Microsoft, u"2 96 23BE 4EB6"_s);
    EXPECT_EQ(texts.TOC_DECIMAL, u"2+3+20150+150+9150"_s);
    EXPECT_EQ(log.All(), u"GetTOCAndDiscID /dev/sr1:x\nTOC = 96 96 23BE 4EB6\nTOC_Microsoft = 2 96 23BE 4EB6\n"
                         "DiscID = %1"_s.arg(texts.DiscID));
}

TEST(DiscDrive, FailuresNameTheirReasonAndCloseTheDrive)
{
    const TRawTOC good = Table(1, {{A, 0}, {A, 9000}}, 20000);
    const struct {
        const char* Name;
        TRawTOC First, Second;
        int FailingHeader, FailingEntry;
        QString Error;
    } rows[] = {{"first header", good, good, 1, 0, Unreadable},
                {"second header", good, good, 2, 0, Unreadable},
                {"first track", good, good, 0, 1, Unreadable},
                {"lead-out", good, good, 0, 3, Unreadable},
                {"second lead-out", good, good, 0, 6, Unreadable},
                {"data disc put in", good, Table(1, {{D, 0}}, 500), 0, 0, NoAudio},
                {"no such first track", good, Numbered(0, 5), 0, 0, NoFirst},
                {"no such last track", Numbered(1, 255), Numbered(1, 255), 0, 0, NoLast}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        TFakeDisc disc;
        disc.FirstRead = row.First;
        disc.SecondRead = row.Second;
        disc.FailingHeader = row.FailingHeader;
        disc.FailingEntry = row.FailingEntry;
        TDiscTexts texts{u"t"_s, u"m"_s, u"i"_s, u"d"_s};
        QString error;
        EXPECT_FALSE(GetTOCAndDiscID(u"/dev/sr0"_s, texts, error, disc.Opener()));
        EXPECT_EQ(error, row.Error);
        EXPECT_EQ(texts.TOC + texts.TOC_Microsoft + texts.DiscID + texts.TOC_DECIMAL, QString());
        EXPECT_EQ(disc.Closed, 1);
        for (const int track : disc.Asked)
            EXPECT_TRUE((track >= 1 && track <= 99) || track == 0xAA) << track;
    }
}

TEST(DiscDrive, DevicesThatAreNoDrives)
{
    const TTempDir dir;
    const QString odd = dir.Write(u"caf\u00E9 %1 x"_s, "no drive");
    const std::pair<QString, QString> rows[] = {
        {dir.File(u"none %1"_s), u"Cannot open the CD audio device '%1'"_s.arg(dir.File(u"none %1"_s))},
        {QString(), u"Cannot open the CD audio device ''"_s},
        {odd, Unreadable},
        {u"/dev/null"_s, Unreadable}};
    for (const auto& [device, message] : rows) {
        SCOPED_TRACE(device.toStdString());
        TDiscId disc;
        EXPECT_FALSE(disc.Read(device));
        EXPECT_EQ(disc.ErrorMsg(), message);
        QString toc = u"t"_s;
        QString microsoft = u"m"_s;
        QString id = u"i"_s;
        EXPECT_FALSE(GetTOCAndDiscID(device, toc, microsoft, id));
        EXPECT_EQ(toc + microsoft + id, QString());
        EXPECT_FALSE(EjectCD(device));
    }
    TFakeDisc disc = Inserted({});
    EXPECT_TRUE(EjectCD(u"/dev/sr0"_s, disc.Opener()));
    disc.EjectResult = false;
    EXPECT_FALSE(EjectCD(u"/dev/sr0"_s, disc.Opener()));
    EXPECT_EQ(disc.Closed, 2);
}

TEST(DiscNumbers, WhatNoDiscCanHaveIsRefused)
{
    const QString few = u"needs the first track"_s;
    const struct {
        QString Text, Sentence;
    } rows[] = {
        {{}, few},
        {u" \t\n"_s, few},
        {u"1"_s, few},
        {u"1 1 20000"_s, few},
        {u"0 1 20000 150 9000"_s, u"tracks 0 to 1 are not within 1 to 99"_s},
        {u"1 0 20000 150"_s, u"tracks 1 to 0 "_s},
        {u"3 2 20000 150"_s, u"tracks 3 to 2 "_s},
        {u"1 100 20000 150"_s, u"tracks 1 to 100 "_s},
        {u"449999 449999 20000 150"_s, u"tracks 449999 "_s},
        {u"1 2 20000 150"_s, u"tracks 1 to 2 need 2 offsets, but there are 1"_s},
        {u"1 1 20000 150 900"_s, u"need 1 offsets, but there are 2"_s},
        {u"1 1 20000 149"_s, u"track 1 cannot start at 149, but at 150 or later"_s},
        {u"4 5 20000 150 150"_s, u"track 5 cannot start at 150, but at 151 or later"_s},
        {u"1 3 20000 150 900 899"_s, u"track 3 cannot start at 899, but at 901 or later"_s},
        {u"1 1 150 150"_s, u"lead-out 150 is not behind"_s},
        {u"1 1 450000 150"_s, u"\"450000\" is not a whole number from 0 to 449999"_s},
        {u"1 1 4294967446 150"_s, u"\"4294967446\" is not"_s},
        {u"1 1 99999999999999999999999999999 150"_s, u"\"99999999999999999999\" is not"_s},
        {u"-1 1 20000 150"_s, u"\"-1\" is not"_s},
        {u"1 1 20000 -150"_s, u"\"-150\" is not"_s},
        {u"1 1 20000 150.5"_s, u"\"150.5\" is not"_s},
        {u"1 1 20000 0x96"_s, u"\"0x96\" is not"_s},
        {u"1 1 20000 1e3"_s, u"\"1e3\" is not"_s},
        {u"1 1 20,000 150"_s, u"\"20,000\" is not"_s},
        {u"1 1 20000 \u0661\u0665\u0660"_s, u"\"\u0661\u0665\u0660\" is not"_s},
        {u"1 1 20000 "_s + QChar(u'\0') + u"150"_s, u"is not"_s},
        {u"+1+1+20000+150"_s, u"\"\" is not"_s},
        {u"1++1+20000+150"_s, u"\"\" is not"_s},
        {u"1+1+20000+150+"_s, u"\"\" is not"_s},
        {u"1 1 20000 "_s + u"150 "_s.repeated(100000), u"there are 100000"_s},
        {QString(100000, u'9'), u"is not"_s},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Text.left(60).toStdString());
        TRawTOC toc = Numbered(1, 1);
        QString error;
        EXPECT_FALSE(ParseDecimalTOC(row.Text, toc, error));
        EXPECT_TRUE(error.contains(row.Sentence)) << error.toStdString();
        EXPECT_LT(error.size(), 120);
        EXPECT_EQ(toc.Last, 0);
    }
    for (const QString& text : {u"1 2 20000 150 900"_s, u"  1\t2 \n20000  150 900 "_s, u"1+2+20000+150+900"_s,
                                u"1 + 2 20000 + 150 900"_s, u"01 2 020000 150 0900"_s}) {
        TRawTOC toc;
        QString error = u"old"_s;
        EXPECT_TRUE(ParseDecimalTOC(text, toc, error)) << text.toStdString();
        EXPECT_EQ(Kept(toc), u"1 2 20000: 150 900"_s);
        EXPECT_EQ(error, QString());
    }
    QString most = u"1 99 449999"_s;
    for (int track = 1; track <= 99; ++track)
        most += u" %1"_s.arg(track * 4500);
    TRawTOC toc;
    QString error;
    EXPECT_TRUE(ParseDecimalTOC(most, toc, error)) << error.toStdString();
    EXPECT_TRUE(Kept(toc).startsWith("1 99 449999: 4500 9000 "_L1));
}

TEST(DiscDrives, AreThoseOfTheKernelOrTheNodesThatAreThere)
{
    const TTempDir dir;
    const QString head = u"CD-ROM information, Id: cdrom.c 3.20 2003/12/17\n\n"_s;
    const struct {
        const char* Name;
        QString Info;
        QStringList Nodes, Drives;
    } rows[] = {
        {"one", head + u"drive name:\t\tsr0\ndrive speed:\t\t24\n"_s, {}, {u"sr0"_s}},
        {"newest first",
         head + u"drive name:\t\tsr10\tsr2\tsr0\ndrive speed:\t\t24\t8\t8\n"_s,
         {u"sr5"_s},
         {u"sr0"_s, u"sr2"_s, u"sr10"_s}},
        {"none listed",
         head + u"drive name:\t\ndrive speed:\t\n"_s,
         {u"sr1"_s, u"sr15"_s, u"sr16"_s},
         {u"sr1"_s, u"sr15"_s}},
        {"names that lead elsewhere", u"drive name:\t../sda\t/etc/x\t..\n"_s, {u"sr0"_s}, {u"sr0"_s}},
        {"line without its end", u"drive name:\thdc"_s, {}, {u"hdc"_s}},
        {"other text", u"some drive name: sr0\n\0\xFF"_s, {}, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        const QString folder = QString::fromLatin1(row.Name);
        const QString info = dir.Write(folder + u"/info"_s, row.Info.toUtf8());
        const QString nodes = dir.File(folder + u"/dev"_s);
        for (const QString& node : row.Nodes)
            dir.Write(folder + u"/dev/"_s + node, {});
        QStringList drives;
        for (const QString& drive : row.Drives)
            drives += nodes + u'/' + drive;
        EXPECT_EQ(ListCDDrives(info, nodes).join(u'|'), drives.join(u'|'));
        // Without the file only the nodes count.
        const QString missing = ListCDDrives(dir.File(u"none"_s), nodes).join(u'|');
        EXPECT_EQ(missing.isEmpty(), row.Nodes.isEmpty());
    }
}

} // namespace Kestrune
