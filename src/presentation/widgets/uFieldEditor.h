// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uColumns.h"
#include "uFieldEditors.h"
#include "uTHTypes.h"

#include <QPointer>
#include <QWidget>

#include <optional>

class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QToolButton;

namespace Kestrune {

class TDataModuleMain;
class TStarsEdit;

/// The editor of one field, the same wherever a field is edited: in tables, in the detail pane, in filters and in
/// multi-edit. Enter takes the value, Esc leaves it, leaving the editor takes it too.
class TFieldEditor : public QWidget {
    Q_OBJECT
public:
    /// The data module outlives the editor; lists of friends are read from it.
    TFieldEditor(TDataModuleMain& dataModule, TFieldDef field, QWidget* parent = nullptr);
    ~TFieldEditor() override;

    const TFieldDef& Field() const { return FField; }
    TEditorKind Kind() const { return FKind; }
    void SetValue(const TVariant& value);
    /// The value in the editor; nothing when what was typed is no value of the field.
    std::optional<TVariant> Value() const;
    /// Whether the user has changed anything since SetValue.
    bool IsModified() const;
    /// Marks the text as refused and keeps it for mending.
    void ShowRefusal(const QString& sentence);
    /// Tells below the editor what the file will keep where that is not what is typed; for editors whose value is written.
    void TellWhatIsKept() { connect(this, &TFieldEditor::edited, this, &TFieldEditor::ShowHint); }
    /// The widget that has the keyboard.
    QWidget* Input() const { return FInput; }
    /// Puts the cursor in and selects the text.
    void Begin();

Q_SIGNALS:
    void committed();          ///< the user is done: Enter, a choice, the focus went on
    void moved(int direction); ///< done, and on to the next (1) or former (-1) one: Tab
    void cancelled();          ///< Esc
    void edited();             ///< the text or the choice changed

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    void MakeList(bool free);
    void MakeText();
    void MakeButton(const QString& icon, const QString& name);
    void PressButton();
    QString Text() const;
    void SetText(const QString& text);
    void ChooseDate();
    void ShowHint();
    bool HandleKey(int key, Qt::KeyboardModifiers modifiers);

    TDataModuleMain& FData;
    TFieldDef FField;
    TEditorKind FKind;
    QWidget* FInput = nullptr;
    QLineEdit* FEdit = nullptr;
    QPlainTextEdit* FMemo = nullptr;
    QComboBox* FList = nullptr;
    TStarsEdit* FStars = nullptr;
    QToolButton* FButton = nullptr;
    QPointer<QLabel> FHint; // below the editor, over what lies there
    TVariant FGiven;
    QString FGivenText;
    bool FPopupOpen = false;
};

} // namespace Kestrune
