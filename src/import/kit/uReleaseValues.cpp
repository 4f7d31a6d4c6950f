// SPDX-License-Identifier: GPL-3.0-or-later
#include "uReleaseValues.h"

#include "uColumnNames.h"
#include "uObjs.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

void SetText(TAlbumRelease& release, const QString& key, const QString& text)
{
    if (!text.isEmpty())
        release.SetItem2(key, text);
}

void SetNumber(TAlbumRelease& release, const QString& key, int number)
{
    if (number != 0)
        release.SetItem2(key, number);
}

void SetDate(TAlbumRelease& release, const QString& key, const QDate& date)
{
    SetText(release, key, date.toString(Qt::ISODate));
}

void SetCountry(TAlbumRelease& release, const QString& country)
{
    SetText(release, Col::CountryCode, VarToStr(NormalizeCountry(country.trimmed())));
}

} // namespace Kestrune
