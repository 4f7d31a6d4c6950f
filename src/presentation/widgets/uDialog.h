// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

class QHBoxLayout;
class QPushButton;
class QVBoxLayout;

namespace Kestrune {

/// A dialog of the program: content above, buttons right below with the primary one last. Esc cancels, the size is
/// remembered under the name.
class TDialog : public QDialog {
    Q_OBJECT
public:
    TDialog(const QString& name, const QString& title, QWidget* parent);
    ~TDialog() override;

    /// Where the content goes.
    QVBoxLayout* Body() const { return FBody; }
    /// A button left of the others, as for things that do not end the dialog.
    QPushButton* AddSideButton(const QString& text);
    /// Cancel and the primary button with this text; the latter accepts.
    QPushButton* AddButtons(const QString& primary);
    /// The one button of a dialog that only shows something.
    QPushButton* AddCloseButton();
    /// The size when none is remembered.
    void SetFirstSize(const QSize& size);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString SizeKey() const;

    QVBoxLayout* FBody;
    QHBoxLayout* FSide;
    QHBoxLayout* FButtons;
};

/// An icon button with a name for tool tip and screen reader.
class TRibbonButton;
TRibbonButton* MakeIconButton(const QString& icon, const QString& nameKey, QWidget* parent);

} // namespace Kestrune
