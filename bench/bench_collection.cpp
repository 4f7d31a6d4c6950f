// SPDX-License-Identifier: GPL-3.0-or-later
// Filters, sorts and deletions in a large collection: bench_collection FILE. The file is copied for the deletions.
#include "dmMain.h"
#include "uBench.h"
#include "uColumnNames.h"
#include "uDefaults.h"
#include "uScriptedPrompt.h"
#include "uSearch.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>

#include <algorithm>
#include <optional>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

void MeasureFilters(TListDataset& list)
{
    const auto filtered = [&](const QString& name, const TFilterCriterion& criterion) {
        int round = 0;
        Bench::Report(u"filter "_s + name, 7, [&] {
            list.Filter().Clear();
            list.Filter().Add(criterion);
            list.Filter().Add({u"ID"_s, foGreater, -(++round), {}}); // another filter each time: no order is known
            list.SetFilterActive(true);
            list.ApplyFilter();
        });
        Bench::Print(u"    %1 rows"_s.arg(list.RecordCount()));
        list.Filter().Clear();
        list.SetFilterActive(false);
        list.ApplyFilter();
    };
    filtered(u"Artist like %or%"_s, {u"Artist"_s, foLike, u"%or%"_s, {}});
    filtered(u"ReleaseName like %harbour%"_s, {u"ReleaseName"_s, foLike, u"%harbour%"_s, {}});
    filtered(u"Status = In collection"_s, StatusCriterion(list, u"In collection"_s));
    filtered(u"Genres like %rock% (behind the thumbs)"_s, {u"Genres"_s, foLike, u"%rock%"_s, {}});
    filtered(u"Location like %home%"_s, {u"Location"_s, foLike, u"%home%"_s, {}});
    filtered(u"Comments like %a%"_s, {u"Comments"_s, foLike, u"%a%"_s, {}});
    filtered(u"letter B"_s, LetterCriterion(u"Artist"_s, u"B"_s));
    filtered(u"letter B of release"_s, LetterCriterion(u"ReleaseName"_s, u"B"_s));
}

void MeasureSorts(TListDataset& list)
{
    for (const TFieldDef& field : list.Fields()) {
        if (field.Lazy || field.Kind == fkBlob || field.Name == "ID"_L1 || field.Name == "Release"_L1)
            continue;
        // The first time; later ones are known as long as nothing is written.
        Bench::Report(u"sort "_s + field.Name, 1, [&] { list.SetSort({{field.Name, false}}); });
        list.SetSort({});
        Bench::Report(u"    again"_s, 3, [&] {
            list.SetSort({});
            list.SetSort({{field.Name, false}});
        });
    }
    list.SetSort({});
}

void MeasureScroll(TListDataset& list)
{
    const int name = list.FieldIndex(u"ReleaseName"_s);
    int row = 0;
    Bench::Report(u"read a block of rows elsewhere"_s, 200, [&] {
        row = (row + 7919) % list.RecordCount();
        list.ValueAt(row, name);
    });
}

// What writes goes to a copy of the file.
void OnCopy(const QString& path, const std::function<void(TDataModuleMain& data)>& measure)
{
    const QString copy = path + u".bench-copy"_s;
    QFile::remove(copy);
    QFile::copy(path, copy);
    Kit::TScriptedPrompt prompt;
    {
        TDataModuleMain data(prompt);
        data.ConnectToDB(copy);
        measure(data);
    }
    for (const QString& suffix : {u""_s, u"-wal"_s, u"-shm"_s})
        QFile::remove(copy + suffix);
}

void MeasureWrites(TDataModuleMain& data)
{
    TListDataset& list = data.qReleasesMain;
    const std::vector<qint64> all = list.Keys();
    int round = 0;
    for (const auto& column : {Col::Location, Col::Label, Col::ReleaseYear})
        Bench::Report(u"give all releases one "_s + column, 3, [&] {
            list.UpdateKeys(all, {{column, ++round}}, [](int, int) { return true; });
        });
    std::vector<qint64> keys;
    for (int i = 0; i < 1000; ++i)
        keys.push_back(list.KeyAt(i * 97 % list.RecordCount()));
    Bench::Report(u"remove 1,000 selected releases"_s, 1, [&] { list.DeleteKeys(keys); });
    for (const size_t count : {1'000, 20'000}) {
        const std::vector<qint64> going(list.Keys().begin(), list.Keys().begin() + static_cast<qsizetype>(count));
        std::optional<qint64> deletion;
        QElapsedTimer quiet; // between two looks at the progress no event is served
        qint64 longest = 0;
        const auto progress = [&](int, int) {
            longest = std::max(longest, quiet.restart());
            return true;
        };
        Bench::Report(u"remove %1 releases with undo"_s.arg(count), 1, [&] {
            quiet.start();
            deletion = data.DeleteUndoably(list, going, progress);
            progress(0, 0);
        });
        Bench::Report(u"    take it back"_s, 1, [&] {
            quiet.start();
            data.UndoDeletion(*deletion, progress);
            progress(0, 0);
        });
        Bench::Print(u"    longest step %1 ms"_s.arg(longest));
        list.ApplyFilter();
    }
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QString path = QCoreApplication::arguments().value(1);
    Kit::TScriptedPrompt prompt;
    TDataModuleMain data(prompt);
    if (!data.ConnectToDB(path))
        return 1;
    Bench::Report(u"open (second and later times)"_s, 5, [&] { data.ConnectToDB(path); });
    Bench::Print(u"%1 releases"_s.arg(data.qReleasesMain.RecordCount()));
    MeasureFilters(data.qReleasesMain);
    MeasureScroll(data.qReleasesMain);
    MeasureSorts(data.qReleasesMain);
    const Bench::TMemory memory = Bench::ResidentMemory();
    Bench::Print(u"resident %1 MiB, %2 MiB of it not file pages"_s.arg(memory.Total, 0, 'f', 0)
                     .arg(memory.Anonymous, 0, 'f', 0));
    OnCopy(path, MeasureWrites);
    return 0;
}
