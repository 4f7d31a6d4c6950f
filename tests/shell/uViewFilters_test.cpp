// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFieldText.h"
#include "uFormKit.h"
#include "uViewFilters.h"

#include <QCoreApplication>
#include <QLocale>

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

class ViewFilters : public Kit::TMainFormTest {
protected:
    const TFieldDef& Field(const QString& column)
    {
        return FData.qReleasesMain.Fields()[static_cast<size_t>(FData.qReleasesMain.FieldIndex(column))];
    }
    void Set(const QString& name, const QString& column, const TVariant& value)
    {
        FData.ExecSQL(u"UPDATE Releases2 SET %1 = %2 WHERE ReleaseName = '%3'"_s.arg(
            column, VarIsNull(value) ? u"NULL"_s : u"'%1'"_s.arg(VarToStr(value)), name));
    }
    QStringList Under(const TFilterNode& node)
    {
        FForm.Lists().Active().SetBuilderFilter(node);
        return Shown();
    }
};

TFilterNode AllOf(std::vector<TFilterCriterion> criteria) { return {flAll, false, std::move(criteria), {}}; }

} // namespace

TEST_F(ViewFilters, FilterRowTextsMeanWhatTheyLookLike)
{
    OpenFilled(); // Help 1965, Arrival 1976, Lexicon 1982, 100% Zappa 1979
    Set(u"Help"_s, u"DatePurchased"_s, u"2020-02-29"_s);
    Set(u"Arrival"_s, u"DatePurchased"_s, u"2021-01-01"_s);
    Set(u"Lexicon"_s, u"Price"_s, u"12.5"_s);
    Set(u"Lexicon"_s, u"CountryCode"_s, u"UK"_s);
    const QStringList all{u"Help"_s, u"Arrival"_s, u"Lexicon"_s, u"100% Zappa"_s};
    struct TCase {
        QString Column, Text;
        std::optional<QStringList> Rows; // none: no condition for this column
    };
    const TCase cases[] = {{u"ReleaseName"_s, u"0%"_s, QStringList{all[3]}},
                           {u"ReleaseName"_s, u"_"_s, QStringList{}},
                           {u"ReleaseName"_s, u"=help"_s, QStringList{all[0]}},
                           {u"ReleaseName"_s, u"<>help"_s, all.mid(1)},
                           {u"ReleaseName"_s, u">=help"_s, QStringList{all[0], all[2]}},
                           {u"ReleaseYear"_s, u"1976"_s, QStringList{all[1]}},
                           {u"ReleaseYear"_s, u" >= 1976 "_s, all.mid(1)},
                           {u"ReleaseYear"_s, u"1970..1980"_s, QStringList{all[1], all[3]}},
                           {u"ReleaseYear"_s, u"1980..1970"_s, QStringList{}},
                           {u"ReleaseYear"_s, u"1970.."_s, {}},
                           {u"ReleaseYear"_s, u"sixties"_s, {}},
                           {u"ReleaseYear"_s, u"<"_s, {}},
                           {u"Price"_s, u">12"_s, QStringList{all[2]}},
                           {u"Price"_s, u"="_s, QStringList{all[0], all[1], all[3]}},
                           {u"Price"_s, u"<>"_s, QStringList{all[2]}},
                           {u"DatePurchased"_s, u"<2020-03-01"_s, QStringList{all[0]}},
                           {u"DatePurchased"_s, u"2020-01-01..2021-12-31"_s, QStringList{all[0], all[1]}},
                           {u"DatePurchased"_s, u"2021-02-30"_s, {}},
                           {u"TotalTracksLength"_s, u">1:00"_s, all},
                           {u"TotalTracksLength"_s, u"1:02..2:00"_s, QStringList{}},
                           {u"IsLive"_s, u"no"_s, all},
                           {u"IsLive"_s, u"perhaps"_s, {}},
                           {u"ReleaseYear"_s, u"   "_s, all}};
    for (const TCase& item : cases) {
        SCOPED_TRACE((item.Column + u' ' + item.Text).toStdString());
        EXPECT_EQ(FForm.Lists().Active().SetColumnFilter(item.Column, item.Text), item.Rows.has_value());
        EXPECT_EQ(Shown(), item.Rows.value_or(all)) << "what is no condition filters nothing";
        FForm.Search().RemoveFilter(fckColumn, item.Column);
    }
    EXPECT_FALSE(FForm.Lists().Active().SetColumnFilter(u"Gone"_s, u"1"_s));
    EXPECT_TRUE(FForm.Lists().Active().Filters().Chips().empty());
}

