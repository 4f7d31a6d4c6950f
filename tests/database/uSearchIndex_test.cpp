// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uDefaults.h"
#include "uScriptedPrompt.h"
#include "uSearchIndex.h"
#include "uTestFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTimer>

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace {

// Holds a thread between its look at a condition and its sleep, which is where a call of another thread gets lost when
// it is made without the mutex: until that call was made, or could not be made because the mutex is held.
struct TBeforeSleep {
    std::atomic<bool> Armed = false;
    std::thread::id Own = std::this_thread::get_id();
    std::mutex Mutex;
    std::condition_variable Reached;
    bool Arrived = false;

    void Wait()
    {
        if (!Armed || std::this_thread::get_id() == Own)
            return;
        Armed = false;
        std::unique_lock lock(Mutex);
        Arrived = true;
        Reached.notify_all();
        // Nothing tells that the other thread stands before the mutex, so that this ends by time.
        Reached.wait_for(lock, std::chrono::milliseconds(100), [] { return false; });
    }
    void UntilArrived()
    {
        std::unique_lock lock(Mutex);
        Reached.wait(lock, [this] { return Arrived; });
    }
};

TBeforeSleep BeforeSleep;

} // namespace

// Stands before the C library's own.
extern "C" int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex)
{
    static const auto next = reinterpret_cast<int (*)(pthread_cond_t*, pthread_mutex_t*)>(
        dlvsym(RTLD_NEXT, "pthread_cond_wait", "GLIBC_2.3.2"));
    BeforeSleep.Wait();
    return next(condition, mutex);
}

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

class SearchIndex : public testing::Test {
protected:
    SearchIndex()
    {
        Defaults() = MakeDefaults();
        FData.CreateNewDB(FPath, FData.GetNewDatabaseSQL());
        FData.ConnectToDB(FPath);
        Add(u"Sigur Rós"_s, u"Ágætis byrjun"_s, u"Svefn-g-englar"_s, u"Jón Þór"_s);
        Add(u"Земфира"_s, u"Вендетта"_s, u"Прогулка"_s, u""_s);
        Add(u"細野晴臣"_s, u"泰安洋行"_s, u"蝶々-San"_s, u"鈴木茂"_s);
        Add(u"AC/DC"_s, u"Back in Black"_s, u"Hells Bells"_s, u"O'Brien"_s);
    }
    ~SearchIndex() override
    {
        FIndex.reset(); // before the data module
        QFile::setPermissions(FCache, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    }
    void Add(const QString& artist, const QString& name, const QString& title, const QString& musician)
    {
        TAlbumRelease release;
        release.SetItem2(u"Artist"_s, artist);
        release.SetItem2(u"ReleaseName"_s, name);
        TAlbumTrack track;
        track.TrackName = title;
        if (!musician.isEmpty())
            track.Credits = {TAlbumCredit::Make(musician, u"Guitar"_s)};
        release.Tracks = {track};
        FData.AddAlbumReleaseToDB(release, true);
    }
    // Opens the index; true when it had to be built.
    bool Open()
    {
        if (!FIndex)
            FIndex = std::make_unique<TSearchIndex>(FData, FCache);
        FIndex->Open();
        const bool builds = FIndex->Building();
        while (FIndex->Building())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return builds;
    }
    // Found releases by their keys; waits for the writer, which may still be behind.
    std::vector<qint64> Find(const QString& words)
    {
        std::vector<qint64> found = FIndex->Find(words).value_or(std::vector<qint64>{-1});
        std::ranges::sort(found);
        return found;
    }
    bool ComesToFind(const QString& words, const std::vector<qint64>& releases)
    {
        QElapsedTimer clock;
        clock.start();
        while (Find(words) != releases && clock.elapsed() < 20000)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        return Find(words) == releases;
    }

    Kit::TTempDir FDir;
    Kit::TScriptedPrompt FPrompt;
    QString FPath = FDir.File(u"x.db"_s);
    QString FCache = FDir.Path() + u"/cache"_s;
    TDataModuleMain FData{FPrompt};
    std::unique_ptr<TSearchIndex> FIndex;
};

} // namespace

TEST_F(SearchIndex, WordsAreFoundWithoutCaseAndAccentsInAllTexts)
{
    EXPECT_TRUE(Open());
    const std::pair<QString, std::vector<qint64>> cases[] = {{u"sigur ros"_s, {1}},
                                                             {u"AGAETIS"_s, {}}, // ligatures are letters of their own
                                                             {u"agæt"_s, {1}},
                                                             {u"englar"_s, {1}},
                                                             {u"jon"_s, {1}},
                                                             {u"ЗЕМФИРА прогул"_s, {2}},
                                                             {u"晴臣"_s, {3}},
                                                             {u"鈴木"_s, {3}},
                                                             {u"san"_s, {3}},
                                                             {u"AC/DC"_s, {4}},
                                                             {u"o'brien bells"_s, {4}},
                                                             {u"ells"_s, {}},
                                                             {u"black ros"_s, {}},
                                                             {u"b"_s, {1, 4}},
                                                             {u"text:black NOT x"_s, {}},
                                                             {u"   "_s, {}},
                                                             {u"()*^"_s, {}}};
    for (const auto& [words, releases] : cases)
        EXPECT_EQ(Find(words), releases) << words.toStdString();
    for (const QString& hostile : {u"\" OR *"_s, u"a\"b"_s, u"NEAR("_s, QString(5000, u'x'), u"a "_s.repeated(2000)})
        EXPECT_TRUE(FIndex->Find(hostile)) << "no error: " << hostile.left(20).toStdString();
    EXPECT_EQ(QDir(FCache).entryList(QDir::Files).size(), 1) << "in the cache folder alone";
}

