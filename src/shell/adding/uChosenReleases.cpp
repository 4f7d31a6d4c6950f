// SPDX-License-Identifier: GPL-3.0-or-later
#include "uChosenReleases.h"

#include <iterator>

namespace Kestrune {

void TChosenReleases::Add(std::vector<TSavedRelease> releases)
{
    FItems.insert(FItems.end(), std::make_move_iterator(releases.begin()), std::make_move_iterator(releases.end()));
    Q_EMIT changed();
}

void TChosenReleases::Remove(int index)
{
    if (index < 0 || index >= static_cast<int>(FItems.size()))
        return;
    FItems.erase(FItems.begin() + index);
    Q_EMIT changed();
}

std::vector<TSavedRelease> TChosenReleases::Take()
{
    std::vector<TSavedRelease> taken;
    taken.swap(FItems);
    Q_EMIT changed();
    return taken;
}

} // namespace Kestrune
