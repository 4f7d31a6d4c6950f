// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTouchedReleases.h"

#include "uDataSet.h"
#include "uSQLite.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

void TTouchedReleases::Keep(bool on)
{
    FRows = {};
    FKeeps = on;
}

void TTouchedReleases::Note(const char* table, qint64 row)
{
    if (FKeeps)
        FRows.Note(table, row, false);
}

bool TTouchedReleases::Any() const
{
    return !FRows.Releases.empty() || !FRows.Tracks.empty() || !FRows.Credits.empty();
}

std::vector<qint64> TTouchedReleases::Take(int most)
{
    if (FConnection.InTransaction())
        return {};
    // A row that is gone belongs to a release that was written with it, or is gone too.
    const auto resolve = [this](std::unordered_set<qint64>& rows, const QString& sql) {
        for (const qint64 row : rows)
            if (const qint64 release = FReleases.Active() ? FConnection.Scalar(sql, {row}).toLongLong() : 0;
                release > 0)
                FRows.Releases.insert(release);
        rows.clear();
    };
    if (FRows.Tracks.size() + FRows.Credits.size() > 0) {
        resolve(FRows.Tracks, u"SELECT ReleaseId FROM Tracks2 WHERE ID = ?"_s);
        resolve(FRows.Credits, u"SELECT ifnull(M.ReleaseId, T.ReleaseId) FROM Musicians2 M LEFT JOIN Tracks2 T"
                               " ON T.ID = M.TrackId WHERE M.ID = ?"_s);
    }
    std::vector<qint64> taken;
    while (!FRows.Releases.empty() && (most < 0 || taken.size() < static_cast<size_t>(most))) {
        taken.push_back(*FRows.Releases.begin());
        FRows.Releases.erase(FRows.Releases.begin());
    }
    return taken;
}

} // namespace Kestrune
