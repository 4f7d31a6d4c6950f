// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDetailView.h"

#include "dmMain.h"
#include "uColumnNames.h"
#include "uDefaults.h"
#include "uFieldEditors.h"
#include "uFieldText.h"
#include "uFieldValues.h"
#include "uTHStrings.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

bool HoldsDefault(const QString& column, const TVariant& value)
{
    const TVariant given = ApplyDefaultValue({}, column);
    return !VarIsNull(value) && !VarIsNull(given) && VarToStr(value) == VarToStr(given);
}

std::vector<TDetailSection> Sections(TDataModuleMain& data, const TDetailDataset& info)
{
    const QString currency = VarToStr(info.Value(Col::Currency));
    std::vector<TDetailSection> sections;
    for (const TFieldSection kind : {fsGeneral, fsPurchase, fsClassical, fsCustom, fsComments}) {
        TDetailSection section{SectionId(kind), GetLanguageString(SectionTitleKey(kind)), {}};
        for (const TFieldInfo& row : FieldTable()) {
            const int index = row.Section == kind ? info.FieldIndex(row.Column) : -1;
            if (index < 0 || !IsFieldShown(info.Fields()[static_cast<size_t>(index)], Defaults()))
                continue;
            const TFieldDef& field = info.Fields()[static_cast<size_t>(index)];
            const TVariant value = info.Value(index);
            const bool off = field.Kind == fkBoolean && !VarToBool(value);
            section.Fields.push_back({field.Name, ColumnLabel(field, Defaults()),
                                      off ? QString() : FieldText(data, field, value, currency),
                                      LinkOfField(field.Name, VarToStr(value)), HoldsDefault(field.Name, value)});
        }
        sections.push_back(std::move(section));
    }
    return sections;
}

std::vector<TDetailTrackRow> TrackRows(const TDetailDataset& tracks, const QString& releaseArtist)
{
    const auto at = [&](int row, const QString& name) { return tracks.ValueAt(row, tracks.FieldIndex(name)); };
    std::vector<TDetailTrackRow> rows;
    for (int row = 0; row < tracks.RecordCount(); ++row) {
        const QString artist = VarToStr(at(row, Col::Artist));
        rows.push_back({at(row, Col::DiscNo).toInt(), VarToStr(at(row, Col::Side)), at(row, Col::TrackNo).toInt(),
                        VarToStr(at(row, Col::TrackTitle)), artist == releaseArtist ? QString() : artist,
                        at(row, Col::TrackLength).toDouble()});
    }
    return rows;
}

// "A1" on a side, "2.05" among several discs, "5" else. Numbers that run on over the sides of a disc count from the
// first of their side.
QString Position(const TDetailTrackRow& track, int firstOfSide, bool severalDiscs)
{
    if (!track.Side.isEmpty())
        return track.Side + QString::number(firstOfSide > 1 ? track.TrackNo - firstOfSide + 1 : track.TrackNo);
    return severalDiscs ? u"%1.%2"_s.arg(track.DiscNo).arg(track.TrackNo, 2, 10, QChar(u'0'))
                        : QString::number(track.TrackNo);
}

QString DiscHeading(const TDetailTrackRow& track, bool severalDiscs)
{
    QStringList parts;
    if (severalDiscs)
        parts << GetLanguageString(u"cSDiscFmt"_s).replace(u"%d"_s, QString::number(track.DiscNo));
    if (!track.Side.isEmpty())
        parts << GetLanguageString(u"cSSideFmt"_s).replace(u"%s"_s, track.Side);
    return parts.join(u" · "_s);
}

} // namespace

void AddDetailTracks(TDetailData& detail, const std::vector<TDetailTrackRow>& rows)
{
    const bool severalDiscs =
        std::ranges::any_of(rows, [&](const TDetailTrackRow& row) { return row.DiscNo != rows.front().DiscNo; });
    double total = 0.0;
    std::vector<double> lengths;
    const TDetailTrackRow* before = nullptr;
    int firstOfSide = 0;
    for (const TDetailTrackRow& row : rows) {
        if (!before || before->DiscNo != row.DiscNo || before->Side != row.Side) {
            detail.Discs.push_back({DiscHeading(row, severalDiscs), {}, {}});
            lengths.push_back(0.0);
            firstOfSide = row.TrackNo;
        }
        before = &row;
        detail.Discs.back().Tracks.push_back(
            {Position(row, firstOfSide, severalDiscs), row.Title, row.Artist, LengthText(row.Length)});
        lengths.back() += row.Length;
        total += row.Length;
    }
    for (size_t i = 0; i < detail.Discs.size(); ++i)
        detail.Discs[i].Length = LengthText(lengths[i]);
    if (!rows.empty())
        detail.TracksSummary =
            total > 0 ? u"%1 · %2"_s.arg(rows.size()).arg(LengthText(total)) : QString::number(rows.size());
}

TDetailData BuildDetailData(TDataModuleMain& data, qint64 release)
{
    const TReleaseCursors& cursors = data.ReadRelease(release);
    const TDetailDataset& info = cursors.Info;
    TDetailData detail;
    detail.ID = info.CurrentKey();
    if (detail.ID == 0)
        return detail;
    const auto text = [&](const QString& name) { return VarToStr(info.Value(name)); };
    detail.Title = DisplayText(Col::ReleaseName, text(Col::ReleaseName));
    detail.Artist = DisplayText(Col::Artist, text(Col::Artist));
    detail.Rating = info.Value(Col::Rating).toInt();
    detail.Cover = info.Value(Col::LargePicture).toByteArray();
    if (detail.Cover.isEmpty())
        detail.Cover = info.Value(Col::ThumbPicture).toByteArray();
    detail.Sections = Sections(data, info);
    AddDetailTracks(detail, TrackRows(cursors.Tracks, text(Col::Artist)));
    for (int row = 0; row < cursors.Credits.RecordCount(); ++row)
        detail.Credits.push_back({VarToStr(cursors.Credits.ValueAt(row, cursors.Credits.FieldIndex(Col::Musician))),
                                  VarToStr(cursors.Credits.ValueAt(row, cursors.Credits.FieldIndex(Col::Instrument)))});
    for (const TColumnName column : {Col::LargePictureBack, Col::LargePictureMedia}) {
        if (const QByteArray bytes = info.Value(column).toByteArray(); !bytes.isEmpty())
            detail.Pictures.push_back(bytes);
    }
    for (int row = 0; row < cursors.Pictures.RecordCount(); ++row)
        detail.Pictures.push_back(
            cursors.Pictures.ValueAt(row, cursors.Pictures.FieldIndex(Col::Picture)).toByteArray());
    return detail;
}

} // namespace Kestrune
