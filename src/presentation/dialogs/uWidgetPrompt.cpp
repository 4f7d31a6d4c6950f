// SPDX-License-Identifier: GPL-3.0-or-later
#include "uWidgetPrompt.h"

#include "uMessageBoxes.h"

#include <QFileDialog>
#include <QStandardPaths>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

QString RunFileDialog(QWidget* parent, const TFileDialogRequest& request, QFileDialog::AcceptMode mode)
{
    QString folder = request.Folder;
    if (folder.isEmpty())
        folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    QFileDialog dialog(parent, request.Title, folder);
    dialog.setAcceptMode(mode);
    dialog.setFileMode(mode == QFileDialog::AcceptOpen ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    dialog.setNameFilter(QtFilterOf(request.Filter));
    dialog.setDefaultSuffix(request.DefaultExtension);
    if (!request.FileName.isEmpty())
        dialog.selectFile(request.FileName);
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

} // namespace

QString QtFilterOf(const QString& filter)
{
    const QStringList parts = filter.split(u'|');
    QStringList shown;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString name = parts[i];
        if (const qsizetype bracket = name.lastIndexOf(u'('); bracket > 0)
            name = name.left(bracket).trimmed();
        QString patterns = parts[i + 1];
        // Names without a dot are files too.
        patterns.replace(u"*.*"_s, u"*"_s).replace(u';', u' ');
        shown << name + u" ("_s + patterns + u')';
    }
    return shown.join(u";;"_s);
}

void TWidgetPrompt::ShowError(const QString& text) { Kestrune::ShowError(FWindow, text); }

void TWidgetPrompt::ShowInformation(const QString& text) { ShowMessage(FWindow, text); }

bool TWidgetPrompt::AskYesNo(const QString& text) { return Kestrune::AskYesNo(FWindow, text); }

QString TWidgetPrompt::AskOpenFile(const TFileDialogRequest& request)
{
    return RunFileDialog(FWindow, request, QFileDialog::AcceptOpen);
}

QString TWidgetPrompt::AskSaveFile(const TFileDialogRequest& request)
{
    return RunFileDialog(FWindow, request, QFileDialog::AcceptSave);
}

QString TWidgetPrompt::AskFolder(const QString& title, const QString& folder)
{
    const QString start = folder.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::MusicLocation) : folder;
    return QFileDialog::getExistingDirectory(FWindow, title, start);
}

} // namespace Kestrune
