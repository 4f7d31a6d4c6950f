// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uDataSet.h"
#include "uReleaseRoles.h"

#include <QAbstractTableModel>

#include <functional>

namespace Kestrune {

class TDataModuleMain;

/// The rows of a list cursor with a column for each field. Holds no record of its own: everything is asked of the
/// cursor. The data module outlives the model.
class TListModel : public QAbstractTableModel {
    Q_OBJECT

public:
    /// Stores a value that the user gave to a field; false when it was refused, which the user has been told.
    using TEdit = std::function<bool(qint64 id, const QString& field, const TVariant& value)>;

    TListModel(TDataModuleMain& data, TListDataset& list, QObject* parent);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    TDataModuleMain& Data() const { return FData; }
    TListDataset& List() const { return FList; }

    /// Column of a field; -1 when the list has no such field. The cover is the field "ThumbPicture".
    int ColumnOf(const QString& field) const;
    /// Field of a column; empty for the cover.
    QString FieldOf(int column) const;
    /// Definition of a column's field; null for the cover.
    const TFieldDef* FieldDefOf(int column) const;
    qint64 IdOf(const QModelIndex& index) const;
    /// Index of a record in the first column; invalid when the list does not hold it.
    QModelIndex IndexOfId(qint64 id) const;

    /// With an editing function the cells of fields that can be changed are editable.
    void SetEdit(TEdit edit) { FEdit = std::move(edit); }
    /// Asks the fields anew for which columns there are, as after a change of the custom fields.
    void ResetColumns();

Q_SIGNALS:
    /// The columns are others than before; it follows a reset.
    void columnsReset();

protected:
    /// Answers a role of the views' painters.
    virtual QVariant RoleData(int row, int role) const = 0;
    /// Called before the rows are announced anew.
    virtual void Prepare() {}
    /// A column in front of the fields that shows the cover.
    virtual bool HasCover() const { return false; }
    virtual bool IsColumn(const TFieldDef& field) const;
    virtual TCellKind KindOf(const TFieldDef& field) const;
    QVariant Value(int row, const QString& field) const;
    void Reset();
    /// To be called by the constructor of the derived class.
    void Start();

private:
    void ReadColumns();
    QVariant DisplayData(int row, int field) const;

    TDataModuleMain& FData;
    TListDataset& FList;
    int FRows = 0;      // what the views have been told
    QList<int> FFields; // field of each column; -1 for the cover
    TEdit FEdit;
};

} // namespace Kestrune
