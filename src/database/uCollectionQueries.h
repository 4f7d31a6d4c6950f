// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSet>
#include <QString>

#include <vector>

namespace Kestrune {

class TDataset;
class TSQLiteConnection;

/// What the search in everything knows of a release: all its texts, those of its tracks and its credits.
struct TSearchText {
    qint64 ReleaseId = 0;
    QString Text;
};

/// By what a release is known to online services.
struct TReleaseKeys {
    qint64 ReleaseId = 0;
    QString Barcode, CatalogNo, DiscogsID, MusicBrainzID;
};

/// Quick questions to the open collection that no cursor answers. Main thread
/// only; operations throw EDatabaseError.
class TCollectionQueries {
public:
    /// Both outlive it; `releases` is the main list.
    TCollectionQueries(TSQLiteConnection& connection, const TDataset& releases)
        : FConnection(connection), FReleases(releases)
    {}

    /// Adds the number of tracks with an ID in (from, to] to `count` and gives the sum of their lengths in days.
    double SumTrackLengths(qint64 from, qint64 to, qint64& count);
    /// The highest ID of a track; 0 without tracks.
    qint64 LastTrackID();

    /// The letters, in upper case, with which the stored names of a column of the main list begin. Quick for the
    /// indexed columns Artist and ReleaseName: one seek per letter.
    QSet<QString> FirstLetters(const QString& column);
    /// The releases whose title, as DisplayText gives it, begins with a text, in no order.
    std::vector<qint64> ReleasesByTitle(const QString& beginning);

    /// The texts of up to `count` releases behind an ID, in the order of their IDs.
    std::vector<TSearchText> ReadSearchTexts(qint64 after, int count);
    /// The keys of up to `count` releases behind an ID, in the order of their IDs.
    std::vector<TReleaseKeys> ReadReleaseKeys(qint64 after, int count);
    /// Keeps the hits of a search for foIsHit; gives its number, which is the criterion's value.
    qint64 AddHits(const std::vector<qint64>& releases);
    void DropHits(qint64 number);
    /// A track of a release, the first by its ID; 0 without tracks.
    qint64 FirstTrackOf(qint64 release);

private:
    TSQLiteConnection& FConnection;
    const TDataset& FReleases;
    qint64 FHitsNumber = 0;
};

} // namespace Kestrune
