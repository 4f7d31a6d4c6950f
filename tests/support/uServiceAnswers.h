// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>

namespace Kestrune::Kit {

/// A made-up answer in the shape in which a service publishes its own.
struct TServiceAnswer {
    QByteArray Stylesheet; ///< file name of the stylesheet that reads it
    QByteArray Name;       ///< "musicbrainz-hits", "discogs-record"
    bool JSON = false;
    QByteArray Text;
};

/// What a search gives: `count` releases. Cover addresses are `covers` with the number of the release behind;
/// MusicBrainz gives none. One of "musicbrainz", "itunes", "discogs", "lastfm".
TServiceAnswer SearchAnswer(const QByteArray& service, int count, const QByteArray& covers = "http://127.0.0.1/cover/");

/// The full record of a release.
TServiceAnswer RecordAnswer(const QByteArray& service, int tracks);

/// Of all services.
const QList<QByteArray>& AnsweringServices();

/// The identifier of a release of MusicBrainz that a search gives.
QByteArray MusicBrainzId(int number);

} // namespace Kestrune::Kit
