// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uCD.h"
#include "uThreads.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace Kestrune {

/// The drive from which discs are read, chosen among those of the machine and kept in the settings. Drives take their
/// time: they are asked beside the main thread.
class TDiscDrive final : public QObject {
    Q_OBJECT
public:
    TDiscDrive();

    const QStringList& Drives() const { return FDrives; }
    /// Lists the drives anew; the first is taken where none is chosen.
    void Refresh();
    const QString& Drive() const { return FDrive; }
    void SetDrive(const QString& drive);

    /// Reads the disc; `done` gets the texts of it, empty ones when it cannot be read. One at a time.
    void Read(std::function<void(const TDiscTexts& texts)> done);
    bool Reading() const { return FReading; }
    void actEjectCD();
    bool EjectEnabled() const { return !FDrive.isEmpty() && !FEject; }

    // The machine's drives; tests put others in their place.
    /// Runs on a thread of its own. False leaves the texts empty and the reason in `error`.
    std::function<bool(const QString& drive, TDiscTexts& texts, QString& error)> ReadDisc;
    std::function<QStringList()> ListDrives;
    std::function<bool(const QString& drive)> EjectDrive;

Q_SIGNALS:
    void changed();
    void ejectFailed(const QString& drive);

private:
    QStringList FDrives;
    QString FDrive;
    bool FReading = false;
    std::unique_ptr<TTaskThread> FReader;
    std::unique_ptr<TTaskThread> FEject;
};

} // namespace Kestrune
