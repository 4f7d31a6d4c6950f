// SPDX-License-Identifier: GPL-3.0-or-later
#include "uCD.h"

#include "uDebugLog.h"

#include <QFile>
#include <QRegularExpression>

#include <algorithm>
#include <vector>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// 99:59.74, the last place that the minutes, seconds and frames of a CD can name.
constexpr int LastDiscFrame = 99 * 4500 + 59 * 75 + 74;

QString JoinNumbers(const std::vector<int>& numbers, int base, QChar separator)
{
    QStringList texts;
    for (const int number : numbers)
        texts += QString::number(number, base).toUpper();
    return texts.join(separator);
}

TDiscTexts TextsOfDisc(TDiscId& disc)
{
    const int first = disc.GetFirstTrackNum();
    const int last = disc.GetLastTrackNum();
    std::vector<int> offsets;
    for (int track = first; track <= last; ++track)
        offsets.push_back(disc.GetTrackOffset(track));
    const int leadOut = disc.GetTrackOffset(last) + disc.GetTrackLength(last);

    std::vector<int> decimal{first, last, leadOut};
    decimal.insert(decimal.end(), offsets.begin(), offsets.end());
    offsets.push_back(leadOut);
    std::vector<int> toc = offsets;
    toc.insert(toc.begin(), DiscLeadIn);
    std::vector<int> microsoft = offsets;
    microsoft.insert(microsoft.begin(), last - first + 1);
    return {JoinNumbers(toc, 16, u' '), JoinNumbers(microsoft, 16, u' '), QString::fromLatin1(disc.GetId()),
            JoinNumbers(decimal, 10, u'+')};
}

// Plain digits only: what a sign, a fraction or digits of other scripts would mean is not guessed.
bool ParseFrames(const QString& word, int& number)
{
    const bool digits =
        !word.isEmpty() && std::all_of(word.begin(), word.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    bool fits = false;
    number = digits ? word.toInt(&fits) : 0;
    return fits && number <= LastDiscFrame;
}

// An empty text when the numbers can be a disc's.
QString FaultOfNumbers(const std::vector<int>& numbers)
{
    if (numbers.size() < 4)
        return u"a table of contents needs the first track, the last track, the lead-out and an offset per track"_s;
    const int first = numbers[0];
    const int last = numbers[1];
    if (first < 1 || last < first || last > DiscMaxTracks)
        return u"tracks %1 to %2 are not within 1 to %3"_s.arg(first).arg(last).arg(DiscMaxTracks);
    const auto count = static_cast<size_t>(last - first) + 1;
    const size_t given = numbers.size() - 3;
    if (given != count)
        return u"tracks %1 to %2 need %3 offsets, but there are %4"_s.arg(first).arg(last).arg(count).arg(given);
    for (size_t i = 3; i < numbers.size(); ++i) {
        const int least = i == 3 ? DiscLeadIn : numbers[i - 1] + 1;
        if (numbers[i] < least)
            return u"track %1 cannot start at %2, but at %3 or later"_s.arg(first + static_cast<int>(i) - 3)
                .arg(numbers[i])
                .arg(least);
    }
    if (numbers[2] <= numbers.back())
        return u"the lead-out %1 is not behind the last track, which starts at %2"_s.arg(numbers[2])
            .arg(numbers.back());
    return {};
}

} // namespace

bool DiscTextsOf(const TRawTOC& toc, TDiscTexts& texts, QString& error)
{
    TDiscId disc;
    const bool done = disc.ReadRaw(toc);
    texts = done ? TextsOfDisc(disc) : TDiscTexts();
    error = disc.ErrorMsg();
    return done;
}

bool GetTOCAndDiscID(const QString& device, TDiscTexts& texts, QString& error, const TOpenCDDrive& open)
{
    texts = {};
    DebugLog(u"GetTOCAndDiscID "_s + device);
    TDiscId disc;
    const bool done = disc.Read(device, open);
    error = disc.ErrorMsg();
    if (!done) {
        DebugLog(error);
        return false;
    }
    texts = TextsOfDisc(disc);
    DebugLog(u"TOC = "_s + texts.TOC);
    DebugLog(u"TOC_Microsoft = "_s + texts.TOC_Microsoft);
    DebugLog(u"DiscID = "_s + texts.DiscID);
    return true;
}

bool GetTOCAndDiscID(const QString& device, QString& toc, QString& tocMicrosoft, QString& discId)
{
    TDiscTexts texts;
    QString error;
    const bool done = GetTOCAndDiscID(device, texts, error);
    toc = texts.TOC;
    tocMicrosoft = texts.TOC_Microsoft;
    discId = texts.DiscID;
    return done;
}

bool ParseDecimalTOC(const QString& text, TRawTOC& toc, QString& error)
{
    static const QRegularExpression separator(u"\\s*\\+\\s*|\\s+"_s);
    toc = {};
    const QString trimmed = text.trimmed();
    std::vector<int> numbers;
    for (const QString& word : trimmed.isEmpty() ? QStringList() : trimmed.split(separator)) {
        int number = 0;
        if (!ParseFrames(word, number)) {
            error = u"\"%1\" is not a whole number from 0 to %2"_s.arg(word.left(20)).arg(LastDiscFrame);
            return false;
        }
        numbers.push_back(number);
    }
    error = FaultOfNumbers(numbers);
    if (!error.isEmpty())
        return false;
    toc.First = numbers[0];
    toc.Last = numbers[1];
    toc.Entries[0].Address = numbers[2] - DiscLeadIn;
    for (size_t i = 3; i < numbers.size(); ++i)
        toc.Entries[static_cast<size_t>(toc.First) + i - 3].Address = numbers[i] - DiscLeadIn;
    return true;
}

QStringList ListCDDrives(const QString& infoFile, const QString& deviceFolder)
{
    constexpr auto label = "drive name:"_L1;
    constexpr qint64 mostInfo = 65536;
    QStringList names;
    if (QFile file(infoFile); file.open(QIODevice::ReadOnly)) {
        for (const QString& line : QString::fromUtf8(file.read(mostInfo)).split(u'\n')) {
            if (line.startsWith(label))
                names += line.mid(label.size()).simplified().split(u' ', Qt::SkipEmptyParts);
        }
    }
    // A name is one word in the device folder, never a way out of it.
    names.removeIf([](const QString& name) { return name.contains(u'/') || name.startsWith(u'.'); });
    // The kernel has the newest drive first.
    std::sort(names.begin(), names.end(), [](const QString& one, const QString& other) {
        return one.size() != other.size() ? one.size() < other.size() : one < other;
    });
    const bool listed = !names.isEmpty();
    for (int number = 0; !listed && number < 16; ++number) {
        const QString name = u"sr%1"_s.arg(number);
        if (QFile::exists(deviceFolder + u'/' + name))
            names += name;
    }
    for (QString& name : names)
        name.prepend(deviceFolder + u'/');
    return names;
}

bool EjectCD(const QString& device, const TOpenCDDrive& open)
{
    const std::unique_ptr<TCDDrive> drive = open(device);
    return drive && drive->Eject();
}

} // namespace Kestrune
