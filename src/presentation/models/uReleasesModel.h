// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uReleaseRoles.h"

#include <QAbstractTableModel>
#include <QHash>

namespace Kestrune {

class TDataModuleMain;

/// The releases of the main list as rows, with a column for the cover and one for each field. Holds no record of its
/// own: everything is asked of the cursor. The data module outlives the model.
class TReleasesModel : public QAbstractTableModel {
    Q_OBJECT

public:
    explicit TReleasesModel(TDataModuleMain& data, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// Column of a field; -1 when the list has no such field. The cover is the field "ThumbPicture".
    int ColumnOf(const QString& field) const;
    /// Field of a column; empty for the cover.
    QString FieldOf(int column) const;
    qint64 IdOf(const QModelIndex& index) const;
    /// Index of a release in the first column; invalid when the list does not hold it.
    QModelIndex IndexOfId(qint64 id) const;

private:
    struct TLoan {
        QString Friend;
        bool Overdue = false;
    };
    QVariant RoleData(int row, int role) const;
    QVariant DisplayData(int row, int field) const;
    QVariant Value(int row, const QString& field) const;
    TCellKind KindOf(int column) const;
    void ReadLoans();

    void Reset();

    TDataModuleMain& FData;
    int FRows = 0;      // what the views have been told
    QList<int> FFields; // field of each column behind the cover
    QHash<qint64, TLoan> FLoans;
};

} // namespace Kestrune
