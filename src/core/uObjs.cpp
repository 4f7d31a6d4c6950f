// SPDX-License-Identifier: GPL-3.0-or-later
#include "uObjs.h"

#include "uColumnNames.h"
#include "uDefaults.h"
#include "uDictionaries.h"

#include <QBuffer>
#include <QImageReader>
#include <QImageWriter>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

TPictureFetcherFactory& FetcherFactory()
{
    static TPictureFetcherFactory factory;
    return factory;
}

QByteArray EncodeImage(const QImage& image, const QByteArray& format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    return writer.canWrite() && writer.write(image) ? bytes : QByteArray();
}

// The same pixels without the texts that image files carry along and that encoders would write out again.
QImage WithoutTexts(const QImage& image)
{
    const auto format = image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    QImage plain = image.convertToFormat(format);
    for (const QString& key : plain.textKeys())
        plain.setText(key, QString());
    return plain.textKeys().isEmpty()
               ? plain
               : QImage(plain.constBits(), plain.width(), plain.height(), plain.bytesPerLine(), plain.format()).copy();
}

} // namespace

TCoverPictureType ThumbTypeOf(TCoverPictureType largeType)
{
    switch (largeType) {
    case cptFrontLarge: return cptFrontThumb;
    case cptBackLarge: return cptBackThumb;
    case cptMediaLarge: return cptMediaThumb;
    default: return cptOther;
    }
}

bool MayBePixels(const QByteArray& bytes)
{
    const QByteArray start = bytes.left(64).trimmed();
    return !start.startsWith('<') && !start.startsWith("\xEF\xBB\xBF") && !start.startsWith("\x1F\x8B");
}

bool TCoverPicture::LoadFromBytes(const QByteArray& bytes)
{
    Clear();
    if (!MayBePixels(bytes))
        return false;
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    if (!reader.canRead())
        return false;
    QSize size = reader.size();
    const QByteArray format = reader.format();
    if (!size.isValid()) // some formats tell their size only when decoded
        size = reader.read().size();
    if (size.isEmpty())
        return false;
    FBytes = bytes;
    FFormat = format;
    FSize = size;
    return true;
}

void TCoverPicture::LoadStored(const QByteArray& bytes)
{
    if (!LoadFromBytes(bytes))
        FBytes = bytes;
}

void TCoverPicture::Assign(const QImage& image, const QByteArray& format)
{
    Clear();
    if (image.isNull())
        return;
    const QImage plain = WithoutTexts(image);
    FFormat = format;
    FBytes = EncodeImage(plain, format);
    if (FBytes.isEmpty()) {
        FFormat = "png";
        FBytes = EncodeImage(plain, FFormat);
    }
    FSize = plain.size();
}

void TCoverPicture::Clear()
{
    FBytes.clear();
    FFormat.clear();
    FSize = QSize();
    FThumbnail.clear();
    FThumbnailHeight = 0;
}

void TCoverPicture::PrepareThumbnail(int height)
{
    FThumbnail = MakeThumbnail(FBytes, height);
    FThumbnailHeight = height;
}

QByteArray TCoverPicture::Thumbnail(int height) const
{
    return FThumbnailHeight == height && height > 0 ? FThumbnail : MakeThumbnail(FBytes, height);
}

QImage TCoverPicture::Decode() const { return QImage::fromData(FBytes); }

TVariant TAlbumRelease::GetItem2(const QString& key) const
{
    const auto found = FItems.find(key.toLower());
    return found == FItems.end() ? TVariant() : found->second;
}

void TAlbumRelease::SetItem2(const QString& key, const TVariant& value)
{
    if (VarIsNull(value))
        FItems.erase(key.toLower());
    else
        FItems.insert_or_assign(key.toLower(), value);
}

TCoverPicture* TAlbumRelease::GetPicByType(TCoverPictureType value) const
{
    const auto found = std::ranges::find(Pictures, value, [](const auto& picture) { return picture->PictureType(); });
    return found == Pictures.end() ? nullptr : found->get();
}

TCoverPicture& TAlbumRelease::AddPicture(TCoverPictureType type)
{
    return *Pictures.emplace_back(std::make_unique<TCoverPicture>(type));
}

void TAlbumRelease::Merge(const TAlbumRelease& from, bool newIsBetter)
{
    for (const auto& [key, value] : from.FItems) {
        const TVariant own = GetItem2(key);
        if (VarIsNull(value) || VarEquals(value, own))
            continue;
        if (newIsBetter || VarIsNull(own))
            FItems.insert_or_assign(key, value);
    }
}

QString TAlbumRelease::GetDisplayValue() const
{
    QString text = VarToStr(GetItem2(Col::Artist)) + u" - "_s + VarToStr(GetItem2(Col::ReleaseName));
    if (const TVariant year = GetItem2(Col::ReleaseYear); !VarIsNull(year))
        text += u" (%1)"_s.arg(VarToStr(year));
    return text;
}

