// SPDX-License-Identifier: GPL-3.0-or-later
#include "uIncludeGraph.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
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

} // namespace Kestrune
