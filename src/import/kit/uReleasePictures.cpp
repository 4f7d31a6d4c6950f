// SPDX-License-Identifier: GPL-3.0-or-later
#include "uReleasePictures.h"

#include "uByteReader.h"
#include "uDebugLog.h"
#include "uFilePath.h"

#include <QBuffer>
#include <QImageReader>

#include <memory>
#include <utility>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// A scan of a whole poster has some tens of megabytes; beyond that a file named like a picture is something else.
constexpr qint64 LargestPictureFile = 64 * 1024 * 1024;

// Decodes at once to the wanted size, which formats such as JPEG do without the memory of the whole picture.
QImage DecodeScaled(const QByteArray& bytes, QSize size)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setScaledSize(size);
    const QImage image = reader.read();
    return image.isNull() || image.size() == size ? image
                                                  : image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace

bool AddPictureBytes(TAlbumRelease& release, TCoverPictureType type, const QByteArray& bytes)
{
    auto picture = std::make_unique<TCoverPicture>(type);
    if (!picture->LoadFromBytes(bytes))
        return false;
    release.Pictures.push_back(std::move(picture));
    return true;
}

bool AddPictureFile(TAlbumRelease& release, TCoverPictureType type, const QString& path)
{
    if (path.isEmpty())
        return false;
    const auto source = TFileSource::Open(TextToPath(path));
    if (source && source->Size() <= LargestPictureFile)
        return AddPictureBytes(release, type, source->Read(0, source->Size()));
    DebugLog(u"[Import] Picture is not readable or too large: "_s + path);
    return false;
}

void AddThumbnails(TAlbumRelease& release, QSize size)
{
    for (const TCoverPictureType type : {cptFrontLarge, cptBackLarge}) {
        const TCoverPicture* large = release.GetPicByType(type);
        if (!large || !large->HasImage() || release.GetPicByType(ThumbTypeOf(type)))
            continue;
        const QByteArray format = large->Format();
        if (const QImage image = DecodeScaled(large->Bytes(), size); !image.isNull())
            release.AddPicture(ThumbTypeOf(type)).Assign(image, format);
    }
}

} // namespace Kestrune