TEST_F(ViewFilters, BuilderTreesNestAndNegate)
{
    OpenFilled();
    const TFilterCriterion seventies{u"ReleaseYear"_s, foBetween, QVariantList{1970, 1979}, {}};
    const TFilterCriterion zappa{u"Artist"_s, foBeginsWith, u"z"_s, {}};
    const TFilterCriterion wanted{u"Status"_s, foEquals, u"wanted ITEM"_s, {}};
    EXPECT_EQ(Under(AllOf({seventies})), (QStringList{u"Arrival"_s, u"100% Zappa"_s}));
    EXPECT_EQ(Under(AllOf({seventies, zappa})), (QStringList{u"100% Zappa"_s}));
    EXPECT_EQ(Under({flAny, false, {wanted, zappa}, {}}), (QStringList{u"Arrival"_s, u"100% Zappa"_s}));
    EXPECT_EQ(Under({flAny, true, {wanted, zappa}, {}}), (QStringList{u"Help"_s, u"Lexicon"_s}));
    TFilterNode nested = AllOf({seventies});
    nested.Groups.push_back({flAny, true, {wanted}, {}});
    EXPECT_EQ(Under(nested), (QStringList{u"100% Zappa"_s}));
    EXPECT_EQ(Under(AllOf({{u"Label"_s, foIsNull, {}, {}}})).size(), 4);
    EXPECT_EQ(Under({flAll, true, {{u"Label"_s, foEquals, u"x"_s, {}}}, {}}).size(), 4)
        << "not equal holds where nothing is known";
    EXPECT_EQ(Under(AllOf({{u"Gone"_s, foEquals, 1, {}}})).size(), 4) << "a column that is gone filters nothing";
    EXPECT_EQ(Under({}).size(), 4);
    EXPECT_TRUE(FForm.Lists().Active().Filters().Chips().empty());
}

TEST_F(ViewFilters, PeriodsCountFromToday)
{
    const QDate today(2024, 3, 31);
    const std::tuple<TFilterPeriod, QDate, QDate> cases[] = {{fpToday, today, today},
                                                             {fpYesterday, QDate(2024, 3, 30), QDate(2024, 3, 30)},
                                                             {fpLast7Days, QDate(2024, 3, 25), today},
                                                             {fpLast30Days, QDate(2024, 3, 2), today},
                                                             {fpLast365Days, QDate(2023, 4, 2), today},
                                                             {fpThisMonth, QDate(2024, 3, 1), QDate(2024, 3, 31)},
                                                             {fpLastMonth, QDate(2024, 2, 1), QDate(2024, 2, 29)},
                                                             {fpThisYear, QDate(2024, 1, 1), QDate(2024, 12, 31)},
                                                             {fpLastYear, QDate(2023, 1, 1), QDate(2023, 12, 31)},
                                                             {fpFuture, QDate(2024, 4, 1), QDate()}};
    for (const auto& [period, first, last] : cases)
        EXPECT_EQ(DaysOfPeriod(period, today), std::pair(first, last)) << static_cast<int>(period);

    OpenFilled();
    Set(u"Help"_s, u"DatePurchased"_s, QDate::currentDate().toString(Qt::ISODate));
    Set(u"Arrival"_s, u"DatePurchased"_s, QDate::currentDate().addDays(40).toString(Qt::ISODate));
    EXPECT_EQ(Under(AllOf({{u"DatePurchased"_s, foInPeriod, static_cast<int>(fpToday), {}}})), QStringList{u"Help"_s});
    EXPECT_EQ(Under(AllOf({{u"DatePurchased"_s, foInPeriod, static_cast<int>(fpFuture), {}}})),
              QStringList{u"Arrival"_s});
    EXPECT_EQ(Under(AllOf({{u"LastModified"_s, foInPeriod, static_cast<int>(fpLast7Days), {}}})).size(), 4)
        << "a time of today is within today";
}

