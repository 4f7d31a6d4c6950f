// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTrackLocator.h"

#include <utility>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const std::pair<TLocatorKind, QString> LocatorPrefixes[] = {
    {lkISO, u"ISO:"_s}, {lkSACD, u"SACD:"_s}, {lkDVDA, u"DVDA:"_s}, {lkBDISO, u"BDISO:"_s}, {lkCue, u"CUE:"_s}};

// Takes ":start:end" off the end of a text. Paths may hold ":" themselves, so it must be two whole numbers.
bool TakeRange(QString& text, int& start, int& end)
{
    const qsizetype second = text.lastIndexOf(u':');
    const qsizetype first = second > 0 ? text.lastIndexOf(u':', second - 1) : -1;
    if (first < 0)
        return false;
    bool startRead = false;
    bool endRead = false;
    const int startSec = text.mid(first + 1, second - first - 1).toInt(&startRead);
    const int endSec = text.mid(second + 1).toInt(&endRead);
    if (!startRead || !endRead)
        return false;
    start = startSec;
    end = endSec;
    text.truncate(first);
    return true;
}

} // namespace

QString TTrackLocator::Text() const
{
    const QString range = HasRange ? u":%1:%2"_s.arg(StartSec).arg(EndSec) : QString();
    switch (Kind) {
    case lkISO: return u"ISO:"_s + InnerPath + range;
    case lkBDISO: return u"BDISO:"_s + InnerPath + range;
    case lkSACD: return u"SACD:%1"_s.arg(Number);
    case lkDVDA: return u"DVDA:%1"_s.arg(Number);
    case lkCue: return u"CUE"_s + range;
    case lkFile: break;
    }
    return {};
}

TTrackLocator TTrackLocator::Parse(const QString& text)
{
    TTrackLocator locator;
    for (const auto& [kind, prefix] : LocatorPrefixes) {
        if (!text.startsWith(prefix))
            continue;
        // The range of a cue track begins with the colon of the prefix itself.
        QString rest = text.mid(prefix.size() - (kind == lkCue ? 1 : 0));
        if (kind == lkSACD || kind == lkDVDA) {
            locator.Number = rest.toInt();
            locator.Kind = locator.Number > 0 ? kind : lkFile;
            return locator;
        }
        locator.HasRange = TakeRange(rest, locator.StartSec, locator.EndSec);
        locator.InnerPath = kind == lkCue ? QString() : rest;
        locator.Kind = kind == lkCue && !locator.HasRange ? lkFile : kind;
        return locator;
    }
    return locator;
}

TTrackLocator TTrackLocator::Cut(int startSec, int endSec) const
{
    TTrackLocator cut = Kind == lkISO ? *this : TTrackLocator{lkCue, {}, 0, false, 0, 0};
    cut.HasRange = true;
    cut.StartSec = startSec;
    cut.EndSec = endSec;
    return cut;
}

QString ComposeTrackName(const QString& filePath, const QString& fileType)
{
    return fileType.isEmpty() ? filePath : filePath + u'#' + fileType;
}

} // namespace Kestrune
