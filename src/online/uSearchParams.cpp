// SPDX-License-Identifier: GPL-3.0-or-later
#include "uSearchParams.h"

#include "uInfoGrabber.h"
#include "uKRNParams.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

QString CleanBarcode(const QString& text)
{
    const QString code = text.trimmed();
    QString digits = code;
    digits.removeIf([](QChar c) { return c.isSpace() || c == u'-'; });
    const bool onlyDigits = std::ranges::all_of(digits, [](QChar c) { return c >= u'0' && c <= u'9'; });
    return onlyDigits ? digits : code;
}

void FillSearchParams(TKRNParams& params, const TSearchWords& words, const TInfoGrabberServiceAction& action)
{
    params.Clear();
    params.AddPrivateKeysToParams();
    params.Add(u"BARCODE"_s, words.Barcode);
    params.Add(u"CATNO"_s, words.CatalogNo);
    params.Add(u"ARTIST"_s, words.Artist);
    params.Add(u"RELEASE_TITLE"_s, words.Release);
    action.AddSignature(params);
    if (words.Disc) {
        params.Add(u"DISCID"_s, words.Disc->DiscID);
        params.Add(u"TOC"_s, words.Disc->TOC);
        params.Add(u"TOC_MICROSOFT"_s, words.Disc->TOC_Microsoft);
        params.Add(u"TOC_DECIMAL"_s, words.Disc->TOC_DECIMAL);
    }
    params.AddQueryTwins();
}

} // namespace Kestrune
