// SPDX-License-Identifier: GPL-3.0-or-later
// Service packages: whatever the archive says, nothing but files and folders appears, and only inside the folder.
#include "uServicePackage.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

QStringList NamesIn(const QString& path)
{
    return QDir(path).entryList(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // Several levels, so that ".." ends in a place that is looked at.
    static const QTemporaryDir outer;
    const QString above = outer.filePath(u"above"_s), beside = above + u"/beside"_s, folder = beside + u"/services"_s;
    const QString package = outer.filePath(u"package.zip"_s);
    QFile file(package);
    if (!QDir().mkpath(folder) || !file.open(QIODevice::WriteOnly) ||
        file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size)) != static_cast<qint64>(size))
        std::abort();
    file.close();

    QString error;
    const bool installed = InstallServicePackage(package, folder, 1, error);
    if (installed != error.isEmpty())
        std::abort();
    if (NamesIn(outer.path()) != QStringList{u"above"_s, u"package.zip"_s} ||
        NamesIn(above) != QStringList{u"beside"_s} || NamesIn(beside) != QStringList{u"services"_s})
        std::abort();
    QDirIterator files(folder, QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
    bool isEmpty = true;
    while (files.hasNext()) {
        files.next();
        isEmpty = false;
        const QFileInfo entry = files.fileInfo();
        if (entry.isSymLink() || !(entry.isFile() || entry.isDir()))
            std::abort();
    }
    if (!isEmpty && !QDir(folder).removeRecursively())
        std::abort();
    return 0;
}
