// SPDX-License-Identifier: GPL-3.0-or-later
#include "uListSearch.h"

#include "uColumnNames.h"
#include "uDebugLog.h"
#include "uDefaults.h"
#include "uLists.h"
#include "uSearchIndex.h"
#include "uShell.h"
#include "uTHStrings.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const QString SavedFiltersKey = u"SavedFilters"_s;
constexpr int MostSavedFilters = 100;
constexpr int IndexDelay = 1200; // milliseconds after the start, when the window has settled

} // namespace

TListSearch::TListSearch(TShell& shell, TLists& lists)
    : FShell(shell),
      FLists(lists),
      FIndex(std::make_unique<TSearchIndex>(
          shell.Data(), QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + u"/Kestrune"_s))
{
    connect(FIndex.get(), &TSearchIndex::built, this, &TListSearch::IndexBuilt);
    FIndexTimer.setSingleShot(true);
    connect(&FIndexTimer, &QTimer::timeout, this, [this] { FIndex->Open(); });
    FLetterTimer.setSingleShot(true);
    FLetterTimer.setInterval(0);
    connect(&FLetterTimer, &QTimer::timeout, this, &TListSearch::FindLetterHits);
    BindActions();
}

TListSearch::~TListSearch() = default;

void TListSearch::BindActions()
{
    TActionList& actions = FShell.Actions();
    const auto hasData = [this] { return FShell.HasData(); };
    const auto filtered = [this] { return !FLists.Active().Filters().Set().IsEmpty(); };
    const auto sorted = [this] { return FShell.HasData() && !FLists.Active().List().Sort().empty(); };
    actions.Bind(
        u"actSearch"_s, [this] { Search(); }, hasData);
    actions.Bind(
        u"actStatusFilter"_s, [] {}, hasData);
    actions.Bind(
        u"actFilterStatusAll"_s, [this] { RemoveFilter(fckStatus); }, hasData);
    actions.Bind(
        u"actFilterStatusOther"_s, [this] { FLists.Active().Filter([](TViewFilters& filters) { filters.Clear(); }); },
        filtered);
    FShell.BindWindow(u"actAdvancedSearch"_s, hasData);
    FShell.BindWindow(u"actSaveFilter"_s, filtered);
    actions.Bind(
        u"actSavedFilters"_s, [] {}, hasData);
    const auto direction = [this](bool descending) {
        auto sort = FLists.Active().List().Sort();
        for (TSortItem& item : sort)
            item.Descending = descending;
        FLists.Active().SetSort(std::move(sort));
    };
    FShell.BindWindow(u"actSort"_s, hasData);
    actions.Bind(
        u"actSortAsc"_s, [direction] { direction(false); }, sorted);
    actions.Bind(
        u"actSortDesc"_s, [direction] { direction(true); }, sorted);
    actions.Bind(
        u"actClearSorting"_s, [this] { FLists.Active().SetSort({}); }, sorted);
}

void TListSearch::Search()
{
    if (FSearchBy == EverythingField) {
        SearchEverything();
        return;
    }
    if (FLists.Active().List().FieldIndex(FSearchBy) < 0) { // chosen where the other list was in use
        FShell.Tell(bkWarning, GetLanguageString(u"cSFilterColumnMissing"_s), CaptionOfColumn(FSearchBy));
        return;
    }
    FLists.Active().Filter([this](TViewFilters& filters) { filters.SetKeyword(FSearchBy, FSearchText); });
}

void TListSearch::SearchEverything()
{
    FSearchWaits = false;
    const QString words = FSearchText.trimmed();
    if (words.isEmpty()) {
        RemoveFilter(fckEverything);
        return;
    }
    const std::optional<std::vector<qint64>> hits = FIndex->Find(words);
    if (!hits) {
        FSearchWaits = true;
        if (!FIndex->Building()) { // not yet begun, or it failed before
            FIndexTimer.stop();
            FIndex->Open();
            if (FIndex->Ready())
                return SearchEverything();
            if (!FIndex->Building())
                return IndexBuilt();
        }
        const int percent = static_cast<int>(FIndex->Progress() * 100.0);
        FShell.Tell(bkWarning, GetLanguageString(u"cSSearchIndexBuilding"_s).arg(percent),
                    GetLanguageString(u"cSSearchIndexWaits"_s));
        return;
    }
    FLists.Active().Filter([&](TViewFilters& filters) { filters.SetEverything(words, *hits); });
}

