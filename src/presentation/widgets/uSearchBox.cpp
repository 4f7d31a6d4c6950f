// SPDX-License-Identifier: GPL-3.0-or-later
#include "uSearchBox.h"

#include "uIcons.h"
#include "uRibbonButton.h"
#include "uTHStrings.h"
#include "uTheme.h"
#include "uThemePaint.h"

#include <QAction>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

TSearchBox::TSearchBox(QWidget* parent)
    : QWidget(parent),
      FFields(1),
      FChooser(new TRibbonButton(TRibbonButton::TShape::Flat, this)),
      FEdit(new QLineEdit(this)),
      FList(new QComboBox(this)),
      FClear(new TRibbonButton(TRibbonButton::TShape::Icon, this))
{
    FChooser->setMenu(new QMenu(FChooser));
    FChooser->setAccessibleName(GetLanguageString(u"cSGuiSearchField"_s));
    FEdit->setFrame(false);
    FList->setFrame(false);
    FClear->SetIconName(u"x"_s);
    FClear->setText(GetLanguageString(u"cSGuiClear"_s));
    FClear->setAccessibleName(GetLanguageString(u"cSGuiClear"_s));
    FClear->setFocusPolicy(Qt::NoFocus);
    for (QWidget* editor : {static_cast<QWidget*>(FEdit), static_cast<QWidget*>(FList)})
        editor->installEventFilter(this);
    connect(FEdit, &QLineEdit::returnPressed, this, &TSearchBox::searchRequested);
    connect(FEdit, &QLineEdit::textChanged, this, &TSearchBox::FollowText);
    connect(FList, &QComboBox::currentIndexChanged, this, &TSearchBox::FollowText);
    connect(FList, &QComboBox::activated, this, &TSearchBox::searchRequested);
    connect(FClear, &QToolButton::clicked, this, &TSearchBox::Clear);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    ShowField(0);
}

void TSearchBox::SetFields(std::vector<TSearchBoxField> fields)
{
    FFields = std::move(fields);
    if (FFields.empty())
        FFields.emplace_back();
    QMenu* menu = FChooser->menu();
    menu->clear();
    for (std::size_t i = 0; i < FFields.size(); ++i)
        connect(menu->addAction(FFields[i].Caption), &QAction::triggered, this, [this, i] {
            ShowField(i);
            FocusEditor();
        });
    ShowField(0);
}

void TSearchBox::SetCurrentField(const QString& name)
{
    const auto it =
        std::find_if(FFields.begin(), FFields.end(), [&](const TSearchBoxField& f) { return f.Name == name; });
    if (it != FFields.end())
        ShowField(std::size_t(it - FFields.begin()));
}

const TSearchBoxField& TSearchBox::CurrentField() const { return FFields[FCurrent]; }

void TSearchBox::ShowField(std::size_t number)
{
    const bool changed = number != FCurrent;
    FCurrent = number;
    const TSearchBoxField& field = CurrentField();
    FChooser->setText(field.Caption);
    FList->clear();
    FList->addItems(field.Choices);
    FList->setCurrentIndex(-1);
    FEdit->setVisible(!EditsList());
    FList->setVisible(EditsList());
    const QString hint = field.Caption.isEmpty() ? QString() : GetLanguageString(u"cSGuiSearchIn"_s).arg(field.Caption);
    FEdit->setPlaceholderText(hint);
    FList->setPlaceholderText(hint);
    FEdit->setAccessibleName(hint);
    FList->setAccessibleName(hint);
    FollowText();
    update();
    if (changed)
        Q_EMIT fieldChanged(field.Name);
}

void TSearchBox::FollowText()
{
    FClear->setVisible(!Text().isEmpty());
    PlaceChildren();
    Q_EMIT textChanged(Text());
}

QString TSearchBox::Text() const { return EditsList() ? FList->currentText() : FEdit->text(); }

void TSearchBox::SetText(const QString& text)
{
    if (EditsList())
        FList->setCurrentIndex(FList->findText(text));
    else
        FEdit->setText(text);
}

void TSearchBox::FocusEditor()
{
    if (EditsList())
        return FList->setFocus(Qt::ShortcutFocusReason);
    FEdit->setFocus(Qt::ShortcutFocusReason);
    FEdit->selectAll();
}

void TSearchBox::Clear()
{
    FEdit->clear();
    FList->setCurrentIndex(-1);
    Q_EMIT cleared();
}

QSize TSearchBox::sizeHint() const { return {430, RowHeight(28, ThemeFont(fsBody), 8)}; }

QSize TSearchBox::minimumSizeHint() const { return {300, sizeHint().height()}; }

void TSearchBox::PlaceChildren()
{
    const int chooser = FChooser->sizeHint().width();
    const int clear = FClear->isVisibleTo(this) ? 26 : 2;
    const auto place = [&](QWidget* child, int left, int width) {
        const int x = isRightToLeft() ? this->width() - left - width : left;
        child->setGeometry(x, 1, std::max(0, width), height() - 2);
    };
    place(FChooser, 1, chooser);
    place(FEdit, chooser + 32, width() - chooser - 32 - clear - 2);
    place(FList, chooser + 26, width() - chooser - 26 - clear - 2);
    place(FClear, width() - 27, 25);
}

void TSearchBox::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    PlaceChildren();
}

bool TSearchBox::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        update();
        PlaceChildren();
    }
    if (event->type() == QEvent::ShortcutOverride) {
        // Keys that edit text belong to the box while it has the keyboard: Ctrl+Del takes a word here, not a release.
        const auto* key = static_cast<QKeyEvent*>(event);
        for (const QKeySequence::StandardKey edit :
             {QKeySequence::DeleteEndOfWord, QKeySequence::DeleteStartOfWord, QKeySequence::SelectAll}) {
            if (key->matches(edit)) {
                event->accept();
                return true;
            }
        }
    }
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Escape) {
            Q_EMIT leaveRequested();
            return true;
        }
        if (watched == FList && (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter)) {
            Q_EMIT searchRequested();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void TSearchBox::paintEvent(QPaintEvent*)
{
    const TTheme& theme = CurrentTheme();
    QPainter painter(this);
    const bool focused = FEdit->hasFocus() || FList->hasFocus();
    FillRounded(painter, rect(), RadiusControl, theme.Raised);
    const int split = FChooser->sizeHint().width() + 1;
    const auto mirrored = [&](const QRectF& r) {
        return isRightToLeft() ? QRectF(width() - r.right(), r.top(), r.width(), r.height()) : r;
    };
    DrawHairline(painter, mirrored(QRectF(split, 1, 1, height() - 2)), Qt::LeftEdge, theme.Line);
    if (!EditsList())
        DrawIcon(painter, mirrored(QRectF(split + 8, height() / 2.0 - 8, 16, 16)), u"search"_s, theme.Text2);
    StrokeRounded(painter, rect(), RadiusControl, focused ? theme.AccentFill : theme.Outline, focused ? 2 : 1);
}

} // namespace Kestrune
