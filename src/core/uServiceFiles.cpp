// SPDX-License-Identifier: GPL-3.0-or-later
#include "uServiceFiles.h"

#include "uDebugLog.h"
#include "uFilePath.h"
#include "uXml.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

namespace Kestrune {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

namespace {

const QString DeliveryName = u".delivered"_s;
const QString DefinitionsName = u"infograbber.xml"_s;
constexpr qint64 LargestServiceFile = 32 * 1024 * 1024;
constexpr qint64 LargestDelivery = 1024 * 1024;

// What programs delivered before they kept a list of it.
constexpr const char* DeliveredBefore[] = {
    "06a7ccdad6e64a4233a14f67b3873e9e18c39ebc3d0f398a0d1dc01f2519c409",
    "536c470ad97dc2b34357a5e90d155e0b99895f2110937462eddede296668d1f2",
    "66769647a377b09f49319b320c0569045a5eae861ab63d7414461888e3ccbdb1",
    "7a39491e59bed5d3e97d6db42caa145b51234dc5b6a4df95d542f0a285eb09f2",
    "7d2c3c7df8f99c013751bdbcb5807906650927fecabe1843bae9ea44550afe90",
    "b7c436bb879567d61112ed65c6ab2e0dbb8825e9ddfa71a57545aabcc1f2d418",
    "c064bd19350dcc0eb1a52cc55d7823c7f846c4193075c0551f32361c6d00f628",
};

QByteArray ReadServiceFile(const QString& path, qint64 most = LargestServiceFile)
{
    QFile file(path);
    return QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly) ? file.read(most) : QByteArray();
}

QByteArray HashOf(const QByteArray& bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
}

bool IsOf(const TServiceDelivery& delivery, const QString& name, const QByteArray& hash)
{
    const auto known = delivery.Files.find(name);
    if (known != delivery.Files.end())
        return known->second == hash;
    return std::ranges::any_of(DeliveredBefore, [&](const char* before) { return hash == before; });
}

QString OldFolder(const QString& folder) { return folder + u".old"_s; }

QString NotMoved(const QString& from, const QString& to)
{
    return u"Failed to move file from \"%1\" to \"%2\""_s.arg(from, to);
}

// What an update or a first copy that was killed left beside the folder.
QFileInfoList Leftovers(const QString& folder)
{
    static const QRegularExpression download(u"^[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}\\.tmp$"_s);
    const QFileInfo info(folder);
    QFileInfoList found =
        QDir(info.absolutePath()).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    found.removeIf([&](const QFileInfo& entry) {
        const QString name = entry.fileName();
        const bool isFolder = name.startsWith(info.fileName() + u".new-"_s) || name == info.fileName() + u".old"_s;
        return entry.isSymLink() || !(entry.isDir() ? isFolder : download.match(name).hasMatch());
    });
    return found;
}

// The definitions that the program comes with.
struct TServiceTemplate {
    explicit TServiceTemplate(const QString& folder)
    {
        QCryptographicHash all(QCryptographicHash::Sha256);
        for (const QString& name : QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name)) {
            if (name == DeliveryName)
                continue;
            const QByteArray& bytes = Files[name] = ReadServiceFile(folder + u'/' + name);
            all.addData(name.toUtf8() + '\n' + HashOf(bytes) + '\n');
        }
        Digest = all.result().toHex();
        const auto definitions = Files.find(DefinitionsName);
        if (definitions == Files.end())
            return;
        if (const auto document = TXmlDocument::Parse(definitions->second))
            Version = document->Root().Attribute(u"version"_s).value_or(QString()).toInt();
    }
    std::map<QString, QByteArray> Files;
    QByteArray Digest;
    int Version = 0;
};

// What the folder becomes; nothing when it stays as it is.
std::map<QString, QByteArray> SeededFiles(const TServiceTemplate& from, const QString& folder,
                                          TServiceDelivery& delivery)
{
    const auto isThere = [&](const QString& name) { return QFileInfo(folder + u'/' + name).size() > 0; };
    const bool isFirst = !isThere(DefinitionsName);
    const bool isNewer = isFirst || (from.Digest != delivery.Template && from.Version >= delivery.Version);
    const bool isWhole =
        std::ranges::all_of(from.Files, [&](const auto& file) { return file.second.isEmpty() || isThere(file.first); });
    std::map<QString, QByteArray> files;
    if (isWhole && !isNewer)
        return files;
    for (const auto& [name, bytes] : from.Files) {
        const QByteArray there = ReadServiceFile(folder + u'/' + name);
        const bool isChanged = !IsOf(delivery, name, HashOf(there)) && there != bytes;
        const bool isKept = !isFirst && isThere(name) && (!isNewer || isChanged);
        files[name] = isKept ? there : bytes;
        if (!isKept)
            delivery.Files[name] = HashOf(bytes);
    }
    if (isNewer) {
        delivery.Version = from.Version;
        delivery.Template = from.Digest;
    }
    return files;
}

