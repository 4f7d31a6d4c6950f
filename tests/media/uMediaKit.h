// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uByteReader.h"
#include "uDebugLog.h"
#include "uImageBuilders.h"
#include "uTagBuilders.h"
#include "uTestFiles.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <memory>

namespace Kestrune::Kit {

using namespace Qt::StringLiterals;

/// Gathers the debug log while it lives.
class TLogged {
public:
    TLogged()
    {
        SetDebugLogSink([this](const QString& line) { FLines += line.mid(line.indexOf(u']') + 2); });
    }
    ~TLogged() { SetDebugLogSink({}); }
    TLogged(const TLogged&) = delete;
    TLogged& operator=(const TLogged&) = delete;
    bool Has(const QString& line) const { return FLines.contains(line); }
    QString All() const { return FLines.join(u'\n'); }

private:
    QStringList FLines;
};

inline std::shared_ptr<TByteSource> InMemory(const QByteArray& bytes) { return std::make_shared<TMemorySource>(bytes); }

/// Sound of an encoder: raw samples of a sweep, 16 bits, stereo, 48,000 Hz, little-endian.
inline QByteArray RawSound(const TTempDir& dir, const QString& file)
{
    const QString raw = dir.File(u"raw.pcm"_s);
    EXPECT_TRUE(RunProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-y"_s, u"-i"_s, file, u"-f"_s, u"s16le"_s, u"-ac"_s,
                                         u"2"_s, u"-ar"_s, u"48000"_s, raw}))
        << file.toStdString();
    return ReadAll(raw);
}

/// A file made by ffmpeg from a tone of some seconds.
inline QString EncodedTone(const TTempDir& dir, const QString& name, double seconds, const QStringList& arguments)
{
    const QString path = dir.File(name);
    QByteArray output;
    EXPECT_TRUE(
        RunProgram(u"ffmpeg"_s,
                   QStringList{u"-v"_s, u"error"_s, u"-y"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                               u"sine=frequency=330:sample_rate=48000:duration=%1"_s.arg(seconds), u"-ac"_s, u"2"_s} +
                       arguments + QStringList{path},
                   &output))
        << output.toStdString();
    return path;
}

} // namespace Kestrune::Kit
