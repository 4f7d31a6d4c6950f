// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uHttpClient.h"

namespace Kestrune {

/// Answers in place of the online services with a handful of invented releases and drawn covers, so that pictures of
/// the search window need no network.
class TShotServices final : public THttpStandIn {
public:
    THttpAnswer Answer(const THttpRequest& request, QByteArray& body) override;
};

} // namespace Kestrune
