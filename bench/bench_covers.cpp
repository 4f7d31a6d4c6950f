// SPDX-License-Identifier: GPL-3.0-or-later
// How much of a file with large covers is read to show its main list: bench_covers FOLDER [RELEASES] [KILOBYTES].
// Read with the file map off, so that the kernel's count of read bytes is the whole truth.
#include "dmMain.h"
#include "uBench.h"
#include "uScriptedPrompt.h"

#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QRandomGenerator>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

qint64 BytesRead()
{
    QFile file(u"/proc/self/io"_s);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readLine().simplified().split(' ').value(1).toLongLong();
}

// Any bytes will do: the gateway stores them as they are, only the thumbnail would need a picture.
void Fill(const QString& path, int releases, int kilobytes)
{
    Kit::TScriptedPrompt prompt;
    TDataModuleMain data(prompt);
    data.CreateNewDB(path, data.GetNewDatabaseSQL());
    data.ConnectToDB(path);
    QByteArray cover(kilobytes * 1024, Qt::Uninitialized);
    QRandomGenerator random(1);
    TSQLiteConnection connection;
    connection.Open(path);
    TSQLiteTransaction transaction(connection);
    TSQLiteStatement insert = connection.Prepare(
        u"INSERT INTO Releases2 (Artist, ReleaseName, LargePicture, Genres, SeqNo) VALUES (?, ?, ?, ?, ?)"_s);
    for (int i = 0; i < releases; ++i) {
        random.fillRange(reinterpret_cast<quint32*>(cover.data()), cover.size() / 4);
        insert.BindAll({u"Artist %1"_s.arg(i), u"Release %1"_s.arg(i), cover, u"Rock, Pop"_s, QString::number(i)});
        insert.Execute();
    }
    transaction.Commit();
}

void Report(const QString& name, qint64 fileSize, const std::function<void()>& work)
{
    const qint64 before = BytesRead();
    const double time = Bench::Measure(work);
    const qint64 read = BytesRead() - before;
    Bench::Print(u"%1: %2 MB read (%3 % of the file), %4 ms"_s.arg(name, -40)
                     .arg(static_cast<double>(read) / 1e6, 0, 'f', 1)
                     .arg(100.0 * static_cast<double>(read) / static_cast<double>(fileSize), 0, 'f', 1)
                     .arg(time, 0, 'f', 1));
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString path = arguments.value(1, u"."_s) + u"/bench_covers.db"_s;
    const auto clean = [&] {
        for (const QString& suffix : {u""_s, u"-wal"_s, u"-shm"_s})
            QFile::remove(path + suffix);
    };
    clean();
    Fill(path, arguments.value(2, u"1500"_s).toInt(), arguments.value(3, u"250"_s).toInt());
    const qint64 size = QFileInfo(path).size();
    Bench::Print(u"file of %1 MB"_s.arg(size / 1000000));
    Kit::TScriptedPrompt prompt;
    TDataModuleMain data(prompt);
    Report(u"open"_s, size, [&] { data.ConnectToDB(path); });
    data.ExecSQL(u"PRAGMA mmap_size = 0"_s);
    TListDataset& list = data.qReleasesMain;
    Report(u"all rows of the main list"_s, size, [&] {
        for (int row = 0; row < list.RecordCount(); ++row)
            list.ValueAt(row, 0);
    });
    Report(u"sort by a column behind the pictures"_s, size, [&] { list.SetSort({{u"SeqNo"_s, false}}); });
    clean();
    return 0;
}
