// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uColumnNames.h"

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

} // namespace

std::vector<TSearchText> TDataModuleMain::ReadSearchTexts(qint64 after, int count)
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

std::vector<TReleaseKeys> TDataModuleMain::ReadReleaseKeys(qint64 after, int count)
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

bool TDataModuleMain::HasTouchedReleases() const
{
    return !FTouched.Releases.empty() || !FTouched.Tracks.empty() || !FTouched.Credits.empty();
}

std::vector<qint64> TDataModuleMain::TakeTouchedReleases(int most)
{
    if (FConnection.InTransaction())
        return {};
    // A row that is gone belongs to a release that was written with it, or is gone too.
    const auto resolve = [this](std::unordered_set<qint64>& rows, const QString& sql) {
        for (const qint64 row : rows)
            if (const qint64 release = HasData() ? FConnection.Scalar(sql, {row}).toLongLong() : 0; release > 0)
                FTouched.Releases.insert(release);
        rows.clear();
    };
    if (FTouched.Tracks.size() + FTouched.Credits.size() > 0) {
        resolve(FTouched.Tracks, u"SELECT ReleaseId FROM Tracks2 WHERE ID = ?"_s);
        resolve(FTouched.Credits, u"SELECT ifnull(M.ReleaseId, T.ReleaseId) FROM Musicians2 M LEFT JOIN Tracks2 T"
                                  " ON T.ID = M.TrackId WHERE M.ID = ?"_s);
    }
    std::vector<qint64> taken;
    while (!FTouched.Releases.empty() && (most < 0 || taken.size() < static_cast<size_t>(most))) {
        taken.push_back(*FTouched.Releases.begin());
        FTouched.Releases.erase(FTouched.Releases.begin());
    }
    return taken;
}

qint64 TDataModuleMain::AddHits(const std::vector<qint64>& releases)
{
    FConnection.TextRules().Hits[++FHitsNumber] = {releases.begin(), releases.end()};
    return FHitsNumber;
}

void TDataModuleMain::DropHits(qint64 number) { FConnection.TextRules().Hits.erase(number); }

qint64 TDataModuleMain::FirstTrackOf(qint64 release)
{
    return FConnection.Scalar(u"SELECT min(ID) FROM Tracks2 WHERE ReleaseId = ?"_s, {release}).toLongLong();
}

} // namespace Kestrune
