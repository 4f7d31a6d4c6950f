// SPDX-License-Identifier: GPL-3.0-or-later
#include "uSession.h"

#include "uKRNParams.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const QString SessionFile = u"session.tsv"_s;
// Shorter texts are found in bodies by chance.
constexpr qsizetype ShortestKey = 8;

// The path of an answer's body; throws when it is none of the folder, also by way of a link.
QString BodyPath(const QString& folder, const QString& name)
{
    const QString top = QFileInfo(folder).canonicalFilePath();
    const QString clean = QDir::cleanPath(name);
    const QFileInfo info(QDir(folder).filePath(clean));
    const QString path = info.canonicalFilePath();
    if (QDir::isAbsolutePath(name) || clean == ".."_L1 || clean.startsWith("../"_L1) ||
        (!path.isEmpty() && !path.startsWith(top + u'/')))
        throw ESessionError(u"the file lies outside of the session"_s);
    if (path.isEmpty() || !info.isFile())
        throw ESessionError(u"there is no file \"%1\""_s.arg(name));
    if (info.size() > MaxSessionBody)
        throw ESessionError(u"the file \"%1\" is too large"_s.arg(name));
    return path;
}

QStringList ReadSessionLines(const QString& folder)
{
    const QString path = QDir(folder).filePath(SessionFile);
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        throw ESessionError(u"%1 cannot be read"_s.arg(path));
    const QByteArray text = file.read(MaxSessionBytes + 1);
    if (text.size() > MaxSessionBytes || text.count('\n') > MaxSessionLines)
        throw ESessionError(u"%1 is too large"_s.arg(path));
    QStringList lines;
    for (const QByteArray& line : text.split('\n')) {
        if (line.size() > MaxSessionLine)
            throw ESessionError(u"%1, line %2 is too long"_s.arg(path, QString::number(lines.size() + 1)));
        lines.append(QString::fromUtf8(line.endsWith('\r') ? line.chopped(1) : line));
    }
    return lines;
}

bool IsSessionComment(const QString& line) { return line.trimmed().isEmpty() || line.startsWith(u'#'); }

// Each part is looked for once, at its first place: the time is bounded by address and pattern.
bool FitsPattern(const QByteArrayList& parts, const QByteArray& url)
{
    if (parts.size() == 1)
        return url == parts.front();
    const QByteArray& first = parts.front();
    const QByteArray& last = parts.back();
    if (url.size() < first.size() + last.size() || !url.startsWith(first) || !url.endsWith(last))
        return false;
    qsizetype at = first.size();
    const qsizetype end = url.size() - last.size();
    for (const QByteArray& part : parts.sliced(1, parts.size() - 2)) {
        const qsizetype found = url.indexOf(part, at);
        if (found < 0 || found + part.size() > end)
            return false;
        at = found + part.size();
    }
    return true;
}

// For whoever opens the folder; the program goes by the content type alone.
QString ExtensionOf(const QString& contentType)
{
    constexpr std::pair<const char16_t*, const char16_t*> kinds[] = {
        {u"json", u".json"}, {u"html", u".html"}, {u"xml", u".xml"},   {u"jpeg", u".jpg"},
        {u"png", u".png"},   {u"gif", u".gif"},   {u"webp", u".webp"}, {u"text/", u".txt"},
    };
    for (const auto& [word, extension] : kinds) {
        if (contentType.contains(QString::fromUtf16(word), Qt::CaseInsensitive))
            return QString::fromUtf16(extension);
    }
    return u".bin"_s;
}

void WriteSessionFile(const QString& path, const QByteArray& bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        throw ESessionError(u"%1: %2"_s.arg(path, file.errorString()));
}

void InsertByLength(QByteArrayList& list, const QByteArray& value)
{
    if (value.isEmpty() || list.contains(value))
        return;
    // A text that holds another one is to be found first.
    const auto place = std::ranges::find_if(list, [&](const QByteArray& other) { return other.size() < value.size(); });
    list.insert(place, value);
}

} // namespace

TSessionMask::TSessionMask()
{
    TKRNParams keys;
    keys.AddPrivateKeysToParams();
    for (const auto& [key, value] : keys.Items()) {
        if (key != "UTC_TIMESTAMP"_L1)
            Add(value);
    }
}

void TSessionMask::Add(const QString& value)
{
    InsertByLength(FValues, value.toUtf8());
    InsertByLength(FEncoded, EncodeURL(value));
    InsertByLength(FEncoded, EncodeURL(EncodeParamValue(value)));
}

QByteArray TSessionMask::MaskURL(QByteArray url) const
{
    for (const QByteArray& value : FEncoded)
        url.replace(value, "*");
    // UTC_TIMESTAMP with its colons escaped, once more by the encoder of values.
    static const QRegularExpression time(u"\\d{4}-\\d\\d-\\d\\dT\\d\\d(%(25)*3A\\d\\d){2}Z"_s);
    return QString::fromLatin1(url).replace(time, u"*"_s).toLatin1();
}

QByteArray TSessionMask::MaskBody(QByteArray body) const
{
    for (const QByteArrayList* list : {&FValues, &FEncoded}) {
        for (const QByteArray& value : *list) {
            if (value.size() >= ShortestKey)
                body.replace(value, "*");
        }
    }
    return body;
}

