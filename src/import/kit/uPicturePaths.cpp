// SPDX-License-Identifier: GPL-3.0-or-later
#include "uPicturePaths.h"

#include "uFilePath.h"
#include "uFolderList.h"
#include "uPathNames.h"

#include <QRegularExpression>

#include <algorithm>
#include <climits>
#include <filesystem>
#include <system_error>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace fs = std::filesystem;

namespace {

bool IsRegularFile(const QString& path)
{
    std::error_code failure;
    return fs::is_regular_file(TextToPath(path), failure);
}

bool Exists(const QString& path)
{
    std::error_code failure;
    return fs::exists(TextToPath(path), failure);
}

// "%NAME%" becomes the variable's value. What the environment does not know stays: it may be a token.
QString WithEnvironment(const QString& text)
{
    static const QRegularExpression variable(u"%([^%/\\\\]+)%"_s);
    QString result;
    qsizetype done = 0;
    for (auto matches = variable.globalMatch(text); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        const QByteArray name = match.captured(1).toUtf8();
        if (!qEnvironmentVariableIsSet(name.constData()))
            continue;
        result += QStringView(text).sliced(done, match.capturedStart() - done);
        result += qEnvironmentVariable(name.constData());
        done = match.capturedEnd();
    }
    result += QStringView(text).sliced(done);
    return result;
}

// A place that only the other machine knows: a drive, a share, or a variable of its environment.
bool IsForeignRoot(const QString& first)
{
    static const QRegularExpression root(u"^([A-Za-z]:|%[^%]+%)$"_s);
    return root.match(first).hasMatch();
}

} // namespace

TPicturePaths::TPicturePaths(const QString& sourceFile)
    : FFolder(FolderOf(sourceFile) + u'/'), FStem(StemOf(sourceFile))
{}

QString TPicturePaths::Expanded(QString path) const
{
    path = WithEnvironment(path.trimmed());
    path.replace(u"%RelativePath%"_s, FFolder, Qt::CaseInsensitive);
    path.replace(u"%DBFilenameWithoutExt%"_s, FStem, Qt::CaseInsensitive);
    return path;
}

QString TPicturePaths::Find(const QString& path)
{
    QString expanded = Expanded(path);
    // Longer ones come from damaged data; the system opens none of them.
    if (expanded.isEmpty() || expanded.size() >= PATH_MAX || expanded.contains(QChar(u'\0')))
        return {};
    if (expanded.startsWith(u'/') && IsRegularFile(expanded))
        return expanded; // a name may hold a backslash here
    const QString slashed = QString(expanded).replace(u'\\', u'/');
    // "C:x" and "C:/x" are the same to whoever reads them here.
    const bool hasDrive = slashed.size() > 1 && slashed[1] == u':' && slashed[0].isLetter();
    QStringList parts = (hasDrive ? slashed.sliced(2) : slashed).split(u'/', Qt::SkipEmptyParts);
    if (parts.isEmpty())
        return {};
    const bool hasShare = slashed.startsWith("//"_L1);
    const bool hasVariable = IsForeignRoot(parts.front());
    if (hasDrive || hasShare || hasVariable) {
        if (hasVariable)
            parts.removeFirst();
        return FoundBesideSource(parts);
    }
    return Existing(slashed.startsWith(u'/') ? u"/"_s : FFolder, parts.join(u'/'));
}

// A bare name would be the picture of every album whose folder is elsewhere, so the folder above has to agree, but
// where the path has no more than the name.
QString TPicturePaths::FoundBesideSource(const QStringList& parts)
{
    const qsizetype fewest = std::min<qsizetype>(2, parts.size());
    for (qsizetype count = parts.size(); count >= fewest && count > 0; --count) {
        if (QString found = Existing(FFolder, parts.last(count).join(u'/')); !found.isEmpty())
            return found;
    }
    return {};
}

// The file at a path below a folder, its names compared without case where they are not there as they stand.
QString TPicturePaths::Existing(const QString& folder, const QString& path)
{
    QString at = folder.chopped(1);
    if (IsRegularFile(at + u'/' + path))
        return at + u'/' + path;
    for (const QString& part : path.split(u'/')) {
        if (Exists(at + u'/' + part)) {
            at += u'/' + part;
            continue;
        }
        const QString* name = NameIn(at.isEmpty() ? u"/"_s : at, part);
        if (!name)
            return {};
        at += u'/' + *name;
    }
    return IsRegularFile(at) ? at : QString();
}

const QString* TPicturePaths::NameIn(const QString& folder, const QString& name)
{
    auto listed = FListed.find(folder);
    if (listed == FListed.end()) {
        listed = FListed.insert(folder, {});
        for (const TFolderEntry& entry : ListFolder(folder))
            listed->insert(entry.Name.toCaseFolded(), entry.Name);
    }
    const auto found = listed->constFind(name.toCaseFolded());
    return found == listed->constEnd() ? nullptr : &*found;
}

} // namespace Kestrune
