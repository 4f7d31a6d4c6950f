// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

namespace Kestrune {

class TLists;
class TShell;

/// What the status line says.
struct TStatusFigures {
    int Shown = 0;
    int Total = 0;
    int Selected = 0;
    qint64 Tracks = -1;        ///< -1 while they are being counted
    double TracksLength = 0.0; ///< days
    QString FileName;
    bool ReadOnly = false;
    int Groups = 0;        ///< outermost groups of the active list
    bool OfTracks = false; ///< the active list has tracks for rows
};

/// Counts what the collection holds, the tracks in small steps. Main thread.
class TFigures : public QObject {
    Q_OBJECT

public:
    /// Both outlive it.
    TFigures(TShell& shell, TLists& lists);

    TStatusFigures Status() const;
    int Total() const { return FTotal; }
    /// A release was added that CountReleases has not seen yet.
    void AddOne() { ++FTotal; }
    void CountReleases();
    /// Begins to count the tracks anew.
    void StartCounting();
    /// The tracks are not known until StartCounting.
    void ForgetTracks() { FTracks = -1; }

Q_SIGNALS:
    void changed();

private:
    void CountTracks();

    TShell& FShell;
    TLists& FLists;
    int FTotal = 0;
    qint64 FTracks = -1;
    double FTracksLength = 0.0;
    qint64 FCountedTo = 0;
    QTimer FCountTimer;
};

} // namespace Kestrune
