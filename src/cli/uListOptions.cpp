// SPDX-License-Identifier: GPL-3.0-or-later
#include "uListOptions.h"

#include "dmMain.h"
#include "uColumnNames.h"
#include "uCommand.h"
#include "uViewFilters.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

TSearchField FieldByWord(const std::vector<TSearchField>& fields, const QString& word)
{
    for (const TSearchField& field : fields) {
        if (field.Column.compare(word, Qt::CaseInsensitive) == 0 ||
            field.Caption.compare(word, Qt::CaseInsensitive) == 0)
            return field;
    }
    throw EUsageError(u"no field %1 to search by"_s.arg(word));
}

std::vector<TSortItem> ParseSort(const QString& text, const TDataset& list)
{
    std::vector<TSortItem> sort;
    for (const QString& part : text.split(u',', Qt::SkipEmptyParts)) {
        const QString trimmed = part.trimmed();
        const TSortItem item{trimmed.startsWith(u'-') ? trimmed.mid(1) : trimmed, trimmed.startsWith(u'-')};
        if (list.FieldIndex(item.Column) < 0)
            throw EUsageError(u"no column %1 to sort by"_s.arg(item.Column));
        sort.push_back(item);
    }
    return sort;
}

// The same filters as those of the window's view of the list.
void AddFilters(const QCommandLineParser& parser, TDataModuleMain& data, TListDataset& list)
{
    TViewFilters filters(data, list);
    if (parser.isSet(u"search"_s)) {
        const QString by = parser.isSet(u"by"_s) ? parser.value(u"by"_s) : Col::ReleaseName;
        filters.SetKeyword(FieldByWord(filters.Fields(), by).Column, parser.value(u"search"_s));
    }
    filters.SetLetter(parser.value(u"letter"_s));
    if (parser.isSet(u"status"_s)) {
        if (list.FieldIndex(Col::Status) < 0)
            throw EUsageError(u"tracks have no status"_s);
        filters.SetStatus(parser.value(u"status"_s));
    }
    list.SetFilterActive(!list.Filter().IsEmpty());
}

QStringList ParseGroups(const QString& text, const TDataset& list)
{
    QStringList groups = text.split(u',', Qt::SkipEmptyParts);
    for (QString& group : groups) {
        group = group.trimmed();
        if (list.FieldIndex(group) < 0)
            throw EUsageError(u"no column %1 to group by"_s.arg(group));
    }
    return groups;
}

} // namespace

void AddListOptions(QCommandLineParser& parser)
{
    parser.addOptions(
        {{u"tracks"_s, u"tracks in place of releases"_s},
         {u"search"_s, u"only rows whose field holds this text; % and _ are wildcards"_s, u"TEXT"_s},
         {u"by"_s, u"the field to search in (column name or caption), ReleaseName if left out"_s, u"FIELD"_s},
         {u"letter"_s, u"only artists that begin with this letter, # for none"_s, u"X"_s},
         {u"status"_s, u"only releases with this status"_s, u"S"_s},
         {u"sort"_s, u"columns to sort by, - for descending, as in \"Artist,-ReleaseYear\""_s, u"COLUMNS"_s},
         {u"group"_s, u"columns to group by, as in \"Genre\""_s, u"COLUMNS"_s}});
}

TListDataset& OpenList(const QCommandLineParser& parser, TDataModuleMain& data)
{
    const bool tracks = parser.isSet(u"tracks"_s);
    TListDataset& list = tracks ? data.qTracksAll : data.qReleasesMain;
    const std::vector<TSortItem> sort = ParseSort(parser.value(u"sort"_s), list);
    const QStringList groups = ParseGroups(parser.value(u"group"_s), list);
    AddFilters(parser, data, list);
    if (!list.Active())
        list.Open();
    list.SetSort(sort);
    if (!groups.isEmpty())
        list.SetGrouping(groups);
    return list;
}

} // namespace Kestrune
