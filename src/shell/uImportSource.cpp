// SPDX-License-Identifier: GPL-3.0-or-later
#include "uImportSource.h"

#include "uFileCatcher.h"
#include "uPrompt.h"
#include "uTHStrings.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

TImportSource::TImportSource(TPrompt& prompt) : FPrompt(prompt), FPathCheck([this] { Q_EMIT changed(); }) {}

void TImportSource::Choose(const TImporterClass& importer)
{
    FClass = &importer;
    FText.clear();
    FMemo.clear();
    FPathCheck.Look({});
}

void TImportSource::Enter()
{
    FAcceptsDrops = FClass->AllowsDragNDrop;
    if (FAcceptsDrops)
        FJustDragNDropped = false;
    FPasteMode = false;
    FPathCheck.Look(FText);
}

void TImportSource::SetText(const QString& text)
{
    if (text == FText)
        return;
    FText = text;
    FJustDragNDropped = false;
    FPathCheck.Look(text);
    Q_EMIT changed();
}

bool TImportSource::CanBrowse() const
{
    const TKRNImporterInputType type = FClass->ImporterType;
    return type == iitFile || type == iitFolder;
}

void TImportSource::Browse()
{
    const QString title = GetLanguageString(u"cSImportSelectSourceTitle"_s);
    QString chosen;
    if (FClass->ImporterType == iitFolder) {
        chosen = FPrompt.AskFolder(title, FText);
    } else {
        TFileDialogRequest request;
        request.Title = title;
        request.DefaultExtension = FClass->ImporterFileExt;
        request.Filter = FClass->GetImporterFileExtFilter();
        request.FileName = FText;
        chosen = FPrompt.AskOpenFile(request);
    }
    if (!chosen.isEmpty())
        SetText(chosen);
}

void TImportSource::SetPasteMode(bool paste)
{
    FPasteMode = paste && FClass->CanCopyAndPasteData;
    Q_EMIT changed();
}

void TImportSource::SetMemo(const QString& text)
{
    FMemo = text;
    Q_EMIT changed();
}

void TImportSource::Drop(const TFileCatcher& files)
{
    FText = files.InputPath();
    FPathCheck.Look({});
    FPasteMode = false;
    FJustDragNDropped = true;
    Q_EMIT changed();
}

bool TImportSource::UsesMemo() const
{
    const TKRNImporterInputType type = FClass->ImporterType;
    return type == iitMemo || (type == iitFile && FPasteMode);
}

bool TImportSource::IsGiven() const
{
    if (UsesMemo())
        return !FMemo.isEmpty();
    const bool dropped = FJustDragNDropped && FAcceptsDrops;
    switch (FClass->ImporterType) {
    case iitFile: return !FText.isEmpty() && (FPathCheck.IsFile() || dropped);
    case iitFolder: return FPathCheck.IsFolder() || dropped;
    default: return !FText.isEmpty();
    }
}

} // namespace Kestrune
