// SPDX-License-Identifier: GPL-3.0-or-later
#include "uImport.h"
#include "uImportKit.h"
#include "uImport_MP3s.h"
#include "uObjs.h"

#include <QCoreApplication>

#include <atomic>
#include <functional>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// A source whose job is a function of the test; keeps what the worker reports.
class TScriptedImporter final : public TKRNImporter {
public:
    explicit TScriptedImporter(TDataModuleMain& data) : TKRNImporter(data) { Listen(); }
    using TKRNImporter::DoOnImportDone;
    using TKRNImporter::DoOnItemError;
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
        SetOnItemError([this](TKRNImporter&, const QString& item, const QString& error) {
            Note(u"item %1: %2"_s.arg(item, error));
        });
    }
};

using ImportFramework = Kit::TImportCollection;

} // namespace

TEST_F(ImportFramework, AnotherProgramThatHoldsTheFileIsWaitedForWithAWord)
{
    TSQLiteConnection other;
    other.Open(FData.CurrentFile());
    for (const bool cancelled : {false, true}) {
        SCOPED_TRACE(cancelled);
        TScriptedImporter importer(FData);
        other.Exec(u"BEGIN IMMEDIATE"_s);
        importer.Job = [&](TScriptedImporter& self) { self.Store(u"kept"_s); };
        // The word comes while the worker waits: then the other program is done, or the user has had enough.
        importer.SetOnProgress([&](TKRNImporter& self, int, int, bool, const QString& item) {
            importer.Log += item;
            if (cancelled)
                self.Terminate();
            else
                other.Exec(u"ROLLBACK"_s);
        });
        importer.Run();
        ASSERT_FALSE(importer.Log.isEmpty());
        EXPECT_TRUE(importer.Log.front().startsWith(u"Another program"_s)) << importer.Log.front().toStdString();
        EXPECT_EQ(importer.Log.filter(u"stored"_s).size(), cancelled ? 0 : 1);
        if (cancelled)
            other.Exec(u"ROLLBACK"_s);
    }
    EXPECT_EQ(FData.qReleasesMain.RecordCount(), 1);
}

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
        self.DoOnItemError(u"f"_s, u"Sentence."_s);
        throw std::runtime_error("the source broke");
    };
    importer.Run();
    EXPECT_EQ(importer.Log, (QStringList{u"stored 1 A - kept"_s, u"error the source broke"_s, u"item f: Sentence."_s}));
    EXPECT_EQ(Rows(u"SELECT ReleaseName FROM Releases2"_s), u"kept"_s);
}

