// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uColumnNames.h"
#include "uCommand.h"
#include "uDefaults.h"
#include "uDiscOptions.h"
#include "uInfoGrabber.h"
#include "uKRNParams.h"
#include "uReleaseFetch.h"
#include "uReleaseText.h"
#include "uSearchParams.h"
#include "uSession.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <cstdio>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

using TAction = TInfoGrabberServiceAction;

void TellSearch(const QString& sentence)
{
    std::fprintf(stderr, "kestrune-cli: %s\n", qUtf8Printable(OneLine(sentence)));
}

// Where the answers of one run come from and go to, as the options say.
class TSearchNetwork {
public:
    explicit TSearchNetwork(const QCommandLineParser& parser)
    {
        SetNetworkSettings(NetworkSettingsFrom(Defaults()));
        InstallPictureFetcher();
        if (parser.isSet(u"replay"_s)) {
            auto player = std::make_shared<TSessionPlayer>(parser.value(u"replay"_s));
            player->OnMissing = [](const QString& url) { TellSearch(u"the session has no answer for "_s + url); };
            SetHttpStandIn(player);
        }
        if (parser.isSet(u"record"_s)) {
            FRecorder = std::make_shared<TSessionRecorder>(parser.value(u"record"_s));
            SetHttpObserver(FRecorder);
        }
    }
    ~TSearchNetwork()
    {
        SetHttpStandIn(nullptr);
        SetHttpObserver(nullptr);
    }
    TSearchNetwork(const TSearchNetwork&) = delete;
    TSearchNetwork& operator=(const TSearchNetwork&) = delete;

    // A signature holds the time, so that no later request would meet the recorded one.
    void HideSignature(const TKRNParams& params)
    {
        for (const auto& [key, value] : params.Items()) {
            if (FRecorder && key == "SIGNATURE"_L1)
                FRecorder->Hide(value);
        }
    }
    QString RecorderError() const { return FRecorder ? FRecorder->Error() : QString(); }

private:
    std::shared_ptr<TSessionRecorder> FRecorder;
};

// One run of a search over the services that are asked.
class TServiceSearch {
public:
    TServiceSearch(const TInfoGrabber& grabber, const TSearchWords& words, TSearchNetwork& network)
        : FGrabber(grabber), FWords(words), FNetwork(network)
    {}

    /// All hits of a service, none when it failed.
    TAlbumReleases Hits(const TAction& action)
    {
        TAlbumReleases hits;
        TReleaseFetch fetch(FGrabber);
        const bool answered = fetch.FetchHits(action, ParamsFor(action), hits);
        Judge(action, fetch, answered, !hits.empty(), action.MissingKeys());
        return hits;
    }

    /// The full record of the first hit of a service, or null.
    std::unique_ptr<TAlbumRelease> Record(const TAction& action)
    {
        std::unique_ptr<TAlbumRelease> release;
        TReleaseFetch fetch(FGrabber);
        const bool answered = fetch.FetchRelease(action, ParamsFor(action), release);
        QStringList missing = action.MissingKeys();
        const TInfoGrabberService* service = FGrabber.InfoGrabberServices().GetServiceByName(action.Name());
        if (const TAction* details = service ? service->GetActionByType(satGetRelease) : nullptr;
            details && action.NeedToDownloadExtraInfo())
            missing += details->MissingKeys();
        missing.removeDuplicates();
        Judge(action, fetch, answered, release != nullptr, missing);
        return answered ? std::move(release) : nullptr;
    }

    /// Why the service that was asked last failed, or empty.
    const QString& Failure() const { return FFailure; }
    bool AllFailed() const { return FAsked > 0 && FFailed == FAsked; }

private:
    TKRNParams ParamsFor(const TAction& action)
    {
        TKRNParams params;
        FillSearchParams(params, FWords, action);
        FNetwork.HideSignature(params);
        return params;
    }

