// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uListSession.h"

namespace Kestrune {

/// The lists of the main window and which of them is in use.
class TLists : public QObject {
    Q_OBJECT

public:
    explicit TLists(TShell& shell);

    TListSession& Releases() { return FReleases; }
    TListSession& Tracks() { return FTracks; }
    std::vector<TListSession*> All() { return {&FReleases, &FTracks}; }
    TListSession& Active() { return *FActive; }
    const TListSession& Active() const { return *FActive; }
    bool IsActive(const TListSession& list) const { return FActive == &list; }
    /// The other lists tell of their changes no more.
    void SetActive(TListSession& list);

    /// Every list of a collection that was just opened begins without filter, selection and focus.
    void Reset();
    void LoadSettings(const TTHCustomSettings& store);
    void SaveSettings(TTHCustomSettings& store);

Q_SIGNALS:
    // Of the active list.
    void filtersChanged();
    void sortChanged();
    void selectionChanged();
    void focusChanged();
    /// Bring this release into sight and focus it.
    void focusRequested(qint64 release);

private:
    TListSession FReleases;
    TListSession FTracks;
    TListSession* FActive = &FReleases;
};

} // namespace Kestrune
