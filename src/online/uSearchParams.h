// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

namespace Kestrune {

class TInfoGrabberServiceAction;
class TKRNParams;

/// What identifies an audio CD to the services; a disc that could not be read has empty texts.
struct TDiscWords {
    QString DiscID, TOC, TOC_Microsoft, TOC_DECIMAL;
};

/// What a search looks for. All texts are sent, whatever the kind of search; those not given are empty.
struct TSearchWords {
    QString Barcode, CatalogNo, Artist, Release;
    std::optional<TDiscWords> Disc; ///< in searches by a disc
};

/// A barcode as services know it: one that was scanned or copied with blanks or hyphens between its digits loses them.
QString CleanBarcode(const QString& text);

/// Fills the parameters for one entry of a search in place of what was there.
void FillSearchParams(TKRNParams& params, const TSearchWords& words, const TInfoGrabberServiceAction& action);

} // namespace Kestrune
