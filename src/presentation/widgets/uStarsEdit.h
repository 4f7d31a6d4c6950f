// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace Kestrune {

/// Five stars to show and set a rating in half stars: a click on the left half of a star sets the half, left and right
/// step, Del clears, 0 to 9 set that many half stars. A slider to screen readers.
class TStarsEdit : public QWidget {
    Q_OBJECT
public:
    explicit TStarsEdit(QWidget* parent = nullptr);

    /// Half stars 0 to 10; others are clamped. Does not tell.
    void SetRating(int halfStars);
    int Rating() const { return FRating; }
    void SetReadOnly(bool readOnly) { FReadOnly = readOnly; }
    /// "4.5 of 5 stars".
    QString ValueText() const;

    QSize sizeHint() const override;

Q_SIGNALS:
    void ratingChosen(int halfStars); ///< the user set it

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void Choose(int halfStars);

    int FRating = 0;
    bool FReadOnly = false;
};

} // namespace Kestrune
