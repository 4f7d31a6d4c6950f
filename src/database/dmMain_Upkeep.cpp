// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uDebugLog.h"
#include "uDefaults.h"
#include "uFilePath.h"
#include "uSchema.h"
#include "uThreads.h"

#include <QFile>
#include <QScopeGuard>

#include <filesystem>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int RowSetSize = 50;

} // namespace

int TDataModuleMain::GetDBVersion() { return VersionOf(FConnection); }

void TDataModuleMain::VacuumDB()
{
    Q_ASSERT(OnMainThread());
    CommitTransaction();
    Vacuum(FConnection);
}

void TDataModuleMain::CopyTo(const QString& filepath)
{
    Q_ASSERT(OnMainThread());
    const QString aside = filepath + u".part"_s;
    QFile::remove(aside);
    FConnection.BackupTo(aside);
    std::error_code error;
    std::filesystem::rename(TextToPath(aside), TextToPath(filepath), error);
    if (error) {
        QFile::remove(aside);
        throw EDatabaseError(u"%1: %2"_s.arg(filepath, QString::fromStdString(error.message())));
    }
}

std::optional<qint64> TDataModuleMain::DeleteUndoably(TListDataset& list, const std::vector<qint64>& keys,
                                                      const TProgress& progress)
{
    Q_ASSERT(OnMainThread());
    // Keeping and deleting cost about the same.
    const auto half = [&progress](int before) -> TProgress {
        return [&progress, before](int done, int count) {
            return !progress || progress(before * count + done, 2 * count);
        };
    };
    try {
        TSQLiteTransaction transaction(FConnection);
        const qint64 number = FDeleted.Keep(list.Def().Table, keys, half(0));
        if (number == 0 || !list.DeleteKeys(keys, half(1)))
            return std::nullopt;
        FDeleted.Settle(number);
        transaction.Commit();
        return number;
    } catch (const EDatabaseError& failure) {
        if (failure.IsLocked())
            throw;
        DebugLog(u"[Undo] %1"_s.arg(failure.Text()));
    }
    // A disk that is full has no room for what is to be kept, and yet it must be possible to delete.
    return list.DeleteKeys(keys, progress) ? std::optional<qint64>(0) : std::nullopt;
}

std::optional<qint64> TDataModuleMain::UndoDeletion(qint64 number, const TProgress& progress)
{
    Q_ASSERT(OnMainThread());
    FConnection.CheckFileIsThere();
    return FDeleted.Restore(number, progress);
}

int TDataModuleMain::RegenerateThumbnails(const std::function<bool(int row, int count)>& progress)
{
    Q_ASSERT(OnMainThread());
    std::vector<qint64> keys;
    {
        TSQLiteStatement rows = FConnection.Prepare(u"SELECT ID FROM Releases2 ORDER BY ID"_s);
        while (rows.Step())
            keys.push_back(rows.ColumnInt64(0));
    }
    FAddingReleases = true;
    const auto done = qScopeGuard([this] { FAddingReleases = false; });
    const int count = static_cast<int>(keys.size());
    int made = 0;
    for (int first = 0; first < count; first += RowSetSize) {
        const int last = std::min(first + RowSetSize, count);
        std::vector<std::pair<qint64, QByteArray>> thumbnails;
        bool go = true;
        for (int row = first; row < last && go; ++row) {
            const qint64 key = keys[static_cast<size_t>(row)];
            const QByteArray picture =
                FConnection.Scalar(u"SELECT LargePicture FROM Releases2 WHERE ID = ?"_s, {key}).toByteArray();
            // A small picture without a large one, and one whose large picture does not decode, is all that there is.
            if (const QByteArray thumbnail = MakeThumbnail(picture, Defaults().LargeHeight); !thumbnail.isEmpty())
                thumbnails.emplace_back(key, thumbnail);
            go = progress(row + 1, count);
        }
        TSQLiteTransaction transaction(FConnection);
        for (const auto& [key, thumbnail] : thumbnails) {
            TSQLiteStatement& update = FConnection.Cached(u"UPDATE Releases2 SET ThumbPicture = ? WHERE ID = ?"_s);
            update.BindAll({thumbnail, key});
            update.Execute();
        }
        transaction.Commit();
        made += static_cast<int>(thumbnails.size());
        if (!go)
            break;
    }
    return made;
}

} // namespace Kestrune
