// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uTheme.h"

#include <QProxyStyle>

namespace Kestrune {

/// The look of all standard widgets: buttons, fields, check boxes, tabs, headers, scroll bars, menus, splitters and
/// the focus ring over Qt's Fusion style, in the colours of a TTheme. Its theme is the
/// current one while it is the application's style.
class TThemeStyle : public QProxyStyle {
    Q_OBJECT
public:
    explicit TThemeStyle(const TTheme& theme);
    ~TThemeStyle() override;

    const TTheme& Theme() const { return FTheme; }
    /// Replaces the theme, sets the application's palette and repaints every widget.
    void SetTheme(const TTheme& theme);
    /// Without motion every animation has the duration 0.
    void SetReducedMotion(bool reduced) { FReducedMotion = reduced; }

    QPalette standardPalette() const override;
    void polish(QApplication* application) override;
    void unpolish(QApplication* application) override;
    void polish(QWidget* widget) override;
    void unpolish(QWidget* widget) override;
    using QProxyStyle::polish;
    using QProxyStyle::unpolish;
    bool eventFilter(QObject* watched, QEvent* event) override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl subControl,
                         const QWidget* widget) const override;
    QRect subElementRect(SubElement element, const QStyleOption* option, const QWidget* widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
    QIcon standardIcon(StandardPixmap standard, const QStyleOption* option, const QWidget* widget) const override;

private:
    void Leave();
    void DrawButtonPanel(const QStyleOption* option, QPainter* painter) const;
    void DrawFieldPanel(const QStyleOption* option, QPainter* painter, bool focused) const;
    void DrawCheckBox(const QStyleOption* option, QPainter* painter) const;
    void DrawRadioButton(const QStyleOption* option, QPainter* painter) const;
    void DrawPushButtonLabel(const QStyleOption* option, QPainter* painter, const QWidget* widget) const;
    void DrawHeaderSection(const QStyleOption* option, QPainter* painter) const;
    void DrawMenuItem(const QStyleOption* option, QPainter* painter, const QWidget* widget) const;
    void DrawMenuBarItem(const QStyleOption* option, QPainter* painter) const;
    void DrawTabShape(const QStyleOption* option, QPainter* painter) const;
    void DrawScrollBar(const QStyleOptionComplex* option, QPainter* painter, const QWidget* widget) const;
    void DrawComboBox(const QStyleOptionComplex* option, QPainter* painter, const QWidget* widget) const;
    void DrawSlider(const QStyleOptionComplex* option, QPainter* painter) const;
    void DrawToolButton(const QStyleOptionComplex* option, QPainter* painter, const QWidget* widget) const;
    void DrawProgress(const QStyleOption* option, QPainter* painter) const;

    TTheme FTheme;
    bool FReducedMotion = false;
};

} // namespace Kestrune
