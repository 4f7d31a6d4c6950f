// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uObjs.h"

#include <QByteArray>
#include <QSize>
#include <QString>

namespace Kestrune {

/// Adds a picture from its bytes; false for bytes that are no picture.
bool AddPictureBytes(TAlbumRelease& release, TCoverPictureType type, const QByteArray& bytes);

/// Adds a picture from a file of at most 64 MiB. What cannot be read goes to the debug log; an empty path is none.
bool AddPictureFile(TAlbumRelease& release, TCoverPictureType type, const QString& path);

/// Adds the thumbnails of front and back where there is a large picture without one, `size` in pixels whatever the
/// shape of the picture.
void AddThumbnails(TAlbumRelease& release, QSize size = {120, 120});

} // namespace Kestrune
