// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDatasetDefs.h"

#include "uColumnNames.h"
#include "uDefaults.h"
#include "uReleaseCursors.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

using TCustom = TCustomFieldDefs TDefaults::*;

TFieldDef FieldOf(const TColumnDef& column, const QString& alias, TCustom custom = nullptr)
{
    TFieldDef field;
    field.Name = column.Name;
    field.Kind = column.Kind;
    field.Size = column.Size;
    field.LabelKey = QString::fromLatin1(column.LabelKey);
    field.Expression = u"%1.\"%2\""_s.arg(alias, field.Name);
    field.AutoIncrement = column.Flag == cfAutoIncrement;
    field.Required = column.Flag == cfRequired;
    if (field.Name.startsWith("Custom"_L1))
        field.Custom = custom;
    return field;
}

std::vector<TFieldDef> FieldsOf(std::span<const TColumnDef> columns, const QString& alias, TCustom custom = nullptr)
{
    std::vector<TFieldDef> fields;
    for (const TColumnDef& column : columns)
        fields.push_back(FieldOf(column, alias, custom));
    return fields;
}

TFieldDef QueryField(const QString& name, TFieldKind kind, const QString& expression, const QString& labelKey = {})
{
    TFieldDef field;
    field.Name = name;
    field.Kind = kind;
    field.LabelKey = labelKey;
    field.Expression = expression;
    field.ReadOnly = true;
    return field;
}

// Computed from other fields of the record; the user edits it in place of `Rating`.
TFieldDef RatingCalcField(const QString& labelKey)
{
    TFieldDef field;
    field.Name = Col::Rating_Calc;
    field.Kind = fkFloat;
    field.LabelKey = labelKey;
    return field;
}

const QString TracksCountSQL = QStringLiteral("(SELECT count(*) FROM Tracks2 WHERE ReleaseId = R.ID)");

TDatasetDef ReleaseInfoDef()
{
    TDatasetDef def{u"qReleaseInfo"_s,
                    u"Releases2"_s,
                    u"R.ID"_s,
                    u"Releases2 R LEFT JOIN Loans2 L ON L.ReleaseId = R.ID AND L.ReturnDate IS NULL"_s,
                    u"R.ID = ?"_s,
                    {},
                    FieldsOf(ReleaseColumns(), u"R"_s, &TDefaults::ReleaseFields),
                    {},
                    {},
                    {}};
    def.Fields.push_back(QueryField(Col::TotalTracksCount, fkInteger, TracksCountSQL));
    def.Fields.push_back(
        QueryField(Col::TotalDiscCount, fkInteger, u"(SELECT max(DiscNo) FROM Tracks2 WHERE ReleaseId = R.ID)"_s));
    def.Fields.push_back(QueryField(Col::TotalTracksLength, fkFloat,
                                    u"(SELECT ifnull(sum(TrackLength), 0.0) FROM Tracks2 WHERE ReleaseId = R.ID)"_s));
    def.Fields.push_back(QueryField(Col::LoanedByFriendId, fkInteger, u"L.FriendID"_s));
    def.Fields.push_back(RatingCalcField(u"cSReleasesFieldRating"_s));
    return def;
}

TDatasetDef TracksDetailDef()
{
    TDatasetDef def{u"qTracksDetail"_s,
                    u"Tracks2"_s,
                    u"T.ID"_s,
                    u"Tracks2 T"_s,
                    u"T.ReleaseId = ?"_s,
                    u"T.DiscNo, T.TrackNo, T.ID"_s,
                    FieldsOf(TrackColumns(), u"T"_s, &TDefaults::TrackFields),
                    u"Track"_s,
                    Col::TrackTitle,
                    Col::ReleaseId};
    def.Fields.push_back(RatingCalcField(u"cSTracksFieldRating"_s));
    return def;
}

TDatasetDef ChildDef(const QString& name, const QString& table, std::span<const TColumnDef> columns,
                     const QString& parentColumn)
{
    const QString where = parentColumn.isEmpty() ? QString() : u"C.%1 = ?"_s.arg(parentColumn);
    return {name, table, u"C.ID"_s, table + u" C"_s, where, {}, FieldsOf(columns, u"C"_s), {}, {}, {}};
}

} // namespace

TDatasetDef ReleasesMainDef()
{
    TDatasetDef def{u"qReleasesMain"_s, u"Releases2"_s,   u"R.ID"_s, u"Releases2 R"_s, {}, {}, {},
                    u"Release"_s,       Col::ReleaseName, Col::ID};
    for (const TColumnDef& column : ReleaseColumns()) {
        TFieldDef field = FieldOf(column, u"R"_s, &TDefaults::ReleaseFields);
        if (field.Name.startsWith(Col::LargePicture))
            continue;
        field.Lazy = field.Kind == fkBlob;
        def.Fields.push_back(std::move(field));
    }
    def.Fields.push_back(
        QueryField(Col::TotalTracksCount, fkInteger, TracksCountSQL, u"cSReleasesFieldTotalTracksCount"_s));
    def.Fields.push_back(QueryField(Col::TotalTracksLength, fkFloat,
                                    u"(SELECT sum(TrackLength) FROM Tracks2 WHERE ReleaseId = R.ID)"_s,
                                    u"cSReleasesFieldTotalTracksLength"_s));
    def.Fields.push_back(RatingCalcField(u"cSReleasesFieldRating"_s));
    def.Fields.push_back(QueryField(u"Release"_s, fkString, {}));
    return def;
}

