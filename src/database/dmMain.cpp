// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"

#include "uArticles.h"
#include "uDefaults.h"
#include "uThreads.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

TFieldDef FieldOf(const TColumnDef& column, const QString& alias)
{
    TFieldDef field;
    field.Name = QString::fromLatin1(column.Name);
    field.Kind = column.Kind;
    field.Size = column.Size;
    field.LabelKey = QString::fromLatin1(column.LabelKey);
    field.Expression = u"%1.\"%2\""_s.arg(alias, field.Name);
    field.AutoIncrement = column.Flag == cfAutoIncrement;
    field.Required = column.Flag == cfRequired;
    return field;
}

std::vector<TFieldDef> FieldsOf(std::span<const TColumnDef> columns, const QString& alias)
{
    std::vector<TFieldDef> fields;
    for (const TColumnDef& column : columns)
        fields.push_back(FieldOf(column, alias));
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
    field.Name = u"Rating_Calc"_s;
    field.Kind = fkFloat;
    field.LabelKey = labelKey;
    return field;
}

constexpr int MapKeptFor = 10000; // milliseconds

const QString TracksCountSQL = QStringLiteral("(SELECT count(*) FROM Tracks2 WHERE ReleaseId = R.ID)");

TDatasetDef ReleasesMainDef()
{
    TDatasetDef def{u"qReleasesMain"_s, u"Releases2"_s, u"R.ID"_s, u"Releases2 R"_s, {}, {}, {}};
    for (const TColumnDef& column : ReleaseColumns()) {
        TFieldDef field = FieldOf(column, u"R"_s);
        if (field.Name.startsWith("LargePicture"_L1))
            continue;
        field.Lazy = field.Kind == fkBlob;
        def.Fields.push_back(std::move(field));
    }
    def.Fields.push_back(
        QueryField(u"TotalTracksCount"_s, fkInteger, TracksCountSQL, u"cSReleasesFieldTotalTracksCount"_s));
    def.Fields.push_back(QueryField(u"TotalTracksLength"_s, fkFloat,
                                    u"(SELECT sum(TrackLength) FROM Tracks2 WHERE ReleaseId = R.ID)"_s,
                                    u"cSReleasesFieldTotalTracksLength"_s));
    def.Fields.push_back(RatingCalcField(u"cSReleasesFieldRating"_s));
    def.Fields.push_back(QueryField(u"Release"_s, fkString, {}));
    return def;
}

TDatasetDef ReleaseInfoDef()
{
    TDatasetDef def{u"qReleaseInfo"_s,
                    u"Releases2"_s,
                    u"R.ID"_s,
                    u"Releases2 R LEFT JOIN Loans2 L ON L.ReleaseId = R.ID AND L.ReturnDate IS NULL"_s,
                    u"R.ID = ?"_s,
                    {},
                    FieldsOf(ReleaseColumns(), u"R"_s)};
    def.Fields.push_back(QueryField(u"TotalTracksCount"_s, fkInteger, TracksCountSQL));
    def.Fields.push_back(
        QueryField(u"TotalDiscCount"_s, fkInteger, u"(SELECT max(DiscNo) FROM Tracks2 WHERE ReleaseId = R.ID)"_s));
    def.Fields.push_back(QueryField(u"TotalTracksLength"_s, fkFloat,
                                    u"(SELECT ifnull(sum(TrackLength), 0.0) FROM Tracks2 WHERE ReleaseId = R.ID)"_s));
    def.Fields.push_back(QueryField(u"LoanedByFriendId"_s, fkInteger, u"L.FriendID"_s));
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
                    FieldsOf(TrackColumns(), u"T"_s)};
    def.Fields.push_back(RatingCalcField(u"cSTracksFieldRating"_s));
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
                    FieldsOf(TrackColumns(), u"T"_s)};
    def.Fields.push_back(RatingCalcField(u"cSTracksFieldRating"_s));
    for (const TColumnDef& column : ReleaseColumns()) {
        static const QStringList joined{u"Artist"_s,    u"ReleaseName"_s, u"ReleaseYear"_s, u"ReleaseDate"_s,
                                        u"MediaType"_s, u"No"_s,          u"Barcode"_s,     u"CatalogNO"_s};
        TFieldDef field = FieldOf(column, u"R"_s);
        if (!joined.contains(field.Name))
            continue;
        if (field.Name == "Artist"_L1)
            field.Name = u"ReleaseArtist"_s;
        field.ReadOnly = true;
        field.Required = false;
        def.Fields.push_back(std::move(field));
    }
    return def;
}

TDatasetDef ChildDef(const QString& name, const QString& table, std::span<const TColumnDef> columns,
                     const QString& parentColumn)
{
    const QString where = parentColumn.isEmpty() ? QString() : u"C.%1 = ?"_s.arg(parentColumn);
    return {name, table, u"C.ID"_s, table + u" C"_s, where, {}, FieldsOf(columns, u"C"_s)};
}

