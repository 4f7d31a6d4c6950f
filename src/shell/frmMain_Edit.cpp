// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmMain.h"
#include "uDefaults.h"
#include "uEditSession.h"
#include "uPrompt.h"
#include "uTHStrings.h"
#include "uWaitCursor.h"

#include <QScopeGuard>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

bool IsEmptyTitle(const QString& field, const TVariant& value)
{
    return field == "ReleaseName"_L1 && VarToStr(value).trimmed().isEmpty();
}

void Assign(TDataset& dataSet, const QString& field, const TVariant& value)
{
    const int index = dataSet.FieldIndex(field);
    if (VarIsNull(value))
        dataSet.SetValue(index, {});
    else
        TDataModuleMain::AssignFieldValue(dataSet, index, value);
}

} // namespace

void TKRNMainForm::SetFocusedTrack(qint64 id)
{
    FFocusedTrack = id;
    if (!TracksShown())
        return;
    TListDataset& tracks = FData.qTracksAll;
    const int row = tracks.RowOfKey(id);
    FFocused = row < 0 ? 0 : tracks.ValueAt(row, tracks.FieldIndex(u"ReleaseId"_s)).toLongLong();
    FDetailTimer.start();
    FActions.Update();
}

void TKRNMainForm::SetTrackSelection(std::vector<qint64> ids)
{
    FTrackSelection = std::move(ids);
    Q_EMIT figuresChanged();
    FActions.Update();
}

std::vector<qint64> TKRNMainForm::ActiveKeys() const
{
    if (!TracksShown())
        return SelectedOrFocused();
    if (!FTrackSelection.empty())
        return FTrackSelection;
    return FFocusedTrack != 0 ? std::vector<qint64>{FFocusedTrack} : std::vector<qint64>{};
}

bool TKRNMainForm::EditField(bool ofTracks, qint64 id, const QString& field, const TVariant& value)
{
    if (IsEmptyTitle(field, value)) {
        Q_EMIT barRaised(bkError, GetLanguageString(u"cSNotSaved"_s), GetLanguageString(u"cSTitleNeeded"_s));
        return false;
    }
    TListDataset& list = ofTracks ? FData.qTracksAll : FData.qReleasesMain;
    try {
        if (!list.Locate(id))
            return false;
        list.Edit();
        Assign(list, field, value);
        list.Post();
    } catch (const EDatabaseError& failure) {
        FData.CancelIfApplicable(list);
        Q_EMIT barRaised(bkError, GetLanguageString(u"cSNotSaved"_s), failure.Text());
        return false;
    }
    return true;
}

TVariant TKRNMainForm::DetailValue(const QString& field)
{
    if (FDetail.ID == 0)
        return {};
    try {
        return FData.ReadRelease(FDetail.ID).Info.Value(field);
    } catch (const EDatabaseError& failure) {
        ReportFailure(failure.Text());
        return {};
    }
}

bool TKRNMainForm::EditDetail(const QString& field, const TVariant& value)
{
    if (FDetail.ID == 0)
        return false;
    if (IsEmptyTitle(field, value)) {
        Q_EMIT barRaised(bkError, GetLanguageString(u"cSNotSaved"_s), GetLanguageString(u"cSTitleNeeded"_s));
        return false;
    }
    try {
        TEditSession session(FData, FDetail.ID);
        FData.qReleaseInfo.Edit();
        Assign(FData.qReleaseInfo, field, value);
        session.Post();
    } catch (const EDatabaseError& failure) {
        Q_EMIT barRaised(bkError, GetLanguageString(u"cSNotSaved"_s), failure.Text());
        return false;
    }
    RefreshDetail();
    return true;
}

void TKRNMainForm::SetDetailRating(int halfStars)
{
    if (!EditDetail(u"Rating_Calc"_s, std::clamp(halfStars, 0, 10) / 2.0))
        RefreshDetail(); // the stars show again what is in the file
}

