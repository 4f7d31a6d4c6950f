// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

namespace Kestrune {

/// A row of the detail pane: what it is and what it holds.
struct TDetailField {
    QString Label;
    QString Value;
    QString Link;    ///< opened on click or Enter; empty for plain text
    QString Code;    ///< short code shown as a pill before the value, as for countries
    QString Extra;   ///< quieter second part of the value
    QString Column;  ///< column name for editing in place; empty when the row cannot be edited
};

/// A section of fields: General, Purchase, Classical, Custom, Comments.
struct TDetailSection {
    QString Id; ///< stable name under which the folding is remembered
    QString Caption;
    std::vector<TDetailField> Fields;
};

struct TDetailTrack {
    qint64 Id = 0;
    int Disc = 1;
    QString Position; ///< as shown: A1, 5, 2.05
    QString Title;
    QString Artist; ///< empty when it is the release's
    int LengthSeconds = 0; ///< 0 unknown
    bool Playing = false;
};

/// Heading of a disc, shown when there is more than one.
struct TDetailDisc {
    int Disc = 1;
    QString Caption; ///< with side or medium
    QString Length;
};

struct TDetailCredit {
    QString Name;
    QString Role;
};

struct TDetailPicture {
    qint64 Id = 0;
    QByteArray Thumb; ///< encoded
    QString Caption;
};

/// All that the detail pane shows of one release. The logic fills it; the pane only shows.
struct TDetailData {
    qint64 ReleaseId = 0; ///< 0: nothing is selected
    QString Title;
    QString Artist;
    QString MediaType;
    int Rating = 0;       ///< half stars 0 to 10
    QByteArray Cover;     ///< encoded front picture; empty when there is none
    std::vector<TDetailSection> Sections; ///< in order; those before the tracks first
    qsizetype SectionsBeforeTracks = 1;
    QString TracksSummary; ///< "6 · 38:42"
    std::vector<TDetailDisc> Discs;
    std::vector<TDetailTrack> Tracks;
    std::vector<TDetailCredit> Credits;
    std::vector<TDetailPicture> Pictures;
};

} // namespace Kestrune
