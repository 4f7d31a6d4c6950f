// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QToolButton>

namespace Kestrune {

/// A button made from a QAction, in one of the shapes of the window's bars. It follows its action: caption (iconText),
/// icon, tool tip, enabled, checked, visible.
class TRibbonButton : public QToolButton {
    Q_OBJECT
public:
    enum class TShape : quint8 {
        Large,   ///< icon of 26 over a caption
        Small,   ///< icon of 16 beside a caption
        Icon,    ///< icon alone, 26 x 26
        Bar,     ///< raised button with icon, caption and arrow, as in the filter bar
        Flat,    ///< caption with arrow and no ground
        Primary, ///< accent ground
        Link     ///< text in the accent colour
    };

    explicit TRibbonButton(TShape shape, QWidget* parent = nullptr);

    /// Takes caption, icon name and state from the action, and a menu that the arrow opens.
    void SetAction(QAction* action);
    /// The icon drawn from the own set; an action's own icon is not asked for.
    void SetIconName(const QString& name);
    const QString& IconName() const { return FIconName; }
    QString Caption() const;
    TShape Shape() const { return FShape; }
    void SetShape(TShape shape);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void actionEvent(QActionEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }

private:
    bool ShowsArrow() const;
    void PaintGround(QPainter& painter, bool over) const;
    void PaintLarge(QPainter& painter) const;
    void PaintRow(QPainter& painter) const;
    QColor TextColor() const;
    QColor IconColor() const;

    TShape FShape;
    QString FIconName;
};

/// The name of the own icon that an action carries (property "iconName"); empty when it has none.
QString IconNameOf(const QAction& action);
/// Gives an action its own icon: the name for our painting and a QIcon for menus.
void SetActionIcon(QAction& action, const QString& iconName);

} // namespace Kestrune
