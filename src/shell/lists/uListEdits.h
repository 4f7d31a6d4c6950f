// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uTHTypes.h"

#include <QObject>
#include <QString>

#include <utility>
#include <vector>

namespace Kestrune {

class TLists;
class TShell;

/// What is done with the selected or focused rows of the active list, and with its table. Binds these actions.
class TListEdits : public QObject {
    Q_OBJECT

public:
    /// Both outlive it.
    TListEdits(TShell& shell, TLists& lists);

    /// Sets the same values on rows of the active list, in one piece and with progress; the number of rows that were
    /// changed.
    int ApplyChanges(const std::vector<qint64>& keys, const std::vector<std::pair<QString, TVariant>>& values);

Q_SIGNALS:
    /// Rows came or went by an action: figures and pane are others.
    void rowsChanged();
    void selectionRequested(bool all);
    /// The focused cell, or the selected rows, go to the clipboard.
    void copyRequested(bool rows);
    /// The table may be edited in place, or no more.
    void inPlaceChanged();
    /// Shows or hides the filter row or the find panel of the active view.
    void filterRowToggled();
    void findPanelToggled();
    void expandRequested(bool expand);
    void bestFitRequested();

private:
    void BindTableActions();
    void BindEditActions();
    void RemoveSelected();
    void OfferUndo(qint64 deletion, const QString& what);
    void Undo(qint64 deletion);
    /// "1 release", "3 tracks".
    QString CountText(size_t rows) const;
    void Duplicate();

    TShell& FShell;
    TLists& FLists;
};

} // namespace Kestrune
