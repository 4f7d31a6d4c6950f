// SPDX-License-Identifier: GPL-3.0-or-later
#include "uGroupModel.h"

#include "dmMain.h"
#include "uFieldText.h"
#include "uTHStrings.h"

#include <QItemSelectionModel>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

// The internal id of an index: twice the group for a group, twice the surrounding group plus three for a row, so that
// rows without a group have 1.

TGroupModel::TGroupModel(TListModel& source, QObject* parent) : QAbstractItemModel(parent), FSource(source)
{
    connect(&source, &QAbstractItemModel::modelReset, this, &TGroupModel::Reset);
    connect(&source, &QAbstractItemModel::dataChanged, this, [this](const QModelIndex& from, const QModelIndex& to) {
        const int last = to.column();
        if (!IsGrouped()) {
            Q_EMIT dataChanged(IndexOfRow(from.row(), from.column()), IndexOfRow(to.row(), last));
            return;
        }
        for (const QItemSelectionRange& range : FromSource(QItemSelection(from, to)))
            Q_EMIT dataChanged(range.topLeft(), range.bottomRight());
    });
    Reset();
}

void TGroupModel::Reset()
{
    beginResetModel();
    FGroups.clear();
    FTop.clear();
    FInnermost.clear();
    const std::vector<TListGroup>& groups = FSource.List().Groups();
    FGroups.reserve(groups.size());
    for (int i = 0; i < static_cast<int>(groups.size()); ++i) {
        const TListGroup& group = groups[static_cast<size_t>(i)];
        std::vector<int>& siblings = group.Parent < 0 ? FTop : FGroups[static_cast<size_t>(group.Parent)].Children;
        FGroups.push_back({group, static_cast<int>(siblings.size()), {}});
        siblings.push_back(i);
    }
    for (int i = 0; i < static_cast<int>(FGroups.size()); ++i)
        if (FGroups[static_cast<size_t>(i)].Children.empty())
            FInnermost.push_back(i);
    endResetModel();
}

int TGroupModel::GroupOf(const QModelIndex& index) const
{
    const auto id = static_cast<qint64>(index.internalId());
    return static_cast<int>(id % 2 == 0 ? id / 2 : (id - 3) / 2);
}

bool TGroupModel::IsGroup(const QModelIndex& index) const { return index.isValid() && index.internalId() % 2 == 0; }

int TGroupModel::SourceRow(const QModelIndex& index) const
{
    if (!index.isValid() || IsGroup(index))
        return -1;
    const int group = GroupOf(index);
    return index.row() + (group < 0 ? 0 : FGroups[static_cast<size_t>(group)].Group.First);
}

QModelIndex TGroupModel::IndexOfGroup(int group, int column) const
{
    return group < 0 ? QModelIndex()
                     : createIndex(FGroups[static_cast<size_t>(group)].Row, column, static_cast<quintptr>(group) * 2);
}

int TGroupModel::InnermostGroup(int row) const
{
    const auto after = std::ranges::upper_bound(
        FInnermost, row, {}, [this](int group) { return FGroups[static_cast<size_t>(group)].Group.First; });
    return after == FInnermost.begin() ? -1 : *std::prev(after);
}

QModelIndex TGroupModel::IndexOfRow(int row, int column) const
{
    if (row < 0 || row >= FSource.rowCount())
        return {};
    const int group = InnermostGroup(row);
    const int first = group < 0 ? 0 : FGroups[static_cast<size_t>(group)].Group.First;
    return createIndex(row - first, column, static_cast<quintptr>(group * 2 + 3));
}

QModelIndex TGroupModel::index(int row, int column, const QModelIndex& parent) const
{
    if (row < 0 || column < 0 || row >= rowCount(parent) || column >= columnCount())
        return {};
    if (!parent.isValid())
        return IsGrouped() ? IndexOfGroup(FTop[static_cast<size_t>(row)], column) : createIndex(row, column, 1);
    const int group = GroupOf(parent);
    const TNode& node = FGroups[static_cast<size_t>(group)];
    return node.Children.empty() ? createIndex(row, column, static_cast<quintptr>(group) * 2 + 3)
                                 : IndexOfGroup(node.Children[static_cast<size_t>(row)], column);
}

QModelIndex TGroupModel::parent(const QModelIndex& child) const
{
    if (!child.isValid())
        return {};
    const int group = GroupOf(child);
    return IndexOfGroup(IsGroup(child) ? FGroups[static_cast<size_t>(group)].Group.Parent : group, 0);
}

int TGroupModel::rowCount(const QModelIndex& parent) const
{
    if (!parent.isValid())
        return IsGrouped() ? static_cast<int>(FTop.size()) : FSource.rowCount();
    if (!IsGroup(parent) || parent.column() > 0)
        return 0;
    const TNode& node = FGroups[static_cast<size_t>(GroupOf(parent))];
    return node.Children.empty() ? node.Group.Count : static_cast<int>(node.Children.size());
}

int TGroupModel::columnCount(const QModelIndex&) const { return FSource.columnCount(); }

