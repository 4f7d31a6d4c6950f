// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDetailSession.h"

#include "uColumnNames.h"
#include "uDefaults.h"
#include "uEditSession.h"
#include "uLists.h"
#include "uShell.h"
#include "uTHStrings.h"
#include "uViewLayout.h"

#include <QFileInfo>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const QString FoldedKey = u"VG.Folded"_s;
const QString HiddenFieldsKey = u"VG.HiddenFields"_s;
constexpr int Delay = 150; // milliseconds, so that a fast walk through the list reads no pictures

} // namespace

TDetailSession::TDetailSession(TShell& shell, TLists& lists) : FShell(shell), FLists(lists)
{
    FTimer.setSingleShot(true);
    FTimer.setInterval(Delay);
    connect(&FTimer, &QTimer::timeout, this, &TDetailSession::Refresh);
    BindActions();
}

void TDetailSession::BindActions()
{
    TActionList& actions = FShell.Actions();
    const auto bindPlace = [&](const QString& name, int location) {
        actions.Bind(
            name,
            [this, location] {
                Defaults().InfoPaneLocation = location;
                SetClosed(false);
            },
            {}, [this, location] { return !Closed() && Location() == location; });
    };
    bindPlace(u"actDetailPanelBottom"_s, 0);
    bindPlace(u"actDetailPanelRight"_s, 1);
    bindPlace(u"actDetailPanelTop"_s, 2);
    actions.Bind(
        u"actHideDetailPanel"_s, [this] { SetClosed(!Closed()); }, {}, [this] { return Closed(); });
    const auto shown = [this] { return FShell.HasData() && !Closed(); };
    actions.Bind(
        u"actVGCustomize"_s, [this] { Q_EMIT customizeToggled(); }, shown);
    actions.Bind(
        u"actVGFilter"_s, [this] { Q_EMIT filterToggled(); }, shown);
    actions.Bind(
        u"actOpenFolderPathInWinExporer"_s, [this] { OpenFolder(); },
        [this] { return FShell.HasData() && FDetail.ID != 0; });
}

void TDetailSession::OpenFolder()
{
    const QString folder = VarToStr(Value(Col::FolderPath));
    if (folder.isEmpty())
        FShell.Tell(bkWarning, GetLanguageString(u"cSNoFolder"_s));
    else if (!QFileInfo::exists(folder))
        FShell.Tell(bkError, GetLanguageString(u"cSFolderMissing"_s), folder);
    else
        Q_EMIT openFolderRequested(folder);
}

void TDetailSession::RefreshSoonUnlessShown(qint64 release)
{
    if (release != FDetail.ID || FTimer.isActive())
        FTimer.start();
}

void TDetailSession::Refresh()
{
    FTimer.stop();
    FDetail = {};
    if (const qint64 release = FShell.HasData() ? FLists.Active().FocusedRelease() : 0; release != 0)
        FShell.Attempt([&] {
            // The current record of the list is the one in sight.
            FShell.Data().qReleasesMain.Locate(release);
            FDetail = BuildDetailData(FShell.Data(), release);
        });
    Q_EMIT detailChanged();
}

TVariant TDetailSession::Value(const QString& field)
{
    TVariant value;
    if (FDetail.ID != 0)
        FShell.Attempt([&] { value = FShell.Data().ReadRelease(FDetail.ID).Info.Value(field); });
    return value;
}

bool TDetailSession::Edit(const QString& field, const TVariant& value)
{
    if (FDetail.ID == 0)
        return false;
    TDataModuleMain& data = FShell.Data();
    if (IsEmptyTitle(data.qReleaseInfo, field, value)) {
        FShell.Tell(bkError, GetLanguageString(u"cSNotSaved"_s), GetLanguageString(u"cSTitleNeeded"_s));
        return false;
    }
    try {
        TEditSession session(data, FDetail.ID);
        data.qReleaseInfo.Edit();
        AssignTyped(data.qReleaseInfo, field, value);
        session.Post();
    } catch (const EDatabaseError& failure) {
        FShell.Tell(bkError, GetLanguageString(u"cSNotSaved"_s), failure.Text());
        return false;
    }
    Refresh();
    return true;
}

void TDetailSession::SetRating(int halfStars)
{
    if (!Edit(Col::Rating_Calc, std::clamp(halfStars, 0, 10) / 2.0))
        Refresh(); // the stars show again what is in the file
}

int TDetailSession::Location() const { return Defaults().InfoPaneLocation; }
bool TDetailSession::Closed() const { return Defaults().FrameClosed; }

void TDetailSession::SetClosed(bool closed)
{
    Defaults().FrameClosed = closed;
    Q_EMIT paneChanged();
    FShell.Actions().Update();
}

void TDetailSession::SetFrameSize(int width, int height)
{
    if (width > 0)
        Defaults().FrameWidth = width;
    if (height > 0)
        Defaults().FrameHeight = height;
}

void TDetailSession::LoadSettings()
{
    FFolded = FoldedFromText(SettingsStore().ReadString(FoldedKey, {}));
    FHiddenFields = FoldedFromText(SettingsStore().ReadString(HiddenFieldsKey, {}));
}

void TDetailSession::SaveSettings()
{
    SettingsStore().WriteString(FoldedKey, {}, FoldedToText(FFolded));
    SettingsStore().WriteString(HiddenFieldsKey, {}, FoldedToText(FHiddenFields));
}

} // namespace Kestrune
