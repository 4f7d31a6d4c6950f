// SPDX-License-Identifier: GPL-3.0-or-later
#include "uSchema.h"

#include "uByteReader.h"
#include "uFilePath.h"
#include "uProgramFiles.h"
#include "uPrompt.h"
#include "uSQLite.h"
#include "uTHStrings.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>
#include <QScopeGuard>

#include <algorithm>
#include <filesystem>
#include <vector>

static void InitDatabaseResources() { Q_INIT_RESOURCE(database); }

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int FirstFormat = 1000;

struct TUpgradeStep {
    int From; // the one version that it raises; 0 for all below its own
    int To;
    QString Script;

    // Old tables go, in an order that their references need not allow, and leave their room behind.
    bool Rebuilds() const { return From > 0; }
    bool Raises(int version) const { return Rebuilds() ? version == From : version < To; }
};

constexpr qint64 HighestVersion = 1'000'000;
constexpr qint64 ComparedAtOnce = 1024 * 1024;

// What the engine writes into the header of each copy anew (file format, 1.3: journal version, change counter, and
// the version of the library that wrote last).
constexpr std::pair<qint64, qint64> HeaderOfEachCopy[] = {{18, 2}, {24, 4}, {92, 8}};

bool HoldTheSame(const QString& first, const QString& second)
{
    const auto a = TFileSource::Open(TextToPath(first));
    const auto b = TFileSource::Open(TextToPath(second));
    if (!a || !b || a->Size() != b->Size())
        return false;
    for (qint64 at = 0; at < a->Size(); at += ComparedAtOnce) {
        QByteArray left = a->Read(at, ComparedAtOnce);
        QByteArray right = b->Read(at, ComparedAtOnce);
        for (const auto& [start, length] : HeaderOfEachCopy) {
            if (at != 0 || left.size() < start + length || right.size() < start + length)
                break;
            left.replace(start, length, QByteArray(length, '\0'));
            right.replace(start, length, QByteArray(length, '\0'));
        }
        if (left != right)
            return false;
    }
    return true;
}

// The copy and the log of the upgrade each take about as much as the file itself.
void CheckSpace(TSQLiteConnection& connection)
{
    const qint64 size =
        connection.Scalar(u"PRAGMA page_count"_s).toLongLong() * connection.Scalar(u"PRAGMA page_size"_s).toLongLong();
    std::error_code error;
    const auto space = std::filesystem::space(TextToPath(QFileInfo(connection.Path()).path()), error);
    const qint64 needed = 2 * size;
    if (error || space.available >= static_cast<std::uintmax_t>(needed))
        return;
    const QLocale locale;
    throw EDatabaseError(
        GetLanguageString(u"cSDBNoSpaceForUpgrade"_s)
            .arg(locale.formattedDataSize(needed), locale.formattedDataSize(static_cast<qint64>(space.available))));
}

// A file that is there stays: an earlier copy is somebody's last way back.
QString FreeName(const QString& stem)
{
    QString name = stem + u".db"_s;
    for (int i = 2; QFileInfo::exists(name) || QFileInfo(name).isSymLink(); ++i)
        name = u"%1-%2.db"_s.arg(stem).arg(i);
    return name;
}

// By their names, "Upgrade3001" or "Upgrade1000To2000", in the order of the versions.
const std::vector<TUpgradeStep>& Steps()
{
    static const std::vector<TUpgradeStep> steps = [] {
        InitDatabaseResources();
        static const QRegularExpression name(u"^(Upgrade(?:(\\d+)To)?(\\d+))\\.sql$"_s);
        std::vector<TUpgradeStep> found;
        for (const QString& file : QDir(u":/sql"_s).entryList())
            if (const auto match = name.match(file); match.hasMatch())
                found.push_back({match.captured(2).toInt(), match.captured(3).toInt(), match.captured(1)});
        std::ranges::sort(found, {}, &TUpgradeStep::To);
        return found;
    }();
    return steps;
}

