// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uAnswerReader.h"
#include "uUserMessages.h"

namespace Kestrune {

class TInfoGrabberServiceAction;

/// What goes with a search and comes back with its answer.
struct TMsgObjWM_USER_METADATA_TEXT_SEARCH final : TReadRequest {
    using TReadRequest::TReadRequest;
    const TInfoGrabberServiceAction* Action = nullptr;
    qint64 Grid = 0;    ///< identifier of the tab
    size_t Service = 0; ///< its place in the search
};

/// What goes with a request for the full record of a card.
struct TMsgObjWM_USER_METADATA_TEXT_EXTRA_INFO final : TReadRequest {
    using TReadRequest::TReadRequest;
    qint64 RecordIndex = 0;
    qint64 Grid = 0;
};

/// What goes with a request for a picture of a card.
struct TMsgObjHit : TMessageObject {
    qint64 RecordIndex = 0;
    qint64 Grid = 0; ///< identifier of the tab
};
struct TMsgObjWM_USER_METADATA_THUMB_PICTURE final : TMsgObjHit {};
/// The release and its picture are looked up by the card when the picture arrives: both may have gone.
struct TMsgObjWM_USER_METADATA_LARGE_PICTURE final : TMsgObjHit {};

} // namespace Kestrune
