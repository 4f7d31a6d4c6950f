// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uHttpClient.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QString>
#include <QStringList>

#include <functional>
#include <mutex>
#include <stdexcept>
#include <vector>

namespace Kestrune {

// A session is a folder with answers of services and the file session.tsv, in UTF-8. Each line of it is one answer, its
// columns separated by tabs:
//
//     address    status    content type    file
//
// The address is the one that is asked for, or a pattern in which "*" stands for any text, also an empty one. Status is
// the HTTP status. The file has the body and lies in the folder or below it; the last two columns may be left out, the
// body is then empty. Empty lines and lines with "#" in front are passed over. The first line that fits answers,
// however often it is asked for.

/// A session that cannot be read or written.
class ESessionError : public std::runtime_error {
public:
    explicit ESessionError(const QString& text) : std::runtime_error(text.toStdString()) {}
};

/// Bounds of a session; what is beyond them is refused.
inline constexpr qint64 MaxSessionBytes = 4 * 1024 * 1024; ///< of session.tsv
inline constexpr qsizetype MaxSessionLines = 10'000;
inline constexpr qsizetype MaxSessionLine = 16 * 1024; ///< bytes of a line
inline constexpr qint64 MaxSessionBody = 64 * 1024 * 1024;

/// Puts "*" in the place of what a session must not hold: private keys, and what differs from run to run.
class TSessionMask {
public:
    /// Knows the keys of the product identity. Main thread.
    TSessionMask();
    /// One more text.
    void Add(const QString& value);
    /// An address in its encoded form; times of requests are taken out as well.
    QByteArray MaskURL(QByteArray url) const;
    /// A text that was answered. Short keys stay: they may be any word.
    QByteArray MaskBody(QByteArray body) const;

private:
    QByteArrayList FValues;  // as they are, longest first
    QByteArrayList FEncoded; // as addresses have them, longest first
};

/// Answers requests from a session.
class TSessionPlayer final : public THttpStandIn {
public:
    /// Reads session.tsv; throws ESessionError with the line that is at fault. Main thread.
    explicit TSessionPlayer(const QString& folder);
    /// A request that no line fits is answered with 404.
    THttpAnswer Answer(const THttpRequest& request, QByteArray& body) override;

    /// Told the address of such a request, without private keys, on the thread of the request.
    std::function<void(const QString& url)> OnMissing;

private:
    struct TLine {
        QByteArrayList Parts; // of the address, between its "*"
        int Status = 200;
        QString ContentType;
        QString File;
    };
    static TLine ParseLine(const QString& folder, const QString& text);

    QString FFolder;
    std::vector<TLine> FLines;
    TSessionMask FMask;
};

/// Writes what the network answers into a session, answer by answer. A folder that is one already is added to: the
/// answer to an address takes the place of an older one.
class TSessionRecorder final : public THttpObserver {
public:
    /// Makes the folder; throws ESessionError. Main thread.
    explicit TSessionRecorder(const QString& folder);
    void Answered(const THttpRequest& request, const THttpAnswer& answer, const QByteArray& body) override;

    /// One more text that becomes "*" in addresses, for instance a signature. Any thread.
    void Hide(const QString& value);
    /// Why an answer could not be written, or empty. Any thread.
    QString Error() const;

private:
    void Write(const THttpRequest& request, const THttpAnswer& answer, const QByteArray& body);

    QString FFolder;
    mutable std::mutex FLock;
    TSessionMask FMask;
    QStringList FLines;
    QString FError;
};

} // namespace Kestrune
