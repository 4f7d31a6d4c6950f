// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDebugLog.h"
#include "uHostLimiter.h"
#include "uHttpClient.h"
#include "uInfoGrabber.h"
#include "uXml.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <set>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 LargestDefinition = 8 * 1024 * 1024;
constexpr qint64 LargestStylesheet = 4 * 1024 * 1024;
constexpr int LongestWait = 600'000; // milliseconds

struct TSection {
    const char16_t* Name;
    TInfoGrabberSearchType Type;
};
constexpr TSection Sections[] = {
    {u"BarcodeSearch", stBarcode}, {u"ArtistSearch", stArtist},
    {u"ReleaseSearch", stRelease}, {u"ReleaseAndArtistSearch", stArtistAndRelease},
    {u"CDSearch", stCDDB},         {u"ASINSearch", stASIN},
    {u"CatalogNoSearch", stCatNo},
};

QString TextOf(const TXmlElement& element, const QString& name) { return element.Attribute(name).value_or(QString()); }

bool FlagOf(const TXmlElement& element, const QString& name) { return TextOf(element, name).toLower() == "true"_L1; }

int NumberOf(const TXmlElement& element, const QString& name, int otherwise)
{
    bool ok = false;
    const int value = TextOf(element, name).trimmed().toInt(&ok);
    return ok ? value : otherwise;
}

// The root itself, or its first child of that name; names are compared without case.
TXmlElement FindSection(const TXmlElement& root, const QString& name)
{
    if (root.Name().compare(name, Qt::CaseInsensitive) == 0)
        return root;
    for (const TXmlElement& child : root.Children()) {
        if (child.Name().compare(name, Qt::CaseInsensitive) == 0)
            return child;
    }
    return {};
}

TInfoGrabberServiceActionType ActionTypeOf(const QString& elementName)
{
    const QString name = elementName.toLower();
    if (name == "getrelease"_L1)
        return satGetRelease;
    if (name == "getlyrics"_L1)
        return satGetLyrics;
    if (name == "gettrack"_L1)
        return satGetTrack;
    return satSearch;
}

} // namespace

std::unique_ptr<TInfoGrabberServiceAction> TInfoGrabberServiceAction::FromElement(const TXmlElement& element,
                                                                                  const QString& name,
                                                                                  TInfoGrabberServiceActionType type)
{
    auto action = std::make_unique<TInfoGrabberServiceAction>();
    action->FName = name;
    action->FServiceActionType = type;
    action->FURL = TextOf(element, u"url"_s);
    action->FMethod = TextOf(element, u"method"_s);
    action->FTranform = TextOf(element, u"Transform"_s);
    action->FJSON = FlagOf(element, u"JSON"_s);
    action->FCodePage = NumberOf(element, u"CodePage"_s, 65001);
    action->FSign = TextOf(element, u"Sign"_s);
    action->FSignMethod = TextOf(element, u"signmethod"_s);
    action->FSignPrivateKey = TextOf(element, u"signprivatekey"_s);
    return action;
}

std::unique_ptr<TInfoGrabberService> TInfoGrabberService::FromElement(const TXmlElement& element)
{
    auto service = std::make_unique<TInfoGrabberService>();
    service->FName = TextOf(element, u"name"_s);
    service->FDisplayName = TextOf(element, u"DisplayName"_s);
    service->FWaitBetweenRequests = std::clamp(NumberOf(element, u"WaitBetweenRequests"_s, 0), 0, LongestWait);
    for (const TXmlElement& child : element.Children())
        service->FItems.push_back(
            TInfoGrabberServiceAction::FromElement(child, service->FName, ActionTypeOf(child.Name())));
    return service;
}

void TInfoGrabber::Parse(const QString& path)
{
    Read(path);
    SetPaces();
    CheckOrder();
}

QStringList TInfoGrabber::StylesheetNames() const
{
    QStringList names;
    const auto take = [&](const TInfoGrabberActions& actions) {
        for (const auto& action : actions)
            names.append(action->Tranform());
    };
    for (const auto& service : FInfoGrabberServices.FItems)
        take(service->Items());
    for (const auto& search : FItems)
        take(search->FItems);
    names.removeAll(QString());
    names.removeDuplicates();
    return names;
}

