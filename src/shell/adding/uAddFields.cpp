// SPDX-License-Identifier: GPL-3.0-or-later
#include "uAddFields.h"

#include "uDefaults.h"
#include "uDictionaries.h"
#include "uTHStrings.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int MostBarcodes = 500; // a tab each
constexpr int MostServices = 31;  // bits of a setting

// The setting that keeps the choice: bit N is the service at place N.
int& ServiceMask(TSearchArea area)
{
    switch (area) {
    case saBarcode: return Defaults().SearchByBarcode;
    case saCatalogNo: return Defaults().SearchByCatalogNo;
    case saCD: return Defaults().SearchByCD;
    default: return Defaults().SearchByArtistRelease;
    }
}

// The search whose services stand in the list of an area; that by titles stands for all three of its area.
TInfoGrabberSearchType ListedSearch(TSearchArea area)
{
    switch (area) {
    case saBarcode: return stBarcode;
    case saCatalogNo: return stCatNo;
    case saCD: return stCDDB;
    default: return stRelease;
    }
}

} // namespace

TAddFields::TAddFields(const TInfoGrabber& grabber) : FGrabber(grabber) {}

void TAddFields::SetArea(TSearchArea area)
{
    FArea = area;
    Q_EMIT changed();
}

std::optional<TInfoGrabberSearchType> TAddFields::SearchType(TSearchArea area) const
{
    const bool hasArtist = !Artist.trimmed().isEmpty(), hasRelease = !ReleaseTitle.trimmed().isEmpty();
    switch (area) {
    case saBarcode: return BarcodeList().isEmpty() ? std::nullopt : std::optional(stBarcode);
    case saCatalogNo: return CatalogNo.trimmed().isEmpty() ? std::nullopt : std::optional(stCatNo);
    case saCD: return stCDDB;
    default: break;
    }
    if (!hasArtist && !hasRelease)
        return std::nullopt;
    return hasArtist && hasRelease ? stArtistAndRelease : hasRelease ? stRelease : stArtist;
}

QStringList TAddFields::BarcodeList() const
{
    QStringList codes;
    for (const QString& line : SplitLines(Barcodes)) {
        if (const QString code = CleanBarcode(line); !code.isEmpty() && codes.size() < MostBarcodes)
            codes.append(code);
    }
    return codes;
}

TSearchWords TAddFields::Words(const QString& barcode) const
{
    return {barcode, CatalogNo.trimmed(), Artist.trimmed(), ReleaseTitle.trimmed(), {}};
}

QStringList TAddFields::ServiceNames(TSearchArea area) const
{
    const TInfoGrabberSearch* search = FGrabber.GetSearchByType(ListedSearch(area));
    QStringList names;
    for (int i = 0; search && i < search->Count(); ++i) {
        const QString& name = search->GetItem(i).Name();
        const TInfoGrabberService* service = FGrabber.InfoGrabberServices().GetServiceByName(name);
        names.append(service && !service->DisplayName().isEmpty() ? service->DisplayName() : name);
    }
    return names;
}

bool TAddFields::IsServiceChosen(TSearchArea area, int index) const
{
    return index >= 0 && index < MostServices && ((ServiceMask(area) >> index) & 1) != 0;
}

void TAddFields::ChooseService(TSearchArea area, int index, bool on)
{
    if (index < 0 || index >= MostServices)
        return;
    int& mask = ServiceMask(area);
    mask = on ? mask | (1 << index) : mask & ~(1 << index);
    Q_EMIT changed();
}

QString SearchCaption(TInfoGrabberSearchType type, const TSearchWords& words)
{
    const auto text = [](const QString& key, const QStringList& values) {
        return FormatText(GetLanguageString(key), values);
    };
    switch (type) {
    case stArtistAndRelease: return text(u"cSReleaseAndArtistFmt"_s, {words.Artist, words.Release});
    case stArtist: return text(u"cSArtistFmt"_s, {words.Artist});
    case stRelease: return text(u"cSReleaseFmt"_s, {words.Release});
    case stBarcode: return text(u"cSBarcodeFmt"_s, {words.Barcode});
    case stCDDB: return GetLanguageString(u"cSCDSearch"_s);
    case stCatNo: return text(u"cSCatalogNoFmt"_s, {words.CatalogNo});
    default: return {};
    }
}

} // namespace Kestrune
