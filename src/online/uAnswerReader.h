// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uDownloadQueue.h"
#include "uObjs.h"
#include "uXml.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

namespace Kestrune {

class TInfoGrabber;
class TInfoGrabberServiceAction;

using TAlbumReleases = std::vector<std::unique_ptr<TAlbumRelease>>;

/// Why an answer is of no use.
enum class TAnswerFault : quint8 { afNone, afNotUnderstood, afTooLarge };
using enum TAnswerFault;

/// The search result document that a stylesheet made of an answer.
struct TAnswerDocument {
    std::optional<TXmlDocument> Document;
    std::vector<TXmlElement> Releases; ///< the `Release` elements of the document
    bool IsTransformed = false;        ///< its stylesheet could be applied
    /// The service says that it knows nothing of what was asked for (`SearchResults` has unknown="true").
    bool IsUnknown = false;
    TAnswerFault Fault = afNone;
    QString Reason; ///< of the fault, in words for the log
};

/// Reads the answer to one request: JSON becomes XML, the stylesheet of the action makes a search result document of
/// it, and that is parsed. A value, for any thread; what it costs is bounded, but not small.
class TAnswerReader {
public:
    TAnswerReader(const TInfoGrabber& grabber, const TInfoGrabberServiceAction& action, const QString& requestURL);

    /// The answer as it came, in UTF-8.
    TAnswerDocument Read(const QByteArray& answer) const;
    /// The answer of a JSON service after its conversion, or the XML of another. `given` is what is wrong with it
    /// already.
    TAnswerDocument ReadXML(const QByteArray& xml, TAnswerFault given = afNone, const QString& reason = {}) const;
    /// The first releases of a document, with the addresses of their pictures made absolute.
    TAlbumReleases Load(const TAnswerDocument& document, size_t most) const;
    /// Loads one over a release that is there, as a full record over its hit.
    void LoadOnto(TAlbumRelease& release, const TXmlElement& node) const;

private:
    QString FFolder, FStylesheet, FRequestURL;
    bool FJSON;
};

/// An answer that was read, for who asked for it.
class TReadAnswer final : public TMessageObject {
public:
    TAnswerDocument Document;
    TAlbumReleases Releases; ///< as many as were asked for
};

/// What goes with a request whose answer is read on the thread of its job.
class TReadRequest : public TAnswerRequest {
public:
    explicit TReadRequest(TAnswerReader reader, size_t mostReleases = 0)
        : Reader(std::move(reader)), MostReleases(mostReleases)
    {}
    std::unique_ptr<TMessageObject> Read(const TTextAnswer& text, bool isRefusal) const override;

    TAnswerReader Reader;
    size_t MostReleases; ///< that are loaded; 0 leaves it to the receiver
};

/// The `Release` elements of a search result document: below `SearchResults`, which is the root or a child of it.
/// False when there is no `SearchResults`.
bool FindReleases(const TXmlDocument& document, std::vector<TXmlElement>& releases, bool* isUnknown = nullptr);

/// Gives pictures whose address is relative the address that it means beside the request (RFC 3986, section 5.2).
void ResolvePictureURLs(TAlbumRelease& release, const QString& requestURL);

} // namespace Kestrune
