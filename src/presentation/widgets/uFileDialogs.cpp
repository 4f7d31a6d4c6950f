// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFileDialogs.h"

#include "uIcons.h"
#include "uTHStrings.h"

#include <QAbstractFileIconProvider>
#include <QApplication>
#include <QEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int LookEvery = 250; // milliseconds

// Icons and kinds by name and attributes. The toolkit's own provider reads the beginning of files to guess what they
// are. Asked by the thread that lists folders, so nothing here is made late.
class TPlainIcons final : public QAbstractFileIconProvider {
public:
    QIcon icon(IconType type) const override
    {
        switch (type) {
        case Computer:
        case Desktop: return FHome;
        case Drive: return FDrive;
        case File: return FFile;
        default: return FFolder;
        }
    }
    QIcon icon(const QFileInfo& info) const override { return info.isRoot() ? FDrive : info.isDir() ? FFolder : FFile; }
    QString type(const QFileInfo& info) const override
    {
        return info.isDir() ? FFolderWord : info.suffix().isEmpty() ? FFileWord : info.suffix().toUpper();
    }

private:
    QIcon FFolder = ThemeIcon(u"folder"_s, icText);
    QIcon FFile = ThemeIcon(u"file"_s);
    QIcon FDrive = ThemeIcon(u"disc"_s);
    QIcon FHome = ThemeIcon(u"home"_s);
    QString FFolderWord = GetLanguageString(u"cSGuiFolder"_s);
    QString FFileWord = GetLanguageString(u"cSGuiFile"_s);
};

QString RunChooser(QWidget* parent, const TFileDialogRequest& request, QFileDialog::AcceptMode accept,
                   QFileDialog::FileMode mode)
{
    TPlainIcons icons; // outlives the dialog and the thread that asks it
    // A dialog lists its first folder as soon as it is made, still with the toolkit's provider: that one is empty.
    const QTemporaryDir empty;
    QFileDialog dialog(parent, request.Title, empty.path());
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setIconProvider(&icons);
    dialog.setHistory({});
    dialog.setAcceptMode(accept);
    dialog.setFileMode(mode);
    if (mode == QFileDialog::Directory)
        dialog.setOption(QFileDialog::ShowDirsOnly);
    else
        dialog.setNameFilter(QtFilterOf(request.Filter));
    dialog.setDefaultSuffix(request.DefaultExtension);
    dialog.setDirectory(request.Folder);
    if (!request.FileName.isEmpty())
        dialog.selectFile(request.FileName);
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

TFileDialogRequest InFolder(TFileDialogRequest request, QStandardPaths::StandardLocation location)
{
    if (request.Folder.isEmpty())
        request.Folder = QStandardPaths::writableLocation(location);
    return request;
}

bool IsDialogOpen()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    return std::ranges::any_of(windows,
                               [](QWidget* window) { return qobject_cast<QDialog*>(window) && window->isVisible(); });
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

QString ChooseOpenFile(QWidget* parent, const TFileDialogRequest& request)
{
    return RunChooser(parent, InFolder(request, QStandardPaths::DocumentsLocation), QFileDialog::AcceptOpen,
                      QFileDialog::ExistingFile);
}

QString ChooseSaveFile(QWidget* parent, const TFileDialogRequest& request)
{
    return RunChooser(parent, InFolder(request, QStandardPaths::DocumentsLocation), QFileDialog::AcceptSave,
                      QFileDialog::AnyFile);
}

QString ChooseFolder(QWidget* parent, const QString& title, const QString& folder)
{
    TFileDialogRequest request;
    request.Title = title.isEmpty() ? GetLanguageString(u"cSGuiChooseFolder"_s) : title;
    request.Folder = folder;
    return RunChooser(parent, InFolder(request, QStandardPaths::MusicLocation), QFileDialog::AcceptOpen,
                      QFileDialog::Directory);
}

TDialogWatch::TDialogWatch(std::function<void()> look, std::function<void()> closed, QObject* parent)
    : QObject(parent), FLook(std::move(look)), FClosed(std::move(closed))
{
    FTimer.setInterval(LookEvery);
    connect(&FTimer, &QTimer::timeout, this, [this] {
        if (!IsDialogOpen())
            FTimer.stop();
        FLook();
    });
    qApp->installEventFilter(this);
}

bool TDialogWatch::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Show && qobject_cast<QDialog*>(watched))
        FTimer.start();
    // Later, when the dialog has ended what it does.
    if (event->type() == QEvent::Hide && qobject_cast<QDialog*>(watched))
        QTimer::singleShot(0, this, [this] {
            FLook();
            if (FClosed && !IsDialogOpen())
                FClosed();
        });
    return false;
}

} // namespace Kestrune
