// SPDX-License-Identifier: GPL-3.0-or-later
#include "uSearchIndex.h"

#include "dmMain.h"
#include "uDebugLog.h"
#include "uSQLite.h"
#include "uThreads.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int ReleasesPerStep = 60;   // keeps a step on the main thread to a few milliseconds
constexpr size_t LongestQueue = 8000; // texts on their way to the writer
constexpr int ChangeDelay = 1500;     // milliseconds of quiet before changes are followed
constexpr int FollowInterval = 20;
constexpr int ChangesPerStep = 60;
const QLatin1StringView IndexVersion("2");

// Scripts without blanks between words: every character is a word of its own.
bool StandsAlone(char16_t c)
{
    return (c >= 0x2E80 && c <= 0x9FFF) || (c >= 0xF900 && c <= 0xFAFF) || (c >= 0x0E00 && c <= 0x0E7F);
}

// What tells whether a collection file was changed: its own size and time, and those of its write-ahead log.
QString StateOf(const QString& collection)
{
    QStringList parts{IndexVersion};
    for (const QString& suffix : {QString(), u"-wal"_s}) {
        const QFileInfo file(collection + suffix);
        const qint64 size = file.exists() ? file.size() : 0;
        parts << (size == 0 ? u"0"_s : u"%1@%2"_s.arg(size).arg(file.lastModified().toMSecsSinceEpoch()));
    }
    return parts.join(u'|');
}

const QString CreateIndexSQL =
    QStringLiteral("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; PRAGMA page_size = 8192;"
                   "DROP TABLE IF EXISTS words; DROP TABLE IF EXISTS docs; DROP TABLE IF EXISTS state;"
                   "CREATE TABLE state(value TEXT); CREATE TABLE docs(doc INTEGER PRIMARY KEY, release INTEGER);"
                   "CREATE INDEX docs_release ON docs(release);"
                   "CREATE VIRTUAL TABLE words USING fts5(text, content='', columnsize=0, prefix='1 2 3',"
                   " tokenize='unicode61 remove_diacritics 0')");

// Each word as a quoted beginning; what the tokenizer knows as signs separates words.
QString MatchOf(const QString& words)
{
    QStringList terms;
    for (const QString& word : FoldForSearch(words).split(u' ', Qt::SkipEmptyParts)) {
        QString plain;
        for (const QChar c : word)
            plain += c.isLetterOrNumber() || c.isMark() || c.isSurrogate() ? c : u' ';
        for (const QString& part : plain.split(u' ', Qt::SkipEmptyParts))
            terms << u"\"%1\"*"_s.arg(part);
    }
    return terms.join(u" AND "_s);
}

} // namespace

QString FoldForSearch(const QString& text)
{
    QString folded;
    folded.reserve(text.size());
    for (const QChar c : text.normalized(QString::NormalizationForm_KD).toCaseFolded()) {
        if (c.category() == QChar::Mark_NonSpacing)
            continue;
        if (StandsAlone(c.unicode()))
            folded += u' ';
        folded += c;
        if (StandsAlone(c.unicode()))
            folded += u' ';
    }
    return folded;
}

// Writes the index file on a thread of its own. The queue is bounded by the reader, which looks at Waiting.
class TSearchIndex::TWriter : public TThread {
public:
    struct TJob {
        std::vector<TSearchText> Texts; // replace what is known of their releases
        bool Last = false;              // of a building
    };

    TWriter(QString path, bool create, std::function<void(bool)> done)
        : FPath(std::move(path)), FCreate(create), FDone(std::move(done))
    {}

    ~TWriter() override
    {
        {
            // Under the mutex: between the writer's look at the flag and its sleep the call would wake nobody.
            const std::lock_guard lock(FMutex);
            Terminate();
        }
        FWake.notify_all();
        WaitFor();
    }

    void Put(TJob job)
    {
        const std::lock_guard lock(FMutex);
        FWaiting += job.Texts.size();
        FJobs.push_back(std::move(job));
        FWake.notify_all();
    }

    size_t Waiting()
    {
        const std::lock_guard lock(FMutex);
        return FWaiting;
    }

    bool Failed() const { return FFailed; }

protected:
    void Execute() override
    {
        try {
            TSQLiteConnection connection;
            connection.Open(FPath);
            connection.Exec(FCreate ? CreateIndexSQL : u"PRAGMA synchronous = OFF"_s);
            if (FCreate)
                connection.Exec(u"BEGIN"_s);
            while (std::optional<TJob> job = Next())
                Write(connection, *job);
        } catch (const EDatabaseError& failure) {
            DebugLog(u"[Search] index: %1"_s.arg(failure.Text()));
            FFailed = true;
            PostToMainThread([done = FDone] { done(false); });
        }
    }

private:
    std::optional<TJob> Next()
    {
        std::unique_lock lock(FMutex);
        FWake.wait(lock, [this] { return Terminated() || !FJobs.empty(); });
        if (Terminated())
            return {};
        TJob job = std::move(FJobs.front());
        FJobs.pop_front();
        FWaiting -= job.Texts.size();
        return job;
    }