TEST_F(ViewFilters, TheSignOfTheLetterBarIsWhatBeginsWithNoLetter)
{
    OpenFilled();
    FForm.Search().SetLetterField(1);
    Set(u"Help"_s, u"ReleaseName"_s, u"Éire"_s);
    Set(u"Arrival"_s, u"ReleaseName"_s, u"(Arrival)"_s);
    Set(u"Lexicon"_s, u"ReleaseName"_s, u"日本"_s);
    FForm.Lists().Active().LetterClick(u"#"_s);
    EXPECT_EQ(Shown(), (QStringList{u"(Arrival)"_s, u"100% Zappa"_s}));
}

TEST_F(ViewFilters, SavedFiltersSurviveAsTextWithAllTheyHold)
{
    OpenFilled();
    TFilterSet set;
    set.Status = u"In \"collection\""_s;
    set.Letter = u"#"_s;
    set.LetterField = 1;
    set.KeywordColumn = u"Artist"_s;
    set.KeywordText = u"100%\n日本"_s;
    set.Everything = u"two words"_s;
    set.Columns = {{u"ReleaseYear"_s, u"1970..1980"_s}, {u"Label"_s, u"="_s}};
    set.Builder = {flAny,
                   true,
                   {{u"Price"_s, foBetween, QVariantList{1.5, 2.0}, u"1.5 to 2"_s},
                    {u"DatePurchased"_s, foLess, u"2020-01-01"_s, {}},
                    {u"IsLive"_s, foEquals, true, u"Yes"_s}},
                   {AllOf({{u"No"_s, foGreater, 5, u"5"_s}})}};
    const QString text = FilterSetToText(set);
    EXPECT_FALSE(text.contains(u'\n'));
    const auto read = FilterSetFromText(text);
    ASSERT_TRUE(read);
    EXPECT_EQ(FilterSetToText(*read), text);
    EXPECT_EQ(read->KeywordText, set.KeywordText);
    EXPECT_EQ(read->Columns, set.Columns);
    ASSERT_EQ(read->Builder.Groups.size(), 1u);
    EXPECT_EQ(read->Builder.Criteria[0].Value, set.Builder.Criteria[0].Value);
    EXPECT_TRUE(read->Builder.Negated);

    QString deep = u"{}"_s;
    for (int i = 0; i < 40; ++i)
        deep = u"{\"groups\":[%1]}"_s.arg(deep);
    for (const QString& bad : {QString(), u"{}"_s, u"[]"_s, u"{\"version\":2}"_s, u"{\"version\":1"_s,
                               u"{\"version\":1,\"builder\":{\"criteria\":[{\"op\":\"eq\"}]}}"_s,
                               u"{\"version\":1,\"builder\":{\"criteria\":[{\"column\":\"No\",\"op\":\"drop\"}]}}"_s,
                               u"{\"version\":1,\"builder\":%1}"_s.arg(deep), QString(200000, u' ')})
        EXPECT_FALSE(FilterSetFromText(bad)) << bad.left(60).toStdString();
}

