// SPDX-License-Identifier: GPL-3.0-or-later
#include "uSegments.h"

#include "uIcons.h"
#include "uRibbonButton.h"
#include "uTheme.h"
#include "uThemePaint.h"

#include <QAbstractButton>
#include <QAction>
#include <QButtonGroup>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QPainter>

namespace Kestrune {

namespace {

class TSegmentButton : public QAbstractButton {
public:
    TSegmentButton(QString icon, const QString& caption, bool bothShown, QWidget* parent)
        : QAbstractButton(parent), FIcon(std::move(icon)), FBothShown(bothShown)
    {
        setText(caption);
        setAccessibleName(caption);
        setCheckable(true);
        setFocusPolicy(Qt::TabFocus);
        setAttribute(Qt::WA_Hover);
        if (!FIcon.isEmpty() && !FBothShown)
            setToolTip(caption);
    }

    QSize sizeHint() const override
    {
        if (!FIcon.isEmpty() && !FBothShown)
            return {28, 24};
        const QFont font = ThemeFont(fsBody);
        const int words = QFontMetrics(font).horizontalAdvance(text());
        return FBothShown ? QSize(words + 44, RowHeight(28, font, 6)) : QSize(words + 14, RowHeight(20, font, 2));
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        const TTheme& theme = CurrentTheme();
        QPainter painter(this);
        const QRectF ground = rect();
        if (isChecked()) {
            FillRounded(painter, ground, RadiusControl - 1, theme.Raised);
            StrokeRounded(painter, ground, RadiusControl - 1, theme.IsHighContrast() ? theme.AccentFill : theme.Line,
                          theme.IsHighContrast() ? 2 : 1);
        } else if (underMouse() && isEnabled()) {
            FillRounded(painter, ground, RadiusControl - 1, theme.Hover);
        }
        const QColor color = !isEnabled() ? theme.Disabled : isChecked() ? theme.AccentFill : theme.Text2;
        if (FBothShown) {
            const bool mirrored = isRightToLeft();
            DrawIcon(painter, QRectF(mirrored ? width() - 26 : 10, height() / 2.0 - 8, 16, 16), FIcon, color);
            painter.setFont(ThemeFont(fsBody));
            painter.setPen(!isEnabled() ? theme.Disabled : isChecked() ? theme.AccentFill : theme.Text);
            DrawElided(painter, ground.adjusted(mirrored ? 8 : 32, 0, mirrored ? -32 : -8, 0), text());
        } else if (!FIcon.isEmpty()) {
            DrawIcon(painter, QRectF(width() / 2.0 - 8, height() / 2.0 - 8, 16, 16), FIcon, color);
        } else {
            QFont font = ThemeFont(fsBody);
            font.setPixelSize(std::max(9, font.pixelSize() - 1));
            painter.setFont(font);
            painter.setPen(color);
            painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
        }
        if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
            DrawFocusRing(painter, ground, RadiusControl - 1, theme);
    }

private:
    QString FIcon;
    bool FBothShown;
};

} // namespace

TSegments::TSegments(QWidget* parent) : QWidget(parent), FButtons(new QButtonGroup(this))
{
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(1, 1, 1, 1);
    row->setSpacing(0);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(FButtons, &QButtonGroup::idClicked, this, &TSegments::chosen);
}

void TSegments::Fill(const QStringList& icons, const QStringList& texts, bool bothShown)
{
    qDeleteAll(FButtons->buttons());
    for (qsizetype i = 0; i < texts.size(); ++i) {
        auto* button = new TSegmentButton(icons.value(i), texts[i], bothShown, this);
        FButtons->addButton(button, static_cast<int>(i));
        layout()->addWidget(button);
    }
}

void TSegments::SetActions(const QList<QAction*>& actions)
{
    QStringList icons;
    QStringList texts;
    for (const QAction* action : actions) {
        icons << IconNameOf(*action);
        texts << action->text().remove(u'&');
    }
    Fill(icons, texts);
    for (qsizetype i = 0; i < actions.size(); ++i) {
        QAction* action = actions[i];
        QAbstractButton* button = FButtons->button(static_cast<int>(i));
        const auto follow = [action, button] {
            button->setEnabled(action->isEnabled());
            button->setVisible(action->isVisible());
            button->setChecked(action->isChecked());
            button->setToolTip(action->toolTip());
        };
        connect(action, &QAction::changed, button, follow);
        connect(button, &QAbstractButton::clicked, action, &QAction::trigger);
        follow();
    }
}

void TSegments::SetIcons(const QStringList& icons, const QStringList& names) { Fill(icons, names); }

void TSegments::SetItems(const QStringList& icons, const QStringList& names) { Fill(icons, names, true); }

void TSegments::SetTexts(const QStringList& texts) { Fill({}, texts); }

int TSegments::Current() const { return FButtons->checkedId(); }

void TSegments::SetCurrent(int index)
{
    if (QAbstractButton* button = FButtons->button(index))
        return button->setChecked(true);
    FButtons->setExclusive(false);
    for (QAbstractButton* button : FButtons->buttons())
        button->setChecked(false);
    FButtons->setExclusive(true);
}

void TSegments::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    FillRounded(painter, rect(), RadiusControl, CurrentTheme().Sunken);
}

} // namespace Kestrune
