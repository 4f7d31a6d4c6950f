// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uDefaults.h"
#include "uFaultyEngine.h"
#include "uOldFiles.h"
#include "uScriptedPrompt.h"
#include "uTestFiles.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <set>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// Points at which a run of so many steps is broken off; KESTRUNE_KILL_POINTS asks for more of them.
std::set<int> Points(int steps)
{
    bool given = false;
    const int asked = qEnvironmentVariableIntValue("KESTRUNE_KILL_POINTS", &given);
    const int count = given ? asked : 20;
    std::set<int> points;
    for (int i = 0; i < count; ++i)
        points.insert(1 + static_cast<int>(static_cast<qint64>(steps) * i / count));
    return points;
}

QStringList Contents(const QString& path)
{
    TSQLiteConnection file;
    file.Open(path); // for writing: a journal that was left has to be worked off first
    QStringList rows;
    TSQLiteStatement schema =
        file.Prepare(u"SELECT name, sql FROM sqlite_master WHERE name NOT LIKE 'sqlite_%' ORDER BY name"_s);
    QStringList tables;
    while (schema.Step()) {
        tables << VarToStr(schema.Column(0));
        rows << VarToStr(schema.Column(1));
    }
    for (const QString& table : tables) {
        if (file.Scalar(u"SELECT type FROM sqlite_master WHERE name = ?"_s, {table}).toString() != u"table"_s)
            continue;
        TSQLiteStatement all = file.Prepare(u"SELECT * FROM \"%1\" ORDER BY 1"_s.arg(table));
        while (all.Step())
            for (int column = 0; column < all.ColumnCount(); ++column)
                rows << QString::fromLatin1(VarToStr(all.Column(column)).toUtf8().toHex());
    }
    return rows;
}

class UpgradeFaults : public testing::TestWithParam<const char*> {
protected:
    UpgradeFaults() { Defaults() = MakeDefaults(); }

    // Opens the file as a program does that knows nothing of what went before.
    void Raise() const
    {
        Kit::TScriptedPrompt prompt;
        TDataModuleMain data(prompt);
        if (!data.ConnectToDB(FPath))
            throw std::runtime_error("not opened");
    }
    void Make() const
    {
        for (const QString& name : QDir(FDir.Path()).entryList(QDir::Files))
            QFile::remove(FDir.File(name));
        Kit::MakeOldCollection(FPath, QString::fromLatin1(GetParam()));
    }
    QStringList Raised() const
    {
        Make();
        Raise();
        return Contents(FPath);
    }
    int Copies() const
    {
        return static_cast<int>(QDir(FDir.Path()).entryList({u"old.before-*.db"_s}, QDir::Files).size());
    }

    Kit::TTempDir FDir;
    QString FPath = FDir.File(u"old.db"_s);
};

} // namespace

TEST_P(UpgradeFaults, KilledAnywhereTheNextStartRaisesTheFile)
{
    const QStringList expected = Raised();
    Make();
    const int steps = Kit::StepsOf([this] { Raise(); });
    ASSERT_GT(steps, 20);
    for (const int step : Points(steps)) {
        SCOPED_TRACE(step);
        Make();
        ASSERT_TRUE(Kit::KilledAtStep(step, [this] { Raise(); }));
        ASSERT_NO_THROW(Raise());
        EXPECT_EQ(Contents(FPath), expected);
        EXPECT_LE(Copies(), 3) << "one for each version at which it stood";
        EXPECT_TRUE(QDir(FDir.Path()).entryList({u"*.part"_s}).isEmpty());
    }
}

TEST_P(UpgradeFaults, OnAFullDiskTheFileStaysAsItWasAndTheCopyIsNamed)
{
    const QStringList expected = Raised();
    Make();
    const QStringList before = Contents(FPath);
    const int steps = Kit::StepsOf([this] { Raise(); });
    constexpr int full = 13; // the engine's code for it
    for (const int step : Points(steps)) {
        SCOPED_TRACE(step);
        Make();
        QString reason;
        {
            const Kit::TFaultyEngine faulty([step](int now) { return now >= step ? full : 0; });
            try {
                Raise();
            } catch (const EDatabaseError& failure) {
                reason = failure.Text();
            }
        }
        // Each step of the chain counts as a whole: what the file is now is what a later start goes on from.
        if (Contents(FPath) == before && Copies() > 0) {
            EXPECT_TRUE(reason.contains(u".before-"_s)) << reason.toStdString();
        }
        ASSERT_NO_THROW(Raise());
        EXPECT_EQ(Contents(FPath), expected);
        EXPECT_LE(Copies(), 3);
    }
}

INSTANTIATE_TEST_SUITE_P(Versions, UpgradeFaults, testing::Values("1000", "2000", "2001"));

} // namespace Kestrune
