// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uFolderNames.h"
#include "uImageTracks.h"

#include <QString>

namespace Kestrune {

/// The tracks of a disc image: Super Audio CD, DVD-Audio, files of an ISO 9660 image (cut by cue sheets inside), or the
/// streams of a Blu-ray disc. With `pictures` the first track gets the image's cover. Never throws for a bad image.
TImageTracks ProcessISO(const QString& image, bool pictures);

/// Artist, album and year from the name of an image, else from its folder's name.
TAlbumName ParseImageName(const QString& image);

/// Length of a transport stream in seconds; 0 when it cannot be opened.
double TransportStreamSeconds(const QString& file);

} // namespace Kestrune
