// SPDX-License-Identifier: GPL-3.0-or-later
#include "uEditSession.h"

#include "dmMain.h"

namespace Kestrune {

TEditSession::TEditSession(TDataModuleMain& data, qint64 release) : FData(data), FRelease(release)
{
    FData.BeginSession(release);
}

TEditSession::~TEditSession()
{
    Cancel();
    FData.EndSession();
}

void TEditSession::Post()
{
    for (TDetailDataset* cursor : FData.FEdited.All())
        cursor->Post();
}

void TEditSession::Cancel()
{
    for (TDetailDataset* cursor : FData.FEdited.All())
        cursor->Cancel();
}

} // namespace Kestrune
