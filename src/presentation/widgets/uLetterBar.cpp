// SPDX-License-Identifier: GPL-3.0-or-later
#include "uLetterBar.h"

#include "uRibbonButton.h"
#include "uSegments.h"
#include "uTHStrings.h"
#include "uTheme.h"
#include "uThemePaint.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int NarrowBelow = 700;
constexpr int LeastPitch = 20; // of a cell that can still be hit
constexpr int CellHeight = 22;

} // namespace

/// One letter, or All.
class TLetterCell : public QAbstractButton {
public:
    TLetterCell(QString letter, QWidget* parent) : QAbstractButton(parent), Letter(std::move(letter))
    {
        setText(Letter.isEmpty() ? GetLanguageString(u"cSGuiAllLetters"_s) : Letter);
        setAccessibleName(text());
        setCheckable(true);
        setFocusPolicy(Qt::TabFocus);
        setAttribute(Qt::WA_Hover);
    }

    QString Letter;
    bool HasHits = true;

protected:
    void paintEvent(QPaintEvent*) override
    {
        const TTheme& theme = CurrentTheme();
        QPainter painter(this);
        if (isChecked())
            FillRounded(painter, rect(), RadiusControl, theme.AccentFill);
        else if (underMouse())
            FillRounded(painter, rect(), RadiusControl, theme.Hover);
        QFont font = ThemeFont(isChecked() ? fsBodyBold : fsBody);
        font.setPixelSize(std::max(9, font.pixelSize() - 1));
        painter.setFont(font);
        painter.setPen(isChecked() ? theme.OnAccent : HasHits ? theme.Text2 : theme.Disabled);
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
        if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
            StrokeRounded(painter, rect(), RadiusControl, isChecked() ? theme.Text : theme.AccentFill, 2);
    }

    // Left and right walk along the bar; a letter is chosen only by Space, Enter or a click.
    void keyPressEvent(QKeyEvent* event) override
    {
        if (event->key() == Qt::Key_Left || event->key() == Qt::Key_Right) {
            const bool forward = (event->key() == Qt::Key_Right) != isRightToLeft();
            forward ? focusNextChild() : focusPreviousChild();
        } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
            click();
        } else {
            QAbstractButton::keyPressEvent(event);
        }
    }
};

TLetterBar::TLetterBar(QWidget* parent)
    : QWidget(parent),
      FFieldSegments(new TSegments(this)),
      FFieldButton(new TRibbonButton(TRibbonButton::TShape::Bar, this)),
      FMore(new TRibbonButton(TRibbonButton::TShape::Bar, this))
{
    setAccessibleName(GetLanguageString(u"cSGuiLetterBar"_s));
    const QStringList fields = {GetLanguageString(u"cSReleasesFieldArtist"_s), GetLanguageString(u"cSGuiRelease"_s)};
    FFieldSegments->SetTexts(fields);
    auto* menu = new QMenu(FFieldButton);
    for (int i = 0; i < 2; ++i)
        connect(menu->addAction(fields[i]), &QAction::triggered, this, [this, i] { ChooseField(i); });
    FFieldButton->setMenu(menu);
    FMore->setMenu(new QMenu(FMore));
    FMore->hide();
    connect(FFieldSegments, &TSegments::chosen, this, &TLetterBar::ChooseField);
    setFixedHeight(RowHeight(30, ThemeFont(fsBody), 10));
    QStringList letters;
    for (char16_t c = u'A'; c <= u'Z'; ++c)
        letters << QString(QChar(c));
    letters.prepend(u"#"_s);
    SetLetters(letters);
    SetField(0);
}

void TLetterBar::SetLetters(const QStringList& letters)
{
    qDeleteAll(FCells);
    FCells.clear();
    for (const QString& letter : QStringList(QString()) + letters) {
        auto* cell = new TLetterCell(letter, this);
        connect(cell, &QAbstractButton::clicked, this, [this, letter] { Choose(letter); });
        cell->show();
        FCells << cell;
    }
    SetCurrent(FCurrent);
}

void TLetterBar::SetHits(const QSet<QString>& letters)
{
    for (TLetterCell* cell : std::as_const(FCells)) {
        cell->HasHits = cell->Letter.isEmpty() || letters.contains(cell->Letter);
        cell->update();
    }
}

