// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

namespace Kestrune {

class TDataModuleMain;

/// One row of the detail pane: a caption, its value, and where a click on the value leads (empty for nowhere).
struct TDetailField {
    QString Column;
    QString Label;
    QString Value; ///< empty when the field has none
    QString Link;
    bool IsDefault = false; ///< holds what the settings give to every release
};

/// A foldable part of the pane that lists fields: "General", "Purchase", ...
struct TDetailSection {
    QString Id; ///< by which the pane remembers whether it is open
    QString Title;
    std::vector<TDetailField> Fields;
};

/// One row of the track list.
struct TDetailTrack {
    QString Position; ///< "A1", "3" or, with several discs, "2.05"
    QString Title;
    QString Artist; ///< empty where it is the release's own
    QString Length; ///< "m:ss", empty when unknown
};

/// The tracks of one disc or side.
struct TDetailDisc {
    QString Heading; ///< empty when there is only one
    QString Length;
    std::vector<TDetailTrack> Tracks;
};

/// One row of the credits.
struct TDetailCredit {
    QString Musician;
    QString Credit;
};

/// Everything that the detail pane shows of one release.
struct TDetailData {
    qint64 ID = 0;    ///< 0: no release is selected
    QByteArray Cover; ///< encoded, as stored; empty without one
    QString Title;
    QString Artist;
    int Rating = 0;                       ///< half stars, 0 for unrated
    std::vector<TDetailSection> Sections; ///< all fields, those without a value too
    QString TracksSummary;                ///< "6 · 38:42"
    std::vector<TDetailDisc> Discs;
    std::vector<TDetailCredit> Credits;
    std::vector<QByteArray> Pictures; ///< encoded
};

/// One track before it is arranged by discs and sides.
struct TDetailTrackRow {
    int DiscNo = 1;
    QString Side;
    int TrackNo = 0;
    QString Title;
    QString Artist;      ///< empty where it is the release's own
    double Length = 0.0; ///< days
};

/// The detail view of a release; without an ID when the file does not hold it. Throws EDatabaseError.
TDetailData BuildDetailData(TDataModuleMain& data, qint64 release);

/// Puts tracks into the detail data, in their order, with a heading for each disc and side.
void AddDetailTracks(TDetailData& detail, const std::vector<TDetailTrackRow>& rows);

} // namespace Kestrune
