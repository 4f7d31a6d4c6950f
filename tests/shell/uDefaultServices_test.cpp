// SPDX-License-Identifier: GPL-3.0-or-later
// The default services with recorded answers, from the barcode to the collection.
#include "frmAddMusic.h"
#include "uDefaultServices.h"
#include "uFormKit.h"
#include "uHostLimiter.h"
#include "uReleaseFetch.h"

#include <QCoreApplication>

#include <algorithm>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

class DefaultServices : public Kit::TMainFormTest {
protected:
    void SetUp() override
    {
        if (Kit::SamplesFolder().isEmpty())
            GTEST_SKIP() << "no samples here";
        HostLimiter().Clear();
        Server.SetHandler([this](const auto& request) { return Kit::SampleAnswer(request, Cover); });
        Grabber.Parse(Kit::PackageOnLoopback(FDir, Server, QString::fromUtf8(KESTRUNE_SERVICES_DIR)));
        FData.CreateNewDB(FPath, FData.GetNewDatabaseSQL());
        Defaults().DBPath = FPath;
        FForm.FormCreate({});
        Form.emplace(Grabber, FData, FPrompt);
        FForm.Adding().SetAddMusicForm(&*Form);
    }

    void WaitForDownloads()
    {
        while (Form->Busy())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::processEvents();
    }

    // Searches for a barcode, looks at the hit with this number at its service, saves it, and gives what was stored.
    TAlbumRelease AddByBarcode(const QString& service, const QString& id)
    {
        Defaults().SearchByBarcode = 7;
        FForm.Actions().Trigger(u"actAddByBarcode"_s);
        Form->Fields().Barcodes = u"074646362822"_s;
        Form->Search();
        WaitForDownloads();
        for (const TSearchHit& hit : Form->Tabs().Current().Hits) {
            if (hit.DataProvider != service || hit.DataPointer->ReleaseInternalID != id)
                continue;
            const qint64 record = hit.RecordIndex;
            Form->FocusHit(record);
            WaitForDownloads();
            Form->Tabs().SetSelection({record});
            break;
        }
        Form->actSaveAndClose();
        FForm.Adding().AddMusicClosed();
        FData.SelectRelease(FData.LastAddedReleaseID());
        return FData.CurrentReleaseToAlbumRelease();
    }

    static QStringList Values(const TAlbumRelease& release, const QStringList& keys)
    {
        QStringList values;
        for (const QString& key : keys)
            values << VarToStr(release.GetItem2(key));
        return values;
    }
    static QStringList Tracks(const TAlbumRelease& release)
    {
        QStringList tracks;
        for (const TAlbumTrack& track : release.Tracks)
            tracks << u"%1.%2%3 %4 %5"_s.arg(track.DiscNo)
                          .arg(track.Side)
                          .arg(track.TrackNo)
                          .arg(track.TrackName)
                          .arg(qRound(track.DurationFrac > 0 ? track.DurationFrac * 86400 : track.DurationSec));
        return tracks;
    }

    const QByteArray Cover = Kit::MakePicture(300, 300, "JPG");
    Kit::TWebServer Server;
    TInfoGrabber Grabber;
    std::optional<TAddMusicForm> Form;
};

const QStringList Fields{u"Artist"_s,      u"ReleaseName"_s, u"Label"_s,       u"CatalogNo"_s,
                         u"CountryCode"_s, u"ReleaseYear"_s, u"ReleaseDate"_s, u"MediaType"_s};

TEST_F(DefaultServices, ARecordOfTwoSidesIsStoredWhole)
{
    const TAlbumRelease release = AddByBarcode(u"discogs"_s, u"1743771"_s);
    EXPECT_EQ(Values(release, Fields),
              (QStringList{u"Mr. James Barth & A.D."_s, u"Knockin' Boots Vol 2 Of 2"_s, u"Svek"_s, u"SK 026"_s, u"SE"_s,
                           u"1998"_s, QString(), u"Vinyl"_s}));
    EXPECT_EQ(Tracks(release), (QStringList{u"1.A1 A Sea Apart 308"_s, u"1.A2 Dutchmaster 261"_s,
                                            u"1.B3 Inner City Lullaby 262"_s, u"1.B4 Yeah Kid! 286"_s}));
    QStringList credits;
    for (const TAlbumCredit& credit : release.Credits)
        credits << credit.Musician + u": "_s + credit.Credit;
    credits.sort();
    EXPECT_EQ(credits, (QStringList{u"Alexi Delano: Producer"_s, u"Alexi Delano: Recorded By"_s,
                                    u"Alexi Delano: Written-By"_s, u"Cari Lekebusch: Producer"_s,
                                    u"Cari Lekebusch: Recorded By"_s, u"Cari Lekebusch: Written-By"_s}));
    ASSERT_TRUE(release.GetPicByType(cptFrontLarge));
    EXPECT_EQ(release.GetPicByType(cptFrontLarge)->Bytes(), Cover);
    EXPECT_TRUE(release.GetPicByType(cptFrontThumb));
}

TEST_F(DefaultServices, ADatedDiscIsStoredWhole)
{
    const TAlbumRelease release = AddByBarcode(u"musicbrainz"_s, u"e94757ff-2655-4690-b369-4012beba6114"_s);
    EXPECT_EQ(Values(release, {u"Artist"_s, u"ReleaseName"_s, u"Label"_s, u"CatalogNo"_s, u"Barcode"_s,
                               u"ReleaseYear"_s, u"MediaType"_s}),
              (QStringList{u"JT Bruce"_s, u"Ruined Subjects"_s, u"Waysafe"_s, u"WS06"_s, u"9421021463277"_s, u"2011"_s,
                           u"CD"_s}))
        << "the full record over its summary";
    EXPECT_EQ(release.GetItem2(u"ReleaseDate"_s).toDate(), QDate(2011, 8, 9));
    EXPECT_EQ(release.Tracks.size(), 21U);
    EXPECT_EQ(release.GetPicByType(cptFrontLarge)->Bytes(), Cover);
}

TEST_F(DefaultServices, TheSynchronousRoadGivesTheSameFields)
{
    const TAlbumRelease stored = AddByBarcode(u"discogs"_s, u"1743771"_s);
    InstallPictureFetcher();
    TKRNParams params;
    params.Add(u"BARCODE"_s, u"074646362822"_s);
    std::unique_ptr<TAlbumRelease> release;
    ASSERT_TRUE(TReleaseFetch(Grabber).FetchRelease(*Grabber.GetSearchByType(stBarcode)->GetItemByName(u"discogs"_s),
                                                    params, release));
    ASSERT_TRUE(release);
    FData.AddAlbumReleaseToDB(*release, false);
    FData.SelectRelease(FData.LastAddedReleaseID());
    const TAlbumRelease other = FData.CurrentReleaseToAlbumRelease();
    EXPECT_EQ(Values(other, Fields), Values(stored, Fields));
    EXPECT_EQ(Tracks(other), Tracks(stored));
    EXPECT_EQ(other.GetPicByType(cptFrontLarge)->Bytes(), Cover);
}

} // namespace
