// SPDX-License-Identifier: GPL-3.0-or-later
#include "uGalleryData.h"
#include "uRibbonButton.h"

#include <QAction>
#include <QKeySequence>

namespace Kestrune::Kit {

namespace {

struct TSampleAction {
    const char* Name;
    const char* Icon;
    const char* Caption;
    const char* Keys;
    bool Checkable = false;
};

constexpr TSampleAction Actions[] = {{"actAddMain", "add", "Add music", "Ins"},
                                     {"actAddByBarcode", "barcode", "Barcode", "Ctrl+Alt+B"},
                                     {"actAddByCDROM", "disc", "Disc in drive", "Ctrl+Alt+C"},
                                     {"actAddByCatalogNo", "tag", "Catalog no.", "Ctrl+Alt+E"},
                                     {"actAddMP3", "folder", "Digital files", "Ctrl+Alt+D"},
                                     {"actAddMusic", "search", "Artist name", "Ctrl+Alt+A"},
                                     {"actAddReleaseManually", "pencil", "Manually", "Shift+Ins"},
                                     {"actEditItem", "pencil", "Edit", "F2"},
                                     {"actMultiEdit", "multi", "Multi-edit", ""},
                                     {"actDuplicate", "copy", "Duplicate", ""},
                                     {"actRemoveSelected", "trash", "Remove", "Ctrl+Del"},
                                     {"actRefresh", "refresh", "Refresh", "F5"},
                                     {"actDownloadCoverImagesForSelection", "picdown", "Covers", ""},
                                     {"actDownloadCoverImagesForAllRecords", "picdown", "All covers", ""},
                                     {"actLoanSelected", "lend", "Lend", ""},
                                     {"actLoanManager", "clock", "Loans", "F7"},
                                     {"actEditFriends", "people", "Friends", ""},
                                     {"actAddToPlaylist", "plplus", "To playlist", "F4"},
                                     {"actShowPlaylist", "queue", "Playlist", "F12"},
                                     {"actThumbView", "thumbs", "Thumbs", "Shift+F1", true},
                                     {"actCardsView", "cards", "Cards", "Shift+F2", true},
                                     {"actShelveView", "shelf", "Shelf", "Shift+F3", true},
                                     {"actAlbumTableView", "table", "Albums", "Shift+F4", true},
                                     {"actTracksView", "tracks", "Tracks", "Shift+F5", true},
                                     {"actThumbSize", "sizeM", "Size", ""},
                                     {"actDetailPanelRight", "pr", "Right", "", true},
                                     {"actDetailPanelBottom", "pb", "Bottom", "", true},
                                     {"actDetailPanelTop", "pt", "Top", "", true},
                                     {"actCustomizeColumns", "columns", "Columns", "F9"},
                                     {"actApplyBestFit", "fit", "Best fit", ""},
                                     {"actQuickFilter", "filter", "Filter row", "F6", true},
                                     {"actImport", "imp", "Import", "F11"},
                                     {"actExportToCSV", "exp", "CSV", ""},
                                     {"actNewDatabase", "add", "New collection", "Ctrl+N"},
                                     {"actOpenDatabase", "folder", "Open collection", "Ctrl+O"},
                                     {"actSearch", "search", "Search", ""},
                                     {"actOptions", "gear", "Options", ""},
                                     {"actShowStats", "chart", "Statistics", "F8"}};

} // namespace

std::vector<QAction*> SampleActions(QObject* parent)
{
    std::vector<QAction*> made;
    for (const TSampleAction& sample : Actions) {
        auto* action = new QAction(QString::fromLatin1(sample.Caption), parent);
        action->setObjectName(QString::fromLatin1(sample.Name));
        action->setShortcut(QKeySequence(QString::fromLatin1(sample.Keys)));
        action->setCheckable(sample.Checkable);
        SetActionIcon(*action, QString::fromLatin1(sample.Icon));
        made.push_back(action);
    }
    return made;
}

} // namespace Kestrune::Kit
