// SPDX-License-Identifier: GPL-3.0-or-later
#include "uIncludeGraph.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

using TTree = std::initializer_list<std::pair<const char*, const char*>>;

TIncludeGraph GraphOf(const TTree& tree)
{
    const QTemporaryDir root;
    for (const auto& [path, text] : tree) {
        QFile file(root.filePath(QString::fromUtf8(path)));
        QDir().mkpath(QFileInfo(file).path());
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) >= 0);
    }
    return TIncludeGraph(root.path());
}

} // namespace

TEST(IncludeGraph, NamesTheRingsOfSmallTrees)
{
    const struct {
        const char* Name;
        TTree Tree;
        QStringList Folders, Units;
    } rows[] = {
        {"downwards only",
         {{"a/uA.h", ""}, {"b/uB.h", "#include \"uA.h\"\n"}, {"b/uB.cpp", "#include \"uB.h\"\n#include <uC.h>\n"}},
         {},
         {}},
        {"two units of two folders",
         {{"a/uA.h", ""}, {"a/uA.cpp", "#include \"uB.h\"\n"}, {"b/uB.h", "  #  include \"deep/uA.h\"\n"}},
         {u"a -> b -> a (a/uA.cpp includes uB.h, b/uB.h includes uA.h)"_s},
         {u"a/uA -> b/uB -> a/uA (a/uA.cpp includes uB.h, b/uB.h includes uA.h)"_s}},
        {"folders alone",
         {{"a/uA.h", ""}, {"a/uC.h", "#include \"uB.h\"\n"}, {"b/uB.h", "#include \"uA.h\"\n"}},
         {u"a -> b -> a (a/uC.h includes uB.h, b/uB.h includes uA.h)"_s},
         {}},
        {"parts and insides belong to their unit",
         {{"a/uA.h", ""},
          {"a/uA_p.h", "#include \"uB.h\"\n"},
          {"a/uA_Part.cpp", "#include \"uA_p.h\"\n"},
          {"a/uB.h", ""},
          {"a/uB_More_Parts.cpp", "#include \"uA.h\"\n"}},
         {},
         {u"a/uA -> a/uB -> a/uA (a/uA_p.h includes uB.h, a/uB_More_Parts.cpp includes uA.h)"_s}},
        {"a part with a header of its own is a unit",
         {{"a/uA.h", ""}, {"a/uA_Kind.h", "#include \"uA.h\"\n"}, {"a/uB.h", "#include \"uA_Kind.h\"\n"}},
         {},
         {}},
        {"a ring of three, and what only leads to it",
         {{"a/uA.h", "#include \"uB.h\"\n"},
          {"a/uB.h", "#include \"uC.h\"\n"},
          {"a/uC.h", "#include \"uA.h\"\n// #include \"uD.h\"\n"},
          {"a/uD.h", "#include \"uA.h\"\n"}},
         {},
         {u"a/uA -> a/uB -> a/uC -> a/uA (a/uA.h includes uB.h, a/uB.h includes uC.h, a/uC.h includes uA.h)"_s}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        const TIncludeGraph graph = GraphOf(row.Tree);
        EXPECT_EQ(graph.FolderCycles(), row.Folders);
        EXPECT_EQ(graph.UnitCycles(), row.Units);
    }
}

TEST(IncludeGraph, TwoHeadersOfOneNameAreTold)
{
    EXPECT_EQ(GraphOf({{"a/uA.h", ""}, {"b/uA.h", ""}}).HeadersOfOneName().size(), 1);
}

// The layering itself.
TEST(Layering, NoRingBetweenFoldersOrUnits)
{
    const TIncludeGraph graph(QStringLiteral(KESTRUNE_SRC));
    ASSERT_GT(graph.FileCount(), 300);
    for (const QString& ring : graph.FolderCycles() + graph.UnitCycles())
        ADD_FAILURE() << "a ring of includes: " << ring.toStdString();
    EXPECT_EQ(graph.HeadersOfOneName(), QStringList());
}

// What can stand in any window must not know the main one.
TEST(Layering, LookAndWidgetsKnowNoMainForm)
{
    const TIncludeGraph graph(QStringLiteral(KESTRUNE_SRC));
    for (const QString& folder : {u"presentation/look"_s, u"presentation/widgets"_s, u"presentation/views"_s})
        EXPECT_EQ(graph.Including(folder, u"frmMain.h"_s), QStringList());
}

// A name of two words at least: one word alone is also an attribute, a tag or an instrument.
TEST(Layering, ColumnNamesStandInOnePlace)
{
    const auto read = [](const QString& path) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
        return QString::fromUtf8(file.readAll());
    };
    const QDir root(QStringLiteral(KESTRUNE_SRC));
    const QString home = root.filePath(u"core/uColumnNames.h"_s);
    static const QRegularExpression declared(u"KRN_COLUMN\\((\\w+)\\)"_s),
        word(u"\"([A-Z][A-Za-z_]*[a-z][A-Z]\\w*)\""_s);
    QSet<QString> names;
    for (auto found = declared.globalMatch(read(home)); found.hasNext();)
        names.insert(found.next().captured(1));
    EXPECT_TRUE(names.contains(u"ReleaseName"_s));
    QDirIterator files(root.path(), {u"*.cpp"_s, u"*.h"_s}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        if (path == home || root.relativeFilePath(path).startsWith(u"tags/"_s))
            continue;
        const QStringList lines = read(path).split(u'\n');
        for (const QString& line : lines) {
            if (line.trimmed().startsWith(u"//"_s))
                continue;
            for (auto found = word.globalMatch(line); found.hasNext();) {
                const QString name = found.next().captured(1);
                EXPECT_FALSE(names.contains(name)) << path.toStdString() << " spells out " << name.toStdString();
            }
        }
    }
}

} // namespace Kestrune
