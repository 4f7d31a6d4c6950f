// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTestFiles.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcess>

#include <stdexcept>

namespace Kestrune::Kit {

using namespace Qt::StringLiterals;

TTempDir::TTempDir()
{
    if (!FDir.isValid())
        throw std::runtime_error("no temporary folder");
}

QString TTempDir::File(const QString& name) const
{
    const QString path = FDir.filePath(name);
    QDir().mkpath(QFileInfo(path).path());
    return path;
}

QString TTempDir::Write(const QString& name, const QByteArray& bytes) const
{
    const QString path = File(name);
    WriteAll(path, bytes);
    return path;
}

QByteArray ReadAll(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("cannot read " + path.toStdString());
    return file.readAll();
}

void WriteAll(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        throw std::runtime_error("cannot write " + path.toStdString());
}

QString SamplesFolder()
{
    const QString folder = qEnvironmentVariable("KESTRUNE_SAMPLES", QString::fromUtf8(KESTRUNE_SAMPLES_DIR));
    return QFileInfo(folder).isDir() ? folder : QString();
}

QByteArray MakePicture(int width, int height, const char* format, int seed)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, qRgb((x * 255 / width + seed * 37) % 256, y * 255 / height, seed * 53 % 256));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, format))
        throw std::runtime_error("cannot encode a picture");
    return bytes;
}

bool RunProgram(const QString& program, const QStringList& arguments, QByteArray* output)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(program, arguments);
    if (!process.waitForFinished(120000))
        return false;
    if (output)
        *output = process.readAll();
    return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

} // namespace Kestrune::Kit