TSessionPlayer::TSessionPlayer(const QString& folder) : FFolder(folder)
{
    int number = 0;
    for (const QString& line : ReadSessionLines(folder)) {
        ++number;
        if (IsSessionComment(line))
            continue;
        try {
            FLines.push_back(ParseLine(folder, line));
        } catch (const ESessionError& error) {
            throw ESessionError(u"%1, line %2: %3"_s.arg(QDir(folder).filePath(SessionFile), QString::number(number),
                                                         QString::fromUtf8(error.what())));
        }
    }
}

TSessionPlayer::TLine TSessionPlayer::ParseLine(const QString& folder, const QString& text)
{
    const QStringList columns = text.split(u'\t');
    if (columns.size() < 2 || columns.size() > 4)
        throw ESessionError(u"a line has address, status, content type and file"_s);
    TLine line;
    line.Parts = EncodeURL(columns[0].trimmed()).split('*');
    bool ok = false;
    line.Status = columns[1].trimmed().toInt(&ok);
    if (!ok || line.Status < 100 || line.Status > 599)
        throw ESessionError(u"\"%1\" is no HTTP status"_s.arg(columns[1].left(40)));
    line.ContentType = columns.value(2).trimmed();
    line.File = columns.value(3).trimmed();
    if (!line.File.isEmpty())
        (void)BodyPath(folder, line.File);
    return line;
}

THttpAnswer TSessionPlayer::Answer(const THttpRequest& request, QByteArray& body)
{
    const QByteArray url = EncodeURL(request.URL);
    const auto line = std::ranges::find_if(FLines, [&](const TLine& each) { return FitsPattern(each.Parts, url); });
    THttpAnswer answer;
    answer.Status = 404;
    body.clear();
    if (line == FLines.end()) {
        if (OnMissing)
            OnMissing(QString::fromLatin1(FMask.MaskURL(url)));
    } else {
        answer.Status = line->Status;
        answer.ContentType = line->ContentType;
        try {
            if (!line->File.isEmpty()) {
                QFile file(BodyPath(FFolder, line->File)); // the folder may have changed since it was read
                if (!file.open(QIODevice::ReadOnly))
                    throw ESessionError(u"%1: %2"_s.arg(line->File, file.errorString()));
                body = file.read(MaxSessionBody);
            }
        } catch (const ESessionError& error) {
            answer.Failure = dfOther;
            answer.Reason = QString::fromUtf8(error.what());
            return answer;
        }
    }
    answer.ContentLength = body.size();
    if (answer.Status != 200) {
        answer.Failure = dfHTTP;
        answer.Reason = QString::number(answer.Status);
    }
    if (request.MaxBytes > 0 && body.size() > request.MaxBytes) {
        body.clear();
        answer.Failure = dfTooLarge;
        answer.Reason = u"the answer is too large"_s;
    }
    return answer;
}

TSessionRecorder::TSessionRecorder(const QString& folder) : FFolder(folder)
{
    if (!QDir().mkpath(folder))
        throw ESessionError(u"the folder %1 cannot be made"_s.arg(folder));
    if (QFileInfo::exists(QDir(folder).filePath(SessionFile))) {
        const TSessionPlayer valid(folder); // nothing is added to what cannot be read
        FLines = ReadSessionLines(folder);
        while (!FLines.isEmpty() && FLines.back().isEmpty())
            FLines.removeLast();
    } else {
        FLines.append(u"# address, HTTP status, content type, file; * is any text; the first line that fits answers"_s);
        WriteSessionFile(QDir(folder).filePath(SessionFile), FLines.front().toUtf8() + '\n');
    }
}

void TSessionRecorder::Hide(const QString& value)
{
    const std::scoped_lock lock(FLock);
    FMask.Add(value);
}

QString TSessionRecorder::Error() const
{
    const std::scoped_lock lock(FLock);
    return FError;
}

void TSessionRecorder::Answered(const THttpRequest& request, const THttpAnswer& answer, const QByteArray& body)
{
    const std::scoped_lock lock(FLock);
    if (!FError.isEmpty())
        return;
    try {
        Write(request, answer, body);
    } catch (const ESessionError& error) {
        FError = QString::fromUtf8(error.what());
    }
}

void TSessionRecorder::Write(const THttpRequest& request, const THttpAnswer& answer, const QByteArray& body)
{
    const QString url = QString::fromLatin1(FMask.MaskURL(EncodeURL(request.URL)));
    const QString type = answer.ContentType.simplified();
    const QByteArray bytes = type.startsWith("image/"_L1, Qt::CaseInsensitive) ? body : FMask.MaskBody(body);
    QStringList columns{url, QString::number(answer.Status), type};
    if (!bytes.isEmpty()) {
        // Named by what it holds: the same answer recorded again makes the same folder.
        const QByteArray name = QCryptographicHash::hash(bytes, QCryptographicHash::Sha1).toHex().left(16);
        columns.append(QString::fromLatin1(name) + ExtensionOf(type));
    }
    const QString line = columns.join(u'\t');
    FLines.removeIf([&](const QString& other) { return other.section(u'\t', 0, 0).trimmed() == url; });
    FLines.append(line);
    const QByteArray text = FLines.join(u'\n').toUtf8() + '\n';
    if (FLines.size() > MaxSessionLines || line.size() > MaxSessionLine || text.size() > MaxSessionBytes ||
        bytes.size() > MaxSessionBody)
        throw ESessionError(u"the session would become too large"_s);
    if (!bytes.isEmpty())
        WriteSessionFile(QDir(FFolder).filePath(columns.back()), bytes);
    WriteSessionFile(QDir(FFolder).filePath(SessionFile), text);
}

} // namespace Kestrune
