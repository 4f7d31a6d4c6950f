// SPDX-License-Identifier: GPL-3.0-or-later
#include "uEmptyPage.h"

#include "uCoverArt.h"
#include "uIcons.h"
#include "uRibbonButton.h"
#include "uTHStrings.h"
#include "uTheme.h"
#include "uThemePaint.h"

#include <QAction>
#include <QApplication>
#include <QFileInfo>
#include <QFontMetrics>
#include <QGridLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int BoxWidth = 862;
constexpr int CoversHeight = 150;

// A recent file: mark, name, folder, note.
class TRecentRow : public QAbstractButton {
public:
    TRecentRow(TRecentFile file, QWidget* parent) : QAbstractButton(parent), FFile(std::move(file))
    {
        setAccessibleName(FFile.Note.isEmpty() ? FFile.Path : FFile.Path + u", "_s + FFile.Note);
        setFocusPolicy(Qt::StrongFocus);
        setAttribute(Qt::WA_Hover);
        setMinimumHeight(RowHeight(34, ThemeFont(fsBody), 12));
    }

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
            return click();
        QAbstractButton::keyPressEvent(event);
    }
    void paintEvent(QPaintEvent*) override
    {
        const TTheme& theme = CurrentTheme();
        QPainter painter(this);
        if (underMouse())
            FillRounded(painter, rect(), RadiusControl, theme.Hover);
        if (hasFocus())
            DrawFocusRing(painter, rect(), RadiusControl, theme);
        const QFileInfo info(FFile.Path);
        DrawIcon(painter, QRectF(10, height() / 2.0 - 8, 16, 16), FFile.Missing ? u"warn"_s : u"disc"_s,
                 FFile.Missing ? theme.Warn : theme.Text);
        painter.setFont(ThemeFont(fsBodyBold));
        painter.setPen(theme.Text);
        DrawElided(painter, QRectF(36, 0, 150, height()), info.fileName());
        painter.setFont(ThemeFont(fsBody));
        painter.setPen(theme.Text2);
        DrawElided(painter, QRectF(196, 0, width() - 460.0, height()), info.path());
        DrawElided(painter, QRectF(width() - 250.0, 0, 240, height()), FFile.Note, Qt::AlignRight | Qt::AlignVCenter);
    }

private:
    TRecentFile FFile;
};

class THeading : public QWidget {
public:
    THeading(const QString& text, QWidget* parent) : QWidget(parent), FText(text)
    {
        setAccessibleName(text);
        setFixedHeight(LineHeight(ThemeFont(fsBodyBold)) + 10);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setFont(ThemeFont(fsBodyBold));
        painter.setPen(CurrentTheme().Text);
        DrawElided(painter, QRectF(3, 4, width() - 6, height() - 4), FText);
    }

private:
    QString FText;
};

} // namespace

TCardButton::TCardButton(const QString& title, const QString& text, QAction* action, QWidget* parent)
    : QAbstractButton(parent), FNote(text), FAction(action)
{
    setText(title);
    setAccessibleName(title);
    setAccessibleDescription(text);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    if (!action)
        return;
    const auto follow = [this] { setEnabled(FAction->isEnabled()); };
    connect(action, &QAction::changed, this, follow);
    connect(this, &QAbstractButton::clicked, action, &QAction::trigger);
    follow();
}

QSize TCardButton::sizeHint() const { return {427, RowHeight(72, ThemeFont(fsBody), 48)}; }

void TCardButton::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        return click();
    QAbstractButton::keyPressEvent(event);
}

void TCardButton::paintEvent(QPaintEvent*)
{
    const TTheme& theme = CurrentTheme();
    QPainter painter(this);
    painter.setOpacity(isEnabled() ? 1 : DisabledOpacity);
    FillRounded(painter, rect(), RadiusCard, theme.Raised);
    StrokeRounded(painter, rect(), RadiusCard, underMouse() ? theme.Outline : theme.Line, 1);
    if (hasFocus())
        DrawFocusRing(painter, rect(), RadiusCard, theme);
    const QRectF tile(15, height() / 2.0 - 22, 44, 44);
    FillRounded(painter, tile, RadiusCard, theme.AccentSoft);
    DrawIcon(painter, tile.adjusted(12, 12, -12, -12), FAction ? IconNameOf(*FAction) : QString(), theme.AccentFill);
    const QString keys = FAction ? FAction->shortcut().toString(QKeySequence::NativeText) : QString();
    qreal right = width() - 16;
    if (!keys.isEmpty()) {
        painter.setFont(ThemeFont(fsSmall));
        const qreal keyWidth = painter.fontMetrics().horizontalAdvance(keys) + 12;
        const QRectF tag(right - keyWidth, height() / 2.0 - 9, keyWidth, 18);
        FillRounded(painter, tag, RadiusCover, theme.Window);
        StrokeRounded(painter, tag, RadiusCover, theme.Line, 1);
        painter.setPen(theme.Text2);
        painter.drawText(tag, Qt::AlignCenter, keys);
        right = tag.left() - 8;
    }
    const QFont title = ThemeFont(fsCardTitle);
    const int titleHeight = LineHeight(title);
    const int noteHeight = LineHeight(ThemeFont(fsSmallPlus));
    const qreal top = (height() - titleHeight - noteHeight) / 2.0;
    painter.setFont(title);
    painter.setPen(theme.Text);
    DrawElided(painter, QRectF(71, top, right - 71, titleHeight), text());
    painter.setFont(ThemeFont(fsSmallPlus));
    painter.setPen(theme.Text2);
    DrawElided(painter, QRectF(71, top + titleHeight, right - 71, noteHeight), FNote);
}