void RunStep(TSQLiteConnection& connection, const TUpgradeStep& step)
{
    if (!step.Raises(VersionOf(connection)))
        return;
    if (step.Rebuilds())
        connection.Exec(u"PRAGMA foreign_keys = OFF"_s);
    {
        const auto restore = qScopeGuard([&] {
            if (step.Rebuilds())
                connection.Exec(u"PRAGMA foreign_keys = ON"_s);
        });
        // The version stands in the transaction with what it tells of: whatever ends the step leaves the old state or
        // the new one. It is read inside, since another program may raise the same file.
        TSQLiteTransaction transaction(connection);
        if (!step.Raises(VersionOf(connection)))
            return;
        connection.Exec(DatabaseScript(step.Script));
        transaction.Commit();
    }
    if (step.Rebuilds())
        Vacuum(connection);
}

} // namespace

QString DatabaseScript(const QString& name)
{
    InitDatabaseResources();
    const QByteArray text = ProgramText(name + u".sql"_s, u":/sql/%1.sql"_s.arg(name));
    if (text.isNull())
        throw EDatabaseError(u"script %1 is missing"_s.arg(name));
    return QString::fromUtf8(text);
}

int CurrentSchemaVersion() { return Steps().back().To; }

int VersionOf(TSQLiteConnection& connection)
{
    const qint64 version = VarToInt64(connection.Scalar(u"select version from version"_s)).toLongLong();
    return version < 0 || version > HighestVersion ? 0 : static_cast<int>(version);
}

void CheckVersion(TSQLiteConnection& connection)
{
    const QString text = VarToStr(connection.Scalar(u"select version from version"_s)).trimmed();
    bool number = false;
    const double value = text.toDouble(&number);
    if (text.isEmpty() || (number && value > static_cast<double>(HighestVersion)))
        throw EDatabaseError(GetLanguageString(u"cSDBVersionUnknown"_s).arg(text.left(40)));
}

void Vacuum(TSQLiteConnection& connection)
{
    connection.Exec(
        u"PRAGMA auto_vacuum = INCREMENTAL; PRAGMA application_id = %1; VACUUM;"_s.arg(CollectionApplicationId));
}

void TSchemaUpgrade::CopyFile(int version)
{
    const QFileInfo file(FConnection.Path());
    const QString stem = u"%1/%2.before-%3"_s.arg(file.path(), file.completeBaseName()).arg(version);
    const QString aside = stem + u".part"_s;
    std::error_code error;
    const auto discard = qScopeGuard([&] { std::filesystem::remove(TextToPath(aside), error); });
    try {
        CheckSpace(FConnection);
        std::filesystem::remove(TextToPath(aside), error);
        FConnection.BackupTo(aside);
    } catch (const EDatabaseError& failure) {
        throw EDatabaseError(GetLanguageString(u"cSDBBackupFailed"_s).replace(u"%s"_s, failure.Text()), failure.Code());
    }
    // An upgrade that failed before has left a copy of just this state.
    for (const QFileInfo& earlier : QFileInfo(stem).dir().entryInfoList(
             {QFileInfo(stem).fileName() + u".db"_s, QFileInfo(stem).fileName() + u"-*.db"_s}, QDir::Files))
        if (HoldTheSame(aside, earlier.filePath())) {
            FCopy = earlier.filePath();
            return;
        }
    const QString copy = FreeName(stem);
    std::filesystem::rename(TextToPath(aside), TextToPath(copy), error);
    if (error)
        throw EDatabaseError(
            GetLanguageString(u"cSDBBackupFailed"_s).replace(u"%s"_s, QString::fromStdString(error.message())));
    FCopy = copy;
}

bool TSchemaUpgrade::Prepare()
{
    const int version = VersionOf(FConnection);
    if (version == FirstFormat && !FPrompt.AskYesNo(GetLanguageString(u"cSDBUpgdate1To2Confirmation"_s)))
        return false;
    if (version < CurrentSchemaVersion())
        CopyFile(version);
    return true;
}

void TSchemaUpgrade::Run()
{
    try {
        for (const TUpgradeStep& step : Steps())
            RunStep(FConnection, step);
    } catch (const EDatabaseError& failure) {
        if (FCopy.isEmpty())
            throw;
        throw EDatabaseError(GetLanguageString(u"cSDBUpgradeFailed"_s).arg(failure.Text(), FCopy), failure.Code());
    }
}

} // namespace Kestrune
