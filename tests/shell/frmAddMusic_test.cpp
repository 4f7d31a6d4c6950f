// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmAddMusic.h"
#include "uDefaults.h"
#include "uFormKit.h"
#include "uHostLimiter.h"
#include "uOnlineKit.h"
#include "uTHStrings.h"

#include <QEventLoop>
#include <QSignalSpy>
#include <QTimer>

#include <gtest/gtest.h>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

class AddMusic : public Kit::TMainFormTest {
protected:
    AddMusic()
    {
        HostLimiter().Clear();
        Grabber.Parse(Package.Path());
        Defaults().SearchByBarcode = Defaults().SearchByCatalogNo = Defaults().SearchByCD = 3;
        Defaults().SearchByArtistRelease = 3;
        OpenCollection();
        Make();
        Package.Server.Serve("/two", {.Body = R"({"hits":[{"title":"Second","ean":"12"}]})"});
    }

    void Make()
    {
        Form.emplace(Grabber, FData, FPrompt);
        Form->Drive().ListDrives = [] { return QStringList{u"/dev/sr7"_s}; };
    }
    void OpenCollection()
    {
        FData.CreateNewDB(FPath, FData.GetNewDatabaseSQL());
        Defaults().DBPath = FPath;
        FForm.FormCreate({});
    }

