// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uDetailView.h"
#include "uTHTypes.h"

#include <QObject>
#include <QStringList>
#include <QTimer>

namespace Kestrune {

class TLists;
class TShell;

/// The release in the detail pane: it follows the focus of the active list after a moment, shows and changes fields,
/// and remembers how the pane is arranged. Binds the actions of the pane. Main thread.
class TDetailSession : public QObject {
    Q_OBJECT

public:
    /// Both outlive it.
    TDetailSession(TShell& shell, TLists& lists);

    const TDetailData& Detail() const { return FDetail; }
    /// Reads the release of the focus now.
    void Refresh();
    /// Reads it when the focus has rested for a moment.
    void RefreshSoon() { FTimer.start(); }
    void RefreshSoonUnlessShown(qint64 release);

    /// Gives a field of the shown release a value that the user chose. False when the file refused it, which is told.
    bool Edit(const QString& field, const TVariant& value);
    TVariant Value(const QString& field);
    /// Changes the rating, in half stars.
    void SetRating(int halfStars);

    int Location() const;
    bool Closed() const;
    void SetClosed(bool closed);
    /// Size of the pane beside (width) or above and below (height) the views; 0 leaves what is kept.
    void SetFrameSize(int width, int height);
    /// Ids of the folded sections.
    QStringList FoldedSections() const { return FFolded; }
    void SetFoldedSections(const QStringList& ids) { FFolded = ids; }
    /// Columns that the user took out of the pane.
    QStringList HiddenFields() const { return FHiddenFields; }
    void SetHiddenFields(const QStringList& columns) { FHiddenFields = columns; }
    void LoadSettings();
    void SaveSettings();

Q_SIGNALS:
    void detailChanged();
    /// Place or visibility of the pane.
    void paneChanged();
    void customizeToggled();
    void filterToggled();
    void openFolderRequested(const QString& folder);

private:
    void BindActions();
    void OpenFolder();

    TShell& FShell;
    TLists& FLists;
    TDetailData FDetail;
    QTimer FTimer;
    QStringList FFolded;
    QStringList FHiddenFields;
};

} // namespace Kestrune