bool TInfoGrabber::HasSearch() const
{
    return std::ranges::any_of(FItems, [this](const auto& search) {
        return std::ranges::any_of(search->FItems, [this](const auto& entry) {
            return FInfoGrabberServices.GetServiceByName(entry->Name()) && !entry->RawURL().isEmpty();
        });
    });
}

void TInfoGrabber::Read(const QString& path)
{
    FInfoGrabberServices.FItems.clear();
    FItems.clear();
    FHosts.clear();
    FFolder = QFileInfo(path).absolutePath();
    QString error;
    if (QFileInfo(path).size() > LargestDefinition)
        throw EInfoGrabberError(u"the file is too large"_s);
    const auto document = TXmlDocument::Load(path, &error);
    if (!document)
        throw EInfoGrabberError(error);
    ParseServices(document->Root());
    for (const TSection& section : Sections)
        ParseSearch(document->Root(), QString::fromUtf16(section.Name), section.Type);
}

void TInfoGrabber::ParseServices(const TXmlElement& root)
{
    for (const TXmlElement& child : FindSection(root, u"Services"_s).Children()) {
        if (child.Name().toLower() == "service"_L1)
            FInfoGrabberServices.FItems.push_back(TInfoGrabberService::FromElement(child));
    }
}

void TInfoGrabber::ParseSearch(const TXmlElement& root, const QString& section, TInfoGrabberSearchType type)
{
    const TXmlElement found = FindSection(root, section);
    if (found.IsNull())
        return;
    auto search = std::make_unique<TInfoGrabberSearch>(type);
    for (const TXmlElement& child : found.Children()) {
        if (child.Name().toLower() != "search"_L1)
            continue;
        auto entry = TInfoGrabberServiceAction::FromElement(child, TextOf(child, u"ServiceName"_s), satSearch);
        // Only here: a full record that asked for another would never end.
        entry->FNeedToDownloadExtraInfo = FlagOf(child, u"NeedToDownloadExtraInfo"_s);
        search->FItems.push_back(std::move(entry));
    }
    FItems.push_back(std::move(search));
}

// A host is paced by the slowest of the services that ask it, whichever of them sends the request.
void TInfoGrabber::SetPaces()
{
    const auto pace = [this](const TInfoGrabberServiceAction& action, int wait) {
        const QString host = HostOfURL(action.RawURL());
        if (host.isEmpty())
            return;
        HostLimiter().SetPace(host, wait);
        if (!FHosts.contains(host))
            FHosts.append(host);
    };
    for (const auto& service : FInfoGrabberServices.FItems) {
        for (const auto& action : service->Items())
            pace(*action, service->WaitBetweenRequests());
    }
    for (const auto& search : FItems) {
        for (const auto& action : search->FItems) {
            const TInfoGrabberService* service = FInfoGrabberServices.GetServiceByName(action->Name());
            pace(*action, service ? service->WaitBetweenRequests() : 0);
        }
    }
}

// One choice of services serves these three searches, by position.
void TInfoGrabber::CheckOrder() const
{
    const auto names = [this](TInfoGrabberSearchType type) {
        QStringList list;
        const TInfoGrabberSearch* search = GetSearchByType(type);
        for (int i = 0; search && i < search->Count(); ++i)
            list.append(search->GetItem(i).Name());
        return list;
    };
    const QStringList release = names(stRelease);
    if (names(stArtist) != release || names(stArtistAndRelease) != release)
        DebugLog(u"[Services] ArtistSearch, ReleaseSearch and ReleaseAndArtistSearch list other services"_s);
}

QByteArray ReadStylesheet(const QString& folder, const QString& name)
{
    // The name comes from a file that was fetched: it stays inside the folder.
    const QString path = QDir::cleanPath(QDir(folder).filePath(name));
    QFile file(path);
    const bool inside = path.startsWith(folder + u'/') && QFileInfo(path).isFile() && // no pipe, no device
                        QFileInfo(path).canonicalFilePath().startsWith(QFileInfo(folder).canonicalFilePath() + u'/');
    QByteArray text;
    if (!name.isEmpty() && inside && file.open(QIODevice::ReadOnly))
        text = file.read(LargestStylesheet + 1);
    if (text.isEmpty() || text.size() > LargestStylesheet)
        throw EInfoGrabberError(u"the stylesheet \"%1\" cannot be read"_s.arg(name));
    if (text.startsWith("\xEF\xBB\xBF"))
        text.remove(0, 3);
    return text;
}

} // namespace Kestrune
