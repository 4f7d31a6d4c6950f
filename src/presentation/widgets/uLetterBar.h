// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSet>
#include <QStringList>
#include <QWidget>

namespace Kestrune {

class TSegments;
class TRibbonButton;
class TLetterCell;

/// Artist | Release, All, and one cell per letter. It stands over the view.
class TLetterBar : public QWidget {
    Q_OBJECT
public:
    explicit TLetterBar(QWidget* parent = nullptr);

    /// The letters in their order; A to Z at first. All comes before them.
    void SetLetters(const QStringList& letters);
    /// Letters that some release begins with: the others look empty but work all the same.
    void SetHits(const QSet<QString>& letters);
    /// Those of the letters shown that have hits.
    QSet<QString> Hits() const;
    /// The letter that holds; empty is All.
    void SetCurrent(const QString& letter);
    const QString& Current() const { return FCurrent; }
    /// 0 artist, 1 release.
    int Field() const { return FField; }
    void SetField(int field);

Q_SIGNALS:
    void letterChosen(const QString& letter); ///< empty: All
    void fieldChosen(int field);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void Choose(const QString& letter);
    void ChooseField(int field);
    void PlaceCells();
    /// Puts the letters from this cell on behind one button; none from past the last one.
    void FoldFrom(qsizetype first);

    TSegments* FFieldSegments;
    TRibbonButton* FFieldButton; // instead of the segments where there is little room
    TRibbonButton* FMore;        // the letters for which there is no room, behind their range
    QList<TLetterCell*> FCells;
    QString FCurrent;
    int FField = 0;
};

} // namespace Kestrune
