// SPDX-License-Identifier: GPL-3.0-or-later
#include "TagsLibrary.h"
#include "uCommand.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

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
        QJsonArray array;
        bool missing = false;
        for (const QString& file : files) {
            // Read as the folder import reads.
            TTags tags;
            tags.ParseWavPackAudioAttributes = true;
            tags.ParseMusePackAudioAttributes = true;
            tags.ParseMonkeyAudioAttributes = true;
            const int result = tags.LoadFromFile(file);
            missing = missing || result != 0;
            if (parser.isSet(u"json"_s))
                array.append(QJsonObject{{u"file"_s, file},
                                         {u"result"_s, result},
                                         {u"loaded"_s, tags.Loaded()},
                                         {u"tags"_s, TagsToJson(tags)},
                                         {u"covers"_s, CoversToJson(tags)},
                                         {u"audio"_s, AudioToJson(tags.SourceAudioAttributes())}});
            else
                PrintText(file, tags);
        }
        if (parser.isSet(u"json"_s))
            PrintJson(QJsonDocument(array));
        else if (missing)
            throw ECommandError(u"not every file was there"_s);
    }

private:
    static void PrintText(const QString& file, const TTags& tags)
    {
        PrintLine(file);
        for (const auto& tag : tags.Tags())
            PrintLine(u"  %1\t%2"_s.arg(tag->Name, tag->Value));
        for (const auto& cover : tags.CoverArts())
            PrintLine(
                u"  %1\t%2, %3 bytes"_s.arg(cover->Name, FormatName(cover->PictureFormat)).arg(cover->Stream.size()));
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
