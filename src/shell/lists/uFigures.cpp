// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFigures.h"

#include "uLists.h"
#include "uShell.h"

#include <QFileInfo>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 CountStep = 50000; // tracks per turn of the event loop

} // namespace

TFigures::TFigures(TShell& shell, TLists& lists) : FShell(shell), FLists(lists)
{
    FCountTimer.setInterval(0);
    connect(&FCountTimer, &QTimer::timeout, this, &TFigures::CountTracks);
}

void TFigures::CountReleases()
{
    TDataModuleMain& data = FShell.Data();
    FTotal = data.HasData() ? static_cast<int>(data.ExecSQLAndGetID(u"SELECT count(*) FROM Releases2"_s)) : 0;
}

void TFigures::StartCounting()
{
    FTracks = 0;
    FTracksLength = 0.0;
    FCountedTo = 0;
    if (FShell.HasData())
        FCountTimer.start();
}

void TFigures::CountTracks()
{
    // A million tracks in small steps, so that the window stays live meanwhile.
    TDataModuleMain& data = FShell.Data();
    bool more = false;
    if (data.HasData())
        FShell.Attempt([&] {
            FTracksLength += data.Queries().SumTrackLengths(FCountedTo, FCountedTo + CountStep, FTracks);
            FCountedTo += CountStep;
            more = FCountedTo < data.Queries().LastTrackID();
        });
    if (more)
        return;
    FCountTimer.stop();
    Q_EMIT changed();
}

TStatusFigures TFigures::Status() const
{
    const TListSession& active = FLists.Active();
    const TListDataset& list = active.List();
    TDataModuleMain& data = FShell.Data();
    TStatusFigures figures;
    figures.OfTracks = FLists.IsActive(FLists.Tracks());
    figures.Shown = list.RecordCount();
    figures.Total = figures.OfTracks ? static_cast<int>(std::max<qint64>(FTracks, figures.Shown)) : FTotal;
    figures.Selected = static_cast<int>(active.Selection().size());
    figures.Groups = static_cast<int>(std::ranges::count(list.Groups(), 0, &TListGroup::Level));
    figures.Tracks = FCountTimer.isActive() ? -1 : FTracks;
    figures.TracksLength = FTracksLength;
    figures.FileName = data.HasData() ? QFileInfo(data.CurrentFile()).fileName() : QString();
    figures.ReadOnly = data.IsReadOnly();
    return figures;
}

} // namespace Kestrune
