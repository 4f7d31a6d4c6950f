// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDebugLog.h"
#include "uFilePath.h"
#include "uFindCovers.h"
#include "uFolderNames.h"
#include "uFolderScan.h"
#include "uTestFiles.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <vector>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// A folder of empty files, and the lists of a scan as text: "A/1.mp3 A/2.mp3; B/1.mp3".
class TScanTree {
public:
    explicit TScanTree(const char* files)
    {
        for (const QString& name : QString::fromUtf8(files).split(u' ', Qt::SkipEmptyParts))
            FDir.Write(name, {});
    }

    QString Path(const QString& name = {}) const { return name.isEmpty() ? FDir.Path() : FDir.Path() + u'/' + name; }
    void Link(const char* name, const char* target) const
    {
        std::filesystem::create_symlink(target, TextToPath(Path(QString::fromUtf8(name))));
    }
    QString Shown(TFolderLists lists) const
    {
        QStringList texts;
        for (QStringList& list : lists)
            texts += list.replaceInStrings(FDir.Path() + u'/', QString()).join(u' ');
        return texts.join(u"; "_s);
    }
    QString Scan() const { return Shown(CollectFolderFiles(FDir.Path())); }
    QString Merged() const
    {
        TFolderLists lists = CollectFolderFiles(FDir.Path());
        MergeDiscFolders(lists);
        return Shown(lists);
    }

private:
    Kit::TTempDir FDir;
};

// The lines of the debug log while it lives.
struct TLogLines {
    TLogLines()
    {
        SetDebugLogSink([this](const QString& line) { Lines += line; });
    }
    ~TLogLines() { SetDebugLogSink({}); }
    QStringList Lines;
};

} // namespace