QSet<QString> TLetterBar::Hits() const
{
    QSet<QString> letters;
    for (const TLetterCell* cell : FCells)
        if (cell->HasHits && !cell->Letter.isEmpty())
            letters.insert(cell->Letter);
    return letters;
}

void TLetterBar::SetCurrent(const QString& letter)
{
    FCurrent = letter;
    for (TLetterCell* cell : std::as_const(FCells))
        cell->setChecked(cell->Letter == letter);
    // The keyboard comes to the letter that holds.
    for (TLetterCell* cell : std::as_const(FCells))
        if (cell->isChecked())
            setFocusProxy(cell);
    PlaceCells(); // the button of the folded letters follows
}

void TLetterBar::Choose(const QString& letter)
{
    SetCurrent(letter);
    Q_EMIT letterChosen(letter);
}

void TLetterBar::SetField(int field)
{
    FField = field == 1 ? 1 : 0;
    FFieldSegments->SetCurrent(FField);
    FFieldButton->setText(FFieldButton->menu()->actions().at(FField)->text());
    PlaceCells();
}

void TLetterBar::ChooseField(int field)
{
    SetField(field);
    Q_EMIT fieldChosen(FField);
}

void TLetterBar::PlaceCells()
{
    const bool narrow = width() < NarrowBelow;
    FFieldSegments->setVisible(!narrow);
    FFieldButton->setVisible(narrow);
    QWidget* chooser = narrow ? static_cast<QWidget*>(FFieldButton) : FFieldSegments;
    const QSize size = chooser->sizeHint();
    int x = 10;
    const auto place = [&](QWidget* child, int width, int height) {
        child->setGeometry(isRightToLeft() ? this->width() - x - width : x, (this->height() - height) / 2, width,
                           height);
        x += width;
    };
    place(chooser, size.width(), size.height());
    x += 8;
    const int letters = static_cast<int>(FCells.size()) - 1;
    const int allWidth =
        std::max(36, QFontMetrics(ThemeFont(fsBodyBold)).horizontalAdvance(FCells.front()->text()) + 12);
    const int room = width() - x - allWidth - 10;
    // What does not fit goes behind a button, for which room is kept then.
    const bool fits = letters * LeastPitch <= room;
    const int moreWidth = QFontMetrics(ThemeFont(fsBody)).horizontalAdvance(u"W\u2013W"_s) + 42;
    const int shown = fits ? letters : std::clamp((room - moreWidth - 8) / LeastPitch, 0, letters);
    const int pitch = std::clamp((fits ? room : room - moreWidth - 8) / std::max(1, shown), LeastPitch, 28);
    const int cellHeight = RowHeight(CellHeight, ThemeFont(fsBody), 4);
    for (qsizetype i = 0; i <= shown && i < FCells.size(); ++i)
        place(FCells[i], i == 0 ? allWidth : pitch, cellHeight);
    FoldFrom(shown + 1);
    if (!fits) {
        x += 8;
        place(FMore, moreWidth, FMore->sizeHint().height());
    }
}

void TLetterBar::FoldFrom(qsizetype first)
{
    FMore->menu()->clear();
    for (qsizetype i = 0; i < FCells.size(); ++i) {
        TLetterCell* cell = FCells[i];
        cell->setVisible(i < first);
        if (i < first)
            continue;
        QAction* letter = FMore->menu()->addAction(cell->Letter);
        letter->setCheckable(true);
        letter->setChecked(cell->isChecked());
        // Later: the choice makes this menu anew.
        connect(letter, &QAction::triggered, cell, &QAbstractButton::click, Qt::QueuedConnection);
    }
    const bool any = first < FCells.size();
    FMore->setVisible(any);
    if (!any)
        return;
    const QString range = FCells[first]->Letter + u'\u2013' + FCells.last()->Letter;
    const auto chosen =
        std::find_if(FCells.cbegin() + first, FCells.cend(), [](const TLetterCell* cell) { return cell->isChecked(); });
    FMore->setText(range);
    FMore->setAccessibleName(range);
    FMore->SetShape(chosen == FCells.cend() ? TRibbonButton::TShape::Bar : TRibbonButton::TShape::Primary);
    if (chosen != FCells.cend())
        setFocusProxy(FMore);
}

void TLetterBar::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    PlaceCells();
}

void TLetterBar::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), CurrentTheme().View);
}

} // namespace Kestrune
