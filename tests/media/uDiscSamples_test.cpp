// SPDX-License-Identifier: GPL-3.0-or-later
#include "uISOReader.h"
#include "uM2TSReader.h"
#include "uMediaKit.h"
#include "uUDFReader.h"

#include <QFile>
#include <QMap>
#include <QRegularExpression>

namespace Kestrune {

using namespace Qt::StringLiterals;
using namespace Kit;

namespace {

QString Bool(bool value) { return value ? u"true"_s : u"false"_s; }

// The facts of one image under the names of the expectation files.
QMap<QString, QString> FactsOf(const QString& path)
{
    QMap<QString, QString> facts;
    TISOReader iso;
    facts[u"iso.open"_s] = Bool(iso.Open(path));
    facts[u"iso.label"_s] = iso.VolumeLabel();
    facts[u"iso.entries"_s] = QString::number(iso.Files().size());
    for (size_t i = 0; i < iso.Files().size(); ++i) {
        const TISOFile& file = iso.Files()[i];
        facts[u"iso.entry[%1]"_s.arg(i)] =
            u"%1|%2|offset=%3|size=%4"_s.arg(file.FullPath, file.IsDir ? u"dir"_s : u"file"_s)
                .arg(file.Offset)
                .arg(file.Size);
    }
    TUDFReader udf;
    facts[u"udf.isudf"_s] = Bool(TUDFReader::IsUDFImage(path));
    facts[u"udf.open"_s] = Bool(udf.Open(path));
    facts[u"udf.files"_s] = QString::number(udf.Files().size());
    int streams = 0;
    for (size_t i = 0; i < udf.Files().size(); ++i) {
        const TUDFFile& file = udf.Files()[i];
        QStringList extents;
        for (const TUDFExtent& extent : file.Extents)
            extents += u"%1+%2"_s.arg(extent.Offset).arg(extent.Size);
        facts[u"udf.file[%1]"_s.arg(i)] = u"%1|size=%2|%3"_s.arg(file.Path).arg(file.Size).arg(extents.join(u','));
        TM2TSReader stream;
        if (file.Path.endsWith(".m2ts"_L1) && stream.OpenWindow(path, file.Extents[0].Offset, file.Size))
            facts[u"stream[%1].duration"_s.arg(streams++)] = QString::number(stream.DurationSec(), 'f', 3);
    }
    return facts;
}

} // namespace

TEST(DiscSamples, RealImagesReadAsTheyShould)
{
    if (SamplesFolder().isEmpty())
        GTEST_SKIP() << "no samples folder";
    const TTempDir dir;
    int compared = 0;
    for (const QString& folder : {u"iso"_s, u"udf"_s}) {
        const QString root = SamplesFolder() + u'/' + folder + u'/';
        QMap<QString, QMap<QString, QString>> facts;
        const QList<QByteArray> lines = ReadAll(root + u"expected.tsv"_s).split('\n');
        for (const QByteArray& line : lines) {
            const QStringList cells = QString::fromUtf8(line).split(u'\t');
            if (line.startsWith('#') || cells.size() < 4 || cells[2] == "udf.reason"_L1 || cells[2] == "udf.maps"_L1)
                continue;
            if (!facts.contains(cells[1])) {
                QString path = root + cells[1];
                if (path.endsWith(".xz"_L1)) {
                    QByteArray bytes;
                    ASSERT_TRUE(RunProgram(u"xz"_s, {u"-dc"_s, path}, &bytes));
                    path = dir.Write(cells[1].chopped(3), bytes);
                }
                facts[cells[1]] = FactsOf(path);
            }
            SCOPED_TRACE(line.constData());
            ASSERT_TRUE(facts[cells[1]].contains(cells[2]));
            const QString actual = facts[cells[1]][cells[2]];
            if (cells[2].endsWith(".duration"_L1))
                EXPECT_NEAR(actual.toDouble(), cells[3].toDouble(), 0.1);
            else
                EXPECT_EQ(actual, cells[3]);
            ++compared;
        }
    }
    EXPECT_GT(compared, 30);
}

} // namespace Kestrune
