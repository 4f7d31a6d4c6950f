// SPDX-License-Identifier: GPL-3.0-or-later
#include "uStartup.h"

#include "uDebugLog.h"
#include "uPrompt.h"
#include "uTHStrings.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr TStartupStep StartupRows[] = {
    {"debug switch",
     [](const TStartupHost& host, const QStringList& arguments) { host.SetDebugMode(IsDebugModeAsked(arguments)); }},
    {"splash window", [](const TStartupHost& host, const QStringList&) { host.ShowSplash(); }},
    {"application", [](const TStartupHost& host, const QStringList&) { host.InitialiseApplication(); }},
    {"TDataModuleImages",
     [](const TStartupHost& host, const QStringList&) {
         SetSplashText(GetLanguageString(u"cSSplashLoadingImages"_s));
         host.CreateDataModuleImages();
     }},
    {"TDataModuleMain",
     [](const TStartupHost& host, const QStringList&) {
         SetSplashText(GetLanguageString(u"cSSplashLoadingData"_s));
         host.CreateDataModuleMain();
     }},
    {"TKRNMainForm", [](const TStartupHost& host, const QStringList&) { host.CreateMainForm(); }},
    {"TAddMusicForm",
     [](const TStartupHost& host, const QStringList&) {
         SetSplashText(GetLanguageString(u"cSSplashPreparingSearch"_s));
         host.CreateAddMusicForm();
     }},
    {"main window", [](const TStartupHost& host, const QStringList&) { host.ShowMainForm(); }},
};

} // namespace

bool IsDebugModeAsked(const QStringList& arguments) { return arguments.value(1).toLower() == "-debug"_L1; }

std::span<const TStartupStep> StartupSteps() { return StartupRows; }

void RunStartup(const TStartupHost& host, const QStringList& arguments)
{
    for (const TStartupStep& step : StartupRows) {
        step.Run(host, arguments);
        DebugLog(u"start: "_s + QString::fromLatin1(step.Name));
    }
}

} // namespace Kestrune