TEmptyPage::TEmptyPage(QWidget* parent)
    : QWidget(parent), FBox(new QWidget(this)), FClear(new TRibbonButton(TRibbonButton::TShape::Bar, this))
{
    FClear->setText(GetLanguageString(u"cSGuiClearAll"_s));
    FClear->hide();
    connect(FClear, &QToolButton::clicked, this, &TEmptyPage::clearFiltersRequested);
}

void TEmptyPage::ShowNoCollection(const std::vector<TEmptyCard>& cards, const std::vector<TRecentFile>& recent)
{
    Build(GetLanguageString(u"cSGuiNoCollectionCover"_s), GetLanguageString(u"cSGuiNoCollection"_s),
          GetLanguageString(u"cSGuiNoCollectionText"_s), cards, recent);
}

void TEmptyPage::ShowEmptyCollection(const std::vector<TEmptyCard>& cards)
{
    Build(GetLanguageString(u"cSGuiEmptyCollectionCover"_s), GetLanguageString(u"cSGuiEmptyCollection"_s),
          GetLanguageString(u"cSGuiEmptyCollectionText"_s), cards, {});
}

void TEmptyPage::ShowNoHits()
{
    Build({}, GetLanguageString(u"cSGuiNoHits"_s), GetLanguageString(u"cSGuiNoHitsText"_s), {}, {});
    FClear->show();
    setFocusProxy(FClear);
}

void TEmptyPage::Build(const QString& cover, const QString& heading, const QString& text,
                       const std::vector<TEmptyCard>& cards, const std::vector<TRecentFile>& recent)
{
    FCover = cover;
    FHeading = heading;
    FText = text;
    setAccessibleName(heading);
    setAccessibleDescription(text);
    FClear->hide();
    const bool hadFocus = FBox->isAncestorOf(QApplication::focusWidget());
    FBox->hide();
    FBox->deleteLater();
    FBox = new QWidget(this);
    auto* column = new QVBoxLayout(FBox);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    auto* grid = new QGridLayout;
    grid->setSpacing(8);
    int number = 0;
    for (const TEmptyCard& card : cards) {
        if (!card.Action || !card.Action->isVisible())
            continue;
        grid->addWidget(new TCardButton(card.Title, card.Text, card.Action, FBox), number / 2, number % 2);
        ++number;
    }
    if (number == 1) // a lone card keeps its width and stands in the middle
        grid->setAlignment(grid->itemAt(0)->widget(), Qt::AlignHCenter);
    column->addLayout(grid);
    if (!recent.empty()) {
        column->addSpacing(10);
        column->addWidget(new THeading(GetLanguageString(u"cSGuiRecent"_s), FBox));
    }
    for (const TRecentFile& file : recent) {
        auto* row = new TRecentRow(file, FBox);
        connect(row, &QAbstractButton::clicked, this, [this, path = file.Path] { Q_EMIT recentChosen(path); });
        column->addWidget(row);
    }
    FBox->show();
    const auto buttons = FBox->findChildren<QAbstractButton*>();
    const auto first = std::ranges::find_if(buttons, [](const QWidget* button) { return button->isEnabled(); });
    setFocusProxy(first == buttons.end() ? nullptr : *first);
    if (hadFocus)
        setFocus();
    resizeEvent(nullptr);
    update();
}

int TEmptyPage::ContentHeight() const
{
    const int covers = FCover.isEmpty() ? 0 : CoversHeight + 20;
    const int texts = LineHeight(ThemeFont(fsPageTitle)) + LineHeight(ThemeFont(fsBody)) + 24;
    return covers + texts + std::max(FBox->sizeHint().height(), FClear->isVisibleTo(this) ? 30 : 0);
}

void TEmptyPage::resizeEvent(QResizeEvent*)
{
    const int boxHeight = FBox->sizeHint().height();
    const int top = std::max(10, (height() - ContentHeight()) / 2);
    const int boxWidth = std::min(BoxWidth, width() - 24);
    const int boxTop = top + ContentHeight() - boxHeight;
    FBox->setGeometry((width() - boxWidth) / 2, boxTop, boxWidth, boxHeight);
    const QSize clear = FClear->sizeHint();
    FClear->setGeometry((width() - clear.width()) / 2, top + ContentHeight() - clear.height(), clear.width(),
                        clear.height());
}

void TEmptyPage::paintEvent(QPaintEvent*)
{
    const TTheme& theme = CurrentTheme();
    QPainter painter(this);
    painter.fillRect(rect(), theme.View);
    qreal y = std::max(10, (height() - ContentHeight()) / 2);
    if (!FCover.isEmpty()) {
        struct TStanding {
            qreal Offset, Side;
            int Ground;
            bool Disc;
        };
        const std::array<TStanding, 5> covers = {
            {{-203, 97, 3, false}, {203, 97, 5, false}, {-119, 119, 1, true}, {119, 119, 4, true}, {0, 147, 0, false}}};
        for (const TStanding& c : covers) {
            const QRectF rect(std::round(width() / 2.0 + c.Offset - c.Side / 2), y + CoversHeight - c.Side, c.Side,
                              c.Side);
            PaintCoverShadow(painter, rect, theme);
            PaintDrawnCover(painter, rect, c.Offset == 0 ? FCover : QString(), {}, c.Disc, c.Ground, theme);
        }
        y += CoversHeight + 20;
    }
    painter.setFont(ThemeFont(fsPageTitle));
    painter.setPen(theme.Text);
    const int headingHeight = LineHeight(painter.font());
    DrawElided(painter, QRectF(12, y, width() - 24, headingHeight), FHeading, Qt::AlignCenter);
    y += headingHeight;
    painter.setFont(ThemeFont(fsBody));
    painter.setPen(theme.Text2);
    DrawElided(painter, QRectF(12, y, width() - 24, LineHeight(painter.font())), FText, Qt::AlignCenter);
}

} // namespace Kestrune