void TListSearch::IndexBuilt()
{
    if (!FSearchWaits)
        return;
    FSearchWaits = false;
    if (FIndex->Ready())
        SearchEverything();
    else
        FShell.Tell(bkError, GetLanguageString(u"cSSearchIndexFailed"_s));
}

void TListSearch::RemoveFilter(TFilterChipKind kind, const QString& column)
{
    FLists.Active().Filter([&](TViewFilters& filters) { filters.Remove(kind, column); });
}

void TListSearch::FilterStatus(const QString& status)
{
    FLists.Active().Filter([&](TViewFilters& filters) { filters.SetStatus(status); });
}

QStringList TListSearch::StatusItems() { return Defaults().Statuses.Items(); }

int TListSearch::LocateTitle(const QString& text, int fromRow)
{
    const TListDataset& list = FLists.Releases().List();
    const int count = list.RecordCount();
    int best = -1;
    int nearest = count;
    try {
        for (const qint64 id : FShell.Data().Queries().ReleasesByTitle(text)) {
            const int row = list.RowOfKey(id);
            const int steps = row < 0 ? count : (row - fromRow % count + count) % count;
            if (steps < nearest) {
                nearest = steps;
                best = row;
            }
        }
    } catch (const EDatabaseError& failure) {
        DebugLog(u"[Locate] %1"_s.arg(failure.Text()));
    }
    return best;
}

void TListSearch::SetLetterField(int index)
{
    FLists.Active().Filter([&](TViewFilters& filters) { filters.SetLetterField(index); });
    FLetterTimer.start();
}

void TListSearch::FindLetterHits()
{
    const int field = FLists.Releases().Filters().Set().LetterField;
    try {
        FLetterHits = FShell.Data().Queries().FirstLetters(field == 0 ? Col::Artist : Col::ReleaseName);
    } catch (const EDatabaseError& failure) {
        DebugLog(u"[Letters] %1"_s.arg(failure.Text()));
        return;
    }
    FLetterHits.insert(u"#"_s); // whether there are any is not worth a scan
    Q_EMIT letterHitsChanged();
}

void TListSearch::SaveFilter(const QString& name)
{
    const TFilterSet& set = FLists.Active().Filters().Set();
    const auto known = std::ranges::find(FSavedFilters, name, &TSavedFilter::Name);
    if (known != FSavedFilters.end())
        known->Set = set;
    else
        FSavedFilters.push_back({name, set});
    std::ranges::sort(FSavedFilters, {}, [](const TSavedFilter& filter) { return filter.Name.toCaseFolded(); });
    Q_EMIT savedFiltersChanged();
}

void TListSearch::RecallFilter(const QString& name)
{
    const auto known = std::ranges::find(FSavedFilters, name, &TSavedFilter::Name);
    if (known == FSavedFilters.end())
        return;
    const TFilterSet set = known->Set;
    FLists.Active().RestoreFilters(set);
    if (set.Everything.isEmpty())
        return;
    FSearchText = set.Everything;
    SearchEverything();
}

void TListSearch::ForgetFilter(const QString& name)
{
    std::erase_if(FSavedFilters, [&](const TSavedFilter& filter) { return filter.Name == name; });
    Q_EMIT savedFiltersChanged();
}

void TListSearch::OpenIndexSoon() { FIndexTimer.start(IndexDelay); }

void TListSearch::CloseIndex()
{
    FIndexTimer.stop();
    FIndex->Close();
}

void TListSearch::LoadSettings()
{
    FSavedFilters.clear();
    const QString saved = SettingsStore().ReadString(SavedFiltersKey, {});
    for (const QJsonValue& item : QJsonDocument::fromJson(saved.toUtf8()).array()) {
        const std::optional<TFilterSet> set = FilterSetFromText(item[u"filter"_s].toString());
        if (set && static_cast<int>(FSavedFilters.size()) < MostSavedFilters)
            FSavedFilters.push_back({item[u"name"_s].toString(), *set});
    }
}

void TListSearch::SaveSettings()
{
    QJsonArray saved;
    for (const TSavedFilter& filter : FSavedFilters)
        saved.append(QJsonObject{{u"name"_s, filter.Name}, {u"filter"_s, FilterSetToText(filter.Set)}});
    SettingsStore().WriteString(SavedFiltersKey, {},
                                QString::fromUtf8(QJsonDocument(saved).toJson(QJsonDocument::Compact)));
}

} // namespace Kestrune