    void Judge(const TAction& action, const TReleaseFetch& fetch, bool answered, bool found, const QStringList& missing)
    {
        ++FAsked;
        FFailure.clear();
        // With nothing found an error tells of an answer that was not understood.
        const bool failed = answered ? !found && !fetch.Error().isEmpty() : !(FWords.Disc && fetch.NotFound());
        if (!failed)
            return;
        ++FFailed;
        if (!missing.isEmpty())
            FFailure = u"needs a key (%1)"_s.arg(missing.join(u", "_s));
        else
            FFailure = fetch.Error().isEmpty() ? u"the request failed"_s : fetch.Error();
        const TInfoGrabberService* service = FGrabber.InfoGrabberServices().GetServiceByName(action.Name());
        const QString shown = service && !service->DisplayName().isEmpty() ? service->DisplayName() : action.Name();
        TellSearch(shown + u": "_s + FFailure);
    }

    const TInfoGrabber& FGrabber;
    const TSearchWords& FWords;
    TSearchNetwork& FNetwork;
    QString FFailure;
    int FAsked = 0;
    int FFailed = 0;
};

class TSearchCommand final : public TCommand {
public:
    QString Name() const override { return u"search"_s; }
    QString Summary() const override { return u"search the online services for releases"_s; }
    void Describe(QCommandLineParser& parser) const override
    {
        parser.setApplicationDescription(
            u"Searches the online services for releases and lists what they find, one line a hit: service, ID of the "
            "release there, artist, title, year, label, catalogue number, barcode, country, medium. A service that "
            "fails is told and the others go on.\n\n"
            "A session is a folder with recorded answers. Its file session.tsv has a line for each: the address, the "
            "HTTP status, the content type and a file of the folder with the body, separated by tabs. In an address * "
            "stands for any text. The first line that fits answers; # begins a comment."_s);
        parser.addOptions({{u"barcode"_s, u"search by this barcode"_s, u"X"_s},
                           {u"catno"_s, u"search by this catalogue number"_s, u"X"_s},
                           {u"artist"_s, u"search by this artist"_s, u"A"_s},
                           {u"release"_s, u"search by this title; may stand with --artist"_s, u"R"_s}});
        AddDiscOptions(parser);
        parser.addOptions(
            {{u"package"_s, u"take the service definitions of this folder in place of yours"_s, u"DIR"_s},
             {u"service"_s, u"ask this service only"_s, u"NAME"_s},
             {u"details"_s, u"show the full record of each service's first hit"_s},
             {u"add"_s, u"store the first record that is found in this collection"_s, u"FILE"_s},
             {u"json"_s, u"print one array of objects, with --add one object"_s},
             {u"replay"_s, u"take the answers from the session in this folder; the network is not used"_s, u"DIR"_s},
             {u"record"_s, u"add the answers to the session in this folder; private keys are left out"_s, u"DIR"_s}});
    }

    void Run(const QCommandLineParser& parser) override
    {
        Arguments(parser, 0, 0);
        const TInfoGrabberSearchType type = TypeOf(parser);
        if (parser.isSet(u"replay"_s) && parser.isSet(u"record"_s))
            throw EUsageError(u"--replay and --record do not go together"_s);
        TInfoGrabber grabber;
        ReadDefinitions(parser, grabber);
        const std::vector<const TAction*> actions = ActionsOf(parser, grabber, type);
        const bool add = parser.isSet(u"add"_s);
        const auto collection = add ? OpenForWriting(parser.value(u"add"_s)) : nullptr;
        const TSearchWords words = WordsOf(parser);
        TSearchNetwork network(parser);
        TServiceSearch search(grabber, words, network);
        if (add)
            Add(parser, search, actions, collection->Data());
        else if (parser.isSet(u"details"_s))
            ShowDetails(parser, search, actions);
        else
            ListHits(parser, search, actions);
        if (const QString error = network.RecorderError(); !error.isEmpty())
            throw ECommandError(u"the session was not recorded whole: "_s + error);
    }

private:
    static TInfoGrabberSearchType TypeOf(const QCommandLineParser& parser)
    {
        for (const char16_t* word : {u"barcode", u"catno", u"artist", u"release", u"add", u"replay", u"record"}) {
            const QString option = QString::fromUtf16(word);
            if (parser.isSet(option) && parser.value(option).trimmed().isEmpty())
                throw EUsageError(u"--%1 is empty"_s.arg(option));
        }
        const bool artist = parser.isSet(u"artist"_s);
        const bool release = parser.isSet(u"release"_s);
        const bool disc = HasDiscOption(parser);
        const int kinds = int(parser.isSet(u"barcode"_s)) + int(parser.isSet(u"catno"_s)) + int(artist || release) +
                          int(parser.isSet(u"toc"_s)) + int(parser.isSet(u"device"_s));
        if (kinds != 1)
            throw EUsageError(u"one of --barcode, --catno, --artist and --release, --toc, --device is needed"_s);
        if (disc)
            return stCDDB;
        if (artist || release)
            return artist && release ? stArtistAndRelease : artist ? stArtist : stRelease;
        return parser.isSet(u"barcode"_s) ? stBarcode : stCatNo;
    }

