// SPDX-License-Identifier: GPL-3.0-or-later
#include "TagsLibrary.h"
#include "uTestFiles.h"

#include <QCryptographicHash>
#include <QMap>

#include <gtest/gtest.h>

#include <cmath>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

struct TExpectation {
    QString Field;
    QString Value;
    QString Unified;
};

QString Unescaped(QString text)
{
    return text.replace(u"\\n"_s, u"\n"_s).replace(u"\\t"_s, u"\t"_s).replace(u"\\\\"_s, u"\\"_s);
}

// The lists of values per file.
QMap<QString, QList<TExpectation>> ReadExpectations(const QString& path)
{
    QMap<QString, QList<TExpectation>> files;
    for (const QString& line : QString::fromUtf8(Kit::ReadAll(path)).split(u'\n')) {
        const QStringList columns = line.split(u'\t');
        if (columns.size() >= 4 && !line.startsWith(u'#'))
            files[columns[0]].append({columns[1], Unescaped(columns[2]), columns[3]});
    }
    return files;
}

// All values of a name, joined as the list joins them.
QString Joined(const TTags& tags, const QString& name)
{
    QStringList values;
    for (const auto& tag : tags.Tags())
        if (tag->Name.compare(name, Qt::CaseInsensitive) == 0)
            values.append(tag->Value);
    return values.join(u" | "_s);
}

void CheckNumber(double actual, double expected, double tolerance) { EXPECT_NEAR(actual, expected, tolerance); }

void CheckAttribute(const TTags& tags, const QString& file, const TExpectation& expected)
{
    const TSourceAudioAttributes& audio = tags.SourceAudioAttributes();
    const double value = expected.Value.toDouble();
    if (expected.Field == u"samplerate"_s)
        CheckNumber(audio.SamplesPerSec(), value, 0);
    else if (expected.Field == u"channels"_s)
        CheckNumber(audio.Channels(), value, 0);
    else if (expected.Field == u"bitspersample"_s)
        CheckNumber(audio.BitsPerSample(), value, 0);
    else if (expected.Field == u"bitrate_kbps"_s)
        CheckNumber(static_cast<double>(audio.BitRate()) / 1000, value, 1.01);
    else if (expected.Field == u"duration_s"_s && (file.endsWith(u".aiff"_s)))
        CheckNumber(audio.PlayTime(), std::round(value), 0); // whole seconds
    else if (expected.Field == u"duration_s"_s)
        CheckNumber(audio.PlayTime(), value, std::max(0.03, value * 0.002));
}

// Where our rules give something else than the readers agree on.
QString ByOurRules(const QString& file, const TExpectation& expected)
{
    // values are kept as stored: those readers show the "T" of a time as a blank
    if (file == u"mediafile/space_time.mp3"_s && expected.Field == u"date"_s)
        return u"2009-09-04T14:20"_s;
    // the total stands in the track number and in a field of its own
    if ((file == u"mediafile/full.mpc"_s || file == u"mediafile/full.wv"_s) && expected.Field == u"totaltracks"_s)
        return u"03 | 3"_s;
    // one frame holds no bytes of a picture
    if (file == u"tinytag/multiple_images.mp3"_s && expected.Field == u"pictures"_s)
        return u"6"_s;
    return expected.Value;
}

void CheckPicture(const TTags& tags, const QString& file, const TExpectation& expected)
{
    if (expected.Field == u"pictures"_s) {
        EXPECT_EQ(tags.CoverArtCount(), ByOurRules(file, expected).toInt());
        return;
    }
    ASSERT_GT(tags.CoverArtCount(), 0);
    const TCoverArt& art = *tags.CoverArts()[0];
    QString actual;
    if (expected.Field == u"picture1_bytes"_s)
        actual = QString::number(art.Stream.size());
    else if (expected.Field == u"picture1_type"_s)
        actual = QString::number(art.CoverType);
    else if (expected.Field == u"picture1_md5"_s)
        actual = QString::fromLatin1(QCryptographicHash::hash(art.Stream, QCryptographicHash::Md5).toHex());
    EXPECT_EQ(actual, expected.Value);
}

void CheckFile(const QString& folder, const QString& file, const QList<TExpectation>& expectations)
{
    static const QStringList attributes = {u"samplerate"_s, u"channels"_s, u"bitspersample"_s, u"bitrate_kbps"_s,
                                           u"duration_s"_s};
    // No reader here knows the sound of such files.
    static const QStringList unread = {u".tta"_s, u".ofr"_s, u".aac"_s, u".ac3"_s};
    TTags tags;
    tags.ParseWavPackAudioAttributes = true;
    tags.ParseMusePackAudioAttributes = true;
    tags.ParseMonkeyAudioAttributes = true;
    ASSERT_EQ(tags.LoadFromFile(folder + u'/' + file), 0);
    for (const TExpectation& expected : expectations) {
        SCOPED_TRACE((file + u' ' + expected.Field + u' ' + expected.Unified).toStdString());
        if (attributes.contains(expected.Field)) {
            // those readers count the tags of that file as sound
            const bool countsTags = file == u"mediafile/full.mpc"_s && expected.Field == u"bitrate_kbps"_s;
            if (!unread.contains(file.last(4)) && !countsTags)
                CheckAttribute(tags, file, expected);
        } else if (expected.Field.startsWith(u"picture"_s)) {
            CheckPicture(tags, file, expected);
        } else if (expected.Field == u"tags"_s) {
            // an encoder's name in the INFO list is a tag here
            EXPECT_EQ(tags.Count(), file == u"mediafile/mpeglayer3.wav"_s ? 1 : 0);
        } else if (expected.Unified != u"-"_s) {
            EXPECT_EQ(Joined(tags, expected.Unified), ByOurRules(file, expected));
        }
    }
}

} // namespace

TEST(TagsSamples, RealFilesReadAsSeveralReadersAgree)
{
    const QString samples = Kit::SamplesFolder();
    if (samples.isEmpty())
        GTEST_SKIP() << "no folder of sample files";
    const QString folder = samples + u"/audio"_s;
    const auto files = ReadExpectations(folder + u"/expected.tsv"_s);
    ASSERT_FALSE(files.isEmpty());
    for (auto it = files.begin(); it != files.end(); ++it)
        CheckFile(folder, it.key(), it.value());
}

} // namespace Kestrune
