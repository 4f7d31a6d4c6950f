// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "frmMain.h"
#include "uDefaults.h"
#include "uScriptedPrompt.h"
#include "uTestFiles.h"

#include <QEventLoop>

#include <gtest/gtest.h>

#include <memory>
#include <tuple>

namespace Kestrune::Kit {

using namespace Qt::StringLiterals;

/// The logic of the main window over a real collection of four releases with a track each.
class TMainFormTest : public testing::Test {
protected:
    TMainFormTest() { Defaults() = MakeDefaults(); }

    void OpenFilled()
    {
        FData.CreateNewDB(FPath, FData.GetNewDatabaseSQL());
        Defaults().DBPath = FPath;
        FForm.FormCreate({});
        FForm.FormShow();
        const std::tuple<QString, QString, QString, int> rows[] = {
            {u"The Beatles"_s, u"Help"_s, u"In collection"_s, 1965},
            {u"Abba"_s, u"Arrival"_s, u"Wanted item"_s, 1976},
            {u"abc"_s, u"Lexicon"_s, u"In collection"_s, 1982},
            {u"Zappa"_s, u"100% Zappa"_s, u"For sale"_s, 1979}};
        for (const auto& [artist, name, status, year] : rows) {
            TAlbumRelease release;
            release.SetItem2(u"Artist"_s, artist);
            release.SetItem2(u"ReleaseName"_s, name);
            release.SetItem2(u"Status"_s, status);
            release.SetItem2(u"ReleaseYear"_s, year);
            release.SetItem2(u"MediaType"_s, u"CD"_s);
            TAlbumTrack track;
            track.TrackName = u"Song"_s;
            track.DurationSec = 61;
            release.Tracks = {track};
            FData.AddAlbumReleaseToDB(release, true);
        }
    }
    QStringList Shown()
    {
        QStringList names;
        for (int row = 0; row < FData.qReleasesMain.RecordCount(); ++row)
            names << FData.qReleasesMain.ValueAt(row, FData.qReleasesMain.FieldIndex(u"ReleaseName"_s)).toString();
        return names;
    }
    // Serves the event loop until the signal comes.
    template <typename TSignal>
    void WaitFor(TSignal signal)
    {
        WaitFor(FForm, signal);
    }
    template <typename TPart, typename TSignal>
    void WaitFor(TPart& part, TSignal signal)
    {
        QEventLoop loop;
        QObject::connect(&part, signal, &loop, &QEventLoop::quit);
        loop.exec();
    }

    TTempDir FDir;
    TScriptedPrompt FPrompt;
    QString FPath = FDir.File(u"c.db"_s);
    TDataModuleMain FData{FPrompt};
    TKRNMainForm FForm{FData, FPrompt};
};

} // namespace Kestrune::Kit
