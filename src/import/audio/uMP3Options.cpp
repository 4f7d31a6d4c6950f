// SPDX-License-Identifier: GPL-3.0-or-later
#include "uMP3Options.h"

#include "uDefaults.h"
#include "uMP3Image.h"
#include "uTHStrings.h"

#include <array>

namespace Kestrune {

using namespace Qt::StringLiterals;

TMP3ScanOptions TMP3ScanOptions::FromSettings()
{
    TMP3ScanOptions options;
    options.FindCovers = Defaults().MP3ScanFindCovers;
    options.BackCover = Defaults().MP3ScanBackCover;
    options.MediaCover = Defaults().MP3ScanMediaCover;
    options.OtherImages = Defaults().MP3ScanOtherImages;
    options.ThumbHeight = Defaults().LargeHeight;
    options.VariousArtists = GetLanguageString(u"cSVariousArtists"_s);
    options.Digital = GetLanguageString(u"cSDigital"_s);
    options.UnreadableFile = GetLanguageString(u"cSImporterMP3sUnreadableFile"_s);
    options.UnknownImage = GetLanguageString(u"cSImporterMP3sUnknownImage"_s);
    options.ImageWithoutAudio = GetLanguageString(u"cSImporterMP3sImageWithoutAudio"_s);
    options.UnreadableFolder = GetLanguageString(u"cSFolderUnreadable"_s);
    options.ReadDiscImage = ProcessISO;
    options.ReadStreamLength = TransportStreamSeconds;
    return options;
}

std::span<const TOptionRow<TMP3ScanOptions>> TMP3ScanOptions::Rows()
{
    using O = TMP3ScanOptions;
    static const std::array rows{
        TOptionRow<O>{u"covers"_s, &O::FindCovers},
        TOptionRow<O>{u"back-cover"_s, &O::BackCover},
        TOptionRow<O>{u"media-cover"_s, &O::MediaCover},
        TOptionRow<O>{u"other-images"_s, &O::OtherImages},
    };
    return rows;
}

} // namespace Kestrune