bool Seed(const TServiceTemplate& from, const QString& folder, QString& error)
{
    TServiceDelivery delivery = TServiceDelivery::Read(folder);
    const std::map<QString, QByteArray> files = SeededFiles(from, folder, delivery);
    if (files.empty())
        return true;
    QTemporaryDir aside(ServiceAsidePrefix(folder) + u"XXXXXX"_s);
    error = aside.errorString();
    const bool isMade = aside.isValid() && std::ranges::all_of(files, [&](const auto& file) {
                            return WriteDurably(aside.filePath(file.first), file.second);
                        });
    if (!isMade || !delivery.Write(aside.path())) {
        error = u"the definitions cannot be written to %1"_s.arg(aside.path());
        return false;
    }
    return CarryOver(folder, aside.path(), error) && ReplaceFolder(aside.path(), folder, error);
}

} // namespace

TServiceDelivery TServiceDelivery::Read(const QString& folder)
{
    TServiceDelivery delivery;
    for (const QByteArray& line : ReadServiceFile(folder + u'/' + DeliveryName, LargestDelivery).split('\n')) {
        const QByteArray value = line.mid(line.indexOf(' ') + 1);
        if (line.startsWith("version "))
            delivery.Version = value.toInt();
        else if (line.startsWith("template "))
            delivery.Template = value;
        else if (line.indexOf(' ') == 64)
            delivery.Files[QString::fromUtf8(value)] = line.left(64);
    }
    return delivery;
}

bool TServiceDelivery::Write(const QString& folder) const
{
    QByteArray text = "version " + QByteArray::number(Version) + "\ntemplate " + Template + '\n';
    for (const auto& [name, hash] : Files)
        text += hash + ' ' + name.toUtf8() + '\n';
    return WriteDurably(folder + u'/' + DeliveryName, text);
}

QString ServiceLockPath(const QString& folder) { return folder + u".lock"_s; }

QString ServiceAsidePrefix(const QString& folder) { return folder + u".new-"_s; }

void SweepServiceLeftovers(const QString& folder)
{
    if (!QFileInfo::exists(folder))
        QDir().rename(OldFolder(folder), folder);
    for (const QFileInfo& entry : Leftovers(folder)) {
        if (entry.isDir())
            QDir(entry.filePath()).removeRecursively();
        else
            QFile::remove(entry.filePath());
    }
}

void SeedServiceDefinitions(const QString& templateFolder, const QString& userFolder)
{
    // A link that the user made stays one.
    const QFileInfo info(userFolder);
    const QString folder = info.exists() ? info.canonicalFilePath() : info.absoluteFilePath();
    const TServiceTemplate from(templateFolder);
    TServiceDelivery delivery = TServiceDelivery::Read(folder);
    // A lock waits for the disk: not at each start.
    const bool isSeed = from.Files.contains(DefinitionsName);
    if ((!isSeed || SeededFiles(from, folder, delivery).empty()) && Leftovers(folder).isEmpty())
        return;
    if (!QDir().mkpath(QFileInfo(folder).absolutePath()))
        return;
    QLockFile lock(ServiceLockPath(folder));
    lock.setStaleLockTime(0); // as long as its process lives
    if (!lock.tryLock(QFile::exists(folder + u'/' + DefinitionsName) ? 0 : 2000))
        return;
    SweepServiceLeftovers(folder);
    QString error;
    if (isSeed && !Seed(from, folder, error))
        DebugLog(u"[Settings] service definitions: "_s + error);
}

bool CarryOver(const QString& folder, const QString& made, QString& error)
{
    const fs::path from = TextToPath(folder), to = TextToPath(made);
    fs::path source, target;
    try {
        if (!fs::exists(from))
            return true;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(from)) {
            source = entry.path();
            target = to / source.lexically_relative(from);
            if (fs::exists(fs::symlink_status(target)) || source.filename() == DeliveryName.toStdString())
                continue;
            if (entry.is_symlink())
                fs::copy_symlink(source, target);
            else if (entry.is_directory())
                fs::create_directory(target, source);
            else if (entry.is_regular_file())
                fs::copy_file(source, target);
        }
        return true;
    } catch (const fs::filesystem_error& failure) {
        error = NotMoved(PathToText(source), PathToText(target));
        DebugLog(u"[Services] "_s + QString::fromLocal8Bit(failure.what()));
        return false;
    }
}

bool ReplaceFolder(const QString& made, const QString& folder, QString& error)
{
    const QByteArray from = QFile::encodeName(made), to = QFile::encodeName(folder);
    const QByteArray old = QFile::encodeName(OldFolder(folder));
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_EXCHANGE) == 0) {
        QDir(made).removeRecursively(); // it has the old content now
        return true;
    }
    // Nothing to exchange with, or a file system that cannot; a kill between the two renames is mended at the start.
    QDir(OldFolder(folder)).removeRecursively();
    const bool wasThere = QFileInfo::exists(folder);
    const bool isDone = (!wasThere || std::rename(to.constData(), old.constData()) == 0) &&
                        std::rename(from.constData(), to.constData()) == 0;
    if (!isDone) {
        error = NotMoved(made, folder);
        if (wasThere && !QFileInfo::exists(folder))
            std::rename(old.constData(), to.constData());
    } else {
        QDir(OldFolder(folder)).removeRecursively();
    }
    return isDone;
}

bool WriteDurably(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::NewOnly) && file.write(bytes) == bytes.size() && file.flush() &&
           ::fsync(file.handle()) == 0;
}

} // namespace Kestrune
