// SPDX-License-Identifier: GPL-3.0-or-later
#include "TagsLibrary.h"
#include "uFilePath.h"
#include "uTagBuilders.h"
#include "uTestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;
using namespace Kit;

namespace {

// All tags in order, as "NAME=value".
QStringList Lines(const TTags& tags)
{
    QStringList lines;
    for (const auto& tag : tags.Tags())
        lines.append(tag->Name + u'=' + tag->Value);
    return lines;
}

QStringList Sorted(QStringList lines)
{
    lines.sort();
    return lines;
}

QByteArray Text3(const QByteArray& id, const QByteArray& text) { return Id3Frame(3, id, Id3Text(0, text)); }

QByteArray Flac(const QList<QByteArray>& comments, const QByteArray& pictures = {})
{
    return "fLaC" + FlacBlock(0, FlacStreamInfo(44100, 2, 16, 44100)) + FlacBlock(4, VorbisComments(comments)) +
           pictures + FlacBlock(1, {}, true) + "sound";
}

} // namespace

TEST(Tags, MergesAndMapsAsThePriorityTells)
{
    const QByteArray v1 = Id3v1({"A", "Artist1", "Album1", "1999", "Comment1", 5, 17});
    struct TCase {
        const char* Name;
        QByteArray Bytes;
        QStringList Expected; ///< in order
    };
    const QByteArray userText = Id3Text(0, QByteArray("Mood of it\0Calm", 15));
    const QByteArray twoArtists = Id3Frame(4, "TPE1", Id3Text(3, QByteArray("One\0Two\0", 8)));
    const QByteArray numbers = Id3Frame(4, "TRCK",
                                        Id3Text(3, QByteArray("1/2\0"
                                                              "3/4",
                                                              7)));
    const QByteArray people = Id3Frame(4, "TIPL", Id3Text(3, QByteArray("producer\0Ann\0mix\0\0engineer\0Bob", 30)));
    const TCase cases[] = {
        {"ID3v1 alone",
         v1,
         {u"TITLE=A"_s, u"ARTIST=Artist1"_s, u"ALBUM=Album1"_s, u"YEAR=1999"_s, u"COMMENT=Comment1"_s,
          u"TRACKNUMBER=5"_s, u"GENRE=Rock"_s}},
        {"ID3v2 over ID3v1, field by field",
         Id3v2(3, Text3("TIT2", "B") + Text3("TRCK", "3/12")) + v1,
         {u"ARTIST=Artist1"_s, u"ALBUM=Album1"_s, u"YEAR=1999"_s, u"COMMENT=Comment1"_s, u"GENRE=Rock"_s, u"TITLE=B"_s,
          u"TRACKNUMBER=3"_s, u"TOTALTRACKS=12"_s}},
        {"number without total",
         Id3v2(3, Text3("TRCK", "3") + Text3("TPOS", "1/2")),
         {u"TRACKNUMBER=3"_s, u"DISCNUMBER=1"_s, u"TOTALDISCS=2"_s}},
        {"several values", Id3v2(4, twoArtists), {u"ARTIST=One"_s, u"ARTIST=Two"_s}},
        {"genres",
         Id3v2(4, Id3Frame(4, "TCON",
                           Id3Text(0, QByteArray("(17)Rock\0"
                                                 "9\0Rock",
                                                 15)))),
         {u"GENRE=Rock Metal"_s}},
        {"lists of people", Id3v2(4, people), {u"TIPL=producer=Ann\nmix=\nengineer=Bob"_s}},
        {"user text and addresses",
         Id3v2(3, Id3Frame(3, "TXXX", userText) + Id3Frame(3, "WXXX", Id3Text(0, QByteArray("\0http://a", 9))) +
                      Id3Frame(3, "WXXX", Id3Text(0, QByteArray("Shop\0http://b", 13))) +
                      Id3Frame(3, "WOAR", "http://c")),
         {u"Mood of it=Calm"_s, u"URL=http://a"_s, u"Shop=http://b"_s, u"ARTISTURL=http://c"_s}},
        {"counters",
         Id3v2(3, Id3Frame(3, "PCNT", BE32(12)) + Id3Frame(3, "POPM", QByteArray("x\0\x80", 3))),
         {u"PLAYCOUNT=12"_s, u"RATING=128"_s}},
        {"unmapped frames are left out",
         Id3v2(3, Text3("TDAT", "0102") + Id3Frame(3, "PRIV", "x\0y") + Text3("SESC", "x")),
         {}},
        {"an empty frame leaves the weaker tag's field",
         Id3v2(3, Text3("TIT2", "") + Text3("TALB", "B")) + Id3v1({"A"}),
         {u"TITLE=A"_s, u"ALBUM=B"_s}},
        {"FLAC over ID3v2",
         Id3v2(3, Text3("TIT2", "B") + Text3("TALB", "C")) + Flac({"title=F", "Mood=x"}),
         {u"ALBUM=C"_s, u"title=F"_s, u"Mood=x"_s}},
        {"TRACK with total in FLAC",
         Flac({"TRACK=3/12", "DISCNUMBER=1/2"}),
         {u"TRACKNUMBER=3"_s, u"TOTALTRACKS=12"_s, u"DISCNUMBER=1/2"_s}},
        {"TRACK without total in FLAC", Flac({"TRACK=3"}), {u"TRACK=3"_s}},
        {"lists of people in FLAC",
         Flac({"TIPL=mix=Ann", "ARTIST=A", "TMCL=cello=Cid", "tipl=engineer=Bob"}),
         {u"TIPL=mix=Ann\nengineer=Bob"_s, u"ARTIST=A"_s, u"TMCL=cello=Cid"_s}},
        {"of a second comment block only the new names",
         Flac({"TITLE=F", "ARTIST=A", "ARTIST=B"}, FlacBlock(4, VorbisComments({"title=F", "MOOD=x", "MOOD=y"}))),
         {u"TITLE=F"_s, u"ARTIST=A"_s, u"ARTIST=B"_s, u"MOOD=x"_s, u"MOOD=y"_s}},
        {"totals of several values", Id3v2(4, numbers), {u"TRACKNUMBER=1"_s, u"TRACKNUMBER=3"_s, u"TOTALTRACKS=4"_s}},
        {"a split total takes the place of one",
         Flac({"TOTALTRACKS=9", "TRACKNUMBER=3/12"}),
         {u"TRACKNUMBER=3"_s, u"TOTALTRACKS=12"_s}},
    };
    const TTempDir dir;
    for (const TCase& c : cases) {
        SCOPED_TRACE(c.Name);
        TTags tags;
        ASSERT_EQ(tags.LoadFromFile(dir.Write(u"a.bin"_s, c.Bytes)), 0);
        EXPECT_TRUE(tags.Loaded());
        EXPECT_EQ(Lines(tags), c.Expected);
        tags.LoadTags();
        EXPECT_EQ(Sorted(Lines(tags)), Sorted(c.Expected)) << "after a second merge";
    }
}

