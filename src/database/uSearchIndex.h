// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>
#include <optional>
#include <unordered_set>
#include <vector>

namespace Kestrune {

class TDataModuleMain;

/// A text without case and accents, with a blank between characters of scripts that write no blanks.
QString FoldForSearch(const QString& text);

/// The search in everything: an index of words in a file of its own in the cache folder, one for each collection. It is
/// built in the background (read in small steps on the main thread, written by a thread of its own), follows what
/// changes while the program runs, and is built again when the collection changed meanwhile. Main thread only.
class TSearchIndex : public QObject {
    Q_OBJECT

public:
    /// The data module outlives the index. `folder` is made when it is needed.
    TSearchIndex(TDataModuleMain& data, QString folder);
    ~TSearchIndex() override;

    /// Follows the collection that is open now: takes its index or starts to build it.
    void Open();
    /// Leaves the collection; call after it was closed, so that the index knows the state of its file.
    void Close();
    /// True when the index holds the whole collection.
    bool Ready() const { return FReady; }
    /// True while the index is being built; built tells the end.
    bool Building() const { return FBuilding; }
    /// How much of the building is done, 0 to 1.
    double Progress() const;

    /// Releases whose texts hold all words, each as the beginning of a word. Nothing while the index is being built.
    std::optional<std::vector<qint64>> Find(const QString& words);

Q_SIGNALS:
    /// The building has ended; Ready tells how.
    void built();

private:
    class TWriter;

    void Build();
    void ReadSome();
    /// False when nothing can be followed now.
    bool FollowChanges();
    void WriterDone(bool ok);
    QString IndexPath() const;
    void RememberState(const QString& collection);

    TDataModuleMain& FData;
    QString FFolder;
    QString FCollection;
    std::shared_ptr<bool> FBuildingNow; // alive while a building may still tell of its end
    std::unique_ptr<TWriter> FWriter;
    QTimer FReadTimer{this};
    QTimer FChangeTimer{this};
    qint64 FReadTo = 0;
    qint64 FLastId = 0;
    bool FBuilding = false;
    bool FReady = false;
};

} // namespace Kestrune
