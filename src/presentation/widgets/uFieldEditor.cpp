// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFieldEditor.h"

#include "dmMain.h"
#include "uDefaults.h"
#include "uFieldText.h"
#include "uFileDialogs.h"
#include "uIcons.h"
#include "uKeptText.h"
#include "uStarsEdit.h"
#include "uTHStrings.h"

#include <QAbstractItemView>
#include <QCalendarWidget>
#include <QComboBox>
#include <QCompleter>
#include <QDesktopServices>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QStringListModel>
#include <QToolButton>
#include <QUrl>
#include <QWidgetAction>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// Completes the token that is being typed, behind the last comma.
class TTokenCompleter : public QCompleter {
public:
    using QCompleter::QCompleter;

    QStringList splitPath(const QString& path) const override
    {
        return {path.mid(path.lastIndexOf(u',') + 1).trimmed()};
    }

    QString pathFromIndex(const QModelIndex& index) const override
    {
        const auto* edit = qobject_cast<const QLineEdit*>(widget());
        const QString before = edit ? edit->text().left(edit->text().lastIndexOf(u',') + 1) : QString();
        return before + (before.isEmpty() ? QString() : u" "_s) + QCompleter::pathFromIndex(index);
    }
};

// One token after the other, without blanks around them and without empty ones.
QString TidyTokens(const QString& text)
{
    QStringList tokens;
    for (const QString& token : text.split(u','))
        if (!token.trimmed().isEmpty())
            tokens << token.trimmed();
    return tokens.join(u", "_s);
}

} // namespace

TFieldEditor::TFieldEditor(TDataModuleMain& dataModule, TFieldDef field, QWidget* parent)
    : QWidget(parent), FData(dataModule), FField(std::move(field)), FKind(EditorKindOf(FField))
{
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(2);
    setAutoFillBackground(true);
    switch (FKind) {
    case ekRating:
        FStars = new TStarsEdit(this);
        FInput = FStars;
        connect(FStars, &TStarsEdit::ratingChosen, this, &TFieldEditor::edited);
        break;
    case ekMemo:
        FMemo = new QPlainTextEdit(this);
        FMemo->setTabChangesFocus(true);
        FInput = FMemo;
        connect(FMemo, &QPlainTextEdit::textChanged, this, &TFieldEditor::edited);
        break;
    case ekList:
    case ekChoice: MakeList(FKind == ekList); break;
    default: MakeText();
    }
    row->insertWidget(0, FInput, 1);
    FInput->installEventFilter(this);
    setFocusProxy(FInput);
    FInput->setAccessibleName(ColumnLabel(FField, Defaults()));
}

TFieldEditor::~TFieldEditor() { delete FHint; }

// The file makes numbers of texts that look like one, which nobody expects of a text: it is told before it is written.
// A cell has no room for a line, so that the hint lies over the window below the editor.
void TFieldEditor::ShowHint()
{
    const std::optional<TVariant> value = IsModified() ? Value() : std::nullopt;
    const QString note = value ? KeptTextNote(FField, VarToStr(*value), Defaults()) : QString();
    setAccessibleDescription(note);
    if (note.isEmpty()) {
        delete FHint;
        return;
    }
    if (!FHint) {
        FHint = new QLabel(window());
        FHint->setObjectName(u"FieldHint"_s);
        FHint->setAutoFillBackground(true);
        FHint->setBackgroundRole(QPalette::ToolTipBase);
        FHint->setForegroundRole(QPalette::ToolTipText);
        FHint->setFrameShape(QFrame::StyledPanel);
        FHint->setMargin(4);
    }
    FHint->setText(note);
    FHint->adjustSize();
    const QPoint below = mapTo(window(), QPoint(0, height() + 2));
    FHint->move(std::clamp(below.x(), 0, std::max(0, window()->width() - FHint->width())),
                std::min(below.y(), window()->height() - FHint->height()));
    FHint->show();
    FHint->raise();
}

void TFieldEditor::MakeList(bool free)
{
    FList = new QComboBox(this);
    FList->setEditable(free);
    FList->setInsertPolicy(QComboBox::NoInsert);
    FList->setMinimumContentsLength(4);
    FList->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    FList->addItem(QString(), QString());
    for (const TValueAndText& item : EditorItems(FData, FField))
        FList->addItem(item.Text, item.Value);
    FInput = FList;
    if (free) {
        FList->completer()->setCompletionMode(QCompleter::PopupCompletion);
        FList->completer()->setFilterMode(Qt::MatchContains);
        if (FField.Size > 0)
            FList->lineEdit()->setMaxLength(FField.Size);
        FList->lineEdit()->installEventFilter(this);
    }
    connect(FList, &QComboBox::currentTextChanged, this, &TFieldEditor::edited);
}

void TFieldEditor::MakeText()
{
    FEdit = new QLineEdit(this);
    FInput = FEdit;
    if (FField.Size > 0 && FField.IsText())
        FEdit->setMaxLength(FField.Size);
    if (FKind == ekTokens) {
        const PDict dict = DictionaryOf(FField.Name);
        auto* completer = new TTokenCompleter(dict ? dict->Items() : QStringList(), FEdit);
        completer->setCaseSensitivity(Qt::CaseInsensitive);
        FEdit->setCompleter(completer);
    }
    connect(FEdit, &QLineEdit::textEdited, this, &TFieldEditor::edited);
    switch (FKind) {
    case ekDate: MakeButton(u"cd"_s, u"cSGuiChooseDate"_s); break;
    case repASIN:
    case repDiscogs:
    case repMusicBrainz: MakeButton(u"ext"_s, u"cSGuiOpenLink"_s); break;
    case repSelectFolder: MakeButton(u"folder"_s, u"cSGuiChooseFolder"_s); break;
    default: break;
    }
}