    // Serves events until a condition holds; the test's own time-out ends a wait for ever.
    void WaitUntil(const std::function<bool()>& condition)
    {
        QTimer look; // what the server has seen is no event here
        look.start(5);
        while (!condition())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    void WaitForDownloads()
    {
        WaitUntil([this] { return !Form->Busy() && !Form->Drive().Reading(); });
        QCoreApplication::processEvents();
    }
    QStringList Titles(int tab = -1) const
    {
        QStringList titles;
        for (const TSearchHit& hit :
             (tab < 0 ? Form->Tabs().Current() : Form->Tabs().Items()[static_cast<size_t>(tab)]).Hits)
            titles << hit.ReleaseName;
        return titles;
    }
    QString States() const
    {
        QStringList texts;
        for (const TServiceStatus& status : Form->Statuses())
            texts << u"%1 %2 %3"_s.arg(status.DisplayName).arg(static_cast<int>(status.State)).arg(status.Found);
        return texts.join(u", "_s);
    }
    void SearchBarcode(const QString& codes)
    {
        Form->Fields().SetArea(saBarcode);
        Form->Fields().Barcodes = codes;
        Form->Search();
        WaitForDownloads();
    }

    Kit::TServicePackage Package;
    TInfoGrabber Grabber;
    std::optional<TAddMusicForm> Form;
};

TEST_F(AddMusic, ASearchAsksEachChosenServiceAndShowsItsHits)
{
    Package.Server.Serve("/one", {.Body = Package.Hits({"First", "Other"})});
    SearchBarcode(u" 4 006-381 333931 "_s);
    QStringList titles = Titles();
    titles.sort();
    EXPECT_EQ(titles, (QStringList{u"First"_s, u"Other"_s, u"Second"_s}));
    EXPECT_EQ(Form->Tabs().Current().Caption, u"Barcode: 4006381333931"_s);
    EXPECT_EQ(States(), u"Service One 3 2, Service Two 3 1"_s);
    EXPECT_EQ(Form->StatusText(), u"Download complete"_s);
    EXPECT_TRUE(Package.Server.Log().front().Headers["user-agent"].startsWith("Kestrune"));
    Defaults().ServicesContact = u"me@mail.invalid"_s;

    Form->Fields().ChooseService(saBarcode, 0, false);
    EXPECT_EQ(Defaults().SearchByBarcode, 2);
    SearchBarcode(u"1"_s);
    EXPECT_EQ(Titles(), QStringList{u"Second"_s}) << "the tab was emptied first";
    EXPECT_TRUE(Package.Server.Log().back().Headers["user-agent"].endsWith("( me@mail.invalid )"));
    Defaults().ServicesContact.clear();
    Form->Fields().ChooseService(saBarcode, 1, false);
    const auto before = Package.Server.Log().size();
    SearchBarcode(u"1"_s);
    EXPECT_EQ(Package.Server.Log().size(), before);
    EXPECT_TRUE(Titles().isEmpty());
}

struct TKindRow {
    const char16_t* Artist;
    const char16_t* Title;
    const char* Section;
    const char16_t* Caption;
};

TEST_F(AddMusic, TheFieldsChooseTheSearch)
{
    const TKindRow rows[] = {
        {u"Ann", u"Song", "ReleaseAndArtistSearch", u"Release: Ann Song"},
        {u"", u"Song", "ReleaseSearch", u"Release: Song"},
        {u"A/B", u"", "ArtistSearch", u"Artist: A/B"},
    };
    for (const TKindRow& row : rows) {
        Form->Fields().Artist = QString::fromUtf16(row.Artist);
        Form->Fields().ReleaseTitle = QString::fromUtf16(row.Title);
        Form->actSearchByArtistOrRelease();
        WaitForDownloads();
        QByteArray asked;
        for (const auto& request : Package.Server.Log())
            if (request.Path == "/one")
                asked = request.Query;
        EXPECT_TRUE(asked.startsWith(QByteArray("kind=") + row.Section)) << asked.constData();
        EXPECT_EQ(Form->Tabs().Current().Caption, QString::fromUtf16(row.Caption));
        if (*row.Artist == u'A' && row.Artist[1] == u'/') {
            EXPECT_TRUE(asked.contains("&a=A%2FB&r=&")) << asked.constData();
            EXPECT_TRUE(asked.endsWith("&q=A%5C%2FB")) << asked.constData();
        }
    }
    const auto before = Package.Server.Log().size();
    Form->Fields().Artist.clear();
    Form->Fields().ReleaseTitle = u"  "_s;
    Form->actSearchByArtistOrRelease();
    EXPECT_FALSE(Form->Busy());
    Form->Fields().CatalogNo = u"X 1"_s;
    Form->actSearchByCatalogNo();
    WaitForDownloads();
    EXPECT_EQ(Form->Tabs().Current().Caption, u"Catalog no: X 1"_s);
    EXPECT_EQ(Package.Server.Log().size(), before + 2);
}

TEST_F(AddMusic, CoversAndFullRecordsFollow)
{
    const QByteArray thumb = Package.Server.URL(u"/thumb"_s).toUtf8(), large = Package.Server.URL(u"/large"_s).toUtf8();
    Package.Server.Serve("/one", {.Body = Package.Hits({"First", "Same cover"}, thumb)});
    Package.Server.Serve("/thumb", {.Body = Kit::MakePicture(60, 40, "JPG")});
    Package.Server.Serve("/large", {.Body = Kit::MakePicture(500, 400, "JPG", 2)});
    Package.Server.Serve("/full", {.Body = "<SearchResults><Release RELEASE_TITLE='Whole' LABEL='L'><Tracks><Track "
                                           "TRACK_TITLE='t' TRACK_NO='1'/></Tracks><Images><Image type='large'>" +
                                           large + "</Image></Images></Release></SearchResults>"});
    Form->Fields().ChooseService(saBarcode, 1, false);
    SearchBarcode(u"1"_s);
    ASSERT_EQ(Titles().size(), 2);
    EXPECT_EQ(Package.Server.Count("/thumb"), 1) << "one request for both";
    for (const TSearchHit& hit : Form->Tabs().Current().Hits) {
        EXPECT_EQ(hit.Cover.size(), QSize(60, 40));
        EXPECT_TRUE(hit.DataPointer->GetPicByType(cptFrontThumb)->HasImage());
        EXPECT_FALSE(hit.Complete);
    }
    const qint64 record = Form->Tabs().Current().Hits[1].RecordIndex;
    Form->FocusHit(record);
    Form->FocusHit(record);
    WaitForDownloads();
    EXPECT_EQ(Package.Server.Count("/full"), 1);
    const TSearchHit& hit = Form->Tabs().Current().Hits[1];
    EXPECT_TRUE(hit.Complete);
    EXPECT_EQ(hit.ReleaseName, u"Whole"_s);
    EXPECT_EQ(hit.Artist, u"Artist"_s) << "what the full record does not say stays";
    ASSERT_TRUE(hit.DataPointer->GetPicByType(cptFrontLarge));
    EXPECT_EQ(hit.DataPointer->GetPicByType(cptFrontLarge)->Size(), QSize(500, 400));
    const TDetailData details = Form->Tabs().Details();
    EXPECT_EQ(details.Title, u"Whole"_s);
    EXPECT_EQ(details.Cover, hit.DataPointer->GetPicByType(cptFrontLarge)->Bytes());
    ASSERT_EQ(details.Discs.size(), 1U);
    EXPECT_EQ(Form->ProviderName(Form->Tabs().FocusedHit()->DataProvider), u"Service One"_s);
}

TEST_F(AddMusic, APictureOfOnePixelIsNoCover)
{
    Package.Server.Serve("/one", {.Body = Package.Hits({"First"}, Package.Server.URL(u"/dot"_s).toUtf8())});
    Package.Server.Serve("/dot", {.Body = Kit::MakePicture(1, 1, "PNG")});
    SearchBarcode(u"1"_s);
    EXPECT_EQ(Package.Server.Count("/dot"), 1);
    for (const TSearchHit& hit : Form->Tabs().Current().Hits)
        EXPECT_TRUE(hit.Cover.isNull());
}

struct TStateRow {
    const char* Name;
    Kit::TWebAnswer Answer;
    TServiceState State;
    const char16_t* Reason;
};

TEST_F(AddMusic, EachServiceTellsHowItFared)
{
    const TStateRow rows[] = {
        {"nothing", {.Body = "<SearchResults/>"}, ssFound, u""},
        {"unknown", {.Status = 404, .Body = "<SearchResults unknown='true'/>"}, ssFound, u""},
        {"no page", {.Status = 404, .Body = "<SearchResults/>"}, ssFailed, u"The service answered 404"},
        {"refused", {.Status = 401}, ssFailed, u"Access refused (401)"},
        {"busy", {.Status = 503}, ssFailed, u"The service is busy (503)"},
        {"no xml", {.Body = "oops"}, ssFailed, u"The answer was not understood"},
        {"cut off", {.Body = "<SearchResults/>", .CutAfter = 3}, ssFailed, u"The connection broke off"},
    };
    for (const TStateRow& row : rows) {
        SCOPED_TRACE(row.Name);
        Package.Server.Serve("/one", row.Answer);
        SearchBarcode(u"1"_s);
        EXPECT_EQ(Form->Statuses()[0].State, row.State);
        EXPECT_EQ(Form->Statuses()[0].Reason, QString::fromUtf16(row.Reason));
        EXPECT_EQ(Titles(), QStringList{u"Second"_s}) << "the others go on";
    }
    EXPECT_TRUE(FPrompt.Errors.isEmpty());
    Package.Server.Serve("/two", {.Body = "<html>no json"});
    SearchBarcode(u"1"_s);
    EXPECT_EQ(Form->Statuses()[1].Reason, u"The answer was not understood"_s);
    Package.Server.Serve("/two", {.Body = "{\"hits\":[" + QByteArray("1,").repeated(30'000) + "1]}"});
    SearchBarcode(u"1"_s);
    EXPECT_EQ(Form->Statuses()[1].Reason, u"The answer is too large"_s);
    Package.Server.Serve("/two", {.Body = R"({"hits":[{"title":"Second","ean":"12"}]})"});
    SearchBarcode(u"1"_s);
    Form->Fields().Barcodes = u"9"_s; // a retry asks for what the tab is about
    // The failed one alone is asked again, and its hits come behind those that are there.
    Package.Server.Serve("/one", {.Body = Package.Hits({"Late"})});
    const int asked = Package.Server.Count("/two");
    Form->RetryService(0);
    WaitForDownloads();
    EXPECT_EQ(Titles(), (QStringList{u"Second"_s, u"Late"_s}));
    EXPECT_EQ(Package.Server.Count("/two"), asked);
    EXPECT_TRUE(Package.Server.Log().back().Query.contains("&b=1&"));
}

TEST_F(AddMusic, APictureAtTheAddressOfATextIsNoPicture)
{
    const QByteArray itself = Package.Server.URL(u"/two?b=1"_s).toUtf8();
    Package.Server.Serve("/one", {.Body = Package.Hits({"A"}, itself)});
    Package.Server.Serve("/two", {.Body = R"({"hits":[{"title":"Second","ean":"12"}]})", .DelayMs = 100});
    SearchBarcode(u"1"_s);
    EXPECT_EQ(Titles(), (QStringList{u"A"_s, u"Second"_s}));
    EXPECT_TRUE(Form->Tabs().Current().Hits[0].Cover.isNull());
}

TEST_F(AddMusic, AServiceLearnsNoKeysThroughItsPictures)
{
    Defaults().OEM.LAST_FM_API_KEY = u"secret"_s;
    const QByteArray elsewhere = Package.Server.URL(u"/leak/%LAST_FM_API_KEY%/%BARCODE%"_s, u"localhost"_s).toUtf8();
    Package.Server.Serve("/one", {.Body = Package.Hits({"A"}, elsewhere)});
    SearchBarcode(u"1"_s);
    QByteArray asked;
    for (const auto& request : Package.Server.Log())
        asked += request.Target;
    EXPECT_TRUE(asked.contains("/leak/")) << asked.constData();
    EXPECT_TRUE(asked.contains("/4000000000001")) << "what is known of the release is filled in";
    EXPECT_FALSE(asked.contains("secret"));
}

TEST_F(AddMusic, AFullRecordThatFailedIsAskedForAgain)
{
    Package.Server.Serve("/one", {.Body = Package.Hits({"A"})});
    Package.Server.Serve("/full", {.Status = 503});
    Form->Fields().ChooseService(saBarcode, 1, false);
    SearchBarcode(u"1"_s);
    const qint64 record = Form->Tabs().Current().Hits[0].RecordIndex;
    for (const Kit::TWebAnswer& answer : {Kit::TWebAnswer{.Status = 503},
                                          {.Body = "no xml"},
                                          {.Body = "<SearchResults><Release LABEL='L'/></SearchResults>"}}) {
        EXPECT_FALSE(Form->Tabs().Current().Hits[0].Complete);
        Package.Server.Serve("/full", answer);
        Form->FocusHit(record);
        WaitForDownloads();
    }
    EXPECT_TRUE(Form->Tabs().Current().Hits[0].Complete);
    Form->FocusHit(record);
    WaitForDownloads();
    EXPECT_EQ(Package.Server.Count("/full"), 3);
}

TEST_F(AddMusic, ADiscIsSearchedForInTheTabWhereItWasAskedFor)
{
    Package.Server.Serve("/one", {.Body = Package.Hits({"A"})});
    Form->Fields().ChooseService(saBarcode, 1, false);
    SearchBarcode(u"1"_s);
    Form->Drive().ReadDisc = [](const QString&, TDiscTexts&, QString&) { return true; };
    Form->Tabs().actNewTab();
    Form->Fields().SetArea(saCD);
    Form->Search();
    Form->Tabs().SetCurrent(0);
    WaitForDownloads();
    EXPECT_EQ(Titles(0), QStringList{u"A"_s});
    EXPECT_EQ(Form->Tabs().Items()[1].Caption, u"CD search"_s);
}

TEST_F(AddMusic, AClosedWindowTakesNoAnswers)
{
    Package.Server.Serve("/one", {.Body = Package.Hits({"A"}), .DelayMs = 60});
    Form->Fields().SetArea(saBarcode);
    Form->Fields().Barcodes = u"1"_s;
    Form->Search();
    WaitUntil([this] { return Package.Server.Count("/one") == 1; });
    Form->FormClose();
    WaitForDownloads();
    EXPECT_TRUE(Titles().isEmpty());
    Form->Drive().ReadDisc = [](const QString&, TDiscTexts& texts, QString&) {
        texts.DiscID = u"late"_s;
        return true;
    };
    Form->FormShow();
    const auto before = Package.Server.Log().size();
    Form->Fields().SetArea(saCD);
    Form->Search();
    Form->FormClose();
    WaitForDownloads();
    EXPECT_EQ(Package.Server.Log().size(), before) << "nothing is searched for unseen";
    // Gone while texts are on their way.
    Form->FormShow();
    SearchBarcode(u"1"_s);
    Form->Search();
    Form.reset();
    QCoreApplication::processEvents();
}

TEST_F(AddMusic, AnUnknownDiscIsNoFailure)
{
    Form->Drive().ReadDisc = [](const QString& drive, TDiscTexts& texts, QString&) {
        EXPECT_EQ(drive, u"/dev/sr9"_s);
        texts.DiscID = u"disc-id"_s;
        return true;
    };
    Form->Drive().SetDrive(u"/dev/sr9"_s);
    Form->Fields().SetArea(saCD);
    Form->Search();
    EXPECT_TRUE(Form->Drive().Reading());
    EXPECT_FALSE(Form->SearchEnabled());
    WaitForDownloads();
    EXPECT_EQ(Form->Tabs().Current().Caption, u"CD search"_s);
    EXPECT_TRUE(std::ranges::any_of(Package.Server.Log(), [](const auto& request) {
        return request.Query.contains("kind=CDSearch") && request.Query.contains("d=disc-id");
    }));
    EXPECT_EQ(Form->Statuses()[0].State, ssFound);
    EXPECT_EQ(Form->Statuses()[0].Found, 0);

    Form->Drive().ReadDisc = [](const QString&, TDiscTexts& texts, QString& error) {
        texts.DiscID = u"left over"_s;
        error = u"No actual audio tracks on disc: CDROM or DVD?"_s;
        return false;
    };
    Form->Search();
    WaitForDownloads();
    EXPECT_EQ(Form->StatusText(), u"No audio CD could be read in the drive"_s) << "it stays when the searches are done";
    EXPECT_TRUE(Package.Server.Log().back().Path == "/two" || Package.Server.Log().back().Query.contains("d=&"));
}

TEST_F(AddMusic, SeveralBarcodesHaveATabEach)
{
    Package.Server.SetHandler([](const Kit::TWebRequest& request) {
        const QByteArray code = request.Query.mid(request.Query.indexOf("b=") + 2).split('&').front();
        return Kit::TWebAnswer{.Body = Kit::TServicePackage::Hits({"for " + code})};
    });
    Form->Fields().ChooseService(saBarcode, 1, false);
    Form->Fields().SetArea(saBarcode);
    Form->Fields().Barcodes = u"11\n\n 22 \n33"_s;
    Form->Search();
    WaitUntil([this] { return Form->Tabs().Items().size() == 3 && !Form->Busy(); });
    EXPECT_EQ(Titles(0), QStringList{u"for 11"_s});
    EXPECT_EQ(Titles(1), QStringList{u"for 22"_s});
    EXPECT_EQ(Titles(2), QStringList{u"for 33"_s});
    EXPECT_EQ(Form->Tabs().Items()[1].Caption, u"Barcode: 22"_s);
}

TEST_F(AddMusic, SavingHandsTheReleasesOverInTheirOrder)
{
    Package.Server.Serve("/one", {.Body = Package.Hits({"A", "B", "C"})});
    Form->Fields().ChooseService(saBarcode, 1, false);
    SearchBarcode(u"1"_s);
    EXPECT_FALSE(Form->SaveEnabled());
    EXPECT_EQ(Form->SaveHint(), u"Select the releases to save"_s);
    const auto record = [&](size_t at) { return Form->Tabs().Current().Hits[at].RecordIndex; };
    Form->Tabs().SetSelection({record(2), record(0)});
    Form->actSaveAndContinue();
    EXPECT_EQ(Titles(), QStringList{u"B"_s});
    EXPECT_EQ(Form->StatusText(), u"2 chosen without their full record: only the short one is kept"_s);
    Form->Tabs().SetSelection({record(0)});
    Form->actSaveAndClose();
    ASSERT_EQ(Form->Tabs().Items().size(), 1U) << "closing the last leaves a new one";
    EXPECT_TRUE(Titles().isEmpty());
    Form->Chosen().Remove(1);
    std::vector<TSavedRelease> saved = Form->Chosen().Take();
    ASSERT_EQ(saved.size(), 2U);
    EXPECT_EQ(VarToStr(saved[0].Release->GetItem2(u"ReleaseName"_s)), u"C"_s);
    EXPECT_EQ(VarToStr(saved[1].Release->GetItem2(u"ReleaseName"_s)), u"B"_s);
    EXPECT_TRUE(Form->Chosen().Items().empty());
}

TEST_F(AddMusic, WhatIsOwnedIsMarked)
{
    for (const auto& [key, value] : {std::pair{u"Barcode"_s, u"0400000000000 2"_s}, {u"CatalogNo"_s, u"none"_s}}) {
        TAlbumRelease owned;
        owned.SetItem2(u"ReleaseName"_s, u"x"_s);
        owned.SetItem2(key, value);
        FData.AddAlbumReleaseToDB(owned, false);
    }
    Package.Server.Serve("/one", {.Body = Package.Hits({"A", "B"})});
    Form->Fields().ChooseService(saBarcode, 1, false);
    SearchBarcode(u"1"_s);
    Form->FormShow();
    const auto yours = [&](size_t at) { return Form->Tabs().Current().Hits[at].Yours; };
    WaitUntil([&] { return yours(1); });
    EXPECT_FALSE(yours(0));
    SearchBarcode(u"2"_s);
    EXPECT_TRUE(yours(1)) << "also for later hits";
}

TEST(OwnedReleases, CompareNumbersAsTheyAreMeant)
{
    EXPECT_EQ(ComparedBarcode(u" 0 12345-67890 5"_s), u"12345678905"_s);
    EXPECT_TRUE(ComparedBarcode(u"n/a"_s).isEmpty());
    EXPECT_EQ(ComparedCatalogNo(u"CK 63-628"_s), ComparedCatalogNo(u"ck63628"_s));
    EXPECT_TRUE(ComparedCatalogNo(u"[none]"_s).isEmpty());
}

TEST_F(AddMusic, LateAnswersFindNobody)
{
    Package.Server.Serve("/one", {.Body = Package.Hits({"A"}, Package.Server.URL(u"/slow"_s).toUtf8())});
    Package.Server.Serve("/slow", {.Body = Kit::MakePicture(9, 9, "PNG"), .DelayMs = 100});
    Form->Fields().ChooseService(saBarcode, 1, false);
    Form->Fields().SetArea(saBarcode);
    Form->Fields().Barcodes = u"1"_s;
    Form->Search();
    WaitUntil([this] { return !Titles().isEmpty(); });
    EXPECT_TRUE(Form->StopEnabled());
    EXPECT_FALSE(Form->SearchEnabled());
    EXPECT_FALSE(Form->SearchHint().isEmpty());
    Form->Tabs().actClearAllTabs();
    WaitForDownloads();
    EXPECT_TRUE(Titles().isEmpty());

    Form->Search();
    WaitUntil([this] { return !Titles().isEmpty(); });
    Form.reset(); // while a picture is on its way
    QCoreApplication::processEvents();
    Make();
    Package.Server.Serve("/one", {.Body = "x", .SilentAfter = true});
    Form->Fields().SetArea(saBarcode);
    Form->Fields().Barcodes = u"1\n2"_s;
    Form->Search();
    WaitUntil([this] { return Package.Server.Count("/one") == 3; });
    Form->actStop();
    WaitForDownloads();
    EXPECT_EQ(Form->Statuses()[0].State, ssStopped);
    EXPECT_EQ(Form->Tabs().Items().size(), 1U) << "the codes that were left are not searched for";
}

TEST_F(AddMusic, TheConnectionTestTellsItsResult)
{
    Package.Server.Serve("/test", {.Body = "x"});
    Form->TestURL = Package.Server.URL(u"/test"_s);
    Form->actTestConnection();
    WaitUntil([this] { return Form->TestEnabled(); });
    EXPECT_EQ(FPrompt.Information, QStringList{u"Internet connection OK"_s});
    Form->TestURL = Package.Server.URL(u"/none"_s);
    Form->actTestConnection();
    WaitUntil([this] { return Form->TestEnabled(); });
    EXPECT_EQ(FPrompt.Errors, QStringList{u"Internet connection failed"_s});
}

TEST_F(AddMusic, TheMainWindowStoresWhatWasChosen)
{
    Package.Server.Serve("/one", {.Body = Package.Hits({"A", "B"})});
    FForm.Adding().SetAddMusicForm(&*Form);
    QSignalSpy opened(&FForm.Adding(), &TAdding::addMusicStarted);
    QSignalSpy bars(&FForm, &TKRNMainForm::barRaised);
    FForm.Actions().Trigger(u"actAddByBarcode"_s);
    EXPECT_EQ(opened.size(), 1);
    EXPECT_EQ(Form->Fields().Area(), saBarcode);
    EXPECT_FALSE(FForm.Actions().IsEnabled(u"actAddMusic"_s)) << "while its window is open";
    Form->Fields().ChooseService(saBarcode, 1, false);
    SearchBarcode(u"1"_s);
    Form->Tabs().actSelectAll();
    Form->actSaveAndContinue();
    FForm.Adding().AddMusicClosed();
    EXPECT_EQ(FData.qReleasesMain.RecordCount(), 2);
    ASSERT_EQ(bars.size(), 1);
    EXPECT_EQ(bars[0][1].toString(), u"Added to the collection: 2"_s);
    EXPECT_TRUE(FForm.Actions().IsEnabled(u"actAddMusic"_s));
    EXPECT_TRUE(Form->Chosen().Items().empty());
}

} // namespace