    void Write(TSQLiteConnection& connection, const TJob& job)
    {
        if (!FCreate)
            connection.Exec(u"BEGIN"_s);
        for (const TSearchText& entry : job.Texts) {
            if (!FCreate) {
                TSQLiteStatement& drop = connection.Cached(u"DELETE FROM docs WHERE release = ?"_s);
                drop.Bind(1, entry.ReleaseId);
                drop.Execute();
            }
            if (entry.Text.isEmpty())
                continue;
            TSQLiteStatement& doc = connection.Cached(u"INSERT INTO docs(release) VALUES (?)"_s);
            doc.Bind(1, entry.ReleaseId);
            doc.Execute();
            TSQLiteStatement& words = connection.Cached(u"INSERT INTO words(rowid, text) VALUES (?, ?)"_s);
            words.BindAll({connection.LastInsertRowId(), FoldForSearch(entry.Text)});
            words.Execute();
        }
        if (!FCreate || job.Last)
            connection.Exec(u"COMMIT"_s);
        if (job.Last) {
            FCreate = false;
            PostToMainThread([done = FDone] { done(true); });
        }
    }

    QString FPath;
    bool FCreate;
    std::function<void(bool)> FDone;
    std::mutex FMutex;
    std::condition_variable FWake;
    std::deque<TJob> FJobs;
    size_t FWaiting = 0;
    std::atomic<bool> FFailed{false};
};

TSearchIndex::TSearchIndex(TDataModuleMain& data, QString folder) : FData(data), FFolder(std::move(folder))
{
    FReadTimer.setInterval(0);
    connect(&FReadTimer, &QTimer::timeout, this, &TSearchIndex::ReadSome);
    FChangeTimer.setSingleShot(true);
    data.Touched().Keep(true);
    connect(&FChangeTimer, &QTimer::timeout, this, &TSearchIndex::FollowChanges);
    connect(&data, &TDataModuleMain::changed, this, [this] {
        if (!FCollection.isEmpty() && FData.Touched().Any() && !FChangeTimer.isActive())
            FChangeTimer.start(ChangeDelay);
    });
}

TSearchIndex::~TSearchIndex()
{
    Close();
    FData.Touched().Keep(false);
}

QString TSearchIndex::IndexPath() const
{
    const QByteArray name = QCryptographicHash::hash(FCollection.toUtf8(), QCryptographicHash::Sha1).toHex();
    return QDir(FFolder).filePath(u"search-%1.db"_s.arg(QString::fromLatin1(name)));
}

void TSearchIndex::Open()
{
    Close();
    if (!FData.HasData())
        return;
    FCollection = QFileInfo(FData.CurrentFile()).canonicalFilePath();
    FData.Touched().Take();
    try {
        if (QFileInfo::exists(IndexPath())) {
            TSQLiteConnection index;
            index.Open(IndexPath(), somReadOnly);
            FReady = VarToStr(index.Scalar(u"SELECT value FROM state"_s)) == StateOf(FCollection);
        }
    } catch (const EDatabaseError& failure) {
        DebugLog(u"[Search] index: %1"_s.arg(failure.Text()));
    }
    if (!FReady)
        return Build();
    RememberState({}); // until it is closed in order, the index is known to be behind
    FWriter = std::make_unique<TWriter>(IndexPath(), false, [](bool) {});
    FWriter->Start();
}

void TSearchIndex::RememberState(const QString& collection)
{
    try {
        TSQLiteConnection index;
        index.Open(IndexPath());
        index.Exec(u"DELETE FROM state"_s);
        if (collection.isEmpty())
            return;
        TSQLiteStatement statement = index.Prepare(u"INSERT INTO state VALUES (?)"_s);
        statement.Bind(1, StateOf(collection));
        statement.Execute();
    } catch (const EDatabaseError& failure) {
        DebugLog(u"[Search] index: %1"_s.arg(failure.Text()));
    }
}

void TSearchIndex::Close()
{
    if (FCollection.isEmpty())
        return;
    FReadTimer.stop();
    FChangeTimer.stop();
    const bool complete =
        FReady && FWriter && !FWriter->Failed() && !FData.Touched().Any() && FWriter->Waiting() == 0 && FData.HasData();
    FWriter.reset();
    FBuildingNow.reset();
    if (complete) {
        try {
            // Brings all into the file itself, so that closing it changes nothing any more.
            FData.ExecSQL(u"PRAGMA wal_checkpoint(TRUNCATE)"_s);
        } catch (const EDatabaseError& failure) {
            DebugLog(u"[Search] checkpoint: %1"_s.arg(failure.Text()));
        }
        RememberState(FCollection);
    }
    FReady = FBuilding = false;
    FCollection.clear();
}

