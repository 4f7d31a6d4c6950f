// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uColumnNames.h"
#include "uCommand.h"
#include "uListOptions.h"
#include "uReleaseText.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// All fields of a record but pictures, by column name.
QJsonObject RecordToJson(const TDataset& cursor, int row)
{
    QJsonObject object;
    for (int i = 0; i < static_cast<int>(cursor.Fields().size()); ++i) {
        const TFieldDef& field = cursor.Fields()[static_cast<size_t>(i)];
        if (field.Kind != fkBlob)
            object.insert(field.Name, ToJson(cursor.ValueAt(row, i)));
    }
    return object;
}

QJsonArray RecordsToJson(const TDataset& cursor)
{
    QJsonArray array;
    for (int row = 0; row < cursor.RecordCount(); ++row)
        array.append(RecordToJson(cursor, row));
    return array;
}

class TListCommand final : public TCommand {
public:
    QString Name() const override { return u"list"_s; }
    QString Summary() const override { return u"list the releases or tracks of a collection"_s; }
    void Describe(QCommandLineParser& parser) const override
    {
        parser.addPositionalArgument(u"FILE"_s, u"the collection"_s);
        AddListOptions(parser);
        parser.addOptions({{u"limit"_s, u"at most this many rows"_s, u"N"_s},
                           {u"json"_s, u"print an array of objects by column name"_s}});
    }

    void Run(const QCommandLineParser& parser) override
    {
        TOpenCollection collection(Arguments(parser, 1, 1).front());
        const bool tracks = parser.isSet(u"tracks"_s);
        TListDataset& list = OpenList(parser, collection.Data());
        const int count = RowCount(parser, list);
        if (parser.isSet(u"json"_s))
            PrintRowsAsJson(list, count);
        else
            PrintRows(list, count, tracks);
    }

private:
    static int RowCount(const QCommandLineParser& parser, const TDataset& list)
    {
        if (!parser.isSet(u"limit"_s))
            return list.RecordCount();
        bool ok = false;
        const int limit = parser.value(u"limit"_s).toInt(&ok);
        if (!ok || limit < 0)
            throw EUsageError(u"--limit takes a number"_s);
        return std::min(limit, list.RecordCount());
    }

    // Written row by row: a large collection is never held as one document.
    static void PrintRowsAsJson(const TDataset& list, int count)
    {
        PrintLine(u"["_s);
        for (int row = 0; row < count; ++row) {
            const QByteArray object = QJsonDocument(RecordToJson(list, row)).toJson(QJsonDocument::Compact);
            PrintLine(QString::fromUtf8(object) + (row + 1 < count ? u","_s : QString()));
        }
        PrintLine(u"]"_s);
    }

    static void PrintRows(const TDataset& list, int count, bool tracks)
    {
        const QStringList columns =
            tracks ? QStringList{Col::ID, Col::Artist, Col::TrackTitle, Col::ReleaseName, Col::TrackNo}
                   : QStringList{Col::ID, Col::Artist, Col::ReleaseName, Col::ReleaseYear, Col::TotalTracksCount};
        for (int row = 0; row < count; ++row) {
            QStringList cells;
            for (const QString& column : columns)
                cells << OneLine(VarToStr(list.ValueAt(row, list.FieldIndex(column))));
            PrintLine(cells.join(u'\t'));
        }
    }
};

class TShowCommand final : public TCommand {
public:
    QString Name() const override { return u"show"_s; }
    QString Summary() const override { return u"show one release with its tracks, credits and pictures"_s; }
    void Describe(QCommandLineParser& parser) const override
    {
        parser.addPositionalArgument(u"FILE"_s, u"the collection"_s);
        parser.addPositionalArgument(u"ID"_s, u"the ID of the release"_s);
        parser.addOption({u"json"_s, u"print one JSON object"_s});
    }
    void Run(const QCommandLineParser& parser) override
    {
        const QStringList arguments = Arguments(parser, 2, 2);
        bool ok = false;
        const qint64 id = arguments[1].toLongLong(&ok);
        if (!ok)
            throw EUsageError(u"ID is a number"_s);
        TOpenCollection collection(arguments[0]);
        TDataModuleMain& data = collection.Data();
        TReleaseCursors& release = data.ReadRelease(id);
        if (release.Info.IsEmpty())
            throw ECommandError(u"there is no release %1"_s.arg(id));
        const QJsonObject object{{u"release"_s, RecordToJson(release.Info, 0)},
                                 {u"tracks"_s, Tracks(release)},
                                 {u"credits"_s, RecordsToJson(release.Credits)},
                                 {u"pictures"_s, Pictures(release)},
                                 {u"loans"_s, Loans(data, id)}};
        if (parser.isSet(u"json"_s))
            PrintJson(QJsonDocument(object));
        else
            PrintText(object);
    }

private:
    static QJsonArray Tracks(TReleaseCursors& release)
    {
        QJsonArray tracks;
        for (int row = 0; row < release.Tracks.RecordCount(); ++row) {
            QJsonObject track = RecordToJson(release.Tracks, row);
            release.TrackCredits.SetParam(release.Tracks.KeyAt(row));
            track.insert(u"credits"_s, RecordsToJson(release.TrackCredits));
            tracks.append(track);
        }
        return tracks;
    }

    static QJsonArray Pictures(TReleaseCursors& release)
    {
        QJsonArray pictures;
        for (const auto& picture : TDataModuleMain::ToAlbumRelease(release).Pictures)
            pictures.append(PictureToJson(*picture));
        return pictures;
    }

    static QJsonArray Loans(TDataModuleMain& data, qint64 id)
    {
        QJsonArray loans;
        const int release = data.qLoans.FieldIndex(Col::ReleaseId);
        for (int row = 0; row < data.qLoans.RecordCount(); ++row) {
            if (data.qLoans.ValueAt(row, release).toLongLong() == id)
                loans.append(RecordToJson(data.qLoans, row));
        }
        return loans;
    }

    static void PrintText(const QJsonObject& object)
    {
        const QJsonObject release = object[u"release"_s].toObject();
        for (auto field = release.begin(); field != release.end(); ++field) {
            if (!field.value().isNull())
                PrintLine(u"%1\t%2"_s.arg(field.key(), field.value().toVariant().toString()));
        }
        for (const QJsonValue& track : object[u"tracks"_s].toArray()) {
            const double seconds = std::nearbyint(track[Col::TrackLength].toDouble() * 86400.0);
            PrintLine(u"track\t%1.%2\t%3\t%4"_s.arg(track[Col::DiscNo].toInt())
                          .arg(track[Col::TrackNo].toInt())
                          .arg(track[Col::TrackTitle].toString())
                          .arg(seconds));
        }
        for (const QJsonValue& credit : object[u"credits"_s].toArray())
            PrintLine(u"credit\t%1\t%2"_s.arg(credit[Col::Musician].toString(), credit[Col::Instrument].toString()));
        for (const QJsonValue& picture : object[u"pictures"_s].toArray())
            PrintLine(u"picture\t%1\t%2 x %3\t%4 bytes"_s.arg(picture[u"type"_s].toString())
                          .arg(picture[u"width"_s].toInt())
                          .arg(picture[u"height"_s].toInt())
                          .arg(picture[u"bytes"_s].toInt()));
    }
};

} // namespace

std::unique_ptr<TCommand> MakeListCommand() { return std::make_unique<TListCommand>(); }
std::unique_ptr<TCommand> MakeShowCommand() { return std::make_unique<TShowCommand>(); }

} // namespace Kestrune
