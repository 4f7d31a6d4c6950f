// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"

#include <utility>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr size_t MostNamed = 10'000; // rows of a table

} // namespace

void TChanges::Bound(size_t most)
{
    for (std::unordered_set<qint64>* rows : {&Releases, &Tracks, &Credits, &Pictures, &Loans, &Friends}) {
        if (rows->size() <= most)
            continue;
        rows->clear();
        Many = true;
    }
}

bool TChanges::Note(const char* table, qint64 row, bool cameOrWent)
{
    static constexpr std::pair<QLatin1StringView, std::unordered_set<qint64> TChanges::*> tables[] = {
        {"Releases2"_L1, &TChanges::Releases}, {"Tracks2"_L1, &TChanges::Tracks},
        {"Musicians2"_L1, &TChanges::Credits}, {"OtherPictures2"_L1, &TChanges::Pictures},
        {"Loans2"_L1, &TChanges::Loans},       {"Friends2"_L1, &TChanges::Friends}};
    for (const auto& [name, rows] : tables) {
        if (name != QLatin1StringView(table))
            continue;
        (this->*rows).insert(row);
        CameOrWent = CameOrWent || cameOrWent;
        return true;
    }
    return false;
}

// Every row that is written by whatever statement passes here: a journal of changes would stand here too. It is called
// within a step of the engine, so it only notes and drops.
void TDataModuleMain::NoteChange(const char* table, qint64 row, bool cameOrWent)
{
    if (!FUntold.Note(table, row, cameOrWent))
        return;
    FUntold.OnlyAdded = FUntold.OnlyAdded && FAddingReleases;
    FUntold.Bound(MostNamed);
    FTouched.Note(table, row);
    const QLatin1StringView name(table);
    if (name == "Releases2"_L1) {
        qReleasesMain.InvalidateRow(row);
        if (!cameOrWent)
            qTracksAll.ForgetRecords(); // they show columns of their release
    } else if (name == "Tracks2"_L1) {
        qTracksAll.InvalidateRow(row);
        qReleasesMain.ForgetRecords(); // it shows sums over them
    } else if (name == "Loans2"_L1) {
        qReleasesMain.ForgetRecords();
    }
    TellLater();
}

void TDataModuleMain::NoteRollback()
{
    FUntold.Undone = true;
    TellLater();
}

void TDataModuleMain::TellLater()
{
    if (!std::exchange(FTelling, true))
        QMetaObject::invokeMethod(this, &TDataModuleMain::TellChanges, Qt::QueuedConnection);
}

void TDataModuleMain::TellChanges()
{
    FTelling = false;
    if (FUntold.Undone && HasData())
        TakeBack();
    const TChanges changes = std::exchange(FUntold, {});
    if (!changes.OnlyAdded || changes.Undone)
        for (TListDataset* list : {&qReleasesMain, &qTracksAll})
            list->NotifyChanged();
    for (TDetailDataset* cursor : FEdited.All())
        cursor->ForgetRecords();
    Q_EMIT this->changed(changes);
}

void TDataModuleMain::TakeBack()
{
    for (TDataset* cursor : AllCursors())
        cursor->TakeBack();
}

} // namespace Kestrune
