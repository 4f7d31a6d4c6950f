// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "TagsLibrary.h"
#include "uTagNames.h"

#include <QStringList>

namespace Kestrune {

class TID3v2Frame;

/// What one format supplies to the unified lists, gathered before the lists are touched.
struct TTagBatch {
    struct TItem {
        std::unique_ptr<TTag> Tag;
        bool IsTotal = false; ///< takes the place of one tag of its name instead of all
    };

    std::vector<TItem> Items;
    QStringList Dropped; ///< names that go without being supplied
    std::vector<TTagPicture> Pictures;

    /// Whether tags of that name make way.
    bool Supplies(QStringView name) const;
    /// Stages a tag; all tags of its name in the lists make way for it. Null for an empty value, and
    /// when there are MostFields.
    TTag* Add(const QString& name, const QString& value);
    void Drop(const QString& name) { Dropped.append(name); }
    /// "3/12" becomes the number under one name and the total under another; without "/" only the number is there.
    void AddNumberOfTotal(const QString& value, const QString& numberName, const QString& totalName);
    /// Fields of a format that names them itself: kept under their names, "TRACKNUMBER" and "TRACK" are split,
    /// and the texts of "TIPL" and of "TMCL" become lines of one.
    void AddFields(const std::vector<TTagField>& fields);
};

/// The maps of the formats, one function each.
TTagBatch BatchOf(const TID3v1Tag& tag);
TTagBatch BatchOf(const TID3v2Tag& tag);
TTagBatch BatchOf(const TFlacTag& tag);
TTagBatch BatchOf(const TAPEv2Tag& tag);
TTagBatch BatchOf(const TOpusTag& tag);
TTagBatch BatchOf(const TMP4Tag& tag);
TTagBatch BatchOf(const TWAVTag& tag);
TTagBatch BatchOf(const TWMATag& tag);

} // namespace Kestrune
