// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDiscDrive.h"

#include "uDefaults.h"
#include "uWaitCursor.h"

#include <optional>

namespace Kestrune {

TDiscDrive::TDiscDrive()
    : ReadDisc(
          [](const QString& drive, TDiscTexts& texts, QString& error) { return GetTOCAndDiscID(drive, texts, error); }),
      ListDrives([] { return ListCDDrives(); }),
      EjectDrive([](const QString& drive) { return EjectCD(drive); }),
      FDrive(Defaults().DefaultCD)
{
    Refresh();
}

void TDiscDrive::Refresh()
{
    FDrives = ListDrives();
    if (FDrive.isEmpty() && !FDrives.isEmpty())
        FDrive = FDrives.front();
    Q_EMIT changed();
}

void TDiscDrive::SetDrive(const QString& drive)
{
    FDrive = drive;
    Defaults().DefaultCD = drive;
    Q_EMIT changed();
}

void TDiscDrive::Read(std::function<void(const TDiscTexts& texts)> done)
{
    if (FReading)
        return;
    FReading = true;
    Q_EMIT changed();
    struct TRead {
        std::optional<TWaitCursor> Cursor{std::in_place};
        TDiscTexts Texts;
    };
    const auto result = std::make_shared<TRead>();
    FReader = std::make_unique<TTaskThread>([read = ReadDisc, drive = FDrive, result](const std::stop_token&) {
        QString error; // goes to the debug log
        if (!read(drive, result->Texts, error))
            result->Texts = {};
    });
    FReader->OnTerminate = [this, result, done = std::move(done)] {
        result->Cursor.reset();
        FReading = false;
        done(result->Texts);
        Q_EMIT changed();
    };
    FReader->Start();
}

void TDiscDrive::actEjectCD()
{
    if (!EjectEnabled())
        return;
    const auto done = std::make_shared<bool>(false);
    FEject = std::make_unique<TTaskThread>(
        [eject = EjectDrive, drive = FDrive, done](const std::stop_token&) { *done = eject(drive); });
    FEject->OnTerminate = [this, drive = FDrive, done] {
        const bool opened = *done;
        FEject.reset();
        if (!opened)
            Q_EMIT ejectFailed(drive);
        Q_EMIT changed();
    };
    FEject->Start();
    Q_EMIT changed();
}

} // namespace Kestrune
