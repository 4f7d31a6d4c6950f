// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmImport.h"
#include "uFieldText.h"
#include "uImportRun.h"
#include "uPrompt.h"
#include "uTHStrings.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

QString ImportErrorText(const QString& message) { return GetLanguageString(u"cSDlgTypeError"_s) + u": "_s + message; }

// Puts one figure for each "%d", as far as a translation has them.
QString WithFigures(QString text, std::initializer_list<int> figures)
{
    for (const int figure : figures)
        if (const qsizetype at = text.indexOf("%d"_L1); at >= 0)
            text.replace(at, 2, QString::number(figure));
    return text;
}

} // namespace

TKRNImportForm::TKRNImportForm(TDataModuleMain& data, TPrompt& prompt, std::span<const TImporterClass> classes)
    : FData(data), FPrompt(prompt), FClasses(classes), FSource(prompt)
{
    connect(&FSource, &TImportSource::changed, this, &TKRNImportForm::updated);
}

TKRNImportForm::~TKRNImportForm() = default;

TImportJob TKRNImportForm::Job(TKRNImporterJobType type) const
{
    TImportJob job{.Class = &Class(),
                   .JobType = type,
                   .InputPath = FSource.Text(),
                   .Data = FSource.UsesMemo() ? FSource.Memo() : QString(),
                   .Options = FOptions->Clone()};
    if (type == ijtImport && Class().CanSelectWhichAlbumsToImport)
        for (const TImportRow& row : FRows)
            if (row.Ticked)
                job.IDsArray.push_back(row.Item.ReleaseID);
    return job;
}

void TKRNImportForm::StartImporter(TKRNImporterJobType type)
{
    FImporter = std::make_unique<TImportRun>(FData, Job(type));
    if (type == ijtImport)
        ListenToImport();
    else
        ListenToListing();
    connect(FImporter.get(), &TImportRun::progressed, this, &TKRNImportForm::updated);
    connect(FImporter.get(), &TImportRun::itemFailed, this, [this](const QString& item, const QString& sentence) {
        Q_EMIT logWarning(item + u": "_s + sentence);
        Q_EMIT updated();
    });
    connect(FImporter.get(), &TImportRun::finished, this, &TKRNImportForm::ImporterFinished);
    if (FImporter->Start())
        return;
    const TMissingDriver driver = *FImporter->MissingDriver();
    FImporter.reset();
    FPrompt.ShowInformation(driver.Sentence);
    Q_EMIT openUrlRequested(driver.URL);
    Q_EMIT closed(false);
}

void TKRNImportForm::EnterSelection()
{
    FListingError.clear();
    FRows.clear();
    FTicked = 0;
    Q_EMIT logCleared();
    Q_EMIT rowsReset();
    StartImporter(ijtGetReleasesList);
}

void TKRNImportForm::ListenToListing()
{
    connect(FImporter.get(), &TImportRun::releasesFound, this, [this](const std::vector<TReleaseFoundItem>& releases) {
        const int first = static_cast<int>(FRows.size());
        for (const TReleaseFoundItem& item : releases)
            FRows.push_back({item});
        Q_EMIT rowsAppended(first, static_cast<int>(FRows.size()) - 1);
        Q_EMIT updated();
    });
    connect(FImporter.get(), &TImportRun::failed, this, [this] {
        FListingError = ImportErrorText(FImporter->Error());
        Q_EMIT updated();
    });
}

int TKRNImportForm::ListingPercent() const
{
    if (!FImporter)
        return 0;
    const double share = 100.0 * FImporter->Position() / std::max(FImporter->Count(), 1);
    return std::clamp(static_cast<int>(share), 0, 100);
}

void TKRNImportForm::EnterProgress()
{
    FFailed = false;
    FStored.clear();
    FProgressText = GetLanguageString(u"cSImportDlgImportingData"_s);
    Q_EMIT logCleared();
    StartImporter(ijtImport);
}

void TKRNImportForm::ListenToImport()
{
    connect(FImporter.get(), &TImportRun::progressed, this, [this] {
        FProgressText = GetLanguageString(u"cSImportDlgImportingData"_s) + u"\n\n"_s + FImporter->CurrentItem();
    });
    connect(FImporter.get(), &TImportRun::logLines, this, &TKRNImportForm::logLines);
    connect(FImporter.get(), &TImportRun::releaseStored, this,
            [this](qint64 id, const QString&) { Q_EMIT releaseStored(id); });
    connect(FImporter.get(), &TImportRun::failed, this, [this] {
        FFailed = true;
        FProgressText = ImportErrorText(FImporter->Error());
        FStored = GetLanguageString(u"cSGuiAlbumsStay"_s).arg(FImporter->Releases());
        Q_EMIT logWarning(FProgressText);
        Q_EMIT updated();
    });
    connect(FImporter.get(), &TImportRun::done, this, [this] {
        FFinishText =
            WithFigures(GetLanguageString(u"cSImportDlgFinishedFmt"_s), {FImporter->Releases(), FImporter->Tracks()});
        GoTo(pFinish);
    });
}

QString TKRNImportForm::ProgressFigures() const
{
    if (FFailed || !FImporter)
        return FStored;
    QStringList parts;
    if (FImporter->Count() > 0)
        parts << GetLanguageString(u"cSGuiPositionOf"_s).arg(FImporter->Position()).arg(FImporter->Count());
    parts << GetLanguageString(u"cSGuiAlbumsStored"_s).arg(FImporter->Releases());
    if (const QString text = LengthText(FImporter->ElapsedSeconds() / 86400.0); !text.isEmpty())
        parts << GetLanguageString(u"cSGuiElapsed"_s).arg(text);
    if (const QString text = LengthText(FImporter->RemainingSeconds() / 86400.0); !text.isEmpty())
        parts << GetLanguageString(u"cSGuiRemaining"_s).arg(text);
    return parts.join(u"   "_s);
}

// The run is deleted later, since this is called from one of its signals.
void TKRNImportForm::ImporterFinished()
{
    FImporter.release()->deleteLater();
    Q_EMIT updated();
}

void TKRNImportForm::Cancel()
{
    if (!CancelEnabled() || !FPrompt.AskYesNo(GetLanguageString(u"cSDiscardChangesConfirmation"_s)))
        return;
    // The worker may have ended while the question stood.
    if (FImporter)
        FImporter->Cancel();
    else
        Q_EMIT closed(FPage == pFinish);
}

} // namespace Kestrune