// So large that comparing each with each would take minutes.
TEST(Tags, TagsOfVeryManyValuesAreMergedInLinearTime)
{
    const auto list = [](int count, const auto& piece) {
        QByteArray bytes;
        for (int i = 0; i < count; ++i)
            bytes += piece(i);
        return bytes;
    };
    const auto user = [](int i) {
        return Id3Frame(4, "TXXX", Id3Text(3, "Name" + QByteArray::number(i) + '\0' + 'v'));
    };
    const auto item = [](int i) { return ApeItem("nAME" + QByteArray::number(i), "w"); };
    const auto attribute = [](int i) { return AsfAttribute(QString::number(i), 3, LE32(1)); };
    const QByteArray numbers = list(200000, [](int i) { return QByteArray::number(i + 1000) + '\0'; });
    const QByteArray references = list(200000, [](int i) { return '(' + QByteArray::number(i + 1000) + ')'; });
    const auto text = [](const char* id, const QByteArray& value) {
        return Id3v2(4, Id3Frame(4, id, Id3Text(3, value)));
    };
    struct TCase {
        const char* Name;
        const char* FileName;
        QByteArray Bytes;
        const char* Tag; ///< is there so often
        int Count;
    };
    QList<QByteArray> items;
    for (int i = 0; i < 50000; ++i)
        items.append(item(i));
    const TCase cases[] = {
        {"track numbers", "a.mp3", text("TRCK", QByteArray("1/2\0", 4).repeated(30000)), "TOTALTRACKS", 1},
        {"tracks", "a.flac", Flac(QList<QByteArray>(30000, "TRACK=1/2")), "TOTALTRACKS", 1},
        {"genres", "a.mp3", text("TCON", numbers), "GENRE", 1},
        {"genre references", "a.mp3", text("TCON", references), "GENRE", 1},
        {"attributes", "a.wma", AsfFile(AsfExtended({list(50000, attribute)}, 50000)), "49999", 1},
        {"comments beyond all reason", "a.flac", Flac(QList<QByteArray>(100000, "A=b")), "A", 65536},
        {"two tags of the same names", "a.mp3", Id3v2(4, list(50000, user)) + ApeTag(items), "name77", 1},
    };
    const TTempDir dir;
    for (const TCase& c : cases) {
        SCOPED_TRACE(c.Name);
        TTags tags;
        ASSERT_EQ(tags.LoadFromFile(dir.Write(QString::fromUtf8(c.FileName), c.Bytes)), 0);
        const QString name = QString::fromUtf8(c.Tag);
        EXPECT_EQ(std::ranges::count_if(
                      tags.Tags(), [&](const auto& tag) { return tag->Name.compare(name, Qt::CaseInsensitive) == 0; }),
                  c.Count);
    }
}

