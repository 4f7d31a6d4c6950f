// SPDX-License-Identifier: GPL-3.0-or-later
#include "uCommand.h"
#include "uDVDAReader.h"
#include "uFilePath.h"
#include "uISOReader.h"
#include "uM2TSReader.h"
#include "uMP3Image.h"
#include "uSACDReader.h"
#include "uTrackLocator.h"
#include "uUDFReader.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QSaveFile>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// One disc image with whatever readers open it.
class TDiscImage {
public:
    explicit TDiscImage(const QString& path) : FPath(path)
    {
        FHasISO = FISO.Open(path);
        FHasUDF = !FHasISO && TUDFReader::IsUDFImage(path) && FUDF.Open(path);
        if (TSACDReader::IsSACDImage(path) && FSACD.Open(path))
            FKind = u"sacd"_s;
        else if (FHasISO && TDVDAReader::IsDVDAImage(path) && FDVDA.Open(path))
            FKind = u"dvda"_s;
        else
            FKind = FHasISO ? u"iso9660"_s : FHasUDF ? u"udf"_s : u"none"_s;
        FTracks = ProcessISO(path, false).Tracks;
    }

    QString Kind() const { return FKind; }
    QString Label() const { return FHasISO ? FISO.VolumeLabel() : FUDF.VolumeLabel(); }
    const TKRN_MP3_Tracks& Tracks() const { return FTracks; }

    QJsonArray Files() const
    {
        QJsonArray files;
        for (const TISOFile& file : FISO.Files())
            files.append(QJsonObject{{u"path"_s, file.FullPath},
                                     {u"isDir"_s, file.IsDir},
                                     {u"offset"_s, file.Offset},
                                     {u"size"_s, static_cast<qint64>(file.Size)}});
        for (const TUDFFile& file : FUDF.Files()) {
            QJsonArray extents;
            for (const TUDFExtent& extent : file.Extents)
                extents.append(QJsonObject{{u"offset"_s, extent.Offset}, {u"size"_s, extent.Size}});
            files.append(QJsonObject{
                {u"path"_s, file.Path}, {u"isDir"_s, false}, {u"extents"_s, extents}, {u"size"_s, file.Size}});
        }
        return files;
    }

    QJsonObject Album() const
    {
        QJsonObject album;
        if (FKind == "sacd"_L1) {
            const TSACDAlbumInfo& info = FSACD.Album();
            album = {{u"title"_s, info.Title},
                     {u"artist"_s, info.Artist},
                     {u"publisher"_s, info.Publisher},
                     {u"copyright"_s, info.Copyright},
                     {u"year"_s, info.Year},
                     {u"month"_s, info.Month},
                     {u"day"_s, info.Day},
                     {u"catalogNo"_s, info.CatalogNumber},
                     {u"discNo"_s, info.DiscNo},
                     {u"discCount"_s, info.DiscCount},
                     {u"hybrid"_s, info.IsHybrid}};
        } else if (!FTracks.empty()) {
            album = {{u"title"_s, FTracks.front().Album},
                     {u"artist"_s, FTracks.front().Artist},
                     {u"year"_s, FTracks.front().Year}};
        }
        return album;
    }

    void ExtractFile(const QString& inner, const QString& out) const
    {
        bool written = false;
        if (const auto file = FISO.FindFile(inner))
            written = FISO.ExtractToFile(*file, out);
        else if (const auto udfFile = FUDF.FindFile(inner))
            written = FUDF.ExtractToFile(*udfFile, out);
        else
            throw ECommandError(u"%1: no such file in the image"_s.arg(inner));
        if (!written)
            throw ECommandError(u"%1 could not be written whole"_s.arg(out));
    }

    void ExtractTrack(int number, const QString& out)
    {
        if (number < 1 || number > static_cast<int>(FTracks.size()))
            throw ECommandError(u"the image has no track %1"_s.arg(number));
        const TTrackLocator locator = TTrackLocator::Parse(FTracks[static_cast<size_t>(number - 1)].FileType);
        QByteArray bytes;
        switch (locator.Kind) {
        case lkISO: return ExtractFile(locator.InnerPath, out);
        case lkSACD: FSACD.ExtractTrackToDSF(locator.Number - 1, bytes); break;
        case lkDVDA: FDVDA.ExtractTrackMLP(locator.Number - 1, bytes); break;
        case lkBDISO: bytes = BluraySound(locator.InnerPath); break;
        default: break;
        }
        if (bytes.isEmpty())
            throw ECommandError(u"the sound of track %1 cannot be taken out of the image"_s.arg(number));
        QSaveFile file(out);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
            throw ECommandError(u"%1: %2"_s.arg(out, file.errorString()));
    }

private:
    QByteArray BluraySound(const QString& inner) const
    {
        QByteArray bytes;
        const auto file = FUDF.FindFile(inner);
        TM2TSReader stream;
        if (file && !file->Extents.empty() && stream.OpenWindow(FPath, file->Extents.front().Offset, file->Size) &&
            !stream.ExtractTrueHD(bytes))
            stream.ExtractAC3Core(bytes);
        return bytes;
    }