TEST(FolderScan, FoldersBecomeListsDeeperOnesFirst)
{
    const struct {
        const char *Name, *Files, *Expected;
    } rows[] = {
        {"sorted without case", "b.mp3 A.mp3 a2.MP3 B.flac", "A.mp3 a2.MP3 B.flac b.mp3"},
        {"deeper first, subfolders sorted", "x.mp3 b/y.mp3 A/z.mp3 A/deep/w.mp3",
         "A/deep/w.mp3; A/z.mp3; b/y.mp3; x.mp3"},
        {"pictures alone are no release", "pics/front.jpg pics/a.txt", ""},
        {"an empty list is dropped", "top/sub/a.ogg top/b.txt", "top/sub/a.ogg"},
        {"hidden files and folders count", ".h/.a.mp3", ".h/.a.mp3"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        EXPECT_EQ(TScanTree(row.Files).Scan(), QString::fromUtf8(row.Expected));
    }
}

TEST(FolderScan, DiscFoldersOfOneParentAreMerged)
{
    const struct {
        const char *Name, *Files, *Expected;
    } rows[] = {
        {"two discs", "A/CD1/1.mp3 A/CD2/1.mp3", "A/CD1/1.mp3 A/CD2/1.mp3"},
        {"a lone disc stays", "A/Disc.2/1.mp3", "A/Disc.2/1.mp3"},
        {"bonus stays", "A/Bonus/1.mp3 A/CD1/1.mp3 A/CD2/1.mp3", "A/Bonus/1.mp3; A/CD1/1.mp3 A/CD2/1.mp3"},
        {"the first keeps its place", "A/CD1/1.mp3 A/Extra/1.mp3 A/Media_3/1.mp3 A/0.mp3",
         "A/CD1/1.mp3 A/Media_3/1.mp3; A/Extra/1.mp3; A/0.mp3"},
        {"different parents", "A/CD1/1.mp3 B/CD2/1.mp3", "A/CD1/1.mp3; B/CD2/1.mp3"},
        {"discs of an album beside another's", "A-CD1/1.mp3 a_cd2/1.mp3 B-CD1/1.mp3 B-(Disc.2)/1.mp3",
         "A-CD1/1.mp3 a_cd2/1.mp3; B-(Disc.2)/1.mp3 B-CD1/1.mp3"},
        {"first discs of two albums", "A-CD1/1.mp3 B-CD2/1.mp3 CD1/1.mp3", "A-CD1/1.mp3; B-CD2/1.mp3; CD1/1.mp3"},
        {"ABCD2 is none", "A/ABCD2/1.mp3 A/CD1/1.mp3", "A/ABCD2/1.mp3; A/CD1/1.mp3"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        EXPECT_EQ(TScanTree(row.Files).Merged(), QString::fromUtf8(row.Expected));
    }
}

TEST(FolderScan, TheInputMayNameSeveralFoldersAndFiles)
{
    const TScanTree tree("A/1.mp3 B/1.mp3 B/2.mp3 C|D/1.mp3 C|D/E|F.mp3 A/x.txt");
    const QString a = tree.Path(u"A"_s), b1 = tree.Path(u"B/1.mp3"_s), b2 = tree.Path(u"B/2.mp3"_s);
    const struct {
        const char* Name;
        QStringList Input;
        const char* Expected;
    } rows[] = {
        {"files of one folder join, unsorted", {b2, b1}, "B/2.mp3 B/1.mp3"},
        {"a file joins the list of its folder", {a, b1, tree.Path(u"A/1.mp3"_s)}, "A/1.mp3 A/1.mp3; B/1.mp3"},
        {"others are ignored", {tree.Path(u"A/x.txt"_s), tree.Path(u"none"_s), QString(), b1}, "B/1.mp3"},
        {"closing separator and dots", {a + u"/./"_s}, "A/1.mp3"},
        {"parent folder", {a + u"/../B"_s}, "B/1.mp3 B/2.mp3"},
        {"the separator inside of a name", {a, tree.Path(u"C|D"_s), b1}, "A/1.mp3; C|D/1.mp3 C|D/E|F.mp3; B/1.mp3"},
        {"several inside of one path", {tree.Path(u"none"_s), tree.Path(u"C|D/E|F.mp3"_s), u"x"_s}, "C|D/E|F.mp3"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        EXPECT_EQ(tree.Shown(CollectFolderFiles(row.Input.join(u'|'))), QString::fromUtf8(row.Expected));
    }
}

TEST(FolderScan, LinksAreFollowedOnceAndLoopsEnd)
{
    const TScanTree tree("real/1.mp3 sub/2.mp3");
    tree.Link("sub/up", "..");
    tree.Link("sub/self", ".");
    tree.Link("twice", "real");
    tree.Link("gone", "nowhere");
    tree.Link("gone.mp3", "nowhere.mp3");
    tree.Link("file.mp3", "real/1.mp3");
    EXPECT_EQ(tree.Scan(), u"real/1.mp3; sub/2.mp3; file.mp3"_s);
    tree.Link("a", "/proc/self/fd/none");
    tree.Link("x1", "x2");
    tree.Link("x2", "x1");
    EXPECT_EQ(tree.Scan(), u"real/1.mp3; sub/2.mp3; file.mp3"_s);
}

TEST(FolderScan, NamesThatAreNoUtf8LeadBackToTheirFiles)
{
    const Kit::TTempDir dir;
    const std::filesystem::path folder = TextToPath(dir.Path()) / "caf\xE9";
    std::filesystem::create_directory(folder);
    std::ofstream(folder / "\xFF\x01.mp3") << "x";
    const TFolderLists lists = CollectFolderFiles(dir.Path());
    ASSERT_EQ(lists.size(), 1u);
    EXPECT_TRUE(std::filesystem::exists(TextToPath(lists[0].front())));
    EXPECT_EQ(TextToPath(FolderOf(lists[0].front())), folder);
    std::filesystem::remove_all(folder); // the temporary folder cannot name it
}

TEST(FolderScan, AnUnreadableFolderIsLoggedAndSkipped)
{
    namespace fs = std::filesystem;
    const TScanTree tree("a/1.mp3 shut/2.mp3 z/3.mp3");
    fs::permissions(TextToPath(tree.Path()), fs::perms(0755));
    fs::permissions(TextToPath(tree.Path(u"shut"_s)), fs::perms::none);
    const TLogLines log;
    const uid_t user = geteuid();
    if (user == 0) {
        ASSERT_EQ(seteuid(65534), 0) << "root reads everything, so it steps down for the scan";
    }
    const QString found = tree.Scan();
    ASSERT_EQ(seteuid(user), 0);
    fs::permissions(TextToPath(tree.Path(u"shut"_s)), fs::perms::owner_all);
    EXPECT_EQ(found, u"a/1.mp3; z/3.mp3"_s);
    EXPECT_EQ(log.Lines.filter(tree.Path(u"shut"_s)).size(), 1);
}

TEST(FolderScan, PipesAndFoldersWithAudioNamesAreNoFiles)
{
    const TScanTree tree("folder.mp3/1.mp3");
    ASSERT_TRUE(Kit::RunProgram(u"mkfifo"_s, {tree.Path(u"pipe.mp3"_s)}));
    EXPECT_EQ(tree.Scan(), u"folder.mp3/1.mp3"_s);
}

TEST(FindCovers, PicturesAreSortedByTheirNames)
{
    const struct {
        const char *Name, *Files, *Front, *Back, *Media, *Others;
    } rows[] = {
        {"the plain names", "folder.jpg back.png cd.gif", "folder.jpg", "back.png", "cd.gif", ""},
        {"heads and tails of names", "Album-Front.JPG rear2.bmp my_media.jpe", "Album-Front.JPG", "rear2.bmp",
         "my_media.jpe", ""},
        {"a middle does not match", "my_front_x.jpg", "my_front_x.jpg", "", "", ""}, // by the last rule only
        {"filled places fall through", "cover.jpg coverback.jpg front.jpg", "cover.jpg", "coverback.jpg", "",
         "front.jpg"},
        {"a name that ends in cd", "front.jpg abcd.jpg", "front.jpg", "", "abcd.jpg", ""},
        {"the first other becomes the front", "b.png a.png notes.txt x.webp", "a.png", "", "", "b.png"},
        {"cover folders in their order", "Scans/front.jpg COVERS/cover.jpg scans/1.png", "COVERS/cover.jpg", "", "",
         "Scans/front.jpg scans/1.png"},
        {"own pictures before all", "front.jpg covers/front.jpg", "front.jpg", "", "", "covers/front.jpg"},
        {"other folders only without a front", "front.jpg other/back.jpg", "front.jpg", "", "", ""},
        {"other folders but disc folders", "A/front.jpg B/front.jpg CD1/back.jpg info/back.jpg", "A/front.jpg",
         "info/back.jpg", "", "B/front.jpg"},
        {"no search below them", "A/B/front.jpg", "", "", "", ""},
        {"a folder is no picture", "front.jpg/x.txt", "", "", "", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        const TScanTree tree(row.Files);
        const TFoundCovers covers = FindCovers({.Own = {tree.Path()}});
        EXPECT_EQ(tree.Shown({{covers.Front}}), QString::fromUtf8(row.Front));
        EXPECT_EQ(tree.Shown({{covers.Back}}), QString::fromUtf8(row.Back));
        EXPECT_EQ(tree.Shown({{covers.Media}}), QString::fromUtf8(row.Media));
        EXPECT_EQ(tree.Shown({covers.Others}), QString::fromUtf8(row.Others));
    }
    EXPECT_TRUE(FindCovers({.Own = {u"/no/such/folder"_s}}).Front.isEmpty());
}

TEST(FindCovers, TheFoldersOfTheTracksComeBeforeTheirParent)
{
    const struct {
        const char *Name, *Files;
        bool ParentCounts, ParentIsRelease;
        const char *Front, *Others;
    } rows[] = {
        {"own before parent", "cover.jpg 1/front.jpg 2/front.jpg", true, true, "1/front.jpg", "2/front.jpg cover.jpg"},
        {"a later disc before the parent", "cover.jpg 2/front.jpg", true, true, "2/front.jpg", "cover.jpg"},
        {"the parent's front before another picture", "cover.jpg 1/a.jpg", true, true, "cover.jpg", "1/a.jpg"},
        {"a parent that is not the release's", "cover.jpg 1/x.txt 3/front.jpg", false, false, "", ""},
        {"a parent with other albums", "1/x.txt 3/front.jpg", true, false, "", ""},
        {"a parent with further folders", "1/x.txt 3/front.jpg", true, true, "3/front.jpg", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        const TScanTree tree(row.Files);
        const TFoundCovers covers = FindCovers({.Own = {tree.Path(u"1"_s), tree.Path(u"2"_s)},
                                                .Parent = row.ParentCounts ? tree.Path() : QString(),
                                                .ParentIsRelease = row.ParentIsRelease});
        EXPECT_EQ(tree.Shown({{covers.Front}}), QString::fromUtf8(row.Front));
        EXPECT_EQ(tree.Shown({covers.Others}), QString::fromUtf8(row.Others));
    }
}

} // namespace Kestrune