TEST_F(ImportFramework, WhateverASourceThrowsBecomesItsErrorEvent)
{
    struct TNoException {};
    const struct {
        std::function<void()> Throw;
        QString Expected;
    } rows[] = {{[] { throw TNoException(); }, u"error The source failed without telling why."_s},
                {[] { throw std::runtime_error(""); }, u"error The source failed without telling why."_s},
                {[] { throw 7; }, u"error The source failed without telling why."_s},
                {[] { throw std::bad_alloc(); }, u"error std::bad_alloc"_s}};
    for (const auto& row : rows) {
        TScriptedImporter importer(FData);
        importer.Job = [&](TScriptedImporter& self) {
            const TScriptedImporter::TControlsOff controlsOff(self);
            row.Throw();
        };
        int resets = 0;
        const auto listening = QObject::connect(&FData.qReleasesMain, &TDataset::dataReset, qApp, [&] { ++resets; });
        importer.Run();
        QObject::disconnect(listening);
        EXPECT_EQ(importer.Log, QStringList{row.Expected});
        EXPECT_EQ(resets, 1) << "the views go on";
    }
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

TEST_F(ImportFramework, TheLogTellsWhatTheFileMakesOfATextThatLooksLikeANumber)
{
    Defaults().ReleaseFields.Slots[0].DisplayName = u"Shelf"_s;
    TScriptedImporter importer(FData);
    importer.Job = [](TScriptedImporter& self) {
        TAlbumRelease release;
        release.SetItem2(u"ReleaseName"_s, u"X"_s);
        release.SetItem2(u"Custom1"_s, u"0042"_s);
        self.StoreRelease(release, true);
    };
    importer.Run();
    ASSERT_EQ(importer.Log.size(), 2);
    EXPECT_TRUE(importer.Log[0].contains(u" - X: Shelf: “0042” is kept as “42”"_s)) << importer.Log[0].toStdString();
}

TEST_F(ImportFramework, WhatIsPassedOverComesWithTheNextCall)
{
    TScriptedImporter importer(FData);
    importer.Job = [](TScriptedImporter& self) {
        self.DoOnItemError(u"1"_s, u"a"_s);
        self.Store(u"X"_s);
        self.DoOnItemError(u"2"_s, u"b"_s);
        self.DoOnProgress(50, 100, false, u"p"_s);
        self.DoOnItemError(u"3"_s, u"c"_s);
        self.DoOnImportDone(1, 3);
        self.DoOnItemError(u"4"_s, u"d"_s);
    };
    importer.Run();
    EXPECT_EQ(importer.Log, (QStringList{u"item 1: a"_s, u"stored 1 A - X"_s, u"item 2: b"_s, u"progress 50/100 p"_s,
                                         u"item 3: c"_s, u"done 1 3"_s, u"item 4: d"_s}));
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

// One hundred thousand ticked rows among as many: looking through a list for each would take minutes.
TEST_F(ImportFramework, ManyKeysAreFoundAtOnce)
{
    constexpr int count = 100000;
    TScriptedImporter importer(FData);
    std::vector<TVariant> keys;
    for (int i = 0; i < count; ++i)
        keys.emplace_back(2 * i);
    importer.SetIDsArray(std::move(keys));
    int wanted = 0;
    for (int i = 0; i < count; ++i)
        wanted += importer.IsWanted(u"%1"_s.arg(i)) ? 1 : 0;
    EXPECT_EQ(wanted, count / 2);
}

TEST_F(ImportFramework, TheListOfSourcesAnswersBeforeAnyWorkerExists)
{
    ASSERT_EQ(ImporterClasses().size(), 1u);
    const TImporterClass* folders = FindImporterClass(u"TKRNImporter_MP3s"_s);
    ASSERT_EQ(folders, &ImporterClasses()[0]);
    EXPECT_EQ(FindImporterClass(u"TKRNImporter"_s), nullptr);
    EXPECT_EQ(folders->ImporterType, iitFolder);
    EXPECT_EQ(folders->GetDisplayName(), u"Digital files (MP3, FLAC, OGG, WMA, etc)"_s);
    EXPECT_EQ(folders->GetDisplayDesc().count(u'\n'), 2);
    EXPECT_EQ(folders->GetSelectSourceDescription().count(u'\n'), 4);
    EXPECT_EQ(folders->GetImporterFileExtFilter(), QString());
    EXPECT_TRUE(folders->AllowsDragNDrop);
    EXPECT_FALSE(folders->CanCopyAndPasteData || folders->CanSelectWhichAlbumsToImport || folders->Driver);
    EXPECT_NE(dynamic_cast<TKRNImporter_MP3s*>(folders->Create(FData).get()), nullptr);
}

TEST_F(ImportFramework, ProgramsThatOneWorkerReadsAreRows)
{
    class TTables final : public TKRNImporter {
    public:
        TTables(TDataModuleMain& data, const TImporterClass& program) : TKRNImporter(data), Prefix(program.ScriptPrefix)
        {}
        const QString Prefix;

    protected:
        void Import() override {}
    };
    const auto row = [](const QString& name, const QString& filter, const QString& prefix) {
        return TImporterClass{
            .DisplayName = name, .FileFilter = filter, .ScriptPrefix = prefix, .NewWorker = MakeImporter<TTables>};
    };
    const TImporterClass discs = row(u"Disc Shelf"_s, u"Disc Shelf File (*.shf)|*.shf"_s, u"disc_shelf"_s);
    const TImporterClass tapes = row(u"Tape Box"_s, u"Tape Box (*.box)|*.box"_s, u"tape_box"_s);
    EXPECT_EQ(discs.GetDisplayName() + tapes.GetDisplayName(), u"Disc ShelfTape Box"_s);
    EXPECT_EQ(tapes.GetImporterFileExtFilter(), u"Tape Box (*.box)|*.box|All files (*.*)|*.*"_s);
    EXPECT_EQ(tapes.GetSelectSourceDescription(), u"Select the file to import data from."_s);
    EXPECT_EQ(dynamic_cast<TTables&>(*discs.Create(FData)).Prefix, u"disc_shelf"_s);
    EXPECT_EQ(dynamic_cast<TTables&>(*tapes.Create(FData)).Prefix, u"tape_box"_s);
    EXPECT_TRUE(tapes.MakeOptions()->Names().isEmpty());
}

// The worker is in its job while it is freed, and what it uses of itself is freed only when the job has ended.
TEST_F(ImportFramework, AWorkerEndsBeforeItsPartsAreFreed)
{
    class TDerived : public TKRNImporter {
    public:
        using TKRNImporter::TKRNImporter;
        std::atomic<bool> Begun{false};
        QString* Ending = nullptr;

    protected:
        void Import() override
        {
            Begun = true;
            while (!Terminated())
                std::this_thread::yield();
            *Ending = Word();
        }
        virtual QString Word() const { return FText; }
        const QString FText = u"still there"_s;
    };
    QString ending;
    auto* worker = new TDerived(FData);
    worker->Ending = &ending;
    TImporterPtr owner(worker);
    owner->Start();
    while (!worker->Begun)
        std::this_thread::yield();
    owner.reset();
    EXPECT_EQ(ending, u"still there"_s);
}

TEST(ImportOptions, AreToldByTheirNames)
{
    Defaults() = MakeDefaults();
    Defaults().MP3ScanBackCover = false;
    const std::unique_ptr<TImportOptions> options = FindImporterClass(u"TKRNImporter_MP3s"_s)->MakeOptions();
    EXPECT_EQ(options->Names().join(u' '), u"covers back-cover media-cover other-images"_s);
    EXPECT_EQ(options->Get(u"covers"_s) + options->Get(u"back-cover"_s), u"yesno"_s) << "as the settings have them";
    EXPECT_TRUE(options->Set(u"Covers"_s, u"No"_s) && options->Set(u"back-cover"_s, u"1"_s));
    EXPECT_FALSE(options->Set(u"covers"_s, u"maybe"_s) || options->Set(u"none"_s, u"yes"_s));
    const auto copy = options->Clone();
    options->Set(u"covers"_s, u"yes"_s);
    const auto& scan = dynamic_cast<const TMP3ScanOptions&>(*copy);
    EXPECT_TRUE(!scan.FindCovers && scan.BackCover && scan.MediaCover && !scan.OtherImages);
    int number = 5;
    EXPECT_TRUE(!ReadOption(u"x"_s, number) && number == 5 && ReadOption(u" 8 "_s, number) && number == 8);
}

} // namespace Kestrune
