// SPDX-License-Identifier: GPL-3.0-or-later
#include "TagsLibrary.h"
#include "uByteReader.h"
#include "uCommand.h"
#include "uFilePath.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonObject>

#include <filesystem>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

QString FormatName(TTagPictureFormat format)
{
    switch (format) {
    case tpfJPEG: return u"jpeg"_s;
    case tpfPNG: return u"png"_s;
    case tpfBMP: return u"bmp"_s;
    case tpfGIF: return u"gif"_s;
    case tpfTIFF: return u"tiff"_s;
    case tpfUnknown: break;
    }
    return u"unknown"_s;
}

QString ExtName(TExtTagType type) { return type == ettTXXX ? u"TXXX"_s : type == ettWXXX ? u"WXXX"_s : QString(); }

QJsonArray TagsToJson(const TTags& tags)
{
    QJsonArray array;
    for (const auto& tag : tags.Tags())
        array.append(QJsonObject{{u"name"_s, tag->Name},
                                 {u"value"_s, tag->Value},
                                 {u"language"_s, tag->Language},
                                 {u"description"_s, tag->Description},
                                 {u"ext"_s, ExtName(tag->ExtTagType)}});
    return array;
}

QJsonArray CoversToJson(const TTags& tags)
{
    QJsonArray array;
    for (const auto& cover : tags.CoverArts()) {
        const QByteArray sha1 = QCryptographicHash::hash(cover->Stream, QCryptographicHash::Sha1).toHex();
        array.append(QJsonObject{{u"name"_s, cover->Name},
                                 {u"type"_s, cover->CoverType},
                                 {u"mime"_s, cover->MIMEType},
                                 {u"format"_s, FormatName(cover->PictureFormat)},
                                 {u"description"_s, cover->Description},
                                 {u"width"_s, cover->Width},
                                 {u"height"_s, cover->Height},
                                 {u"bytes"_s, cover->Stream.size()},
                                 {u"sha1"_s, QString::fromLatin1(sha1)}});
    }
    return array;
}

QJsonObject AudioToJson(const TSourceAudioAttributes& audio)
{
    return {{u"bitRate"_s, audio.BitRate()},
            {u"channels"_s, audio.Channels()},
            {u"samplesPerSec"_s, audio.SamplesPerSec()},
            {u"bitsPerSample"_s, audio.BitsPerSample()},
            {u"playTime"_s, audio.PlayTime()},
            {u"sampleCount"_s, audio.SampleCount()}};
}

class TTagsCommand final : public TCommand {
public:
    QString Name() const override { return u"tags"_s; }
    QString Summary() const override { return u"show the tags and audio attributes of files"_s; }
    void Describe(QCommandLineParser& parser) const override
    {
        parser.addPositionalArgument(u"FILE..."_s, u"audio files"_s);
        parser.addOption({u"json"_s, u"print an array with an object per file"_s});
    }

    void Run(const QCommandLineParser& parser) override
    {
        const QStringList files = Arguments(parser, 1);
        const bool isJson = parser.isSet(u"json"_s);
        int failures = 0;
        for (qsizetype i = 0; i < files.size(); ++i) {
            const QString reason = ReasonAgainst(files[i]);
            if (!reason.isEmpty()) {
                PrintError(u"%1: %2"_s.arg(files[i], reason));
                ++failures;
            }
            // Read as the folder import reads.
            TTags tags;
            tags.ParseWavPackAudioAttributes = true;
            tags.ParseMusePackAudioAttributes = true;
            tags.ParseMonkeyAudioAttributes = true;
            const int result = tags.LoadFromFile(files[i]);
            if (isJson)
                PrintLine((i == 0 ? u"["_s : u""_s) + FileToJson(files[i], result, tags) +
                          (i + 1 < files.size() ? u","_s : u"]"_s));
            else if (reason.isEmpty())
                PrintText(files[i], tags);
            FlushOutput(); // each file as it goes: there may be a whole library of them
        }
        if (failures > 0)
            throw EToldError();
    }

private:
    static QString ReasonAgainst(const QString& file)
    {
        if (TFileSource::Open(TextToPath(file)))
            return {};
        std::error_code error;
        return std::filesystem::exists(TextToPath(file), error) ? u"cannot be read"_s : u"there is no such file"_s;
    }

    static QString FileToJson(const QString& file, int result, const TTags& tags)
    {
        const QJsonObject object{{u"file"_s, file},
                                 {u"result"_s, result},
                                 {u"loaded"_s, tags.Loaded()},
                                 {u"tags"_s, TagsToJson(tags)},
                                 {u"covers"_s, CoversToJson(tags)},
                                 {u"audio"_s, AudioToJson(tags.SourceAudioAttributes())}};
        QString text = QString::fromUtf8(QJsonDocument(object).toJson()).trimmed();
        // The control characters above the letters may stand in JSON as they are, but not on a terminal.
        for (char16_t c = 0x7F; c < 0xA0; ++c)
            text.replace(QChar(c), u"\\u%1"_s.arg(static_cast<uint>(c), 4, 16, QChar(u'0')));
        return text;
    }

    // What tells tags of one name apart, in brackets.
    static QString TagLabel(const TTag& tag)
    {
        QStringList parts{tag.Language, tag.Description == tag.Name ? QString() : tag.Description,
                          ExtName(tag.ExtTagType)};
        parts.removeAll(QString());
        return parts.isEmpty() ? tag.Name : u"%1 [%2]"_s.arg(tag.Name, parts.join(u", "_s));
    }

    static QString CoverText(const TCoverArt& cover)
    {
        const QString type = CoverTypeText(cover.CoverType);
        const QString text =
            u"%1, %2, %3 bytes"_s
                .arg(type.isEmpty() ? u"type %1"_s.arg(cover.CoverType) : type, FormatName(cover.PictureFormat))
                .arg(cover.Stream.size());
        return cover.Description.isEmpty() ? text : text + u", "_s + cover.Description;
    }

    // A value of several lines goes on below itself.
    static void PrintValue(const QString& label, const QString& value)
    {
        QString start = u"  "_s + Printable(label);
        for (const QString& line : value.split(u'\n')) {
            PrintLine(start + u'\t' + Printable(line));
            start = u"  "_s;
        }
    }

    static void PrintText(const QString& file, const TTags& tags)
    {
        PrintLine(Printable(file));
        for (const auto& tag : tags.Tags())
            PrintValue(TagLabel(*tag), tag->Value);
        for (const auto& cover : tags.CoverArts())
            PrintLine(u"  "_s + Printable(cover->Name) + u'\t' + Printable(CoverText(*cover)));
        const TSourceAudioAttributes& audio = tags.SourceAudioAttributes();
        PrintLine(u"  %1 s, %2 Hz, %3 channels, %4 bit/s"_s.arg(audio.PlayTime(), 0, 'f', 3)
                      .arg(audio.SamplesPerSec())
                      .arg(audio.Channels())
                      .arg(audio.BitRate()));
    }
};

} // namespace

std::unique_ptr<TCommand> MakeTagsCommand() { return std::make_unique<TTagsCommand>(); }

} // namespace Kestrune