void TSearchIndex::Build()
{
    FReady = false;
    FBuilding = true;
    FReadTo = 0;
    FLastId = FData.ExecSQLAndGetID(u"SELECT max(ID) FROM Releases2"_s);
    const QString path = IndexPath();
    QFile::remove(path);
    if (!QDir().mkpath(FFolder) || !QFile(path).open(QIODevice::WriteOnly)) {
        DebugLog(u"[Search] %1 cannot be made"_s.arg(path));
        FBuilding = false;
        Q_EMIT built();
        return;
    }
    // A word of this building that comes after the next close finds nobody.
    FBuildingNow = std::make_shared<bool>(true);
    FWriter = std::make_unique<TWriter>(path, true, [this, now = std::weak_ptr(FBuildingNow)](bool ok) {
        if (now.lock())
            WriterDone(ok);
    });
    FWriter->Start();
    FReadTimer.start();
}

void TSearchIndex::ReadSome()
{
    if (!FData.HasData() || !FWriter || FWriter->Failed()) {
        FReadTimer.stop();
        return;
    }
    if (FWriter->Waiting() > LongestQueue) { // the writer is behind: look again a little later
        FReadTimer.setInterval(50);
        return;
    }
    FReadTimer.setInterval(0);
    TWriter::TJob job;
    try {
        job.Texts = FData.Queries().ReadSearchTexts(FReadTo, ReleasesPerStep);
    } catch (const EDatabaseError& failure) {
        DebugLog(u"[Search] index: %1"_s.arg(failure.Text()));
        FReadTimer.stop();
        FBuilding = false;
        FBuildingNow.reset();
        Q_EMIT built();
        return;
    }
    job.Last = job.Texts.size() < static_cast<size_t>(ReleasesPerStep);
    if (!job.Texts.empty())
        FReadTo = job.Texts.back().ReleaseId;
    if (job.Last)
        FReadTimer.stop();
    FWriter->Put(std::move(job));
}

void TSearchIndex::WriterDone(bool ok)
{
    FBuildingNow.reset();
    FBuilding = false;
    FReady = ok;
    if (ok && FData.Touched().Any())
        FChangeTimer.start(ChangeDelay);
    Q_EMIT built();
}

bool TSearchIndex::FollowChanges()
{
    if (!FData.HasData() || !FWriter || FWriter->Failed())
        return false;
    // What is read later by a building is new anyway, and a transaction may still be undone: the rest follows later.
    if (FBuilding || FData.InTransaction()) {
        FChangeTimer.start(ChangeDelay);
        return false;
    }
    bool done = false;
    try {
        TWriter::TJob job;
        for (const qint64 id : FData.Touched().Take(ChangesPerStep)) {
            std::vector<TSearchText> now = FData.Queries().ReadSearchTexts(id - 1, 1);
            const bool there = !now.empty() && now.front().ReleaseId == id;
            job.Texts.push_back(there ? std::move(now.front()) : TSearchText{id, {}});
        }
        FWriter->Put(std::move(job));
        done = true;
    } catch (const EDatabaseError& failure) {
        DebugLog(u"[Search] index: %1"_s.arg(failure.Text()));
    }
    if (FData.Touched().Any())
        FChangeTimer.start(FollowInterval);
    return done;
}

double TSearchIndex::Progress() const
{
    return FReady        ? 1.0
           : FLastId > 0 ? std::min(1.0, static_cast<double>(FReadTo) / static_cast<double>(FLastId))
                         : 0.0;
}

std::optional<std::vector<qint64>> TSearchIndex::Find(const QString& words)
{
    if (!FReady)
        return {};
    std::vector<qint64> releases;
    const QString match = MatchOf(words);
    if (match.isEmpty())
        return releases;
    if (FData.Touched().Any()) { // the user finds what he has just typed
        while (FData.Touched().Any() && FWriter && !FWriter->Failed() && FollowChanges()) {
        }
    }
    try {
        TSQLiteConnection index;
        index.Open(IndexPath(), somReadOnly);
        TSQLiteStatement statement =
            index.Prepare(u"SELECT D.release FROM words W JOIN docs D ON D.doc = W.rowid WHERE W.text MATCH ?"_s);
        statement.Bind(1, match);
        while (statement.Step())
            releases.push_back(statement.ColumnInt64(0));
    } catch (const EDatabaseError& failure) {
        DebugLog(u"[Search] %1"_s.arg(failure.Text()));
        return {};
    }
    return releases;
}

} // namespace Kestrune