void TFieldEditor::MakeButton(const QString& icon, const QString& name)
{
    FButton = new QToolButton(this);
    FButton->setIcon(ThemeIcon(icon));
    FButton->setToolTip(GetLanguageString(name));
    FButton->setAccessibleName(GetLanguageString(name));
    FButton->setAutoRaise(true);
    FButton->setFocusPolicy(Qt::NoFocus); // Alt+Down reaches it
    static_cast<QHBoxLayout*>(layout())->addWidget(FButton);
    connect(FButton, &QToolButton::clicked, this, &TFieldEditor::PressButton);
}

void TFieldEditor::PressButton()
{
    FPopupOpen = true;
    if (FKind == ekDate) {
        ChooseDate();
    } else if (FKind == repSelectFolder) {
        const QString folder = ChooseFolder(this, {}, Text());
        if (!folder.isEmpty()) {
            SetText(folder);
            Q_EMIT edited();
        }
    } else if (const QString link = LinkOfField(FField.Name, Text()); !link.isEmpty()) {
        QDesktopServices::openUrl(QUrl(link));
    }
    FPopupOpen = false;
    FInput->setFocus();
}

void TFieldEditor::ChooseDate()
{
    QMenu menu(this);
    auto* calendar = new QCalendarWidget(&menu);
    if (const std::optional<TVariant> now = Value(); now && now->toDate().isValid())
        calendar->setSelectedDate(now->toDate());
    auto* holder = new QWidgetAction(&menu);
    holder->setDefaultWidget(calendar);
    menu.addAction(holder);
    connect(calendar, &QCalendarWidget::activated, &menu, [&](const QDate& date) {
        SetText(FieldEditText(FField, date));
        Q_EMIT edited();
        menu.close();
    });
    menu.exec(FButton->mapToGlobal(QPoint(0, FButton->height())));
}

QString TFieldEditor::Text() const
{
    if (FMemo)
        return FMemo->toPlainText();
    if (FList)
        return FList->currentText();
    return FEdit ? FEdit->text() : QString();
}

void TFieldEditor::SetText(const QString& text)
{
    if (FMemo)
        FMemo->setPlainText(text);
    else if (FEdit)
        FEdit->setText(text);
    else if (FList && FList->isEditable())
        FList->setEditText(text);
}

void TFieldEditor::SetValue(const TVariant& value)
{
    FGiven = value;
    if (FStars) {
        FStars->SetRating(static_cast<int>(RoundHalfEven(VarToDouble(value).toDouble() * 2.0)));
    } else if (FKind == ekChoice) {
        const QString stored = VarIsNull(value)           ? QString()
                               : FField.Kind == fkBoolean ? (VarToBool(value) ? u"1"_s : u"0"_s)
                                                          : VarToStr(value);
        if (FList->findData(stored) < 0) // a value that the list does not know is not lost
            FList->addItem(stored, stored);
        FList->setCurrentIndex(FList->findData(stored));
    } else {
        SetText(FieldEditText(FField, value));
    }
    FGivenText = FStars ? QString::number(FStars->Rating()) : Text();
}

bool TFieldEditor::IsModified() const { return (FStars ? QString::number(FStars->Rating()) : Text()) != FGivenText; }

std::optional<TVariant> TFieldEditor::Value() const
{
    if (!IsModified())
        return FGiven;
    if (FStars)
        return FStars->Rating() == 0 ? TVariant() : TVariant(FStars->Rating() / 2.0);
    if (FKind == ekChoice) {
        const QString stored = FList->currentData().toString();
        if (stored.isEmpty())
            return TVariant();
        if (FField.Kind == fkBoolean)
            return TVariant(stored == "1"_L1);
        return FField.Kind == fkInteger ? TVariant(stored.toLongLong()) : TVariant(stored);
    }
    return ParseFieldText(FField, FKind == ekTokens ? TidyTokens(Text()) : Text());
}

void TFieldEditor::ShowRefusal(const QString& sentence)
{
    setToolTip(sentence);
    setAccessibleDescription(sentence);
    Begin();
}

void TFieldEditor::Begin()
{
    FInput->setFocus(Qt::OtherFocusReason);
    if (FEdit)
        FEdit->selectAll();
    else if (FList && FList->isEditable())
        FList->lineEdit()->selectAll();
}

void TFieldEditor::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    Begin();
}

bool TFieldEditor::HandleKey(int key, Qt::KeyboardModifiers modifiers)
{
    const bool listOpen = FList && FList->view()->isVisible();
    switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (listOpen || (FMemo && !modifiers.testFlag(Qt::ControlModifier)))
            return false;
        Q_EMIT committed();
        return true;
    case Qt::Key_Escape: Q_EMIT cancelled(); return true;
    case Qt::Key_Tab:
    case Qt::Key_Backtab: Q_EMIT moved(key == Qt::Key_Tab ? 1 : -1); return true;
    case Qt::Key_Down:
        if (FButton && modifiers.testFlag(Qt::AltModifier)) {
            PressButton();
            return true;
        }
        return false;
    default: return false;
    }
}

bool TFieldEditor::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (HandleKey(key->key(), key->modifiers()))
            return true;
    }
    // Arrows and Enter belong to the editor, not to the shortcuts of the window.
    if (event->type() == QEvent::ShortcutOverride) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Delete)
            event->accept();
    }
    if (event->type() == QEvent::FocusOut) {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        const bool toPart = reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason ||
                            (focusWidget() && isAncestorOf(focusWidget()) && focusWidget()->hasFocus());
        if (!toPart && !FPopupOpen)
            QMetaObject::invokeMethod(this, &TFieldEditor::committed, Qt::QueuedConnection);
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace Kestrune
