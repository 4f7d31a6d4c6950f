// SPDX-License-Identifier: GPL-3.0-or-later
#include "uLists.h"

#include "uShell.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

TLists::TLists(TShell& shell)
    : FReleases(shell, shell.Data().qReleasesMain, u"AlbumView"_s),
      FTracks(shell, shell.Data().qTracksAll, u"TracksView"_s)
{
    for (TListSession* list : All()) {
        const auto forward = [this, list](auto from, auto to) {
            connect(list, from, this, [this, list, to] {
                if (FActive == list)
                    Q_EMIT(this->*to)();
            });
        };
        forward(&TListSession::filtersChanged, &TLists::filtersChanged);
        forward(&TListSession::sortChanged, &TLists::sortChanged);
        forward(&TListSession::selectionChanged, &TLists::selectionChanged);
        forward(&TListSession::focusChanged, &TLists::focusChanged);
    }
}

void TLists::SetActive(TListSession& list)
{
    if (FActive == &list)
        return;
    FActive = &list;
    Q_EMIT filtersChanged();
    Q_EMIT sortChanged();
    Q_EMIT selectionChanged();
}

void TLists::Reset()
{
    for (TListSession* list : All())
        list->Reset();
}

void TLists::LoadSettings(const TTHCustomSettings& store)
{
    for (TListSession* list : All())
        list->LoadSettings(store);
}

void TLists::SaveSettings(TTHCustomSettings& store)
{
    for (TListSession* list : All())
        list->SaveSettings(store);
}

} // namespace Kestrune
