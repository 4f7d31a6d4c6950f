// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uDetailView.h"

#include <QAbstractButton>
#include <QImage>
#include <QPixmap>
#include <QWidget>

#include <functional>

class QAction;
class QCheckBox;
class QHBoxLayout;

namespace Kestrune {

class TStarsEdit;

/// Cover, title, artist, stars and buttons.
class TDetailHead : public QWidget {
    Q_OBJECT
public:
    explicit TDetailHead(QWidget* parent = nullptr);

    void SetData(const TDetailData& detail);
    void SetActions(const QList<QAction*>& actions);
    /// Lays the parts out for a width and the height of the pane; returns the height that it takes.
    int ArrangeFor(int width, int paneHeight);
    TStarsEdit* Stars() { return FStars; }
    /// Height of the cover for a height of the pane and a picture: at most 40 %, proportions kept, never wider than
    /// `width`.
    static QSize CoverSize(const QSize& picture, int width, int paneHeight);
    /// In the place of stars and buttons: a pill with a short text, as for a release that is not in the collection.
    void SetNote(const QString& note);

Q_SIGNALS:
    void coverActivated();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    QPixmap CoverPixmap(qreal ratio);

    QString FTitle, FArtist, FMediaType;
    QString FNote;
    QImage FPicture; // decoded once per release at twice the largest size
    QPixmap FCover;  // finished for the present size and theme
    QString FCoverKey;
    QRect FCoverRect;
    int FTextTop = 0;
    TStarsEdit* FStars;
    QWidget* FButtons;
    QHBoxLayout* FButtonRow;
};

/// One line below a section heading. Painted as told; a link or a track can be activated.
class TDetailRow : public QAbstractButton {
    Q_OBJECT
public:
    enum class TKind : quint8 { Field, Track, Disc, Credit };

    /// `editable`: a click on the value or F2 asks for its editor.
    static TDetailRow* ForField(const TDetailField& field, bool editable, QWidget* parent);
    static TDetailRow* ForTrack(const TDetailTrack& track, QWidget* parent);
    static TDetailRow* ForDisc(const TDetailDisc& disc, QWidget* parent);
    static TDetailRow* ForCredit(const TDetailCredit& credit, QWidget* parent);

    /// Height for a width: long texts of comments take several lines.
    int HeightFor(int width) const;
    QSize sizeHint() const override { return {280, HeightFor(280)}; }
    /// The field of the row; empty for rows that are none.
    const QString& Column() const { return FColumn; }
    const QString& Label() const { return FLabel; }
    /// Puts an editor, a child of the row, in the place of the value; null takes it away.
    void SetEditor(QWidget* editor);
    /// Shows a box for whether the field is shown.
    void ShowBox(bool checked);

Q_SIGNALS:
    void activated();
    void editRequested();
    void boxToggled(bool on);

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    TDetailRow(TKind kind, QWidget* parent);
    void PlaceParts();
    void PaintField(QPainter& painter) const;
    void PaintColumns(QPainter& painter) const;
    int ValueLeft() const;
    int LabelWidth() const;

    TKind FKind;
    QString FLabel, FValue, FExtra;
    QString FColumn;
    bool FIsLink = false;
    bool FEditable = false;
    QWidget* FEditor = nullptr;
    QCheckBox* FBox = nullptr;
};

/// Thumbnails of the other pictures, 64 dip high, in lines.
class TPictureStrip : public QWidget {
    Q_OBJECT
public:
    TPictureStrip(std::vector<QByteArray> pictures, QWidget* parent);
    int HeightFor(int width) const;

Q_SIGNALS:
    void activated(int picture);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QRect CellRect(int index, int width) const;
    void MakePixmaps();

    std::vector<QByteArray> FPictures;
    std::vector<QPixmap> FPixmaps; // finished for FPixmapKey
    QString FPixmapKey;
    int FCurrent = 0;
};

/// A heading with an arrow, and its rows.
class TDetailBlock : public QWidget {
    Q_OBJECT
public:
    TDetailBlock(QString id, const QString& caption, const QString& extra, QWidget* parent);

    const QString& Id() const { return FId; }
    void Add(TDetailRow* row);
    void Add(TPictureStrip* strip);
    void SetFolded(bool folded);
    bool IsFolded() const { return FIsFolded; }
    const QList<TDetailRow*>& Rows() const { return FRows; }
    /// Lays the rows out for a width; returns the height.
    int ArrangeFor(int width);

Q_SIGNALS:
    void foldToggled();

private:
    QString FId;
    QAbstractButton* FHeading;
    QList<TDetailRow*> FRows;
    TPictureStrip* FStrip = nullptr;
    bool FIsFolded = false;
};

} // namespace Kestrune