void TKRNMainForm::RefreshFocusedRow(TDataset& releaseInfo)
{
    if (FData.AddingReleases() || FData.qReleasesMain.IsEmpty())
        return;
    if (releaseInfo.CurrentKey() == FData.qReleasesMain.CurrentKey())
        FData.qReleasesMain.RefreshRow(releaseInfo.CurrentKey());
}

int TKRNMainForm::ApplyChanges(const std::vector<qint64>& keys, const std::vector<std::pair<QString, TVariant>>& values)
{
    TListDataset& list = List();
    std::vector<std::pair<QString, TVariant>> assigned;
    for (const auto& [field, value] : values)
        if (const int index = list.FieldIndex(field); index >= 0 && !IsEmptyTitle(field, value))
            assigned.emplace_back(field,
                                  TDataModuleMain::ToFieldValue(list.Fields()[static_cast<size_t>(index)], value));
    int changed = 0;
    RunJob(GetLanguageString(u"cSactMultiEdit"_s), [&](const TJobProgress& progress) {
        try {
            changed = list.UpdateKeys(keys, assigned, progress);
        } catch (const EDatabaseError& failure) {
            Q_EMIT barRaised(bkError, GetLanguageString(u"cSMultiEditStopped"_s), failure.Text());
            return;
        }
        if (changed == 0 && FCancelled)
            Q_EMIT barRaised(bkWarning, GetLanguageString(u"cSMultiEditStopped"_s), {});
    });
    return changed;
}

void TKRNMainForm::OnChanged(const TChanges& changes)
{
    // A run tells at its end; until then what it adds concerns nothing that is shown.
    if (changes.OnlyAdded && !changes.Undone)
        return;
    if (changes.Undone)
        Q_EMIT thumbnailsChanged();
    const bool ofChild = !changes.Tracks.empty() || !changes.Credits.empty() || !changes.Pictures.empty();
    if (changes.Many || changes.Undone || ofChild || changes.Releases.contains(FDetail.ID))
        FDetailTimer.start();
    if (changes.Many || changes.Undone || changes.CameOrWent)
        CountReleases();
    if (changes.Many || changes.Undone || !changes.Tracks.empty())
        StartCounting();
    Q_EMIT figuresChanged();
}

void TKRNMainForm::RemoveSelected()
{
    if (!FPrompt.AskYesNo(GetLanguageString(u"cSConfirmDelete"_s)))
        return;
    const bool ofTracks = TracksShown();
    TListDataset& list = List();
    qint64& focused = ofTracks ? FFocusedTrack : FFocused;
    const int row = list.RowOfKey(focused);
    const std::vector<qint64> keys = ActiveKeys();
    for (const qint64 key : keys)
        FData.TouchRelease(ofTracks ? list.ValueAt(list.RowOfKey(key), list.FieldIndex(u"ReleaseId"_s)).toLongLong()
                                    : key);
    list.DeleteKeys(keys);
    FData.qTracksAll.Refresh();
    FData.qLoans.Refresh();
    if (ofTracks)
        FData.qReleasesMain.Refresh(); // the sums over the tracks are others now
    CountReleases();
    (ofTracks ? FTrackSelection : FSelection).clear();
    const qint64 next = list.KeyAt(std::min(row, list.RecordCount() - 1));
    if (ofTracks)
        SetFocusedTrack(next);
    else
        FFocused = next;
    RefreshDetail();
    if (next != 0)
        Q_EMIT focusRequested(FFocused);
    StartCounting();
    Q_EMIT figuresChanged();
}

void TKRNMainForm::Duplicate()
{
    if (FFocused == 0)
        return;
    const TWaitCursor waiting;
    FData.AddAlbumReleaseToDB(TDataModuleMain::ToAlbumRelease(FData.ReadRelease(FFocused)), true);
    const qint64 copy = FData.LastAddedReleaseID();
    FData.qReleasesMain.ApplyFilter();
    FData.qTracksAll.Refresh();
    CountReleases();
    StartCounting();
    Q_EMIT figuresChanged();
    if (!FData.qReleasesMain.Locate(copy))
        return; // the filter hides it
    FFocused = copy;
    FDetailTimer.start();
    Q_EMIT focusRequested(copy);
}

} // namespace Kestrune
