// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uActions.h"
#include "uPrompt.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace Kestrune {

class TDataModuleMain;

/// What a bar offers to do.
struct TBarOffer {
    QString Caption;
    std::function<void()> Act;
    bool Stays = false; ///< the bar stays until it is closed, of whatever kind it is
};

/// What all features of the main window share: the collection, the actions, the one word on who is busy, jobs, bars and
/// the windows that they ask for. Main thread.
class TShell : public QObject {
    Q_OBJECT

public:
    /// Both outlive it.
    TShell(TDataModuleMain& data, TPrompt& prompt);

    TDataModuleMain& Data() { return FData; }
    TPrompt& Prompt() { return FPrompt; }
    TActionList& Actions() { return FActions; }

    /// While a token lives nothing else may change the collection.
    using TBusyToken = std::shared_ptr<void>;
    TBusyToken BeginWork();
    bool Busy() const { return FTokens > 0; }

    // Rules that many actions share.
    bool HasData() const;
    bool CanWork() const { return HasData() && !Busy(); }
    bool CanWrite() const;

    using TJobProgress = std::function<bool(int value, int maximum)>;
    /// Runs a long job on the main thread: its progress is shown, events are served with no other change of the
    /// collection allowed, and CancelJob ends it.
    void RunJob(const QString& text, const std::function<void(const TJobProgress&)>& work);
    /// A job runs.
    bool Working() const { return FWorking; }
    void CancelJob() { FCancelled = true; }
    /// The last job was cancelled.
    bool Cancelled() const { return FCancelled; }

    /// Runs what may fail; false when it did, which is told as a bar.
    bool Attempt(const std::function<void()>& work);
    /// A failure of the collection outside an action (a damaged page, a disk that is gone): shown as a bar, once for
    /// the same reason in a row; kept until SetShown when nobody could see it yet.
    void ReportFailure(const QString& reason);
    void ForgetFailure() { FReportedFailure.clear(); }
    void SetShown();
    bool Shown() const { return FShown; }

    void Tell(TBarKind kind, const QString& bold, const QString& sentence = {})
    {
        Q_EMIT barRaised(kind, bold, sentence);
    }
    /// The same with something that the user may do about it.
    void Offer(TBarKind kind, const QString& bold, const QString& sentence, const TBarOffer& offer)
    {
        Q_EMIT offerRaised(kind, bold, sentence, offer);
    }
    /// Asks for the window of an action.
    void RequestWindow(const QString& action) { Q_EMIT windowRequested(action); }
    /// Binds an action to the window of its name.
    void BindWindow(const QString& action, TActionList::TRule enabled = {});

Q_SIGNALS:
    void barRaised(Kestrune::TBarKind kind, const QString& bold, const QString& sentence);
    void offerRaised(Kestrune::TBarKind kind, const QString& bold, const QString& sentence,
                     const Kestrune::TBarOffer& offer);
    void windowRequested(const QString& action);
    /// A long job: value of maximum; a maximum of 0 ends it.
    void jobProgressed(const QString& text, int value, int maximum);

private:
    TDataModuleMain& FData;
    TPrompt& FPrompt;
    TActionList FActions;
    int FTokens = 0;
    bool FWorking = false;
    bool FCancelled = false;
    bool FShown = false;
    QString FReportedFailure;
    QStringList FFailuresAtStart;
};

} // namespace Kestrune
