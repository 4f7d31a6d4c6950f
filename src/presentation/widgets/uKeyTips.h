// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPointer>
#include <QWidget>

#include <functional>
#include <vector>

namespace Kestrune {

/// A dark tag with a letter on a widget, and what the letter does.
struct TKeyTip {
    QString Letter;
    QPointer<QWidget> Target;
    QRect Area; ///< part of the target that the tag belongs to; empty for all of it
    std::function<void()> Act;
};

/// Tags over a window until a letter, Esc, Alt or a click ends them. A letter runs its action; an action may show
/// a new set. Deletes itself when done.
class TKeyTips : public QWidget {
    Q_OBJECT
public:
    /// Covers the window. Takes the keyboard while it is there and gives it back afterwards.
    TKeyTips(QWidget* window, std::vector<TKeyTip> tips);

    const std::vector<TKeyTip>& Tips() const { return FTips; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool event(QEvent* event) override;

private:
    void Finish();

    std::vector<TKeyTip> FTips;
    QPointer<QWidget> FBefore; // had the keyboard
};

} // namespace Kestrune