TEST(Tags, CommentsKeepLanguageAndDescription)
{
    const TTempDir dir;
    TTags tags;
    tags.LoadFromFile(dir.Write(u"a.mp3"_s, Id3v2(3, Id3Frame(3, "COMM", Id3Text(0, QByteArray("engnote\0words", 13))) +
                                                         Id3Frame(3, "USLT", Id3Text(0, "deuunterminated")))));
    ASSERT_EQ(tags.Count(), 2);
    EXPECT_EQ(tags.Tags()[0]->Language, u"eng"_s);
    EXPECT_EQ(tags.Tags()[0]->Description, u"note"_s);
    EXPECT_EQ(tags.GetTag(u"comment"_s), u"words"_s);
    EXPECT_EQ(tags.GetTag(u"LYRICS"_s), u"unterminated"_s);
    EXPECT_EQ(tags.GetTag(u"NONE"_s), QString());
}

TEST(Tags, TakesThePicturesOfTheStrongestFormatThatHasAny)
{
    const QByteArray png = MakePicture(2, 2, "PNG");
    const QByteArray jpeg = MakePicture(2, 2, "JPG");
    const QByteArray id3 = Id3v2(3, Id3Frame(3, "APIC", Id3Picture("", 4, "back", png)) +
                                        Id3Frame(3, "APIC", Id3Picture("image/x", 255, "", jpeg)));
    const TTempDir dir;
    TTags tags;
    tags.LoadFromFile(dir.Write(u"a.flac"_s, id3 + Flac({"TITLE=x"})));
    ASSERT_EQ(tags.CoverArtCount(), 2);
    const TCoverArt& first = *tags.CoverArts()[0];
    EXPECT_EQ(first.Name, u"Cover art 1"_s);
    EXPECT_EQ(first.MIMEType, u"image/png"_s);
    EXPECT_EQ(first.PictureFormat, tpfPNG);
    EXPECT_EQ(first.CoverType, 4);
    EXPECT_EQ(first.GetIndex(), 0);
    EXPECT_TRUE(first.Stream == png);
    EXPECT_EQ(tags.CoverArts()[1]->MIMEType, u"image/x"_s);
    EXPECT_EQ(tags.CoverArts()[1]->CoverType, 255);
    tags.LoadTags();
    EXPECT_EQ(tags.CoverArtCount(), 2);

    const QByteArray file = id3 + Flac({"TITLE=x"}, FlacBlock(6, FlacPicture(3, "image/jpeg", "", jpeg, 2, 2, 24)));
    tags.LoadFromFile(dir.Write(u"b.flac"_s, file));
    ASSERT_EQ(tags.CoverArtCount(), 1);
    EXPECT_EQ(tags.CoverArts()[0]->Width, 2);
    tags.ParseCoverArts = false;
    tags.LoadFromFile(dir.File(u"b.flac"_s));
    EXPECT_EQ(tags.CoverArtCount(), 0);
    tags.ParseCoverArts = true;
    tags.OnlyParseCoverArts = true;
    tags.LoadFromFile(dir.File(u"b.flac"_s));
    EXPECT_EQ(tags.CoverArtCount(), 1);
    EXPECT_EQ(tags.Count(), 0);
}

TEST(Tags, PictureFormatsAreSniffed)
{
    const std::pair<QByteArray, TTagPictureFormat> cases[] = {{MakePicture(2, 2, "JPG"), tpfJPEG},
                                                              {MakePicture(2, 2, "PNG"), tpfPNG},
                                                              {MakePicture(2, 2, "BMP"), tpfBMP},
                                                              {"GIF89a", tpfGIF},
                                                              {QByteArray("II*\0", 4), tpfTIFF},
                                                              {QByteArray("MM\0*", 4), tpfTIFF},
                                                              {"II", tpfUnknown},
                                                              {{}, tpfUnknown},
                                                              {"RIFF", tpfUnknown}};
    for (const auto& [bytes, format] : cases)
        EXPECT_EQ(PictureStreamType(bytes), format);
    EXPECT_EQ(CoverTypeText(3), u"Cover (front)"_s);
    EXPECT_EQ(CoverTypeText(20), u"Publisher/Studio logotype"_s);
    EXPECT_EQ(CoverTypeText(21), QString());
}

