// SPDX-License-Identifier: GPL-3.0-or-later
#include "uPathNames.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

QString FileNameOf(const QString& path) { return path.sliced(path.lastIndexOf(u'/') + 1); }

QString FolderOf(const QString& path)
{
    const qsizetype slash = path.lastIndexOf(u'/');
    return slash == 0 ? u"/"_s : path.first(qMax<qsizetype>(slash, 0));
}

QString ExtensionOf(const QString& path)
{
    const QString name = FileNameOf(path);
    const qsizetype point = name.lastIndexOf(u'.');
    return point < 0 ? QString() : name.sliced(point).toLower();
}

QString StemOf(const QString& path)
{
    const QString name = FileNameOf(path);
    const qsizetype point = name.lastIndexOf(u'.');
    return point < 0 ? name : name.first(point);
}

} // namespace Kestrune
