// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uAddFields.h"
#include "uChosenReleases.h"
#include "uDetailView.h"
#include "uOwnedReleases.h"

#include <QImage>
#include <QObject>
#include <QString>

#include <memory>
#include <vector>

namespace Kestrune {

/// One card of a result tab.
struct TSearchHit {
    qint64 RecordIndex = 0; ///< never given twice
    QImage Cover;           ///< thumbnail; null until one arrives
    QString DataProvider;   ///< name of the service
    QString Artist, ReleaseName, ReleaseYear, Label, CatalogNo, Country, Type;
    std::unique_ptr<TAlbumRelease> DataPointer; ///< null once the release was saved
    bool Fetched = false;                       ///< the full record was asked for
    bool Complete = false;                      ///< the full record is there, or there is no other
    bool Yours = false;                         ///< the collection holds it already
};

/// One result tab.
struct TSearchTab {
    qint64 Id = 0; ///< never given twice
    QString Caption;
    TSearchArea Area = saArtistOrRelease;
    const TInfoGrabberSearch* CurrentSearch = nullptr; ///< the search that fills it
    TSearchWords Words;                                ///< searched for; a retry asks for the same
    std::vector<TSearchHit> Hits;
    std::vector<qint64> Selection; ///< in the order in which they were selected
    qint64 Focused = 0;
};

/// The result tabs with their cards; one of them is current, and there is always one. Answers find their tab and card
/// by number, since both may have gone. Main thread.
class THitTabs final : public QObject {
    Q_OBJECT
public:
    /// The data module outlives it.
    explicit THitTabs(TDataModuleMain& data);

    const std::vector<TSearchTab>& Items() const { return FTabs; }
    int CurrentIndex() const { return FCurrent; }
    const TSearchTab& Current() const { return FTabs[static_cast<size_t>(FCurrent)]; }
    void SetCurrent(int tab);
    void actNewTab();
    void actCloseTab(int tab);
    void actCloseAllTabs();

    // Cards of the current tab
    void actClear();
    void actClearAllTabs();
    void actClearSelection();
    void actSelectAll();
    void actRemoveSelection();
    void SetSelection(std::vector<qint64> records);
    /// The selected releases, taken out of their cards in the order of the selection.
    std::vector<TSavedRelease> TakeSelection();
    /// The card with the keyboard; 0 for none. Null when there is no such card or its release was taken.
    TSearchHit* Focus(qint64 record);
    const TSearchHit* FocusedHit() const;
    /// What the right pane shows: the focused release.
    TDetailData Details() const;

    // Filling
    /// A search begins in the current tab, in place of what was there.
    TSearchTab& BeginSearch(const TInfoGrabberSearch* search, TSearchArea area, const TSearchWords& words,
                            const QString& caption);
    TSearchTab* Find(qint64 id);
    TSearchHit* FindHit(qint64 tab, qint64 record);
    TSearchHit& AddHit(TSearchTab& tab, std::unique_ptr<TAlbumRelease> release, const QString& provider, bool complete);
    /// Cards were added to a tab.
    void Filled(const TSearchTab& tab);
    /// The release of a card changed, or its picture.
    void HitChanged(qint64 tab, TSearchHit& hit);
    /// What the pane shows of a card changed, and not the card.
    void DetailsChanged(qint64 tab, const TSearchHit& hit);
    /// Reads what the collection holds anew, to mark it.
    void LoadOwned() { FOwned.Load(); }

Q_SIGNALS:
    void tabsChanged();
    void hitsChanged(); ///< cards of the current tab were added or removed
    void hitChanged(qint64 record);
    void selectionChanged();
    void detailsChanged();
    void changed(); ///< anything that enables commands

private:
    TSearchTab& CurrentTab() { return FTabs[static_cast<size_t>(FCurrent)]; }
    void AddTab();
    void Drop(size_t at);
    void FillRows(TSearchHit& hit) const;
    void MarkOwned();
    void TellAll(bool withTabs);

    std::vector<TSearchTab> FTabs;
    int FCurrent = 0;
    int FTabsMade = 0;
    qint64 FLastId = 0;
    TOwnedReleases FOwned;
};

} // namespace Kestrune
