// SPDX-License-Identifier: GPL-3.0-or-later
#include "uCueSheet.h"

#include "uByteReader.h"
#include "uDebugLog.h"
#include "uFilePath.h"
#include "uFolderList.h"
#include "uFolderNames.h"
#include "uSourceValues.h"

#include <QSet>
#include <QStringDecoder>

#include <algorithm>
#include <utility>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// Real sheets have a few kilobytes; a film that is called *.cue must not be read into memory.
constexpr qint64 LargestCueSheet = 1024 * 1024;

bool IsCueBlank(QChar c) { return c == u' ' || c == u'\t'; }

// The first word of a text, and what follows it without the blanks at its ends.
std::pair<QString, QString> SplitWord(const QString& text)
{
    qsizetype end = 0;
    while (end < text.size() && !IsCueBlank(text[end]))
        ++end;
    return {text.first(end), text.sliced(end).trimmed()};
}

QString Unquoted(const QString& value)
{
    return value.size() >= 2 && value.startsWith(u'"') && value.endsWith(u'"') ? value.sliced(1, value.size() - 2)
                                                                               : value;
}

QString FileNameInLine(const QString& value)
{
    if (!value.startsWith(u'"'))
        return SplitWord(value).first;
    const qsizetype quote = value.indexOf(u'"', 1);
    return quote < 0 ? value.sliced(1) : value.sliced(1, quote - 1);
}

// "mm:ss:ff" in seconds; 75 frames are a second. Minutes may have any number of digits, so the sum is a double.
double CueTime(const QString& text)
{
    const QStringList parts = text.split(u':');
    if (parts.size() < 2)
        return 0.0;
    const double frames = parts.size() > 2 ? parts[2].toInt() : 0;
    return parts[0].toInt() * 60.0 + parts[1].toInt() + frames / 75.0;
}

class TCueParser {
public:
    TCueSheet Parse(const QString& text)
    {
        // A carriage return alone ends a line as well; between two line ends there is nothing to read.
        for (const QString& line : QString(text).replace(u'\r', u'\n').split(u'\n')) {
            const auto [keyword, value] = SplitWord(line.trimmed());
            if (!value.isEmpty())
                Take(keyword.toUpper(), value);
        }
        StoreTrack();
        return std::move(FSheet);
    }

private:
    void Take(const QString& keyword, const QString& value)
    {
        if (keyword == "FILE"_L1)
            TakeFile(FileNameInLine(value));
        else if (keyword == "TITLE"_L1)
            (FInTrack ? FTrack.Title : FSheet.AlbumTitle) = Unquoted(value);
        else if (keyword == "PERFORMER"_L1)
            (FInTrack ? FTrack.Artist : FSheet.AlbumArtist) = Unquoted(value);
        else if (keyword == "REM"_L1)
            TakeRemark(value);
        else if (keyword == "TRACK"_L1)
            TakeTrack(value);
        else if (keyword == "INDEX"_L1)
            TakeIndex(value);
    }

    void TakeFile(const QString& name)
    {
        FFile = name;
        if (FFilesSeen.contains(name))
            return;
        FFilesSeen.insert(name);
        FSheet.FileNames += name;
    }

    void TakeRemark(const QString& remark)
    {
        const auto [word, value] = SplitWord(remark);
        const QString key = word.toUpper();
        if (key == "GENRE"_L1)
            FSheet.Genre = Unquoted(value);
        else if (key == "DATE"_L1)
            FSheet.Year = WholeNumber(Unquoted(value));
        else if (key == "COMMENT"_L1)
            FSheet.Comment = Unquoted(value);
    }

    void TakeTrack(const QString& value)
    {
        StoreTrack();
        FInTrack = true;
        FTrack = {};
        FTrack.FileName = FFile;
        FTrack.No = WholeNumber(SplitWord(value).first);
    }

    void TakeIndex(const QString& value)
    {
        const auto [number, time] = SplitWord(value);
        if (!FInTrack || number != "01"_L1)
            return;
        // Rippers that leave the gap at the end of the file before write TRACK and INDEX 00 there, and then the next
        // FILE.
        FTrack.FileName = FFile;
        FTrack.StartSec = CueTime(time);
    }

    void StoreTrack()
    {
        if (FInTrack && FTrack.No > 0)
            FSheet.Tracks.push_back(std::move(FTrack));
    }

    TCueSheet FSheet;
    TCueTrack FTrack;
    QString FFile;
    QSet<QString> FFilesSeen;
    bool FInTrack = false;
};

} // namespace

QString DecodeCueText(const QByteArray& bytes)
{
    const auto zeroAt = [&](qsizetype i) { return bytes.size() > i && bytes[i] == 0; };
    if (bytes.startsWith("\xFF\xFE") || (!zeroAt(0) && zeroAt(1)))
        return QStringDecoder(QStringConverter::Utf16LE).decode(bytes);
    if (bytes.startsWith("\xFE\xFF") || (zeroAt(0) && bytes.size() > 1 && !zeroAt(1)))
        return QStringDecoder(QStringConverter::Utf16BE).decode(bytes);
    QStringDecoder utf8(QStringConverter::Utf8);
    const QString text = utf8.decode(bytes);
    // A character that the end of the text cuts is an error as well, though the decoder waits for its rest.
    if (!utf8.hasError() && text.toUtf8().size() >= bytes.size() - (bytes.startsWith("\xEF\xBB\xBF") ? 3 : 0))
        return text;
    return QStringDecoder("windows-1252").decode(bytes);
}

TCueSheet ParseCueSheet(const QString& text) { return TCueParser().Parse(text); }

std::optional<TCueSheet> LoadCueSheet(const QString& file)
{
    const auto source = TFileSource::Open(TextToPath(file));
    if (!source || source->Size() > LargestCueSheet) {
        DebugLog(u"[Import] Cue sheet is not readable or too large: "_s + file);
        return std::nullopt;
    }
    return ParseCueSheet(DecodeCueText(source->Read(0, source->Size())));
}

TCueFolder ListCueFolder(const QString& folder)
{
    TCueFolder result;
    const std::vector<TFolderEntry> entries = ListFolder(folder);
    for (const TFolderEntry& entry : entries)
        if (entry.IsFile && ExtensionOf(entry.Name) == ".cue"_L1)
            result.Sheets += entry.Path;
    if (result.Sheets.isEmpty()) // as most are
        return result;
    QSet<QString> audioNames; // with and without extension
    for (const TFolderEntry& entry : entries) {
        if (!entry.IsFile || !IsSupportedAudio(entry.Name) || IsDiscImage(entry.Name))
            continue;
        result.AudioFiles += entry.Name;
        audioNames << entry.Name.toCaseFolded() << StemOf(entry.Name).toCaseFolded();
    }
    const auto namesAudio = [&](const QString& sheet) { return audioNames.contains(StemOf(sheet).toCaseFolded()); };
    std::stable_partition(result.Sheets.begin(), result.Sheets.end(), namesAudio);
    return result;
}

} // namespace Kestrune