void TAlbumRelease::DownloadAllPics(TCoverPictureTypes picTypes)
{
    const auto fetcher = FetcherFactory() ? FetcherFactory()() : nullptr;
    if (!fetcher)
        return;
    const QSize thumbSize(Defaults().LargeWidth, Defaults().LargeHeight);
    const QStringList& agents = PictureUserAgents();
    QByteArray bytes;
    constexpr size_t mostPictures = 50; // of one release; a record that names thousands would never end
    const size_t count = std::min(Pictures.size(), mostPictures); // thumbnails made below are not visited
    for (size_t i = 0; i < count; ++i) {
        TCoverPicture& picture = *Pictures[i];
        const TCoverPictureType type = picture.PictureType();
        const bool fetched = type == cptFrontLarge || type == cptBackLarge || type == cptOther;
        if (!fetched || !picTypes.Contains(type))
            continue;
        bytes.clear();
        const QString agent = agents.isEmpty() ? QString() : agents[QRandomGenerator::global()->bounded(agents.size())];
        if (!fetcher->Fetch(picture.URL(), agent, bytes) || !picture.LoadFromBytes(bytes))
            continue;
        const QImage image = picture.Decode();
        if (image.isNull()) { // cut or damaged behind its header
            picture.Clear();
            continue;
        }
        if (type == cptOther)
            continue;
        TCoverPicture* thumb = GetPicByType(ThumbTypeOf(type));
        if (!thumb)
            thumb = &AddPicture(ThumbTypeOf(type));
        thumb->Assign(image.scaled(thumbSize, Qt::IgnoreAspectRatio, Qt::SmoothTransformation), Pictures[i]->Format());
    }
}

void SetPictureFetcher(TPictureFetcherFactory factory) { FetcherFactory() = std::move(factory); }

TVariant NormalizeCountry(const QString& text)
{
    static const QStringList american{u"usa"_s, u"u.s."_s, u"u.s.a."_s, u"united states"_s};
    static const QStringList british{u"uk"_s, u"u.k."_s, u"great britain"_s};
    if (text.isEmpty())
        return {};
    const QString folded = text.toLower();
    if (american.contains(folded))
        return u"US"_s;
    if (british.contains(folded))
        return u"GB"_s;
    const auto& countries = Countries();
    if (std::ranges::any_of(countries, [&](const TCountry& country) { return country.Value == text; }))
        return text;
    for (const TCountry& country : countries) {
        if (country.Description.compare(text, Qt::CaseInsensitive) == 0 ||
            country.Value.compare(text, Qt::CaseInsensitive) == 0)
            return country.Value.isEmpty() ? TVariant() : TVariant(country.Value);
    }
    return {};
}

QDate ParseReleaseDate(const QString& text)
{
    bool isNumber = false;
    const QString trimmed = text.trimmed();
    if (const int year = trimmed.toInt(&isNumber); isNumber)
        return year > 0 && year <= 9999 ? QDate(year, 1, 1) : QDate();
    static const QRegularExpression pattern(u"^(\\d{4})-(\\d{1,2})-(\\d{1,2})$"_s);
    const auto match = pattern.match(trimmed);
    return match.hasMatch() ? QDate(match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt())
                            : QDate();
}

int ParseTimeOfDay(const QString& text)
{
    static const QRegularExpression pattern(u"^(\\d{1,2}):(\\d{1,2})(?::(\\d{1,2}))?(?:\\.\\d+)?$"_s);
    const auto match = pattern.match(text.trimmed());
    if (!match.hasMatch())
        return -1;
    const QTime time(match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt());
    return time.isValid() ? time.msecsSinceStartOfDay() / 1000 : -1;
}

QByteArray MakeThumbnail(const QByteArray& picture, int height)
{
    // A picture of one pixel's height would otherwise ask for a thumbnail of any width.
    constexpr qint64 widest = 8192;
    if (picture.isEmpty() || height <= 0)
        return {};
    QBuffer buffer;
    buffer.setData(picture);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    const bool turned = reader.transformation() & QImageIOHandler::TransformationRotate90;
    const QByteArray format = reader.format();
    const auto target = [&](QSize size) {
        const double width = size.width() / (static_cast<double>(size.height()) / height);
        return QSize(static_cast<int>(std::clamp<qint64>(RoundHalfEven(width), 1, widest)), height);
    };
    if (const QSize stored = reader.size(); !stored.isEmpty()) {
        const QSize scaled = target(turned ? stored.transposed() : stored);
        reader.setScaledSize(turned ? scaled.transposed() : scaled);
    }
    QImage image = reader.read();
    if (image.isNull())
        return {};
    if (image.height() != height)
        image = image.scaled(target(image.size()), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    TCoverPicture thumb;
    thumb.Assign(image, format);
    return thumb.Bytes();
}

} // namespace Kestrune
