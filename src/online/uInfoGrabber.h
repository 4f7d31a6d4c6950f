// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <memory>
#include <stdexcept>
#include <vector>

namespace Kestrune {

class TKRNParams;
class TXmlElement;
struct TDefaults;

/// What a request of a service does.
enum class TInfoGrabberServiceActionType : quint8 { satSearch, satGetRelease, satGetLyrics, satGetTrack };
using enum TInfoGrabberServiceActionType;

enum class TInfoGrabberSearchType : quint8 {
    stBarcode,
    stArtist,
    stRelease,
    stArtistAndRelease,
    stCDDB,
    stASIN,
    stCatNo
};
using enum TInfoGrabberSearchType;

/// The service definitions cannot be read.
class EInfoGrabberError : public std::runtime_error {
public:
    explicit EInfoGrabberError(const QString& text) : std::runtime_error(text.toStdString()) {}
};

/// One request that a service can answer, as its definition has it.
class TInfoGrabberServiceAction {
public:
    const QString& Name() const { return FName; } ///< of its service
    /// The template of the URL, rewritten by the search presets of the settings where the service has some.
    QString URL() const;
    QString URL(const TDefaults& presets) const;
    /// As it stands in the definition.
    const QString& RawURL() const { return FURL; }
    const QString& Tranform() const { return FTranform; } ///< file name of the stylesheet
    TInfoGrabberServiceActionType ServiceActionType() const { return FServiceActionType; }
    const QString& Method() const { return FMethod; }
    const QString& Sign() const { return FSign; }
    const QString& SignMethod() const { return FSignMethod; }
    const QString& SignPrivateKey() const { return FSignPrivateKey; }
    /// A hit is a summary: the full record is asked for when it is looked at.
    bool NeedToDownloadExtraInfo() const { return FNeedToDownloadExtraInfo; }
    bool JSON() const { return FJSON; }
    int CodePage() const { return FCodePage; }

    /// Adds SIGNATURE to the parameters where the request is signed.
    void AddSignature(TKRNParams& params) const;
    /// Names of the private keys that the URL asks for and that the product identity does not have.
    QStringList MissingKeys() const;

    /// Reads the attributes that services and search entries have.
    static std::unique_ptr<TInfoGrabberServiceAction> FromElement(const TXmlElement& element, const QString& name,
                                                                  TInfoGrabberServiceActionType type);

private:
    friend class TInfoGrabber;
    QString FName;
    QString FURL;
    QString FTranform;
    TInfoGrabberServiceActionType FServiceActionType = satSearch;
    QString FMethod;
    QString FSign;
    QString FSignMethod;
    QString FSignPrivateKey;
    bool FNeedToDownloadExtraInfo = false;
    bool FJSON = false;
    int FCodePage = 65001;
};

using TInfoGrabberActions = std::vector<std::unique_ptr<TInfoGrabberServiceAction>>;

/// One online service with what it can be asked beside searches.
class TInfoGrabberService {
public:
    const QString& Name() const { return FName; }
    const QString& DisplayName() const { return FDisplayName; }
    /// Milliseconds between two requests.
    int WaitBetweenRequests() const { return FWaitBetweenRequests; }
    const TInfoGrabberActions& Items() const { return FItems; }
    /// The first action of a type, or null.
    const TInfoGrabberServiceAction* GetActionByType(TInfoGrabberServiceActionType value) const;

    static std::unique_ptr<TInfoGrabberService> FromElement(const TXmlElement& element);

private:
    QString FName;
    QString FDisplayName;
    int FWaitBetweenRequests = 0;
    TInfoGrabberActions FItems;
};

class TInfoGrabberServices {
public:
    int Count() const { return static_cast<int>(FItems.size()); }
    const TInfoGrabberService& GetItem(int index) const { return *FItems.at(static_cast<size_t>(index)); }
    /// By the internal name, case counts; null when there is none.
    const TInfoGrabberService* GetServiceByName(const QString& name) const;

private:
    friend class TInfoGrabber;
    std::vector<std::unique_ptr<TInfoGrabberService>> FItems;
};

/// The services that take part in one kind of search, in the order of the file.
class TInfoGrabberSearch {
public:
    explicit TInfoGrabberSearch(TInfoGrabberSearchType type) : FSearchType(type) {}

    TInfoGrabberSearchType SearchType() const { return FSearchType; }
    int Count() const { return static_cast<int>(FItems.size()); }
    const TInfoGrabberServiceAction& GetItem(int index) const { return *FItems.at(static_cast<size_t>(index)); }
    /// By the name of the service, case counts; null when there is none.
    const TInfoGrabberServiceAction* GetItemByName(const QString& item) const;

private:
    friend class TInfoGrabber;
    TInfoGrabberSearchType FSearchType;
    TInfoGrabberActions FItems;
};

/// All service definitions.
class TInfoGrabber {
public:
    /// Reads a file of definitions in place of what was there, and gives the hosts of the services their pace. Throws
    /// EInfoGrabberError; there are no definitions then.
    void Parse(const QString& path);
    /// The same for a look at them: no host gets a pace.
    void Read(const QString& path);

    const TInfoGrabberServices& InfoGrabberServices() const { return FInfoGrabberServices; }
    int Count() const { return static_cast<int>(FItems.size()); }
    const TInfoGrabberSearch& GetItem(int index) const { return *FItems.at(static_cast<size_t>(index)); }
    /// The first search of a type, or null.
    const TInfoGrabberSearch* GetSearchByType(TInfoGrabberSearchType value) const;
    /// File names of all stylesheets, each once.
    QStringList StylesheetNames() const;
    /// True when a search has an entry that can be asked.
    bool HasSearch() const;
    /// Where the stylesheets lie; empty before Parse.
    const QString& Folder() const { return FFolder; }
    /// True when a host answers requests of a service, so that it has a pace of its own.
    bool IsServiceHost(const QString& host) const { return FHosts.contains(host); }

private:
    void ParseServices(const TXmlElement& root);
    void ParseSearch(const TXmlElement& root, const QString& section, TInfoGrabberSearchType type);
    void SetPaces();
    void CheckOrder() const;

    TInfoGrabberServices FInfoGrabberServices;
    std::vector<std::unique_ptr<TInfoGrabberSearch>> FItems;
    QString FFolder;
    QStringList FHosts;
};

/// True for the code of a country with a shop that can be asked for albums.
bool HasITunesShop(const QString& country);

/// A stylesheet of the folder of a package, as it lies on disk now; throws EInfoGrabberError when it cannot be read.
QByteArray ReadStylesheet(const QString& folder, const QString& name);

/// The one of the process.
TInfoGrabber& InfoGrabber();

} // namespace Kestrune
