// SPDX-License-Identifier: GPL-3.0-or-later
#include "uKeyOrder.h"
#include "uSQLite.h"
#include "uTestFiles.h"

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

class KeyOrder : public testing::Test {
protected:
    KeyOrder()
    {
        FConnection.Open(FDir.Write(u"k.db"_s, {}));
        FConnection.Exec(u"CREATE TABLE t(id INTEGER PRIMARY KEY, a, b)"_s);
    }
    // The engine's own order is what ours must be.
    void ExpectSameOrder(const QString& columns, const std::vector<bool>& descending)
    {
        QStringList terms = columns.split(u',');
        for (qsizetype i = 0; i < terms.size(); ++i)
            if (descending[static_cast<size_t>(i)])
                terms[i] += u" DESC"_s;
        std::vector<qint64> expected;
        TSQLiteStatement sorted = FConnection.Prepare(u"SELECT id FROM t ORDER BY %1, id"_s.arg(terms.join(u',')));
        while (sorted.Step())
            expected.push_back(sorted.ColumnInt64(0));
        TKeyOrder order(descending);
        TSQLiteStatement rows = FConnection.Prepare(u"SELECT id, %1 FROM t ORDER BY random()"_s.arg(columns));
        while (rows.Step())
            order.Add(rows);
        EXPECT_EQ(order.Take(), expected) << columns.toStdString();
    }

    Kit::TTempDir FDir;
    TSQLiteConnection FConnection;
};

} // namespace

TEST_F(KeyOrder, IsThatOfTheEngineForValuesOfAllKinds)
{
    FConnection.Exec(
        u"INSERT INTO t(a, b) VALUES (NULL, 1), (-1.5, 2), (-1e300, 2), (0, NULL), (-0.0, 1), (3, 0.5), (3.0, 1),"
        " (2, 9007199254740991), ('', 1), ('a', 2), ('a' || char(0), 2), ('a' || char(0) || 'b', 1), ('ab', 1),"
        " ('ä', 3), ('a' || char(1), 1), (1e999, 1), (-1e999, 1), ('10', 2), ('9', 2), (char(255), 1),"
        " ('eight or more characters alike 2', 1), ('eight or more characters alike 1', 1), (NULL, NULL)"_s);
    for (const bool a : {false, true})
        for (const bool b : {false, true}) {
            ExpectSameOrder(u"a"_s, {a});
            ExpectSameOrder(u"a,b"_s, {a, b});
            ExpectSameOrder(u"b,a"_s, {a, b});
        }
}

TEST_F(KeyOrder, HoldsForManyRowsOnTwoThreads)
{
    FConnection.Exec(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 120000)"
                     " INSERT INTO t(a, b) SELECT 'name ' || (i * 7919 % 1000), i * 31 % 77 FROM n"_s);
    ExpectSameOrder(u"a,b"_s, {false, true});
    ExpectSameOrder(u"b,a"_s, {true, false});
}

TEST_F(KeyOrder, OfNothingIsNothing)
{
    TKeyOrder order({false});
    EXPECT_TRUE(order.Take().empty());
}

} // namespace Kestrune
