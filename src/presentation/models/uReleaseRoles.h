// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Qt>

namespace Kestrune {

/// Roles through which the painters of the views read a release row. They are answered for every column of a row.
enum TReleaseRole : int {
    rrId = Qt::UserRole + 1, ///< qint64, the key of the release
    rrTitle,                 ///< QString
    rrArtist,                ///< QString
    rrYear,                  ///< QString, as shown; empty when unknown
    rrNumber,                ///< QString, the number in the catalogue
    rrMediaType,             ///< QString
    rrRating,                ///< int, half stars 0 to 10; 0 or less is unrated
    rrStatus,                ///< QString, a line of the status dictionary; empty when none
    rrWanted,                ///< bool, the release is wished for and not owned
    rrLentTo,                ///< QString, name of the friend; empty when the release is at home
    rrOverdue,               ///< bool, a loan past its due date
    rrCountry,               ///< QString, two-letter code
    rrLastModified,          ///< anything with a text form that changes whenever the row was written
    rrThumbBytes             ///< QByteArray, the encoded front thumbnail or nothing; read only when it is painted
};

/// What a cell of a table shows when it is more than text. Answered per column.
enum TCellKind : int {
    ckText,    ///< the display text
    ckNumber,  ///< the display text, right-aligned; so is its heading
    ckCover,   ///< a mini cover, read through the release roles
    ckRating,  ///< stars, from rrRating
    ckStatus,  ///< icon and word, from rrStatus, rrWanted, rrLentTo and rrOverdue
    ckCountry, ///< a pill with the display text
    ckPlaying  ///< a play mark when the display text is not empty
};

/// Role of headerData() that gives the TCellKind of a column.
inline constexpr int CellKindRole = Qt::UserRole + 100;
/// Role of headerData() that gives the caption of a column where there is room for all of it.
inline constexpr int FullCaptionRole = Qt::UserRole + 101;

/// Roles of a row that stands for a group of a table.
enum TGroupRole : int {
    grCaption = Qt::UserRole + 200, ///< QString, the caption of the group's column; empty for a row that is no group
    grValue,                        ///< QString, the value as shown
    grCount,                        ///< int, rows in the group
    grLevel                         ///< int, 0 for the outermost
};

} // namespace Kestrune