    static TSearchWords WordsOf(const QCommandLineParser& parser)
    {
        TSearchWords words{.Barcode = CleanBarcode(parser.value(u"barcode"_s)),
                           .CatalogNo = parser.value(u"catno"_s).trimmed(),
                           .Artist = parser.value(u"artist"_s).trimmed(),
                           .Release = parser.value(u"release"_s).trimmed(),
                           .Disc = {}};
        if (HasDiscOption(parser)) {
            const TDiscTexts texts = DiscOfOptions(parser);
            words.Disc = TDiscWords{texts.DiscID, texts.TOC, texts.TOC_Microsoft, texts.TOC_DECIMAL};
        }
        return words;
    }

    static void ReadDefinitions(const QCommandLineParser& parser, TInfoGrabber& grabber)
    {
        const QString path = parser.isSet(u"package"_s)
                                 ? QDir(parser.value(u"package"_s)).filePath(u"infograbber.xml"_s)
                                 : Defaults().InfoGrabberPath;
        if (!QFileInfo(path).isFile())
            throw ECommandError(OneLine(u"there are no service definitions: %1 is missing"_s.arg(path)));
        try {
            grabber.Parse(path);
        } catch (const EInfoGrabberError& error) {
            throw ECommandError(
                OneLine(u"the service definitions %1 cannot be read: %2"_s.arg(path, QString::fromUtf8(error.what()))));
        }
    }

    static std::vector<const TAction*> ActionsOf(const QCommandLineParser& parser, const TInfoGrabber& grabber,
                                                 TInfoGrabberSearchType type)
    {
        std::vector<const TAction*> actions;
        QStringList names;
        const TInfoGrabberSearch* search = grabber.GetSearchByType(type);
        const QString wanted = parser.value(u"service"_s);
        for (int i = 0; search && i < search->Count(); ++i) {
            const TAction& action = search->GetItem(i);
            const TInfoGrabberService* service = grabber.InfoGrabberServices().GetServiceByName(action.Name());
            const QString shown = service ? service->DisplayName() : QString();
            names.append(action.Name());
            if (!parser.isSet(u"service"_s) || action.Name().compare(wanted, Qt::CaseInsensitive) == 0 ||
                (!shown.isEmpty() && shown.compare(wanted, Qt::CaseInsensitive) == 0))
                actions.push_back(&action);
        }
        names.removeDuplicates();
        if (names.isEmpty())
            throw ECommandError(u"no service takes part in this kind of search"_s);
        if (actions.empty())
            throw EUsageError(OneLine(u"no service %1; there are %2"_s.arg(wanted, names.join(u", "_s))));
        return actions;
    }

    static std::unique_ptr<TOpenCollection> OpenForWriting(const QString& path)
    {
        auto collection = std::make_unique<TOpenCollection>(path);
        if (collection->Data().IsReadOnly())
            throw ECommandError(OneLine(u"%1 cannot be written"_s.arg(path)));
        return collection;
    }

    static void ThrowIfAllFailed(const TServiceSearch& search)
    {
        if (search.AllFailed())
            throw ECommandError(u"no service could be asked with success"_s);
    }

    static void ListHits(const QCommandLineParser& parser, TServiceSearch& search,
                         const std::vector<const TAction*>& actions)
    {
        const bool json = parser.isSet(u"json"_s);
        QJsonArray array;
        for (const TAction* action : actions) {
            for (const auto& hit : search.Hits(*action)) {
                const QJsonObject object = HitToJson(action->Name(), *hit);
                array.append(object);
                if (!json)
                    PrintHit(object);
            }
            FlushOutput();
        }
        ThrowIfAllFailed(search);
        if (json)
            PrintJson(QJsonDocument(array));
        else if (array.isEmpty())
            TellSearch(u"nothing was found"_s);
    }

