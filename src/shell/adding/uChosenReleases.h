// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uObjs.h"

#include <QImage>
#include <QObject>

#include <memory>
#include <vector>

namespace Kestrune {

/// A release that was chosen, waiting for the window to close.
struct TSavedRelease {
    std::unique_ptr<TAlbumRelease> Release;
    QImage Cover;
    bool Complete = false; ///< with its full record
};

/// The releases that were chosen for the collection, until the main window takes them.
class TChosenReleases final : public QObject {
    Q_OBJECT
public:
    const std::vector<TSavedRelease>& Items() const { return FItems; }
    /// Adds releases, chosen now or handed over before and not stored.
    void Add(std::vector<TSavedRelease> releases);
    void Remove(int index);
    /// Hands all of them over.
    std::vector<TSavedRelease> Take();

Q_SIGNALS:
    void changed();

private:
    std::vector<TSavedRelease> FItems;
};

} // namespace Kestrune
