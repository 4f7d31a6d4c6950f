// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

class QSocketNotifier;

namespace Kestrune {

/// Closes the windows in an orderly way when the session ends or the process is asked to end (SIGTERM, SIGHUP, SIGINT),
/// so that settings and the collection are written as on any other close. One for the process, after the application
/// and before its windows.
class TSessionEnd : public QObject {
    Q_OBJECT
public:
    TSessionEnd();
    ~TSessionEnd() override;
    /// True once the session or the process was asked to end.
    bool Ending() const { return FEnding; }

private:
    void Close();

    bool FEnding = false;
    QSocketNotifier* FNotifier;
};

} // namespace Kestrune