    static QJsonObject HitToJson(const QString& service, const TAlbumRelease& hit)
    {
        QJsonObject object{{u"service"_s, service}, {u"id"_s, hit.ReleaseInternalID}};
        for (const auto& [key, column] : HitColumns)
            object.insert(QString::fromUtf16(key), ToJson(hit.GetItem2(column)));
        QJsonArray pictures;
        for (const auto& picture : hit.Pictures)
            pictures.append(
                QJsonObject{{u"type"_s, PictureTypeName(picture->PictureType())}, {u"url"_s, picture->URL()}});
        object.insert(u"pictures"_s, pictures);
        return object;
    }

    static void PrintHit(const QJsonObject& hit)
    {
        QStringList cells{OneLine(hit[u"service"_s].toString()), OneLine(hit[u"id"_s].toString())};
        for (const auto& [key, column] : HitColumns)
            cells.append(OneLine(hit[QString::fromUtf16(key)].toVariant().toString()));
        PrintLine(cells.join(u'\t'));
    }

    static void ShowDetails(const QCommandLineParser& parser, TServiceSearch& search,
                            const std::vector<const TAction*>& actions)
    {
        const bool json = parser.isSet(u"json"_s);
        QJsonArray array;
        bool found = false;
        for (const TAction* action : actions) {
            const auto release = search.Record(*action);
            QJsonObject object = release ? ReleaseToJson(*release) : QJsonObject{{u"release"_s, QJsonValue::Null}};
            object.insert(u"service"_s, action->Name());
            if (!search.Failure().isEmpty())
                object.insert(u"error"_s, search.Failure());
            array.append(object);
            found = found || release;
            if (release && !json) {
                PrintLine(u"service\t"_s + OneLine(action->Name()));
                PrintRelease(object);
                FlushOutput();
            }
        }
        ThrowIfAllFailed(search);
        if (json)
            PrintJson(QJsonDocument(array));
        else if (!found)
            TellSearch(u"nothing was found"_s);
    }

    static void Add(const QCommandLineParser& parser, TServiceSearch& search,
                    const std::vector<const TAction*>& actions, TDataModuleMain& data)
    {
        std::unique_ptr<TAlbumRelease> release;
        QString service;
        for (const TAction* action : actions) {
            service = action->Name();
            release = search.Record(*action);
            if (release)
                break;
        }
        if (!release) {
            ThrowIfAllFailed(search);
            throw ECommandError(u"nothing was found"_s);
        }
        data.AddAlbumReleaseToDB(*release, false);
        const qint64 id = data.LastAddedReleaseID();
        const QString artist = VarToStr(release->GetItem2(Col::Artist));
        const QString title = VarToStr(release->GetItem2(Col::ReleaseName));
        QJsonObject details;
        if (parser.isSet(u"details"_s))
            details = ReleaseToJson(*release);
        details.insert(u"service"_s, service);
        if (parser.isSet(u"json"_s)) {
            details.insert(u"releaseId"_s, release->ReleaseInternalID);
            details.insert(u"id"_s, id);
            details.insert(u"artist"_s, artist);
            details.insert(u"title"_s, title);
            return PrintJson(QJsonDocument(details));
        }
        if (parser.isSet(u"details"_s)) {
            PrintLine(u"service\t"_s + OneLine(service));
            PrintRelease(details);
        }
        PrintLine(u"stored %1 %2"_s.arg(id).arg(OneLine(artist + u" - "_s + title)));
    }

    // Behind service and ID, in the order of the line.
    static constexpr std::pair<const char16_t*, TColumnName> HitColumns[] = {
        {u"artist", Col::Artist},       {u"title", Col::ReleaseName},   {u"year", Col::ReleaseYear},
        {u"label", Col::Label},         {u"catalogNo", Col::CatalogNO}, {u"barcode", Col::Barcode},
        {u"country", Col::CountryCode}, {u"mediaType", Col::MediaType}};
};

} // namespace

std::unique_ptr<TCommand> MakeSearchCommand() { return std::make_unique<TSearchCommand>(); }

} // namespace Kestrune
