// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFolderNames.h"

#include <array>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

bool IsDigit(QChar c) { return c >= u'0' && c <= u'9'; }

bool IsNameJoint(QChar c) { return c == u' ' || c == u'-' || c == u'.' || c == u'_'; }

qsizetype SkipJoints(QStringView text, qsizetype at)
{
    while (at < text.size() && IsNameJoint(text[at]))
        ++at;
    return at;
}

QStringView DigitsAt(QStringView text, qsizetype at)
{
    qsizetype end = at;
    while (end < text.size() && IsDigit(text[end]))
        ++end;
    return text.sliced(at, end - at);
}

bool IsOpening(QChar c) { return c == u'(' || c == u'['; }

bool IsClosing(QChar c) { return c == u')' || c == u']'; }

// The year in the six characters "(dddd)" at a position; any pair of brackets will do.
int BracketedYearAt(QStringView text, qsizetype at)
{
    if (at < 0 || at + 6 > text.size() || !IsOpening(text[at]) || !IsClosing(text[at + 5]))
        return 0;
    const QStringView digits = DigitsAt(text, at + 1);
    const int year = digits.size() == 4 ? digits.toInt() : 0;
    return year >= 1900 && year <= 2100 ? year : 0;
}

// Takes a bracketed year out of the text: one at the end first, else the first one anywhere.
int TakeYear(QString& text)
{
    if (const int year = BracketedYearAt(text, text.size() - 6)) {
        text = text.first(text.size() - 6).trimmed();
        return year;
    }
    for (qsizetype at = 0; at + 6 <= text.size(); ++at) {
        const int year = BracketedYearAt(text, at);
        if (year == 0)
            continue;
        text = text.remove(at, 6).replace(u"  "_s, u" "_s).trimmed();
        return year;
    }
    return 0;
}

bool IsWordCharacter(QChar c) { return IsDigit(c) || (c >= u'A' && c <= u'Z'); }

// The digits that number the disc word at a position; empty when it is the tail of another word, as in "ABCD 2".
QStringView DiscDigitsBehind(QStringView name, qsizetype word, qsizetype length)
{
    if (word > 0 && IsWordCharacter(name[word - 1]))
        return {};
    return DigitsAt(name, SkipJoints(name, word + length));
}

bool IsJointOrBracket(QChar c) { return IsNameJoint(c) || IsOpening(c) || IsClosing(c); }

QStringView WithoutJointsAtEnd(QStringView text)
{
    while (!text.isEmpty() && IsJointOrBracket(text.back()))
        text.chop(1);
    return text;
}

} // namespace

bool IsSupportedAudio(const QString& path)
{
    static const QString extensions =
        u";.mp3;.mp2;.m4a;.m4b;.mp1;.ogg;.oga;.opus;.flac;.fla;.ape;.mac;.wv;.mpc;.mp+;"
        ".mpp;.ofr;.ofs;.tta;.wma;.wav;.aac;.ac3;.aif;.aiff;.alac;.dsf;.dff;.iso;.m2ts;"_s;
    return extensions.contains(u';' + ExtensionOf(path) + u';');
}

bool IsDiscImage(const QString& path)
{
    return path.endsWith(".iso"_L1, Qt::CaseInsensitive) || path.endsWith(".iso.wv"_L1, Qt::CaseInsensitive);
}

TDiscFolderName ParseDiscFolderName(const QString& name)
{
    static const std::array words{u"CD"_s, u"DISC"_s, u"DISK"_s, u"MEDIA"_s};
    const QString upper = name.trimmed().toUpper();
    for (const QString& word : words) {
        for (qsizetype at = upper.indexOf(word); at >= 0; at = upper.indexOf(word, at + 1)) {
            const QStringView digits = DiscDigitsBehind(upper, at, word.size());
            const int number = digits.toInt(); // 0 when it is too large for a number
            if (number == 0)
                continue;
            const QStringView before = WithoutJointsAtEnd(QStringView(upper).first(at));
            const QStringView behind(digits.data() + digits.size(), upper.constData() + upper.size());
            return {number, before.toString(), before.isEmpty() && WithoutJointsAtEnd(behind).isEmpty()};
        }
    }
    return {};
}

int DiscNumberFromFolderName(const QString& name) { return ParseDiscFolderName(name).Number; }

TAlbumName ParseAlbumFolderName(const QString& name)
{
    TAlbumName result;
    QString text = name.trimmed();
    result.Year = TakeYear(text);
    const qsizetype dash = text.indexOf(" - "_L1);
    result.Artist = dash < 0 ? QString() : text.first(dash).trimmed();
    result.Album = dash < 0 ? text : text.sliced(dash + 3).trimmed();
    return result;
}

TTrackName ParseTrackFileName(const QString& path)
{
    const QString name = StemOf(path).trimmed();
    const QStringView digits = DigitsAt(name, 0);
    const int number = digits.toInt();
    if (digits.isEmpty() || digits.size() == name.size() || number < 1 || number > 999)
        return {0, name};
    return {number, name.sliced(SkipJoints(name, digits.size())).trimmed()};
}

} // namespace Kestrune
