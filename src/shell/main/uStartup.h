// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <span>

namespace Kestrune {

/// True when the first argument behind the program's name asks for debug mode: "-debug" in any case. It is the only
/// argument that the window program knows.
bool IsDebugModeAsked(const QStringList& arguments);

/// What the window program does at start, in the form that its main() hands over. Each runs once.
struct TStartupHost {
    std::function<void(bool debugMode)> SetDebugMode;
    std::function<void()> ShowSplash;
    std::function<void()> InitialiseApplication;
    std::function<void()> CreateDataModuleImages; ///< icons and images
    std::function<void()> CreateDataModuleMain;   ///< the gateway to the collection
    std::function<void()> CreateMainForm;         ///< the main window, with its FormCreate
    std::function<void()> CreateAddMusicForm;     ///< the search window's logic
    std::function<void()> ShowMainForm;
};

/// One step of the start.
struct TStartupStep {
    const char* Name;
    void (*Run)(const TStartupHost& host, const QStringList& arguments);
};

/// The steps in their fixed order; windows that are created at start enter here at their place.
std::span<const TStartupStep> StartupSteps();

/// Runs all steps.
void RunStartup(const TStartupHost& host, const QStringList& arguments);

} // namespace Kestrune
