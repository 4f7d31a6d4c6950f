// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uInfoGrabber.h"
#include "uSearchParams.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <optional>

namespace Kestrune {

/// The areas of the search window, each with fields and a choice of services of its own.
enum class TSearchArea : quint8 { saArtistOrRelease, saBarcode, saCatalogNo, saCD };
using enum TSearchArea;

/// What the user looks for and whom to ask: the fields of the areas and the services chosen in each, which are
/// settings.
class TAddFields final : public QObject {
    Q_OBJECT
public:
    /// The definitions outlive it.
    explicit TAddFields(const TInfoGrabber& grabber);

    TSearchArea Area() const { return FArea; }
    void SetArea(TSearchArea area);
    QString Artist, ReleaseTitle, CatalogNo;
    QString Barcodes; ///< one a line

    /// The search that the fields of an area ask for; none when they say nothing.
    std::optional<TInfoGrabberSearchType> SearchType(TSearchArea area) const;
    /// The codes as services know them, each once a line.
    QStringList BarcodeList() const;
    /// All fields for one code, whatever the kind of search.
    TSearchWords Words(const QString& barcode) const;

    /// Names to show of the services of an area, in their order.
    QStringList ServiceNames(TSearchArea area) const;
    bool IsServiceChosen(TSearchArea area, int index) const;
    void ChooseService(TSearchArea area, int index, bool on);

Q_SIGNALS:
    void changed();

private:
    const TInfoGrabber& FGrabber;
    TSearchArea FArea = saArtistOrRelease;
};

/// What a tab with such a search is called.
QString SearchCaption(TInfoGrabberSearchType type, const TSearchWords& words);

} // namespace Kestrune
