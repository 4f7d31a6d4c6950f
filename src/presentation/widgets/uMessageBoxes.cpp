// SPDX-License-Identifier: GPL-3.0-or-later
#include "uMessageBoxes.h"

#include "uTHStrings.h"

#include <QGuiApplication>
#include <QMessageBox>
#include <QPushButton>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

struct TBoxButton {
    QMessageBox::StandardButton Button;
    QString Key;
};

QMessageBox::StandardButton RunBox(QWidget* parent, QMessageBox::Icon icon, const QString& text,
                                   std::initializer_list<TBoxButton> buttons, QMessageBox::StandardButton primary,
                                   QMessageBox::StandardButton escape, const QString& note = {})
{
    QMessageBox box(parent);
    box.setWindowTitle(QGuiApplication::applicationDisplayName());
    box.setIcon(icon);
    box.setTextFormat(Qt::PlainText); // file names in it must not turn into markup
    box.setText(text);
    box.setInformativeText(note);
    for (const TBoxButton& button : buttons)
        box.addButton(button.Button)->setText(GetLanguageString(button.Key));
    box.setDefaultButton(primary);
    box.setEscapeButton(escape);
    return QMessageBox::StandardButton(box.exec());
}

} // namespace

void ShowMessage(QWidget* parent, const QString& text)
{
    RunBox(parent, QMessageBox::Information, text, {{QMessageBox::Ok, u"cSGuiOk"_s}}, QMessageBox::Ok, QMessageBox::Ok);
}

void ShowError(QWidget* parent, const QString& text)
{
    RunBox(parent, QMessageBox::Critical, text, {{QMessageBox::Ok, u"cSGuiOk"_s}}, QMessageBox::Ok, QMessageBox::Ok);
}

bool AskYesNo(QWidget* parent, const QString& text, bool defaultNo, const QString& note)
{
    return RunBox(parent, QMessageBox::Question, text,
                  {{QMessageBox::Yes, u"cSGuiYes"_s}, {QMessageBox::No, u"cSGuiNo"_s}},
                  defaultNo ? QMessageBox::No : QMessageBox::Yes, QMessageBox::No, note) == QMessageBox::Yes;
}

TAnswer AskYesNoCancel(QWidget* parent, const QString& text)
{
    switch (RunBox(
        parent, QMessageBox::Question, text,
        {{QMessageBox::Yes, u"cSGuiYes"_s}, {QMessageBox::No, u"cSGuiNo"_s}, {QMessageBox::Cancel, u"cSGuiCancel"_s}},
        QMessageBox::Yes, QMessageBox::Cancel)) {
    case QMessageBox::Yes: return anYes;
    case QMessageBox::No: return anNo;
    default: return anCancel;
    }
}

} // namespace Kestrune