TEST(Tags, FilesThatHoldNothingOrAreMissing)
{
    const TTempDir dir;
    TTags tags;
    ASSERT_EQ(tags.LoadFromFile(dir.Write(u"a.mp3"_s, Id3v1({"A"}))), 0);
    EXPECT_EQ(tags.FileName(), dir.File(u"a.mp3"_s));
    EXPECT_EQ(tags.LoadFromFile(dir.File(u"none.mp3"_s)), 5);
    EXPECT_FALSE(tags.Loaded());
    EXPECT_EQ(tags.Count(), 0);
    EXPECT_EQ(tags.FileName(), QString());
    for (const QByteArray& bytes : {QByteArray(), QByteArray("x"), QByteArray(5000, '\0'), QByteArray(5000, '\xFF')}) {
        EXPECT_EQ(tags.LoadFromFile(dir.Write(u"b.xyz"_s, bytes)), 0);
        EXPECT_FALSE(tags.Loaded());
        EXPECT_EQ(tags.Count(), 0);
        EXPECT_EQ(tags.SourceAudioAttributes().BitRate(), 0);
        EXPECT_EQ(tags.SourceAudioAttributes().PlayTime(), 0);
    }
}

TEST(Tags, FileNamesNeedNotBeUtf8)
{
    const TTempDir dir;
    const std::filesystem::path path = std::filesystem::path(dir.Path().toStdString()) / "caf\xE9.mp3";
    std::filesystem::copy_file(dir.Write(u"a.mp3"_s, Id3v1({"A"})).toStdString(), path);
    TTags tags;
    EXPECT_EQ(tags.LoadFromFile(PathToText(path)), 0);
    EXPECT_EQ(tags.GetTag(u"TITLE"_s), u"A"_s);
    std::filesystem::remove(path); // the folder's own clean-up cannot name it
}

TEST(Tags, ListsCanBeEdited)
{
    TTags tags;
    TTag* first = tags.Add(u"A"_s);
    tags.Add(u"A"_s);
    TTag* third = tags.Add(u"B"_s);
    EXPECT_EQ(third->GetIndex(), 2);
    EXPECT_EQ(tags.Exists(u"b"_s), 2);
    EXPECT_TRUE(first->Remove());
    EXPECT_EQ(third->GetIndex(), 1);
    EXPECT_FALSE(tags.Delete(2));
    EXPECT_FALSE(tags.Delete(-1));
    EXPECT_TRUE(tags.Remove(0));
    EXPECT_EQ(tags.Count(), 1);
    tags.AddCoverArt(u"x"_s)->AlreadyParsed = true;
    tags.ReSetAlreadyParsedState();
    EXPECT_FALSE(tags.CoverArts()[0]->AlreadyParsed);
    tags.Clear();
    EXPECT_EQ(tags.Count() + tags.CoverArtCount(), 0);
}

TEST(Tags, AttributesComeFromTheReaderThatKnows)
{
    const TTempDir dir;
    TTags tags;
    for (const auto& [samples, seconds] : {std::pair(66250u, 2), {22050u, 0}, {66150u, 2}, {110250u, 2}}) {
        tags.LoadFromFile(dir.Write(u"a.aiff"_s, Aiff("AIFF", AiffComm(2, samples, 16, 44100))));
        EXPECT_EQ(tags.SourceAudioAttributes().PlayTime(), seconds) << samples << ": whole ones, a half to the even";
    }
    EXPECT_EQ(tags.SourceAudioAttributes().Channels(), 2);
    EXPECT_EQ(tags.SourceAudioAttributes().BitRate(), 1411200);
    tags.LoadFromFile(dir.Write(u"a.mp3"_s, MpegFrames(100)));
    EXPECT_NEAR(tags.SourceAudioAttributes().PlayTime(), 2.612, 0.001);
    EXPECT_NEAR(static_cast<double>(tags.SourceAudioAttributes().SampleCount()), 115200, 10);
    tags.ParseAudioAttributes = false;
    tags.LoadFromFile(dir.File(u"a.mp3"_s));
    EXPECT_EQ(tags.SourceAudioAttributes().PlayTime(), 0);
}

} // namespace Kestrune
