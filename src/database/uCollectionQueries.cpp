// SPDX-License-Identifier: GPL-3.0-or-later
#include "uCollectionQueries.h"

#include "uColumnNames.h"
#include "uColumns.h"
#include "uDataSet.h"
#include "uDefaults.h"
#include "uFieldValues.h"
#include "uSQLite.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype ReleaseReach = 4 * 4096; // bytes of the file that reading a release with its tracks touches

// The texts of a table's rows in one string, wherever they have any.
QString TextsOf(std::span<const TColumnDef> columns, const QString& alias, const QStringList& leftOut)
{
    QStringList terms;
    for (const TColumnDef& column : columns) {
        const QString name = column.Name;
        const bool text = column.Kind == fkString || column.Kind == fkMemo;
        if (text && !leftOut.contains(name))
            terms << u"ifnull(%1.\"%2\" || ' ', '')"_s.arg(alias, name);
    }
    return terms.join(u" || "_s);
}

QString SearchTextSQL()
{
    const QString release = TextsOf(ReleaseColumns(), u"R"_s, {Col::FolderPath, Col::Link, Col::BuyNowLink});
    // Numbers that people know their records by.
    const QString numbers = u"ifnull(R.ReleaseYear || ' ', '') || ifnull(R.No || ' ', '')"_s;
    const QString tracks = TextsOf(TrackColumns(), u"T"_s, {Col::FilePath, Col::FileType, Col::Lyrics, Col::Side});
    return u"SELECT R.ID, %1 || %2 || ifnull((SELECT group_concat(%3, ' ') FROM Tracks2 T WHERE T.ReleaseId = R.ID), "
           u"'')"
           " || ' ' || ifnull((SELECT group_concat(M.Musician, ' ') FROM Musicians2 M WHERE M.ReleaseId = R.ID), '')"
           " || ' ' || ifnull((SELECT group_concat(M.Musician, ' ') FROM Tracks2 T JOIN Musicians2 M"
           " ON M.TrackId = T.ID WHERE T.ReleaseId = R.ID), '')"
           " FROM Releases2 R WHERE R.ID > ? ORDER BY R.ID LIMIT ?"_s.arg(release, numbers, tracks);
}

QString EscapedForLike(QString text)
{
    return text.replace(u'\\', u"\\\\"_s).replace(u'%', u"\\%"_s).replace(u'_', u"\\_"_s);
}

// A name with articles may be shown in another order than it is stored ("Wall, The"), but its words stand in both.
QString LongestWord(QString text)
{
    const QStringList words = text.replace(u',', u' ').split(u' ', Qt::SkipEmptyParts);
    return words.isEmpty() ? QString() : *std::ranges::max_element(words, {}, &QString::size);
}

QString OneCharacter(char32_t character) { return QString::fromUcs4(&character, 1); }

} // namespace

std::vector<TSearchText> TCollectionQueries::ReadSearchTexts(qint64 after, int count)
{
    static const QString sql = SearchTextSQL();
    std::vector<TSearchText> texts;
    TSQLiteStatement& statement = FConnection.Cached(sql);
    statement.BindAll({after, count});
    while (statement.Step())
        texts.push_back({statement.ColumnInt64(0), VarToStr(statement.Column(1))});
    statement.Reset();
    FConnection.NoteRead(static_cast<qsizetype>(texts.size()) * ReleaseReach);
    return texts;
}

std::vector<TReleaseKeys> TCollectionQueries::ReadReleaseKeys(qint64 after, int count)
{
    static const QString sql = u"SELECT ID, Barcode, CatalogNO, DiscogsID, MusicBrainzID FROM Releases2 "
                               "WHERE ID > ? ORDER BY ID LIMIT ?"_s;
    std::vector<TReleaseKeys> keys;
    TSQLiteStatement& statement = FConnection.Cached(sql);
    statement.BindAll({after, count});
    while (statement.Step())
        keys.push_back({statement.ColumnInt64(0), VarToStr(statement.Column(1)), VarToStr(statement.Column(2)),
                        VarToStr(statement.Column(3)), VarToStr(statement.Column(4))});
    statement.Reset();
    FConnection.NoteRead(static_cast<qsizetype>(keys.size()) * ReleaseReach);
    return keys;
}

QSet<QString> TCollectionQueries::FirstLetters(const QString& column)
{
    QSet<QString> letters;
    const int field = FReleases.FieldIndex(column);
    if (!FReleases.Active() || field < 0)
        return letters;
    TSQLiteStatement& query = FConnection.Cached(
        u"SELECT %1 FROM Releases2 WHERE %1 >= ? COLLATE BINARY ORDER BY %1 COLLATE BINARY LIMIT 1"_s.arg(
            FReleases.Fields()[static_cast<size_t>(field)].Name));
    // The names of one letter stand together, so the first name behind them is one step away however many they are.
    char32_t from = 1; // leaves out the empty text
    while (from <= 0x10FFFF) {
        query.Bind(1, OneCharacter(from));
        const QString name = query.Step() ? VarToStr(query.Column(0)) : QString();
        query.Reset();
        const QList<uint> first = name.left(2).toUcs4();
        if (first.isEmpty() || first[0] < from)
            break; // no text follows
        letters.insert(OneCharacter(first[0]).toUpper());
        from = first[0] == 0xD7FF ? 0xE000 : first[0] + 1; // surrogates are no characters
    }
    return letters;
}

std::vector<qint64> TCollectionQueries::ReleasesByTitle(const QString& beginning)
{
    std::vector<qint64> ids;
    if (!FReleases.Active() || beginning.isEmpty())
        return ids;
    const bool asStored = !Defaults().ArticlesEnabled || !Defaults().ArticlesFieldReleaseName;
    const QString pattern = EscapedForLike(asStored ? beginning : LongestWord(beginning)) + u'%';
    TSQLiteStatement& query =
        FConnection.Cached(u"SELECT ID, ReleaseName FROM Releases2 WHERE ReleaseName LIKE ? ESCAPE '\\'"_s);
    query.Bind(1, asStored ? pattern : u'%' + pattern);
    while (query.Step()) {
        const QString title = DisplayText(Col::ReleaseName, VarToStr(query.Column(1)));
        if (title.startsWith(beginning, Qt::CaseInsensitive))
            ids.push_back(query.ColumnInt64(0));
    }
    query.Reset();
    return ids;
}

double TCollectionQueries::SumTrackLengths(qint64 from, qint64 to, qint64& count)
{
    TSQLiteStatement& query =
        FConnection.Cached(u"SELECT count(*), total(TrackLength) FROM Tracks2 WHERE ID > ? AND ID <= ?"_s);
    query.BindAll({from, to});
    query.Step();
    count += query.ColumnInt64(0);
    const double days = query.Column(1).toDouble();
    query.Reset();
    return days;
}

qint64 TCollectionQueries::LastTrackID() { return FConnection.Scalar(u"SELECT max(ID) FROM Tracks2"_s).toLongLong(); }

qint64 TCollectionQueries::AddHits(const std::vector<qint64>& releases)
{
    FConnection.TextRules().Hits[++FHitsNumber] = {releases.begin(), releases.end()};
    return FHitsNumber;
}

void TCollectionQueries::DropHits(qint64 number) { FConnection.TextRules().Hits.erase(number); }

qint64 TCollectionQueries::FirstTrackOf(qint64 release)
{
    return FConnection.Scalar(u"SELECT min(ID) FROM Tracks2 WHERE ReleaseId = ?"_s, {release}).toLongLong();
}

} // namespace Kestrune
