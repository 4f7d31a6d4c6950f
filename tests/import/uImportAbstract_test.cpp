// SPDX-License-Identifier: GPL-3.0-or-later
#include "uImport.h"
#include "uImportKit.h"
#include "uObjs.h"

#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// A source whose job is a function of the test; keeps what the worker reports.
class TScriptedImporter final : public TKRNImporter {
public:
    explicit TScriptedImporter(TDataModuleMain& data) : TKRNImporter(data) { Listen(); }
    ~TScriptedImporter() override
    {
        Terminate();
        WaitFor();
    }

    static bool CanCopyAndPasteData() { return true; }
    static TKRNImporterInputType GetImporterType() { return iitFile; }
    static QString GetImporterFileExt() { return u"x"_s; }
    static QString GetImporterFileExtFilter() { return u"X (*.x)|*.x"_s; }
    static QString GetDisplayName() { return u"Scripted"_s; }
    static QString GetDisplayDesc() { return {}; }
    static QString GetSelectSourceDescription() { return {}; }

    using TKRNImporter::DoOnFileError;
    using TKRNImporter::DoOnImportDone;
    using TKRNImporter::DoOnProgress;
    using TKRNImporter::DoOnReleaseFound;
    using TKRNImporter::IsWanted;
    using TKRNImporter::StoreRelease;
    using TKRNImporter::TControlsOff;

    std::function<void(TScriptedImporter&)> Job;
    QStringList Log; // main thread

    void Run()
    {
        Start();
        WaitFor();
    }
    void Store(const QString& name)
    {
        TAlbumRelease release;
        release.SetItem2(u"Artist"_s, u"A"_s);
        release.SetItem2(u"ReleaseName"_s, name);
        StoreRelease(release, true);
    }

protected:
    void Import() override { Job(*this); }

private:
    void Note(const QString& line)
    {
        EXPECT_TRUE(OnMainThread());
        Log += line;
    }
    void Listen()
    {
        SetOnProgress([this](TKRNImporter&, int position, int count, bool isRelease, const QString& item) {
            Note(u"progress %1/%2%3 %4"_s.arg(position)
                     .arg(count)
                     .arg(isRelease ? u"!"_s : u""_s)
                     .arg(QString(item).replace(u'\n', u',')));
        });
        SetOnDone([this](TKRNImporter&, int releases, int tracks) { Note(u"done %1 %2"_s.arg(releases).arg(tracks)); });
        SetOnError([this](TKRNImporter&, const QString& error) { Note(u"error "_s + error); });
        SetOnReleaseFound([this](TKRNImporter&, const std::vector<TReleaseFoundItem>& items) {
            Note(u"found %1: %2"_s.arg(items.size()).arg(VarToStr(items.front().ReleaseID)));
        });
        SetOnReleaseStored(
            [this](TKRNImporter&, qint64 id, const QString& name) { Note(u"stored %1 %2"_s.arg(id).arg(name)); });
        SetOnFileError([this](TKRNImporter&, const QString& file, const QString& error) {
            Note(u"file %1: %2"_s.arg(file, error));
        });
    }
};

static_assert(CImporter<TScriptedImporter>);
static_assert(CImporter<TKRNImporter_MP3s>);
static_assert(!CImporter<TKRNImporter>, "a class without answers is no source");
static_assert(!CChecksDrivers<TScriptedImporter>);

using ImportFramework = Kit::TImportCollection;

} // namespace

TEST_F(ImportFramework, ListedReleasesAreDeliveredInBatches)
{
    const struct {
        int Count;
        QString Expected;
    } rows[] = {{0, u"end"_s},
                {19, u"end, found 19: 0"_s},
                {20, u"found 20: 0, end"_s},
                {41, u"found 20: 0, found 20: 20, end, found 1: 40"_s}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Count);
        TScriptedImporter importer(FData);
        importer.SetJobType(ijtGetReleasesList);
        importer.Job = [&](TScriptedImporter& self) {
            for (int i = 0; i < row.Count; ++i)
                self.DoOnReleaseFound(i, u"Artist"_s, u"Name"_s, u"1999"_s, 10);
            self.Log += u"end"_s;
        };
        importer.Run();
        EXPECT_EQ(importer.Log.join(u", "_s), row.Expected);
    }
}

TEST_F(ImportFramework, ProgressIsDeliveredAtTheFiftiethItemTheLastOnesAndForReleases)
{
    const struct {
        int Position, Count;
        bool IsRelease, Delivered;
    } rows[] = {{0, 1000, false, true},  {1, 1000, false, false},   {49, 1000, false, false}, {49, 1000, true, true},
                {50, 1000, false, true}, {998, 1000, false, false}, {999, 1000, false, true}, {1000, 1000, false, true},
                {7, 0, false, true},     {3, 5, false, false},      {4, 5, false, true}};
    for (const auto& row : rows) {
        TScriptedImporter importer(FData);
        importer.Job = [&](TScriptedImporter& self) {
            self.DoOnProgress(row.Position, row.Count, row.IsRelease, u"x"_s);
        };
        importer.Run();
        EXPECT_EQ(importer.Log.size(), row.Delivered ? 1 : 0) << row.Position << " of " << row.Count;
    }
    TScriptedImporter importer(FData);
    importer.Job = [](TScriptedImporter& self) {
        for (int i = 48; i <= 51; ++i)
            self.DoOnProgress(i, 1000, false, QString::number(i));
        self.DoOnProgress(52, 1000, true, u"R"_s);
    };
    importer.Run();
    EXPECT_EQ(importer.Log, (QStringList{u"progress 50/1000 48,49,50"_s, u"progress 52/1000! 51,R"_s}));
}

