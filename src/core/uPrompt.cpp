// SPDX-License-Identifier: GPL-3.0-or-later
#include "uPrompt.h"

#include <utility>

namespace Kestrune {

namespace {

TSplashSink& SplashSink()
{
    static TSplashSink sink;
    return sink;
}

} // namespace

void SetSplashText(const QString& text)
{
    if (SplashSink())
        SplashSink()(text);
}

void SetSplashSink(TSplashSink sink) { SplashSink() = std::move(sink); }

} // namespace Kestrune
