// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uObjs.h"

#include <QJsonObject>
#include <QJsonValue>

namespace Kestrune {

/// A value for JSON; dates and times as text.
QJsonValue ToJson(const TVariant& value);

/// The name of a picture's role, as in "cptFrontLarge".
QString PictureTypeName(TCoverPictureType type);
/// Role, size and SHA-1 of a picture.
QJsonObject PictureToJson(const TCoverPicture& picture);

/// All that is known of a release that is not stored: `release` with the fields by column name, `tracks`, `credits`,
/// `genres`, `labels`, `mediaTypes` and `pictures`.
QJsonObject ReleaseToJson(const TAlbumRelease& release);
/// Prints such an object, a line for each field, track, credit, candidate and picture.
void PrintRelease(const QJsonObject& object);

} // namespace Kestrune