TDatasetDef StatsDef()
{
    const auto number = [](const QString& name, TFieldKind kind, const QString& sql) {
        return QueryField(name, kind, u'(' + sql + u')');
    };
    TDatasetDef def{u"qStats"_s, {}, u"S.ID"_s, u"(SELECT 1 AS ID) S"_s, {}, {}, {}};
    const QString discs = u"(SELECT max(ifnull(max(DiscNo), 1), 1) AS Discs FROM Tracks2 GROUP BY ReleaseId)"_s;
    def.Fields = {
        number(u"ReleaseCount"_s, fkInteger, u"SELECT count(*) FROM Releases2"_s),
        number(u"TotalTracksCount"_s, fkInteger, u"SELECT count(*) FROM Tracks2"_s),
        number(u"AvgTracksCount"_s, fkFloat,
               u"SELECT count(*) * 1.0 / nullif((SELECT count(*) FROM Releases2), 0) FROM Tracks2"_s),
        number(u"TotalDiscCount"_s, fkInteger, u"SELECT sum(Discs) FROM "_s + discs),
        number(u"AvgDiscCount"_s, fkFloat, u"SELECT avg(Discs) FROM "_s + discs),
        number(u"TotalPrice"_s, fkFloat, u"SELECT sum(Price) FROM Releases2"_s),
        number(u"AvgPrice"_s, fkFloat, u"SELECT avg(Price) FROM Releases2"_s),
        number(u"TotalTracksLength"_s, fkFloat, u"SELECT sum(TrackLength) FROM Tracks2"_s),
        number(u"AvgTracksLength"_s, fkFloat, u"SELECT avg(TrackLength) FROM Tracks2"_s),
        number(u"ReleasesOnLoan"_s, fkInteger,
               u"SELECT count(DISTINCT ReleaseId) FROM Loans2 WHERE ReturnDate IS NULL"_s),
    };
    return def;
}

} // namespace

TDataModuleMain::TDataModuleMain(TPrompt& prompt)
    : qReleasesMain(FConnection, ReleasesMainDef()),
      qTracksAll(FConnection, TracksAllDef()),
      qReleaseInfo(FConnection, ReleaseInfoDef()),
      qTracksDetail(FConnection, TracksDetailDef()),
      qMusiciansPerRelease(FConnection,
                           ChildDef(u"qMusiciansPerRelease"_s, u"Musicians2"_s, MusicianColumns(), u"ReleaseId"_s)),
      qMusiciansPerTrack(FConnection,
                         ChildDef(u"qMusiciansPerTrack"_s, u"Musicians2"_s, MusicianColumns(), u"TrackId"_s)),
      qOtherPictures(FConnection,
                     ChildDef(u"qOtherPictures"_s, u"OtherPictures2"_s, OtherPictureColumns(), u"ReleaseId"_s)),
      qFriends(FConnection, ChildDef(u"qFriends"_s, u"Friends2"_s, FriendColumns(), {})),
      qLoans(FConnection, ChildDef(u"qLoans"_s, u"Loans2"_s, LoanColumns(), {})),
      qStats(FConnection, StatsDef()),
      FPrompt(prompt)
{
    qTracksDetail.SetMaster(&qReleasesMain);
    qMusiciansPerRelease.SetMaster(&qReleasesMain);
    SetRules();
    FConnection.SetLockWait(FLockWait);
    FConnection.OnLocksGone = [this] { RestoreLocks(); };
    // Pages that a scan has mapped count as memory of the process, but mapping them again is what a scan waits for:
    // they go when no filter or sort has followed for a while.
    FMapTimer.setSingleShot(true);
    FMapTimer.setInterval(MapKeptFor);
    connect(&FMapTimer, &QTimer::timeout, this, [this] { FConnection.ReleaseFileMap(); });
    for (const TListDataset* list : {&qReleasesMain, &qTracksAll})
        connect(list, &TDataset::dataReset, &FMapTimer, qOverload<>(&QTimer::start));
}

TDataModuleMain::~TDataModuleMain() = default;

void TDataModuleMain::SetLockWait(int milliseconds)
{
    FLockWait = milliseconds;
    FConnection.SetLockWait(milliseconds);
}

std::vector<TDataset*> TDataModuleMain::AllCursors()
{
    return {&qFriends,      &qLoans,     &qReleasesMain,        &qOtherPictures,
            &qTracksDetail, &qTracksAll, &qMusiciansPerRelease, &qMusiciansPerTrack,
            &qReleaseInfo,  &qStats};
}

void TDataModuleMain::ExecSQL(const QString& sql)
{
    Q_ASSERT(OnMainThread());
    FConnection.Exec(sql);
}

qint64 TDataModuleMain::ExecSQLAndGetID(const QString& sql)
{
    Q_ASSERT(OnMainThread());
    TSQLiteStatement query = FConnection.Prepare(sql);
    return query.Step() && !query.ColumnIsNull(0) ? query.ColumnInt64(0) : -1;
}

