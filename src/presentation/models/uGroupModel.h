// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uListModel.h"

#include <QAbstractItemModel>
#include <QItemSelection>

class QItemSelectionModel;

namespace Kestrune {

/// A list model as a tree: the groups of its cursor with their rows below, or the bare rows where nothing is grouped.
/// Nothing is copied but the numbers of the rows; the source outlives the model.
class TGroupModel : public QAbstractItemModel {
    Q_OBJECT

public:
    explicit TGroupModel(TListModel& source, QObject* parent = nullptr);

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    using QObject::parent;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    TListModel& Source() const { return FSource; }
    bool IsGrouped() const { return !FGroups.empty(); }
    int GroupCount() const { return static_cast<int>(FTop.size()); }
    bool IsGroup(const QModelIndex& index) const;
    /// Row of the source; -1 for a group.
    int SourceRow(const QModelIndex& index) const;
    /// Index of a row of the source.
    QModelIndex IndexOfRow(int row, int column = 0) const;
    QItemSelection ToSource(const QItemSelection& selection) const;
    QItemSelection FromSource(const QItemSelection& selection) const;
    /// The values of a group and of those around it, as one text by which it is known again after a reset.
    QString PathOf(const QModelIndex& group) const;

private:
    struct TNode {
        TListGroup Group;
        int Row = 0;               // among its siblings
        std::vector<int> Children; // groups; empty for one that holds rows
    };
    void Reset();
    int GroupOf(const QModelIndex& index) const;
    QModelIndex IndexOfGroup(int group, int column) const;
    int InnermostGroup(int row) const;
    QVariant GroupData(const TNode& node, int role) const;

    TListModel& FSource;
    std::vector<TNode> FGroups;
    std::vector<int> FTop;
    std::vector<int> FInnermost; // groups that hold rows, by their first row
};

/// Keeps the selection and the current row of a tree and of its source alike. Rows selected in the tree are selected in
/// the source and the other way round.
class TSelectionLink : public QObject {
    Q_OBJECT

public:
    TSelectionLink(TGroupModel& model, QItemSelectionModel* source, QItemSelectionModel* tree, QObject* parent);
    /// Makes the tree follow the source, as after a reset.
    void FollowSource();

private:
    void FollowTree();

    TGroupModel& FModel;
    QItemSelectionModel* FSource;
    QItemSelectionModel* FTree;
    bool FFollowing = false;
};

} // namespace Kestrune
