// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

namespace Kestrune {

class TDataModuleMain;

/// Holds the release cursors of the gateway for whoever edits one release: from the beginning to the end of the session
/// they stand on its release, whatever the list shows or hides, and the rows of its children get their key from it.
/// One session at a time; the gateway outlives it. Operations throw EDatabaseError.
class TEditSession {
public:
    TEditSession(TDataModuleMain& data, qint64 release);
    /// Drops what was not posted; the cursors follow the list again.
    ~TEditSession();
    TEditSession(const TEditSession&) = delete;
    TEditSession& operator=(const TEditSession&) = delete;

    qint64 Release() const { return FRelease; }
    /// Writes what is in work, the release before its children.
    void Post();
    /// Drops what is in work.
    void Cancel();

private:
    TDataModuleMain& FData;
    qint64 FRelease;
};

} // namespace Kestrune
