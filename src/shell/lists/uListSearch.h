// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uViewFilters.h"

#include <QObject>
#include <QSet>
#include <QString>
#include <QTimer>

#include <memory>
#include <vector>

namespace Kestrune {

class TLists;
class TSearchIndex;
class TShell;

/// What stands for all columns in the list of fields to search by.
inline const QString EverythingField = QStringLiteral("*");

struct TSavedFilter {
    QString Name;
    TFilterSet Set;
};

/// The search box, the search in everything with its index, the letters, and filters kept under names. It binds the
/// actions that search, filter and sort. Main thread.
class TListSearch : public QObject {
    Q_OBJECT

public:
    /// Both outlive it.
    TListSearch(TShell& shell, TLists& lists);
    ~TListSearch() override;

    QString SearchBy() const { return FSearchBy; }
    void SetSearchBy(const QString& column) { FSearchBy = column; }
    /// What stands in the search box; actSearch searches for it.
    void SetSearchText(const QString& text) { FSearchText = text; }
    /// Takes a filter of the active list away.
    void RemoveFilter(TFilterChipKind kind, const QString& column = {});
    void FilterStatus(const QString& status);
    static QStringList StatusItems();

    /// The row of the releases whose title, as shown, begins with a text: the next one from a row on and round, in the
    /// order of the list; -1 for none.
    int LocateTitle(const QString& text, int fromRow);

    /// 0 artist, 1 release name.
    void SetLetterField(int index);
    /// Letters with which some stored name of the letter field begins; empty until letterHitsChanged has told.
    const QSet<QString>& LetterHits() const { return FLetterHits; }
    void FindLettersSoon() { FLetterTimer.start(); }

    const std::vector<TSavedFilter>& SavedFilters() const { return FSavedFilters; }
    /// Keeps the present filters under a name, in place of one of the same name.
    void SaveFilter(const QString& name);
    void RecallFilter(const QString& name);
    void ForgetFilter(const QString& name);

    /// The index of the search in everything.
    TSearchIndex& Index() { return *FIndex; }
    /// Opens the index of the open collection when the window has settled.
    void OpenIndexSoon();
    void CloseIndex();
    /// Another collection was opened.
    void Reset() { FSearchWaits = false; }

    void LoadSettings();
    void SaveSettings();

Q_SIGNALS:
    void letterHitsChanged();
    void savedFiltersChanged();

private:
    void BindActions();
    void Search();
    void SearchEverything();
    void IndexBuilt();
    void FindLetterHits();

    TShell& FShell;
    TLists& FLists;
    std::vector<TSavedFilter> FSavedFilters;
    std::unique_ptr<TSearchIndex> FIndex;
    QTimer FIndexTimer;
    bool FSearchWaits = false; // for the index to be built
    QSet<QString> FLetterHits;
    QTimer FLetterTimer;
    QString FSearchBy = EverythingField;
    QString FSearchText;
};

} // namespace Kestrune
