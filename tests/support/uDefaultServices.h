// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uTestFiles.h"
#include "uWebServer.h"

#include <QDir>

namespace Kestrune::Kit {

/// The default service package with a server on loopback in the place of all its hosts: the server's path begins with
/// the host's name. `folder` is where the package of the repository lies. Waits between requests are taken away.
inline QString PackageOnLoopback(const TTempDir& dir, const TWebServer& server, const QString& folder)
{
    for (const QString& name : QDir(folder).entryList(QDir::Files)) {
        QByteArray text = ReadAll(QDir(folder).filePath(name));
        text.replace("'https://", "'" + server.URL().toUtf8()).replace("\"https://", "\"" + server.URL().toUtf8());
        for (const QByteArray wait : {"1100", "3100"})
            text.replace("WaitBetweenRequests=\"" + wait + "\"", "WaitBetweenRequests=\"0\"");
        dir.Write(QStringLiteral("package/") + name, text);
    }
    return dir.File(QStringLiteral("package/infograbber.xml"));
}

/// Answers of the four services as the samples folder has them, and a picture wherever one is asked for.
inline TWebAnswer SampleAnswer(const TWebRequest& request, const QByteArray& picture)
{
    const QByteArray& path = request.Path;
    const auto sample = [](const char* name) {
        return TWebAnswer{.Body = ReadAll(SamplesFolder() + QLatin1Char('/') + QString::fromLatin1(name))};
    };
    if (path.contains("/image/") || path.startsWith("/coverartarchive"))
        return {.Body = picture, .Type = "image/jpeg"};
    if (path.startsWith("/musicbrainz.org/ws/2/discid/"))
        return sample("musicbrainz/discid_xp5tz6rE4OHrBafj0bLfDRMGK48-.xml");
    if (path == "/musicbrainz.org/ws/2/release/")
        return sample("musicbrainz/search-release.xml");
    if (path.startsWith("/musicbrainz.org/ws/2/release/"))
        return sample("musicbrainz/release_833d4c3a-2635-4b7a-83c4-4e560588f23a-recordings+artist-credits.xml");
    if (path == "/api.discogs.com/database/search")
        return sample("discogs/search_trash80.json");
    if (path.startsWith("/api.discogs.com/releases/"))
        return sample("discogs/release_2.json");
    if (path.startsWith("/itunes.apple.com/lookup"))
        return sample("itunes/itunes_lookup_upc.json");
    return {.Status = 404};
}

} // namespace Kestrune::Kit