TEST_F(SearchIndex, FollowsEveryChangeOfTheCollection)
{
    Open();
    FData.qReleasesMain.Locate(4);
    FData.qReleasesMain.Edit();
    FData.qReleasesMain.SetValue(u"Comments"_s, u"found in Lisbon"_s);
    FData.qReleasesMain.Post();
    EXPECT_TRUE(ComesToFind(u"lisbon"_s, {4}));
    Add(u"New"_s, u"Lisbon Nights"_s, u""_s, u""_s);
    EXPECT_TRUE(ComesToFind(u"lisbon"_s, {4, 5}));
    FData.ExecSQL(u"UPDATE Tracks2 SET TrackTitle = 'Porto' WHERE ReleaseId = 2"_s);
    EXPECT_TRUE(ComesToFind(u"porto"_s, {2}));
    FData.TouchRelease(4);
    FData.qReleasesMain.DeleteKeys({4});
    EXPECT_TRUE(ComesToFind(u"lisbon"_s, {5}));
    EXPECT_TRUE(ComesToFind(u"hells"_s, {}));
}

TEST_F(SearchIndex, IsBuiltAgainOnlyWhenTheCollectionChangedMeanwhile)
{
    EXPECT_TRUE(Open());
    FIndex->Close();
    EXPECT_FALSE(FIndex->Find(u"ros"_s));
    EXPECT_FALSE(Open());
    EXPECT_EQ(Find(u"ros"_s), std::vector<qint64>{1});
    FIndex->Close();
    {
        TSQLiteConnection other;
        other.Open(FPath);
        other.Exec(u"UPDATE Releases2 SET ReleaseName = 'Changed elsewhere' WHERE ID = 1"_s);
    }
    EXPECT_TRUE(Open());
    EXPECT_EQ(Find(u"elsewhere"_s), std::vector<qint64>{1});
    EXPECT_TRUE(Find(u"byrjun"_s).empty());
    // Not closed in order: whatever was changed is not lost.
    FData.ExecSQL(u"UPDATE Releases2 SET Artist = 'After' WHERE ID = 1"_s);
    FIndex.reset();
    Open();
    EXPECT_EQ(Find(u"after"_s), std::vector<qint64>{1});
}

TEST_F(SearchIndex, ADamagedIndexIsMadeAnew)
{
    Open();
    FIndex->Close();
    const QString file = FCache + u'/' + QDir(FCache).entryList(QDir::Files).front();
    for (const QByteArray& bytes : {QByteArray(), QByteArray(5000, 'x'), Kit::ReadAll(file).left(9000)}) {
        Kit::WriteAll(file, bytes);
        Open();
        EXPECT_EQ(Find(u"ros"_s), std::vector<qint64>{1});
        FIndex->Close();
    }
}

TEST_F(SearchIndex, ACacheThatCannotBeWrittenGivesNoAnswer)
{
    Kit::WriteAll(FCache, "a file in place of the folder");
    Open();
    EXPECT_FALSE(FIndex->Ready());
    EXPECT_FALSE(FIndex->Building());
    EXPECT_FALSE(FIndex->Find(u"ros"_s));
}

TEST_F(SearchIndex, AWriterThatIsAboutToSleepHearsTheEnd)
{
    FIndex = std::make_unique<TSearchIndex>(FData, FCache);
    BeforeSleep.Armed = true;
    FIndex->Open(); // its writer has nothing to do before the first texts are read
    BeforeSleep.UntilArrived();
    FIndex->Close(); // for ever, where the writer does not hear of it
    EXPECT_FALSE(FIndex->Ready());
}

TEST_F(SearchIndex, TheEndOfABuildingThatComesAfterACloseIsNobodys)
{
    FIndex = std::make_unique<TSearchIndex>(FData, FCache);
    FIndex->Open();
    const QString file = FCache + u'/' + QDir(FCache).entryList({u"search-*"_s}).value(0);
    const auto written = [&] {
        try {
            TSQLiteConnection index;
            index.Open(file, somReadOnly);
            return index.Scalar(u"SELECT count(*) FROM docs"_s).toInt() == 4;
        } catch (const EDatabaseError&) {
            return false;
        }
    };
    // All texts go to the writer in this one turn; its word of the end waits for the next.
    QMetaObject::invokeMethod(FIndex->findChildren<QTimer*>().first(), "timeout");
    while (!written())
        std::this_thread::yield();
    FIndex->Close();
    FIndex->Open(); // builds again, since the first was not closed in order
    QCoreApplication::sendPostedEvents();
    EXPECT_TRUE(FIndex->Building());
    EXPECT_FALSE(FIndex->Ready());
}

} // namespace Kestrune
