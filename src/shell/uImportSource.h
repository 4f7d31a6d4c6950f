// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uImporterClass.h"
#include "uPathCheck.h"

#include <QObject>
#include <QString>

namespace Kestrune {

class TFileCatcher;
class TPrompt;

/// From where an import takes its releases: a file, a folder, a name, or text that was pasted. Looks at the class of
/// the source for what is wanted. Main thread.
class TImportSource : public QObject {
    Q_OBJECT

public:
    /// The prompt outlives it.
    explicit TImportSource(TPrompt& prompt);

    /// Begins anew for a class, which outlives it; nothing may be asked before.
    void Choose(const TImporterClass& importer);
    /// The page of the source is shown: looks at the path again, since it may be there by now.
    void Enter();

    QString Text() const { return FText; }
    /// What the user types.
    void SetText(const QString& text);
    /// Lets the user choose a file or folder.
    void Browse();
    bool CanBrowse() const;
    /// Pasted text in place of a file (cbCopyPasteData instead of cbChooseFile).
    bool PasteMode() const { return FPasteMode; }
    void SetPasteMode(bool paste);
    QString Memo() const { return FMemo; }
    void SetMemo(const QString& text);
    bool AcceptsDrops() const { return FAcceptsDrops; }
    void Drop(const TFileCatcher& files);
    /// True for what a class takes as text, not as a path.
    bool UsesMemo() const;
    /// True when there is something to import from.
    bool IsGiven() const;

Q_SIGNALS:
    void changed();

private:
    TPrompt& FPrompt;
    const TImporterClass* FClass = nullptr;
    QString FText;
    QString FMemo;
    bool FPasteMode = false;
    bool FAcceptsDrops = false;
    bool FJustDragNDropped = false;
    TPathCheck FPathCheck;
};

} // namespace Kestrune
