// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uDefaults.h"
#include "uGroupModel.h"
#include "uReleasesModel.h"
#include "uScriptedPrompt.h"
#include "uTestFiles.h"

#include <QAbstractItemModelTester>
#include <QCoreApplication>

#include <gtest/gtest.h>

#include <functional>

namespace Kestrune {

using namespace Qt::StringLiterals;

// The tester looks at the whole tree after each signal: indexes, parents and counts have to agree whatever happened.
TEST(GroupModel, StaysATreeThroughGroupsFiltersAndChanges)
{
    Defaults() = MakeDefaults();
    const Kit::TTempDir dir;
    Kit::TScriptedPrompt prompt;
    TDataModuleMain data(prompt);
    const QString path = dir.File(u"c.db"_s);
    data.CreateNewDB(path, data.GetNewDatabaseSQL());
    ASSERT_TRUE(data.ConnectToDB(path));
    const auto add = [&](int number) {
        TAlbumRelease release;
        release.SetItem2(u"ReleaseName"_s, QString::number(number));
        release.SetItem2(u"Genre"_s, number % 3 == 0 ? QString() : u"genre %1"_s.arg(number % 3));
        release.SetItem2(u"Artist"_s, u"artist %1"_s.arg(number % 4));
        data.AddAlbumReleaseToDB(release, true);
    };
    for (int i = 0; i < 30; ++i)
        add(i);
    TListDataset& list = data.qReleasesMain;
    TReleasesModel rows(data, nullptr);
    TGroupModel groups(rows);
    const QAbstractItemModelTester tester(&groups, QAbstractItemModelTester::FailureReportingMode::Fatal);
    const struct {
        const char* What;
        std::function<void()> Do;
        int Rows, Top; // rows of the list, and of the outermost level
    } steps[] = {
        {"two levels",
         [&] {
             list.SetGrouping({u"Genre"_s, u"Artist"_s});
         },
         30, 3},
        {"a new row", [&] { add(31); }, 31, 3},
        {"read again", [&] { list.ApplyFilter(); }, 31, 3},
        {"rows deleted",
         [&] {
             list.DeleteKeys({list.KeyAt(0), list.KeyAt(30)});
         },
         29, 3},
        {"values changed", [&] { data.ExecSQL(u"UPDATE Releases2 SET Label = 'x'"_s); }, 29, 3},
        {"one group left",
         [&] {
             list.Filter().Add({u"Genre"_s, foEquals, u"genre 1"_s, {}});
             list.SetFilterActive(true);
             list.ApplyFilter();
         },
         11, 1},
        {"nothing left",
         [&] {
             list.Filter().Add({u"Genre"_s, foIsNull, {}, {}});
             list.ApplyFilter();
         },
         0, 0},
        {"ungrouped",
         [&] {
             list.SetFilterActive(false);
             list.SetGrouping({});
         },
         29, 29},
        {"closed", [&] { data.Disconnect(); }, 0, 0},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.What);
        step.Do();
        QCoreApplication::processEvents();
        EXPECT_EQ(rows.rowCount(), step.Rows);
        EXPECT_EQ(groups.rowCount(), step.Top);
        for (int row = 0; row < rows.rowCount(); ++row)
            EXPECT_EQ(groups.SourceRow(groups.IndexOfRow(row)), row);
    }
}

} // namespace Kestrune
