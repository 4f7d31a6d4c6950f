// SPDX-License-Identifier: GPL-3.0-or-later
#include "uProgramFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace Kestrune {

using namespace Qt::StringLiterals;

QString ProgramFile(const QString& name)
{
    const QDir folder(QCoreApplication::applicationDirPath());
    const QString beside = folder.filePath(name);
    const QString installed = QDir::cleanPath(folder.filePath(u"../share/kestrune/"_s + name));
    return !QFileInfo::exists(beside) && QFileInfo::exists(installed) ? installed : beside;
}

QByteArray ProgramText(const QString& fileName, const QString& resource)
{
    const QString path = ProgramFile(fileName);
    QFile file(QFile::exists(path) ? path : resource);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray text = file.readAll();
    return text.isNull() ? QByteArray("") : text;
}

QString ConfigFolder(const QString& company, const QString& product)
{
    const QDir base(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation));
    return base.filePath(company + u'/' + product);
}

QString DataFolder(const QString& company, const QString& product)
{
    const QDir base(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
    return base.filePath(company + u'/' + product);
}

} // namespace Kestrune