TEST_F(ViewFilters, ASavedFilterIsRecalledReplacedAndForgotten)
{
    OpenFilled();
    FForm.Search().FilterStatus(u"In collection"_s);
    FForm.Lists().Active().SetColumnFilter(u"ReleaseYear"_s, u">1970"_s);
    FForm.Search().SaveFilter(u"mine"_s);
    FForm.Actions().Trigger(u"actFilterStatusOther"_s);
    EXPECT_EQ(Shown().size(), 4);
    FForm.Search().RecallFilter(u"mine"_s);
    EXPECT_EQ(Shown(), QStringList{u"Lexicon"_s});
    EXPECT_EQ(FForm.Lists().Active().Filters().Chips().size(), 2u);
    FForm.Search().RemoveFilter(fckStatus);
    FForm.Search().SaveFilter(u"mine"_s);
    FForm.Search().SaveFilter(u"Again"_s);
    ASSERT_EQ(FForm.Search().SavedFilters().size(), 2u);
    EXPECT_EQ(FForm.Search().SavedFilters()[0].Name, u"Again"_s) << "by name";
    FForm.Search().RecallFilter(u"mine"_s);
    EXPECT_EQ(Shown().size(), 3);
    FForm.Search().ForgetFilter(u"mine"_s);
    FForm.Search().RecallFilter(u"mine"_s);
    EXPECT_EQ(FForm.Search().SavedFilters().size(), 1u);
    EXPECT_EQ(Shown().size(), 3);
}

TEST_F(ViewFilters, TracksHaveFiltersOfTheirOwn)
{
    OpenFilled();
    FForm.Lists().Active().LetterClick(u"A"_s);
    FForm.SetCurrentView(mvTracks);
    EXPECT_EQ(FData.qTracksAll.RecordCount(), 4);
    EXPECT_TRUE(FForm.Lists().Active().Filters().Chips().empty());
    FForm.Lists().Active().SetColumnFilter(u"TrackTitle"_s, u"son"_s);
    FForm.Lists().Active().SetColumnFilter(u"TrackLength"_s, u"<1:00"_s);
    EXPECT_EQ(FData.qTracksAll.RecordCount(), 0);
    FForm.Search().RemoveFilter(fckColumn, u"TrackLength"_s);
    EXPECT_EQ(FData.qTracksAll.RecordCount(), 4);
    FForm.SetCurrentView(mvThumbs);
    EXPECT_EQ(Shown(), (QStringList{u"Arrival"_s, u"Lexicon"_s}));
    EXPECT_EQ(FForm.Lists().Active().Filters().Chips().size(), 1u);
}

TEST_F(ViewFilters, WhatTheTracksCannotBeFilteredByIsSaid)
{
    OpenFilled();
    QStringList bars;
    QObject::connect(&FForm, &TKRNMainForm::barRaised, &FForm,
                     [&](TBarKind, const QString&, const QString& sentence) { bars << sentence; });
    TListSession& tracks = FForm.Lists().Tracks();
    FForm.Search().FilterStatus(u"Wanted item"_s);
    FForm.Search().SaveFilter(u"wanted"_s);
    FForm.SetCurrentView(mvTracks);
    FForm.Search().RecallFilter(u"wanted"_s);
    EXPECT_EQ(tracks.List().RecordCount(), 1) << "the track of the one wanted release";
    EXPECT_EQ(tracks.List().ValueAt(0, tracks.List().FieldIndex(u"ReleaseName"_s)), u"Arrival"_s);
    EXPECT_TRUE(FForm.Actions().IsEnabled(u"actStatusFilter"_s));
    EXPECT_TRUE(bars.isEmpty());

    const TFilterNode labels = AllOf({{u"Label"_s, foIsNull, {}, {}}});
    TFilterSet set;
    set.KeywordColumn = u"Packaging"_s;
    set.Columns[u"Price"_s] = u">1"_s;
    set.Builder = labels;
    tracks.RestoreFilters(set);
    tracks.SetBuilderFilter(labels);
    FForm.Search().SetSearchBy(u"Packaging"_s);
    FForm.Actions().Trigger(u"actSearch"_s);
    EXPECT_EQ(bars, (QStringList{u"Packaging, Price, Label"_s, u"Label"_s, u"Packaging"_s}));
    EXPECT_TRUE(tracks.Filters().Chips().empty());
    EXPECT_TRUE(tracks.Filters().Set().IsEmpty());
    EXPECT_EQ(tracks.List().RecordCount(), 4);
}

