// SPDX-License-Identifier: GPL-3.0-or-later
#include "uCollectionFiles.h"

#include "dmMain.h"
#include "uDBValidator.h"
#include "uDefaults.h"
#include "uFilePath.h"
#include "uListSearch.h"
#include "uPrompt.h"
#include "uShell.h"
#include "uTHStrings.h"

#include <QFileInfo>

#include <filesystem>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

TFileDialogRequest DatabaseDialog(const QString& titleKey)
{
    TFileDialogRequest request;
    request.Title = GetLanguageString(titleKey);
    request.Filter = GetLanguageString(u"cSDatabaseFileFilter"_s);
    request.DefaultExtension = u"db"_s;
    request.Folder = Defaults().DefaultDBFolder;
    return request;
}

bool SameFile(const QString& a, const QString& b)
{
    std::error_code error;
    return std::filesystem::equivalent(TextToPath(a), TextToPath(b), error);
}

} // namespace

TCollectionFiles::TCollectionFiles(TShell& shell, TListSearch& search) : FShell(shell), FSearch(search)
{
    BindActions();
}

void TCollectionFiles::BindActions()
{
    TActionList& actions = FShell.Actions();
    const auto idle = [this] { return !FShell.Busy(); };
    const auto canWork = [this] { return FShell.CanWork(); };
    actions.Bind(
        u"actNewDatabase"_s, [this] { New(); }, idle);
    actions.Bind(
        u"actOpenDatabase"_s, [this] { AskAndOpen(); }, idle);
    actions.Bind(
        u"actSaveDatabase"_s, [this] { FShell.Data().CommitTransaction(); }, canWork);
    actions.Bind(
        u"actSaveDatabaseAs"_s, [this] { SaveAs(); }, canWork);
}

bool TCollectionFiles::Open(const QString& path)
{
    TDataModuleMain& data = FShell.Data();
    FFailure.clear();
    FShell.ForgetFailure();
    FSearch.CloseIndex();
    if (FShell.Shown())
        FSearch.OpenIndexSoon();
    bool done = false;
    try {
        done = data.ConnectToDB(path);
        if (!done && data.HasData())
            return false; // the collection that was open stays, with its filters
        if (!done)
            FFailure = DatabaseValidationMessage(ValidateDatabaseFile(path));
    } catch (const EDatabaseError& failure) {
        FShell.Prompt().ShowError(failure.Text());
        if (data.HasData())
            return false;
        FFailure = failure.Text();
    }
    if (const QString file = data.CurrentFile(); !file.isEmpty())
        Defaults().DBPath = file;
    if (done)
        AddRecentDB(Defaults().RecentDBs, path);
    Q_EMIT opened();
    return done;
}

void TCollectionFiles::OpenAtStart()
{
    const QString path = Defaults().DBPath;
    const TDBValidationResult result = ValidateDatabaseFile(path);
    if (result == dvrOK) {
        Open(path);
        return;
    }
    FFailure = path.isEmpty() ? QString() : DatabaseValidationMessage(result);
    Q_EMIT opened();
}

void TCollectionFiles::OpenRecent(const QString& path)
{
    if (FShell.Busy()) // the releases would go into the other file
        return;
    Open(path);
    FShell.Actions().Update();
}

QStringList TCollectionFiles::Recent() const { return Defaults().RecentDBs; }

QString TCollectionFiles::FileName() const { return QFileInfo(Defaults().DBPath).fileName(); }

void TCollectionFiles::New()
{
    FShell.Data().CommitTransaction();
    TFileDialogRequest request = DatabaseDialog(u"cSactNewDatabase"_s);
    request.FileName = u"Records.db"_s;
    const QString path = FShell.Prompt().AskSaveFile(request);
    if (path.isEmpty())
        return;
    FSearch.CloseIndex();
    try {
        FShell.Data().CreateNewDB(path, FShell.Data().GetNewDatabaseSQL());
    } catch (const EDatabaseError&) {
        Q_EMIT opened(); // it may have closed the one that was open
        throw;
    }
    Open(path);
}

void TCollectionFiles::AskAndOpen()
{
    const QString path = FShell.Prompt().AskOpenFile(DatabaseDialog(u"cSactOpenDatabase"_s));
    if (path.isEmpty())
        return;
    FShell.Data().CommitTransaction();
    Open(path);
}

void TCollectionFiles::SaveAs()
{
    TDataModuleMain& data = FShell.Data();
    TFileDialogRequest request = DatabaseDialog(u"cSactSaveDatabaseAs"_s);
    request.FileName = QFileInfo(data.CurrentFile()).fileName();
    const QString path = FShell.Prompt().AskSaveFile(request);
    if (path.isEmpty())
        return;
    data.CommitTransaction();
    if (SameFile(path, data.CurrentFile()))
        return;
    data.CopyTo(path);
    Open(path);
}

} // namespace Kestrune
