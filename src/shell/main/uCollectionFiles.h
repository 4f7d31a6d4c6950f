// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QStringList>

namespace Kestrune {

class TListSearch;
class TShell;

/// The collection files: making, opening, saving under another name, the list of those that were open. Binds these
/// actions. Main thread.
class TCollectionFiles : public QObject {
    Q_OBJECT

public:
    /// Both outlive it.
    TCollectionFiles(TShell& shell, TListSearch& search);

    /// Opens a collection; false, and told, when it cannot be opened. One that is refused leaves the open one.
    bool Open(const QString& path);
    /// Opens the collection of the last time. What cannot be opened is told by Failure alone, and a first start by
    /// nothing: the window says both where the list would be.
    void OpenAtStart();
    void OpenRecent(const QString& path);
    QStringList Recent() const;
    /// Name of the open file; empty without one.
    QString FileName() const;
    /// Why no collection is open: the last failure, or empty.
    QString Failure() const { return FFailure; }

Q_SIGNALS:
    /// Another collection is open, or none.
    void opened();

private:
    void BindActions();
    void New();
    void AskAndOpen();
    void SaveAs();

    TShell& FShell;
    TListSearch& FSearch;
    QString FFailure;
};

} // namespace Kestrune
