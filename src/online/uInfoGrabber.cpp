// SPDX-License-Identifier: GPL-3.0-or-later
#include "uInfoGrabber.h"

#include "uDefaults.h"
#include "uDictionaries.h"
#include "uKRNParams.h"

#include <QLocale>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// The clause of the query for a kind of medium; empty for all kinds.
QString MusicBrainzFormats(int mediaType)
{
    switch (mediaType) {
    case 1:
        return u"(format:CD OR format:\"CD-R\" OR format:\"8cm CD\" OR format:\"Enhanced CD\" OR format:\"HDCD\" OR "
               "format:\"SHM-CD\" OR format:\"DualDisc\")"_s;
    case 2: return u"(format:\"12\\\" Vinyl\" OR format:\"7\\\" Vinyl\" OR format:\"10\\\" Vinyl\" OR format:Vinyl)"_s;
    case 3: return u"(format:\"Digital Media\")"_s;
    case 4: return u"(format:DVD OR format:\"DVD-Video\" OR format:\"DVD-Audio\" OR format:\"Blu-ray\")"_s;
    case 5: return u"(format:Cassette)"_s;
    default: return {};
    }
}

QString DiscogsFormat(int mediaType)
{
    static const QStringList names{u"CD"_s, u"Vinyl"_s, u"File"_s, u"DVD"_s, u"Cassette"_s};
    return mediaType >= 1 && mediaType <= names.size() ? u"&format="_s + names[mediaType - 1] : QString();
}

QString DiscogsCountryText(const QString& code)
{
    const QString upper = code.toUpper();
    if (upper == "GB"_L1)
        return u"uk"_s;
    if (upper == "US"_L1)
        return u"us"_s;
    const auto& countries = Countries();
    const auto found = std::ranges::find_if(
        countries, [&](const TCountry& country) { return country.Value.compare(code, Qt::CaseInsensitive) == 0; });
    return found == countries.end() ? QString() : found->Description;
}

// Countries with a shop; others are answered with an error.
constexpr char ITunesShops[] =
    "ae ag ai al am ao ar at au az ba bb be bf bg bh bj bm bn bo br bs bt bw by bz ca cd cg ch ci cl cm cn co cr cv cy "
    "cz de dk dm do dz ec ee eg es fi fj fm fr ga gb gd ge gh gm gr gt gw gy hk hn hr hu id ie il in iq is it jm jo jp "
    "ke kg kh kn kr kw ky kz la lb lc lk lr lt lu lv ly ma md me mg mk ml mm mn mo mr ms mt mu mv mw mx my mz na ne ng "
    "ni nl no np nr nz om pa pe pg ph pk pl pt pw py qa ro rs ru rw sa sb sc se sg si sk sl sn sr st sv sz tc td th tj "
    "tm tn to tr tt tw tz ua ug us uy uz vc ve vg vn vu xk ye za zm zw";

QString ITunesCountry(const TDefaults& presets)
{
    const QString chosen =
        presets.ITunesCountry.isEmpty() ? QLocale::territoryToCode(QLocale().territory()) : presets.ITunesCountry;
    return HasITunesShop(chosen) ? chosen.toLower() : QString();
}

void ReplaceAll(QString& text, const QString& what, const QString& by) { text.replace(what, by, Qt::CaseInsensitive); }

} // namespace

bool HasITunesShop(const QString& country)
{
    static const QByteArrayList shops = QByteArray(ITunesShops).split(' ');
    return shops.contains(country.toLower().toLatin1());
}

QString TInfoGrabberServiceAction::URL() const { return URL(Defaults()); }

QString TInfoGrabberServiceAction::URL(const TDefaults& presets) const
{
    QString url = FURL;
    const QString name = FName.toLower();
    // Of its records as well: a number is known in the shop where it was found.
    if (name == "itunes"_L1 && !url.contains(u"country="_s, Qt::CaseInsensitive)) {
        if (const QString country = ITunesCountry(presets); !country.isEmpty())
            url += (url.contains(u'?') ? u"&country="_s : u"?country="_s) + country;
    }
    if (FServiceActionType != satSearch)
        return url;
    if (name == "discogs"_L1) {
        if (!presets.DiscogsCountry.isEmpty())
            url += u"&country="_s + DiscogsCountryText(presets.DiscogsCountry);
        url += DiscogsFormat(presets.DiscogsMediaType);
        ReplaceAll(url, u"per_page=50"_s, u"per_page=%1"_s.arg(presets.DiscogsResultsPerPage));
    } else if (name == "musicbrainz"_L1) {
        if (!presets.MusicBrainzCountry.isEmpty())
            ReplaceAll(url, u"query="_s, u"query=country:"_s + presets.MusicBrainzCountry.toLower() + u" AND "_s);
        if (const QString formats = MusicBrainzFormats(presets.MusicBrainzMediaType); !formats.isEmpty())
            ReplaceAll(url, u"query="_s, u"query="_s + formats + u" AND "_s);
        ReplaceAll(url, u"limit=100"_s, u"limit=%1"_s.arg(presets.MusicBrainzResultsPerPage));
    }
    return url;
}

void TInfoGrabberServiceAction::AddSignature(TKRNParams& params) const
{
    if (FSignMethod.isEmpty())
        return;
    params.Add(u"SIGNATURE"_s, SignData(params.ReplaceWithParams(FSign), params.ReplaceWithParams(FSignPrivateKey),
                                        params.ReplaceWithParams(FSignMethod)));
}

QStringList TInfoGrabberServiceAction::MissingKeys() const
{
    TKRNParams keys;
    keys.AddPrivateKeysToParams();
    QStringList missing;
    for (const auto& [key, value] : keys.Items()) {
        const QString placeholder = u'%' + key + u'%';
        const bool used = FURL.contains(placeholder, Qt::CaseInsensitive) ||
                          FSignPrivateKey.contains(placeholder, Qt::CaseInsensitive);
        if (used && value.isEmpty())
            missing.append(key);
    }
    return missing;
}

const TInfoGrabberServiceAction* TInfoGrabberService::GetActionByType(TInfoGrabberServiceActionType value) const
{
    const auto found =
        std::ranges::find_if(FItems, [&](const auto& action) { return action->ServiceActionType() == value; });
    return found == FItems.end() ? nullptr : found->get();
}

const TInfoGrabberService* TInfoGrabberServices::GetServiceByName(const QString& name) const
{
    const auto found = std::ranges::find_if(FItems, [&](const auto& service) { return service->Name() == name; });
    return found == FItems.end() ? nullptr : found->get();
}

const TInfoGrabberServiceAction* TInfoGrabberSearch::GetItemByName(const QString& item) const
{
    const auto found = std::ranges::find_if(FItems, [&](const auto& action) { return action->Name() == item; });
    return found == FItems.end() ? nullptr : found->get();
}

const TInfoGrabberSearch* TInfoGrabber::GetSearchByType(TInfoGrabberSearchType value) const
{
    const auto found = std::ranges::find_if(FItems, [&](const auto& search) { return search->SearchType() == value; });
    return found == FItems.end() ? nullptr : found->get();
}

TInfoGrabber& InfoGrabber()
{
    static TInfoGrabber grabber;
    return grabber;
}

} // namespace Kestrune
