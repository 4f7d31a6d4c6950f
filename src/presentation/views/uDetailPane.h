// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uDetailView.h"

#include <QPixmap>
#include <QScrollArea>
#include <QSet>

class QAction;

namespace Kestrune {

class TStarsEdit;
class TDetailHead;

/// A part of the pane that stays together: a section with its rows.
class TDetailBlock;

/// Shows one release: cover, title, rating, then sections that fold. It is filled from a plain struct and tells what
/// the user does; it looks nothing up.
class TDetailPane : public QScrollArea {
    Q_OBJECT
public:
    explicit TDetailPane(QWidget* parent = nullptr);
    ~TDetailPane() override;

    void SetData(TDetailData detail);
    const TDetailData& Data() const { return FData; }
    /// Vertical: the pane stands right of the view, all parts below each other. Horizontal: it lies above or below,
    /// with the cover left and the rows in columns.
    void SetOrientation(Qt::Orientation orientation);
    /// Buttons beside the stars, made from actions (edit, lend, playlist, more).
    void SetActions(const QList<QAction*>& actions);
    /// Ids of the folded sections, to be remembered.
    QStringList Folded() const { return {FFolded.cbegin(), FFolded.cend()}; }
    void SetFolded(const QStringList& ids);
    /// Height of the cover for a height of the pane and a picture: at most 40 %, proportions kept, never wider than
    /// `width`.
    static QSize CoverSize(const QSize& picture, int width, int paneHeight);

Q_SIGNALS:
    void ratingChosen(int halfStars);
    void linkActivated(const QString& link);
    void trackActivated(int disc, int track); ///< places in the lists of the data
    void pictureActivated(int picture);       ///< place in the list of the data
    void coverActivated();
    void foldedChanged();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void Rebuild();
    void AddSection(const TDetailSection& section);
    void AddTracks();
    void AddCredits();
    void AddPictures();
    TDetailBlock* AddBlock(const QString& id, const QString& caption, const QString& extra);
    void Arrange();
    void ArrangeBelow();
    void ArrangeBeside();

    TDetailData FData;
    QWidget* FContent;
    TDetailHead* FHead;
    QList<TDetailBlock*> FBlocks;
    QSet<QString> FFolded;
    Qt::Orientation FOrientation = Qt::Vertical;
};

} // namespace Kestrune