TEST_F(ImportFramework, AFailureOfTheSourceEndsTheJobWithItsMessage)
{
    TScriptedImporter importer(FData);
    importer.Job = [](TScriptedImporter& self) {
        const TScriptedImporter::TControlsOff controlsOff(self);
        self.Store(u"kept"_s);
        self.DoOnReleaseFound(1, {}, {}, {}, 0);
        self.DoOnFileError(u"f"_s, u"Sentence."_s);
        throw std::runtime_error("the source broke");
    };
    importer.Run();
    EXPECT_EQ(importer.Log, (QStringList{u"stored 1 A - kept"_s, u"error the source broke"_s, u"file f: Sentence."_s}));
    EXPECT_EQ(Rows(u"SELECT ReleaseName FROM Releases2"_s), u"kept"_s);
}

TEST_F(ImportFramework, AFullDiskEndsTheJobWithNothingHalfStored)
{
    TScriptedImporter importer(FData);
    importer.Job = [](TScriptedImporter& self) {
        self.Store(u"kept"_s);
        TAlbumRelease large;
        large.SetItem2(u"ReleaseName"_s, u"large"_s);
        large.AddPicture(cptOther).LoadFromBytes(Kit::MakePicture(400, 400, "BMP"));
        large.Tracks.resize(3);
        self.StoreRelease(large, true);
        self.DoOnImportDone(2, 3);
    };
    const qint64 pages = FData.ExecSQLAndGetID(u"PRAGMA page_count"_s);
    FData.ExecSQLAndGetID(u"PRAGMA max_page_count = %1"_s.arg(pages + 20));
    importer.Run();
    ASSERT_EQ(importer.Log.size(), 2);
    EXPECT_EQ(importer.Log[0], u"stored 1 A - kept"_s);
    EXPECT_TRUE(importer.Log[1].startsWith(u"error "_s)) << importer.Log[1].toStdString();
    EXPECT_EQ(Rows(u"SELECT ReleaseName, (SELECT count(*) FROM Tracks2) FROM Releases2"_s), u"kept|0"_s);
    EXPECT_EQ(Rows(u"PRAGMA integrity_check"_s), u"ok"_s);
}

TEST_F(ImportFramework, FailuresOfFilesComeWithTheNextCall)
{
    TScriptedImporter importer(FData);
    importer.Job = [](TScriptedImporter& self) {
        self.DoOnFileError(u"1"_s, u"a"_s);
        self.Store(u"X"_s);
        self.DoOnFileError(u"2"_s, u"b"_s);
        self.DoOnProgress(50, 100, false, u"p"_s);
        self.DoOnFileError(u"3"_s, u"c"_s);
        self.DoOnImportDone(1, 3);
        self.DoOnFileError(u"4"_s, u"d"_s);
    };
    importer.Run();
    EXPECT_EQ(importer.Log, (QStringList{u"file 1: a"_s, u"stored 1 A - X"_s, u"file 2: b"_s, u"progress 50/100 p"_s,
                                         u"file 3: c"_s, u"done 1 3"_s, u"file 4: d"_s}));
}

TEST_F(ImportFramework, NoKeyMeansAllReleases)
{
    TScriptedImporter importer(FData);
    EXPECT_TRUE(importer.IsWanted(5));
    importer.SetIDsArray({TVariant(5), TVariant(u"7"_s), TVariant(u"x"_s)});
    EXPECT_TRUE(importer.IsWanted(5) && importer.IsWanted(qint64(5)) && importer.IsWanted(7));
    EXPECT_TRUE(importer.IsWanted(u"x"_s));
    EXPECT_FALSE(importer.IsWanted(6) || importer.IsWanted(u"X"_s) || importer.IsWanted(TVariant()));
}

TEST_F(ImportFramework, TheListOfSourcesAnswersBeforeAnyObjectExists)
{
    ASSERT_EQ(ImporterClasses().size(), 1u);
    const TImporterClass* folders = FindImporterClass(u"TKRNImporter_MP3s"_s);
    ASSERT_EQ(folders, &ImporterClasses()[0]);
    EXPECT_EQ(FindImporterClass(u"TKRNImporter"_s), nullptr);
    EXPECT_EQ(folders->GetImporterType(), iitFolder);
    EXPECT_EQ(folders->GetDisplayName(), u"Digital files (MP3, FLAC, OGG, WMA, etc)"_s);
    EXPECT_EQ(folders->GetDisplayDesc().count(u'\n'), 2);
    EXPECT_EQ(folders->GetSelectSourceDescription().count(u'\n'), 4);
    EXPECT_TRUE(folders->AllowsDragNDrop());
    EXPECT_FALSE(folders->CanCopyAndPasteData() || folders->CanSelectWhichAlbumsToImport() ||
                 folders->NeedToCheckForMissingDrivers());
    EXPECT_EQ(folders->CheckForMissingDrivers, nullptr);
    EXPECT_NE(dynamic_cast<TKRNImporter_MP3s*>(folders->Create(FData).get()), nullptr);
}

} // namespace Kestrune
