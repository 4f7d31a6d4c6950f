// SPDX-License-Identifier: GPL-3.0-or-later
#include "uViewLayout.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const QLatin1StringView LayoutVersion("v2");
const QLatin1StringView FoldedVersion("v1");
constexpr int LeastWidth = 16;
constexpr int LargestWidth = 4000;
constexpr qsizetype LongestText = 20000;

bool IsFieldName(QStringView name)
{
    return !name.isEmpty() &&
           std::ranges::all_of(name, [](QChar c) { return c.unicode() < 0x80 && (c.isLetterOrNumber() || c == u'_'); });
}

// Takes the mark of a hidden column or a descending sort off a name.
bool TakeMinus(QString& name)
{
    const bool minus = name.startsWith(u'-');
    if (minus)
        name.remove(0, 1);
    return minus;
}

std::optional<TColumnState> ColumnFromText(const QString& text)
{
    const QStringList parts = text.split(u':');
    if (parts.size() != 2)
        return {};
    TColumnState column{parts[0], 0, false};
    column.Hidden = TakeMinus(column.Field);
    bool isNumber = false;
    column.Width = parts[1].toInt(&isNumber);
    const bool inRange = column.Width == 0 || (column.Width >= LeastWidth && column.Width <= LargestWidth);
    return isNumber && inRange && IsFieldName(column.Field) ? std::optional(column) : std::nullopt;
}

template <typename TItem>
bool IsTwice(const std::vector<TItem>& items, const QString& name, QString TItem::*member)
{
    return std::ranges::any_of(
        items, [&](const TItem& item) { return (item.*member).compare(name, Qt::CaseInsensitive) == 0; });
}

} // namespace

QString LayoutToText(const TTableLayout& layout)
{
    QStringList columns;
    for (const TColumnState& column : layout.Columns)
        columns << u"%1%2:%3"_s.arg(column.Hidden ? u"-"_s : QString(), column.Field).arg(column.Width);
    QStringList sort;
    for (const TSortItem& item : layout.Sort)
        sort << (item.Descending ? u"-"_s : QString()) + item.Column;
    return QStringList{LayoutVersion, columns.join(u','), sort.join(u','), layout.Groups.join(u',')}.join(u'|');
}

std::optional<TTableLayout> LayoutFromText(const QString& text)
{
    const QStringList parts = text.size() > LongestText ? QStringList() : text.split(u'|');
    if (parts.size() != 4 || parts[0] != LayoutVersion)
        return {};
    TTableLayout layout;
    for (const QString& part : parts[1].split(u',')) {
        const std::optional<TColumnState> column = ColumnFromText(part);
        if (!column || IsTwice(layout.Columns, column->Field, &TColumnState::Field))
            return {};
        layout.Columns.push_back(*column);
    }
    for (QString name : parts[2].split(u',', Qt::SkipEmptyParts)) {
        const bool descending = TakeMinus(name);
        if (!IsFieldName(name) || IsTwice(layout.Sort, name, &TSortItem::Column))
            return {};
        layout.Sort.push_back({name, descending});
    }
    for (const QString& name : parts[3].split(u',', Qt::SkipEmptyParts)) {
        if (!IsFieldName(name) || layout.Groups.contains(name, Qt::CaseInsensitive))
            return {};
        layout.Groups << name;
    }
    const bool anyShown = !std::ranges::all_of(layout.Columns, &TColumnState::Hidden);
    return anyShown ? std::optional(layout) : std::nullopt;
}

QString FoldedToText(QStringList ids)
{
    ids.sort();
    return QStringList{FoldedVersion, ids.join(u',')}.join(u'|');
}

QStringList FoldedFromText(const QString& text)
{
    const QStringList parts = text.size() > LongestText ? QStringList() : text.split(u'|');
    if (parts.size() != 2 || parts[0] != FoldedVersion)
        return {};
    const QStringList ids = parts[1].split(u',', Qt::SkipEmptyParts);
    return std::ranges::all_of(ids, &IsFieldName) ? ids : QStringList();
}

} // namespace Kestrune
