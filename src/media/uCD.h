// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uDiscId.h"

#include <QStringList>

namespace Kestrune {

/// The texts by which online services know a disc. Numbers are frames with the lead-in of 150. Hexadecimal ones are in
/// upper case without leading zeros, separated by blanks.
struct TDiscTexts {
    QString TOC;           ///< "96" (the lead-in), the offset of each track, the lead-out
    QString TOC_Microsoft; ///< how many tracks, the offset of each track, the lead-out
    QString DiscID;        ///< 28 characters
    QString TOC_DECIMAL;   ///< decimal, joined by "+": first track, last track, lead-out, the offset of each track
};

/// Reads the disc in a drive. False leaves the texts empty and the reason in `error`.
bool GetTOCAndDiscID(const QString& device, TDiscTexts& texts, QString& error, const TOpenCDDrive& open = OpenCDDrive);
bool GetTOCAndDiscID(const QString& device, QString& toc, QString& tocMicrosoft, QString& discId);

/// The same for a table that was read before.
bool DiscTextsOf(const TRawTOC& toc, TDiscTexts& texts, QString& error);

/// Reads "FIRST LAST LEADOUT OFFSET...", decimal and with the lead-in, as TOC_DECIMAL has them; blanks or "+" separate.
/// All tracks count as audio. What no audio CD can have is refused with a sentence in `error`.
bool ParseDecimalTOC(const QString& text, TRawTOC& toc, QString& error);

/// The devices of all CD drives, such as "/dev/sr0": those that the kernel lists in `infoFile`, or else the nodes
/// sr0 to sr15 that are in `deviceFolder`.
QStringList ListCDDrives(const QString& infoFile = QStringLiteral("/proc/sys/dev/cdrom/info"),
                         const QString& deviceFolder = QStringLiteral("/dev"));

/// Opens the tray; false when the drive does not.
bool EjectCD(const QString& device, const TOpenCDDrive& open = OpenCDDrive);

} // namespace Kestrune