bool TGroupModel::hasChildren(const QModelIndex& parent) const { return rowCount(parent) > 0; }

QVariant TGroupModel::GroupData(const TNode& node, int role) const
{
    const QString column = FSource.List().Grouping().value(node.Group.Level);
    const int at = FSource.ColumnOf(column);
    const TFieldDef* field = FSource.FieldDefOf(at);
    const auto caption = [&] {
        return field ? FSource.headerData(at, Qt::Horizontal, FullCaptionRole).toString() : column;
    };
    const auto value = [&] {
        const QString text = field ? FieldText(FSource.Data(), *field, node.Group.Value) : VarToStr(node.Group.Value);
        return text.isEmpty() ? GetLanguageString(u"cSEmpty"_s) : text;
    };
    switch (role) {
    case grCaption: return caption();
    case grValue: return value();
    case grCount: return node.Group.Count;
    case grLevel: return node.Group.Level;
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole: return u"%1: %2 (%3)"_s.arg(caption(), value()).arg(node.Group.Count);
    default: return {};
    }
}

QVariant TGroupModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    if (IsGroup(index))
        return GroupData(FGroups[static_cast<size_t>(GroupOf(index))], role);
    return FSource.data(FSource.index(SourceRow(index), index.column()), role);
}

bool TGroupModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const int row = SourceRow(index);
    return row >= 0 && FSource.setData(FSource.index(row, index.column()), value, role);
}

Qt::ItemFlags TGroupModel::flags(const QModelIndex& index) const
{
    if (IsGroup(index))
        return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    const int row = SourceRow(index);
    return row < 0 ? Qt::NoItemFlags : FSource.flags(FSource.index(row, index.column()));
}

QVariant TGroupModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    return FSource.headerData(section, orientation, role);
}

QItemSelection TGroupModel::ToSource(const QItemSelection& selection) const
{
    QItemSelection rows;
    const int last = FSource.columnCount() - 1;
    for (const QItemSelectionRange& range : selection) {
        if (IsGroup(range.topLeft()))
            continue; // a group is no row of the list
        const int top = SourceRow(range.topLeft());
        rows.append(QItemSelectionRange(FSource.index(top, 0), FSource.index(top + range.height() - 1, last)));
    }
    return rows;
}

QItemSelection TGroupModel::FromSource(const QItemSelection& selection) const
{
    QItemSelection rows;
    const int last = FSource.columnCount() - 1;
    for (const QItemSelectionRange& range : selection) {
        for (int row = range.top(); row <= range.bottom();) {
            const int group = InnermostGroup(row);
            const int end = group < 0 ? FSource.rowCount()
                                      : FGroups[static_cast<size_t>(group)].Group.First +
                                            FGroups[static_cast<size_t>(group)].Group.Count;
            const int bottom = std::min(range.bottom(), end - 1);
            rows.append(QItemSelectionRange(IndexOfRow(row, 0), IndexOfRow(bottom, last)));
            row = std::max(bottom, row) + 1;
        }
    }
    return rows;
}

QString TGroupModel::PathOf(const QModelIndex& group) const
{
    QString path;
    for (QModelIndex at = group; at.isValid(); at = at.parent())
        path = u'\x1f' + VarToStr(FGroups[static_cast<size_t>(GroupOf(at))].Group.Value) + path;
    return path;
}

TSelectionLink::TSelectionLink(TGroupModel& model, QItemSelectionModel* source, QItemSelectionModel* tree,
                               QObject* parent)
    : QObject(parent), FModel(model), FSource(source), FTree(tree)
{
    connect(source, &QItemSelectionModel::selectionChanged, this, &TSelectionLink::FollowSource);
    connect(source, &QItemSelectionModel::currentChanged, this, &TSelectionLink::FollowSource);
    connect(tree, &QItemSelectionModel::selectionChanged, this, &TSelectionLink::FollowTree);
    connect(tree, &QItemSelectionModel::currentChanged, this, &TSelectionLink::FollowTree);
}

void TSelectionLink::FollowSource()
{
    if (std::exchange(FFollowing, true))
        return;
    const QModelIndex current = FSource->currentIndex();
    const int column = std::max(0, FTree->currentIndex().column());
    if (current.isValid() && FModel.SourceRow(FTree->currentIndex()) != current.row())
        FTree->setCurrentIndex(FModel.IndexOfRow(current.row(), column), QItemSelectionModel::NoUpdate);
    FTree->select(FModel.FromSource(FSource->selection()), QItemSelectionModel::ClearAndSelect);
    FFollowing = false;
}

void TSelectionLink::FollowTree()
{
    if (std::exchange(FFollowing, true))
        return;
    const QModelIndex current = FTree->currentIndex();
    if (const int row = FModel.SourceRow(current); row >= 0)
        FSource->setCurrentIndex(FModel.Source().index(row, current.column()), QItemSelectionModel::NoUpdate);
    FSource->select(FModel.ToSource(FTree->selection()), QItemSelectionModel::ClearAndSelect);
    FFollowing = false;
}

} // namespace Kestrune