    QString FPath;
    TISOReader FISO;
    TUDFReader FUDF;
    TSACDReader FSACD;
    TDVDAReader FDVDA;
    bool FHasISO = false;
    bool FHasUDF = false;
    QString FKind;
    TKRN_MP3_Tracks FTracks;
};

QJsonArray TracksToJson(const TKRN_MP3_Tracks& tracks)
{
    QJsonArray array;
    for (const TKRN_MP3_Track& track : tracks)
        array.append(QJsonObject{{u"no"_s, track.No},
                                 {u"title"_s, track.Title},
                                 {u"artist"_s, track.Artist},
                                 {u"duration"_s, track.DurationSec},
                                 {u"locator"_s, track.FileType}});
    return array;
}

class TImageCommand final : public TCommand {
public:
    QString Name() const override { return u"image"_s; }
    QString Summary() const override { return u"show what is in a disc image, or take something out of it"_s; }
    void Describe(QCommandLineParser& parser) const override
    {
        parser.addPositionalArgument(u"FILE"_s, u"the disc image"_s);
        parser.addOption({u"json"_s, u"print one JSON object"_s});
        parser.addOption({u"extract"_s, u"copy this file of the image to --out"_s, u"PATH"_s});
        parser.addOption({u"extract-track"_s, u"write the sound of this track to --out"_s, u"N"_s});
        parser.addOption({u"out"_s, u"the file to write"_s, u"FILE"_s});
    }
    void Run(const QCommandLineParser& parser) override
    {
        const QString path = Arguments(parser, 1, 1).front();
        const bool extracts = parser.isSet(u"extract"_s) || parser.isSet(u"extract-track"_s);
        if (extracts != parser.isSet(u"out"_s))
            throw EUsageError(u"--extract and --extract-track need --out, and --out needs one of them"_s);
        bool isNumber = true;
        const int number = parser.isSet(u"extract-track"_s) ? parser.value(u"extract-track"_s).toInt(&isNumber) : 0;
        if (!isNumber)
            throw EUsageError(u"--extract-track needs a number"_s);
        if (!QFileInfo(path).isFile())
            throw ECommandError(u"%1: no such file"_s.arg(path));
        TDiscImage image(QFileInfo(path).absoluteFilePath());
        if (parser.isSet(u"extract"_s))
            image.ExtractFile(parser.value(u"extract"_s), parser.value(u"out"_s));
        if (parser.isSet(u"extract-track"_s))
            image.ExtractTrack(number, parser.value(u"out"_s));
        if (parser.isSet(u"json"_s))
            PrintJson(QJsonDocument(QJsonObject{{u"kind"_s, image.Kind()},
                                                {u"label"_s, image.Label()},
                                                {u"files"_s, image.Files()},
                                                {u"tracks"_s, TracksToJson(image.Tracks())},
                                                {u"album"_s, image.Album()}}));
        else if (!extracts)
            Print(image);
    }

private:
    static void Print(const TDiscImage& image)
    {
        PrintLine(u"%1 %2"_s.arg(image.Kind(), OneLine(image.Label())).trimmed());
        const QJsonArray files = image.Files();
        for (const QJsonValue& file : files)
            PrintLine(u"%1 %2%3"_s.arg(file[u"size"_s].toInteger(), 12)
                          .arg(OneLine(file[u"path"_s].toString()), file[u"isDir"_s].toBool() ? u"/"_s : QString()));
        for (const TKRN_MP3_Track& track : image.Tracks())
            PrintLine(u"%1 %2 - %3 (%4 s) %5"_s.arg(track.No, 3)
                          .arg(OneLine(track.Artist), OneLine(track.Title))
                          .arg(track.DurationSec)
                          .arg(OneLine(track.FileType)));
    }
};

} // namespace

std::unique_ptr<TCommand> MakeImageCommand() { return std::make_unique<TImageCommand>(); }

} // namespace Kestrune
