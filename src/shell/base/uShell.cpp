// SPDX-License-Identifier: GPL-3.0-or-later
#include "uShell.h"

#include "dmMain.h"
#include "uTHStrings.h"

#include <QCoreApplication>
#include <QScopeGuard>

#include <utility>

namespace Kestrune {

using namespace Qt::StringLiterals;

TShell::TShell(TDataModuleMain& data, TPrompt& prompt) : FData(data), FPrompt(prompt)
{
    FActions.OnFailure = [this](const QString& sentence) { Tell(bkError, sentence); };
}

TShell::TBusyToken TShell::BeginWork()
{
    ++FTokens;
    return {nullptr, [this](void*) { --FTokens; }};
}

bool TShell::HasData() const { return FData.HasData(); }

bool TShell::CanWrite() const { return CanWork() && !FData.IsReadOnly(); }

void TShell::RunJob(const QString& text, const std::function<void(const TJobProgress&)>& work)
{
    if (FWorking)
        return;
    TBusyToken token = BeginWork();
    FWorking = true;
    FCancelled = false;
    FActions.SetBlocked(true);
    Q_EMIT jobProgressed(text, 0, 1);
    const auto finish = qScopeGuard([&] {
        token.reset();
        FWorking = false;
        Q_EMIT jobProgressed({}, 0, 0);
        FActions.SetBlocked(false);
    });
    work([&](int value, int maximum) {
        Q_EMIT jobProgressed(text, value, maximum);
        QCoreApplication::processEvents();
        return !FCancelled;
    });
}

bool TShell::Attempt(const std::function<void()>& work)
{
    try {
        work();
        return true;
    } catch (const std::exception& failure) {
        ReportFailure(QString::fromUtf8(failure.what()));
        return false;
    }
}

void TShell::ReportFailure(const QString& reason)
{
    if (!FShown) {
        FFailuresAtStart << reason;
        return;
    }
    if (reason != FReportedFailure)
        Tell(bkError, GetLanguageString(u"cSCollectionUnreadable"_s), reason);
    FReportedFailure = reason;
}

void TShell::SetShown()
{
    FShown = true;
    for (const QString& reason : std::exchange(FFailuresAtStart, {}))
        ReportFailure(reason);
}

void TShell::BindWindow(const QString& action, TActionList::TRule enabled)
{
    FActions.Bind(
        action, [this, action] { RequestWindow(action); }, std::move(enabled));
}

} // namespace Kestrune
