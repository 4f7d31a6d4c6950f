// SPDX-License-Identifier: GPL-3.0-or-later
// The long lists behind the views: all tracks, groups, the search in everything and exports: bench_lists FILE FOLDER.
// The index and the exported files go to FOLDER.
#include "dmMain.h"
#include "uBench.h"
#include "uDefaults.h"
#include "uExport.h"
#include "uScriptedPrompt.h"
#include "uSearchIndex.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QGuiApplication>

#include <algorithm>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

// First and later times apart: the first sort of a column reads the file, the later ones know the order.
void MeasureSorts(TListDataset& list, const QStringList& columns)
{
    for (const QString& column : columns) {
        list.SetSort({});
        Bench::Report(u"tracks: first sort by "_s + column, 1, [&] { list.SetSort({{column, false}}); });
        std::vector<double> again;
        for (int i = 0; i < 3; ++i) {
            list.SetSort({});
            again.push_back(Bench::Measure([&] { list.SetSort({{column, false}}); }));
        }
        Bench::Print(u"    again: %1 ms"_s.arg(Bench::Median(again), 0, 'f', 0));
    }
    list.SetSort({});
}

void MeasureFilters(TListDataset& list, const std::vector<TFilterCriterion>& criteria)
{
    for (const TFilterCriterion& criterion : criteria) {
        int round = 0;
        Bench::Report(u"tracks: filter by "_s + criterion.Column, 5, [&] {
            list.Filter().Clear();
            list.Filter().Add(criterion);
            list.Filter().Add({u"ID"_s, foGreater, -(++round), {}}); // another filter each time: no order is known
            list.SetFilterActive(true);
            list.ApplyFilter();
        });
        Bench::Print(u"    %1 rows"_s.arg(list.RecordCount()));
    }
    list.Filter().Clear();
    list.SetFilterActive(false);
    list.ApplyFilter();
}

void MeasureGroups(TListDataset& list)
{
    for (const QStringList& columns : {QStringList{u"Genre"_s}, {u"Genre"_s, u"Artist"_s}, {u"ReleaseYear"_s}}) {
        std::vector<double> times;
        for (int i = 0; i < 5; ++i) {
            list.SetGrouping({});
            times.push_back(Bench::Measure([&] { list.SetGrouping(columns); }));
        }
        const auto [least, most] = std::ranges::minmax(times);
        Bench::Print(u"group by %1: %2 (%3 to %4) ms, %5 groups"_s.arg(columns.join(u" and "_s))
                         .arg(Bench::Median(times), 0, 'f', 0)
                         .arg(least, 0, 'f', 0)
                         .arg(most, 0, 'f', 0)
                         .arg(list.Groups().size()));
    }
    list.SetGrouping({});
}

void MeasureSearch(TDataModuleMain& data, const QString& folder)
{
    for (const QString& name : QDir(folder).entryList({u"search-*"_s}))
        QFile::remove(folder + u'/' + name);
    TSearchIndex index(data, folder);
    QElapsedTimer clock;
    clock.start();
    index.Open();
    // Each turn of the event loop while the index is built is what the window would wait for.
    std::vector<double> turns;
    while (index.Building())
        turns.push_back(Bench::Measure([] { QCoreApplication::processEvents(); }));
    std::erase_if(turns, [](double turn) { return turn < 0.1; }); // nothing to do
    std::ranges::sort(turns);
    Bench::Print(u"index built in %1 s; turns of the event loop meanwhile: median %2, 95 % under %3, longest %4 ms"_s
                     .arg(static_cast<double>(clock.elapsed()) / 1000.0, 0, 'f', 1)
                     .arg(Bench::Median(turns), 0, 'f', 1)
                     .arg(turns[turns.size() * 95 / 100], 0, 'f', 1)
                     .arg(turns.back(), 0, 'f', 1));
    TListDataset& list = data.qReleasesMain;
    qint64 number = 0;
    for (const QString& words : {u"harbour"_s, u"the"_s, u"a"_s, u"ilva mar"_s, u"nothing like this"_s}) {
        Bench::Report(u"search in everything for \"%1\""_s.arg(words), 5, [&] {
            const auto hits = index.Find(words);
            list.Filter().Clear();
            data.Queries().DropHits(number);
            number = data.Queries().AddHits(hits.value_or(std::vector<qint64>{}));
            list.Filter().Add({u"ID"_s, foIsHit, number, {}});
            list.SetFilterActive(true);
            list.ApplyFilter();
        });
        Bench::Print(u"    %1 rows"_s.arg(list.RecordCount()));
    }
    list.Filter().Clear();
    list.SetFilterActive(false);
    list.ApplyFilter();
}

void MeasureExport(TDataModuleMain& data, const QString& folder)
{
    std::vector<TExportColumn> columns;
    for (const QString& name :
         {u"No"_s, u"Artist"_s, u"ReleaseName"_s, u"ReleaseYear"_s, u"MediaType"_s, u"Label"_s, u"CatalogNO"_s,
          u"CountryCode"_s, u"DiscCount"_s, u"Rating_Calc"_s, u"Status"_s, u"Genre"_s, u"Location"_s})
        columns.push_back({name, name});
    for (const QString& word : ExportFormatWords()) {
        if (word == "pdf"_L1)
            continue; // thousands of pages, which nobody prints
        const QString path = folder + u"/export."_s + word;
        Bench::Report(u"export of all releases as "_s + word, 3, [&] {
            TExportSource source(data, data.qReleasesMain, columns, false);
            WriteExport(source, *ExportFormatOf(word), path, u"Bench"_s, {});
        });
        Bench::Print(u"    %1 MB"_s.arg(static_cast<double>(QFileInfo(path).size()) / 1e6, 0, 'f', 1));
    }
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString folder = arguments.value(2);
    Defaults() = MakeDefaults();
    Kit::TScriptedPrompt prompt;
    TDataModuleMain data(prompt);
    if (folder.isEmpty() || !data.ConnectToDB(arguments[1]))
        return 1;
    Bench::Report(u"tracks: open"_s, 1, [&] { data.qTracksAll.Open(); });
    Bench::Print(u"    %1 tracks"_s.arg(data.qTracksAll.RecordCount()));
    MeasureFilters(data.qTracksAll, {{u"TrackTitle"_s, foContains, u"harbour"_s, {}},
                                     {u"Artist"_s, foContains, u"or"_s, {}},
                                     {u"ReleaseName"_s, foContains, u"harbour"_s, {}},
                                     {u"TrackNo"_s, foEquals, 3, {}},
                                     {u"TrackLength"_s, foGreater, 300.0 / 86400.0, {}}});
    MeasureSorts(data.qTracksAll, {u"TrackTitle"_s, u"Artist"_s, u"ReleaseName"_s, u"ReleaseArtist"_s, u"TrackLength"_s,
                                   u"TrackNo"_s, u"Genre"_s});
    data.qTracksAll.Close();
    MeasureGroups(data.qReleasesMain);
    MeasureSearch(data, folder);
    MeasureExport(data, folder);
    return 0;
}