qint64 TDataModuleMain::RunQuery(const QString& sql, bool canWrite, const std::function<bool()>& progress,
                                 const std::function<void(TSQLiteStatement& row, bool first)>& receive)
{
    Q_ASSERT(OnMainThread());
    // `progress` may serve events, and those read the collection: not on a connection within one of its steps.
    TSQLiteConnection connection;
    connection.Open(FConnection.Path(),
                    canWrite || FConnection.Mode() == somImmutable ? FConnection.Mode() : somReadOnly);
    connection.TextRules().Articles = FConnection.TextRules().Articles;
    connection.Exec(u"PRAGMA foreign_keys = ON"_s);
    if (!canWrite)
        return connection.RunScript(sql, false, progress, receive);
    connection.OnChange = FConnection.OnChange;
    TSQLiteTransaction transaction(connection);
    const qint64 changed = connection.RunScript(sql, true, progress, receive);
    transaction.Commit();
    return changed;
}

void TDataModuleMain::StartTransaction()
{
    if (!FConnection.InTransaction())
        FConnection.Exec(u"BEGIN"_s);
}

void TDataModuleMain::CommitTransaction()
{
    if (FConnection.InTransaction())
        FConnection.Exec(u"COMMIT"_s);
}

void TDataModuleMain::RollbackTransaction()
{
    if (FConnection.InTransaction())
        FConnection.Exec(u"ROLLBACK"_s);
}

void TDataModuleMain::PostIfApplicable(TDataset& dataSet)
{
    if (dataSet.State() == dsEdit || dataSet.State() == dsInsert)
        dataSet.Post();
}

void TDataModuleMain::CancelIfApplicable(TDataset& dataSet)
{
    if (dataSet.State() == dsEdit || dataSet.State() == dsInsert)
        dataSet.Cancel();
}

void TDataModuleMain::EditIfApplicable(TDataset& dataSet)
{
    if (dataSet.State() == dsBrowse && dataSet.RecNo() >= 0)
        dataSet.Edit();
}

void TDataModuleMain::DisableControlsAll()
{
    for (TDataset* cursor : AllCursors())
        cursor->DisableControls();
}

void TDataModuleMain::EnableControlsAll()
{
    for (TDataset* cursor : AllCursors())
        cursor->EnableControls();
}

void TDataModuleMain::RefreshAll()
{
    qReleasesMain.DisableControls();
    qTracksAll.DisableControls();
    for (TDataset* cursor : AllCursors())
        cursor->Refresh();
    qTracksAll.EnableControls();
    qReleasesMain.EnableControls();
}

void TDataModuleMain::ApplyArticleSettings()
{
    const TDefaults& settings = Defaults();
    FConnection.TextRules().Articles = settings.ArticlesList;
    QStringList columns;
    if (settings.ArticlesEnabled && settings.ArticlesSortWithout) {
        if (settings.ArticlesFieldArtist)
            columns << u"Artist"_s << u"ReleaseArtist"_s;
        if (settings.ArticlesFieldReleaseName)
            columns << u"ReleaseName"_s;
    }
    qReleasesMain.SetArticleColumns(columns);
    qTracksAll.SetArticleColumns(columns);
}

QString TDataModuleMain::DisplayText(const QString& fieldName, const QString& text)
{
    const TDefaults& settings = Defaults();
    const bool covered = (fieldName == "Artist"_L1 && settings.ArticlesFieldArtist) ||
                         (fieldName == "ReleaseName"_L1 && settings.ArticlesFieldReleaseName);
    return settings.ArticlesEnabled && covered
               ? ApplyArticleDisplay(text, settings.ArticlesList, settings.ArticlesDisplayMode)
               : text;
}

double TDataModuleMain::SumTrackLengths(qint64 from, qint64 to, qint64& count)
{
    TSQLiteStatement& query =
        FConnection.Cached(u"SELECT count(*), total(TrackLength) FROM Tracks2 WHERE ID > ? AND ID <= ?"_s);
    query.BindAll({from, to});
    query.Step();
    count += query.ColumnInt64(0);
    const double days = query.Column(1).toDouble();
    query.Reset();
    return days;
}

qint64 TDataModuleMain::LastTrackID() { return FConnection.Scalar(u"SELECT max(ID) FROM Tracks2"_s).toLongLong(); }

void TDataModuleMain::BindChildren(qint64 hidden)
{
    TDataset* master = hidden == 0 ? &qReleasesMain : nullptr;
    for (TDetailDataset* children : {&qTracksDetail, &qMusiciansPerRelease}) {
        if (children->Master() != master)
            children->SetMaster(master);
        if (!master)
            children->SetParam(hidden);
    }
}

void TDataModuleMain::SelectRelease(qint64 id)
{
    // A release that the filter hides has no place in the list: then its children are asked for by its key.
    BindChildren(qReleasesMain.Locate(id) ? 0 : id);
    qReleaseInfo.SetParam(id);
    qReleaseInfo.First();
    qOtherPictures.SetParam(id);
}

} // namespace Kestrune