TEST_F(ViewFilters, ConditionsAreSaidInWords)
{
    OpenFilled();
    TFilterNode node = AllOf({{u"ReleaseYear"_s, foGreater, 1970, u"1970"_s}});
    node.Groups.push_back(
        {flAny, true, {{u"Label"_s, foIsNull, {}, {}}, {u"Artist"_s, foContains, u"a"_s, u"a"_s}}, {}});
    EXPECT_EQ(FilterSummary(FData.qReleasesMain.Fields(), node).toStdString(),
              "Release year is more than 1970 and (not (Label is empty or Artist contains a))");
}

TEST_F(ViewFilters, ValuesAreReadAsPeopleTypeThem)
{
    OpenFilled();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    struct TCase {
        QString Column, Text;
        std::optional<TVariant> Value;
    };
    const TCase cases[] = {{u"ReleaseYear"_s, u" 1,970 "_s, TVariant(1970LL)},
                           {u"ReleaseYear"_s, u"19.5"_s, {}},
                           {u"ReleaseYear"_s, u""_s, TVariant()},
                           {u"Price"_s, u"12.50"_s, TVariant(12.5)},
                           {u"Price"_s, u"1,234.5"_s, TVariant(1234.5)},
                           {u"Price"_s, u"twelve"_s, {}},
                           {u"DatePurchased"_s, u"2020-2-9"_s, TVariant(QDate(2020, 2, 9))},
                           {u"DatePurchased"_s, u"2/9/20"_s, TVariant(QDate(2020, 2, 9))},
                           {u"DatePurchased"_s, u"29.2.2020"_s, TVariant(QDate(2020, 2, 29))},
                           {u"DatePurchased"_s, u"2021-02-29"_s, {}},
                           {u"TotalTracksLength"_s, u"1:01:01"_s, TVariant(3661.0 / 86400.0)},
                           {u"TotalTracksLength"_s, u"90"_s, TVariant(90.0 / 86400.0)},
                           {u"TotalTracksLength"_s, u"1:2:3:4"_s, {}},
                           {u"TotalTracksLength"_s, u"-1:00"_s, {}},
                           {u"IsLive"_s, u"YES"_s, TVariant(true)},
                           {u"IsLive"_s, u"2"_s, {}},
                           {u"Label"_s, u"  kept as typed "_s, TVariant(u"  kept as typed "_s)}};
    for (const TCase& item : cases) {
        SCOPED_TRACE((item.Column + u' ' + item.Text).toStdString());
        const auto value = ParseFieldText(Field(item.Column), item.Text);
        ASSERT_EQ(value.has_value(), item.Value.has_value());
        if (value) {
            EXPECT_EQ(*value, *item.Value) << VarToStr(*value).toStdString();
        }
    }
    // What an editor shows reads back as the same value, in languages that write numbers in another way too.
    for (const QLocale& locale :
         {QLocale::c(), QLocale(QLocale::German), QLocale(QLocale::French), QLocale(QLocale::Arabic)}) {
        QLocale::setDefault(locale);
        for (const auto& [column, value] : {std::pair<QString, TVariant>{u"Price"_s, 1234567.25},
                                            {u"DatePurchased"_s, QDate(2019, 12, 5)},
                                            {u"DatePurchased"_s, QDate(1969, 7, 5)},
                                            {u"TotalTracksLength"_s, 3661.0 / 86400.0},
                                            {u"ReleaseYear"_s, 2019LL}}) {
            const QString shown = FieldEditText(Field(column), value);
            const auto read = ParseFieldText(Field(column), shown);
            ASSERT_TRUE(read) << locale.name().toStdString() << " " << shown.toStdString();
            EXPECT_EQ(*read, value) << locale.name().toStdString() << " " << shown.toStdString();
        }
    }
    QLocale::setDefault(QLocale::c());
}

} // namespace Kestrune
