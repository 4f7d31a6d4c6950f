// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDate>
#include <QString>

namespace Kestrune {

class TAlbumRelease;

// What a source leaves out stays out of the release, so that the user's default values stand.

/// Sets a text that is not empty.
void SetText(TAlbumRelease& release, const QString& key, const QString& text);
/// Sets a number that is not 0.
void SetNumber(TAlbumRelease& release, const QString& key, int number);
/// Sets a valid date, in the form that the collection keeps.
void SetDate(TAlbumRelease& release, const QString& key, const QDate& date);
/// Sets the code of a country that is given by code or name; one that is unknown is left out.
void SetCountry(TAlbumRelease& release, const QString& country);

} // namespace Kestrune