TDatasetDef TracksAllDef()
{
    TDatasetDef def{u"qTracksAll"_s,
                    u"Tracks2"_s,
                    u"T.ID"_s,
                    u"Tracks2 T LEFT JOIN Releases2 R ON R.ID = T.ReleaseId"_s,
                    {},
                    {},
                    FieldsOf(TrackColumns(), u"T"_s, &TDefaults::TrackFields),
                    u"Track"_s,
                    Col::TrackTitle,
                    Col::ReleaseId};
    def.Fields.push_back(RatingCalcField(u"cSTracksFieldRating"_s));
    for (const TColumnDef& column : ReleaseColumns()) {
        static const QStringList joined{Col::Artist,    Col::ReleaseName, Col::ReleaseYear, Col::ReleaseDate,
                                        Col::MediaType, Col::No,          Col::Barcode,     Col::CatalogNO};
        TFieldDef field = FieldOf(column, u"R"_s);
        if (!joined.contains(field.Name))
            continue;
        if (field.Name == Col::Artist)
            field.Name = Col::ReleaseArtist;
        field.ReadOnly = true;
        field.Required = false;
        def.Fields.push_back(std::move(field));
    }
    return def;
}

TDatasetDef FriendsDef() { return ChildDef(u"qFriends"_s, u"Friends2"_s, FriendColumns(), {}); }

TDatasetDef LoansDef() { return ChildDef(u"qLoans"_s, u"Loans2"_s, LoanColumns(), {}); }

TDatasetDef StatsDef()
{
    const auto number = [](const QString& name, TFieldKind kind, const QString& sql) {
        return QueryField(name, kind, u'(' + sql + u')');
    };
    TDatasetDef def{u"qStats"_s, {}, u"S.ID"_s, u"(SELECT 1 AS ID) S"_s, {}, {}, {}, {}, {}, {}};
    const QString discs = u"(SELECT max(ifnull(max(DiscNo), 1), 1) AS Discs FROM Tracks2 GROUP BY ReleaseId)"_s;
    def.Fields = {
        number(Col::ReleaseCount, fkInteger, u"SELECT count(*) FROM Releases2"_s),
        number(Col::TotalTracksCount, fkInteger, u"SELECT count(*) FROM Tracks2"_s),
        number(Col::AvgTracksCount, fkFloat,
               u"SELECT count(*) * 1.0 / nullif((SELECT count(*) FROM Releases2), 0) FROM Tracks2"_s),
        number(Col::TotalDiscCount, fkInteger, u"SELECT sum(Discs) FROM "_s + discs),
        number(Col::AvgDiscCount, fkFloat, u"SELECT avg(Discs) FROM "_s + discs),
        number(Col::TotalPrice, fkFloat, u"SELECT sum(Price) FROM Releases2"_s),
        number(Col::AvgPrice, fkFloat, u"SELECT avg(Price) FROM Releases2"_s),
        number(Col::TotalTracksLength, fkFloat, u"SELECT sum(TrackLength) FROM Tracks2"_s),
        number(Col::AvgTracksLength, fkFloat, u"SELECT avg(TrackLength) FROM Tracks2"_s),
        number(Col::ReleasesOnLoan, fkInteger,
               u"SELECT count(DISTINCT ReleaseId) FROM Loans2 WHERE ReturnDate IS NULL"_s),
    };
    return def;
}

TReleaseCursors::TReleaseCursors(TSQLiteConnection& connection)
    : Info(connection, ReleaseInfoDef()),
      Tracks(connection, TracksDetailDef()),
      Credits(connection, ChildDef(u"qMusiciansPerRelease"_s, u"Musicians2"_s, MusicianColumns(), Col::ReleaseId)),
      TrackCredits(connection, ChildDef(u"qMusiciansPerTrack"_s, u"Musicians2"_s, MusicianColumns(), Col::TrackId)),
      Pictures(connection, ChildDef(u"qOtherPictures"_s, u"OtherPictures2"_s, OtherPictureColumns(), Col::ReleaseId))
{}

void TReleaseCursors::Select(qint64 release)
{
    Info.SetParam(release);
    if (Info.State() == dsBrowse)
        Info.First();
    Pictures.SetParam(release);
    for (TDetailDataset* children : {&Tracks, &Credits})
        if (!children->Master())
            children->SetParam(release);
}

void TReleaseCursors::SelectNew(qint64 release)
{
    for (TDetailDataset* children : {&Tracks, &Credits, &Pictures})
        children->SetParamOfNew(release);
}

} // namespace Kestrune
