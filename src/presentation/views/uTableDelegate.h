// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uCellDelegate.h"

#include <functional>

namespace Kestrune {

class TFieldEditor;
class TListModel;

/// The cells of a table with the fields' editors in place. A value that is refused stays in its editor.
class TTableDelegate : public TCellDelegate {
    Q_OBJECT
public:
    /// Keeps references to both; null covers paint none.
    TTableDelegate(TCoverCache* covers, TListModel& model, QObject* parent = nullptr);

    /// Where a sentence about a refused value goes.
    void SetOnRefusal(std::function<void(const QString&)> tell) { FTell = std::move(tell); }

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;
    bool eventFilter(QObject*, QEvent*) override { return false; } // the editor does it by itself

private:
    void Finish(TFieldEditor* editor, EndEditHint hint);

    TListModel& FModel;
    std::function<void(const QString&)> FTell;
    mutable bool FRefused = false;
};

} // namespace Kestrune
