// SPDX-License-Identifier: GPL-3.0-or-later
#include "uMediaKit.h"
#include "uTrackLocator.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

TEST(TrackLocator, TextsReadBackAsTheyWereWritten)
{
    const struct {
        QString Text;
        TLocatorKind Kind;
        QString Inner;
        int Number, Start, End;
    } rows[] = {{{}, lkFile, {}, 0, 0, 0},
                {u"ISO:a/b.flac"_s, lkISO, u"a/b.flac"_s, 0, 0, 0},
                {u"ISO:a:b/c.flac:10:200"_s, lkISO, u"a:b/c.flac"_s, 0, 10, 200},
                {u"SACD:12"_s, lkSACD, {}, 12, 0, 0},
                {u"DVDA:1"_s, lkDVDA, {}, 1, 0, 0},
                {u"BDISO:BDMV/STREAM/00001.m2ts"_s, lkBDISO, u"BDMV/STREAM/00001.m2ts"_s, 0, 0, 0},
                {u"CUE:0:180"_s, lkCue, {}, 0, 0, 180}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Text.toStdString());
        const TTrackLocator locator = TTrackLocator::Parse(row.Text);
        EXPECT_EQ(locator.Kind, row.Kind);
        EXPECT_EQ(locator.InnerPath, row.Inner);
        EXPECT_EQ(locator.Number, row.Number);
        EXPECT_EQ(locator.StartSec, row.Start);
        EXPECT_EQ(locator.EndSec, row.End);
        EXPECT_EQ(locator.Text(), row.Text);
    }
    for (const QString& text : {u"CUE:x:y"_s, u"CUE:5"_s, u"SACD:x"_s, u"other"_s, u"iso:a"_s})
        EXPECT_EQ(TTrackLocator::Parse(text).Kind, lkFile) << text.toStdString();
    EXPECT_EQ(TTrackLocator::InISO(u"a.flac"_s).Cut(3, 9).Text(), u"ISO:a.flac:3:9"_s);
    EXPECT_EQ(TTrackLocator().Cut(3, 9).Text(), u"CUE:3:9"_s);
    EXPECT_EQ(ComposeTrackName(u"/m/a.iso"_s, u"SACD:2"_s), u"/m/a.iso#SACD:2"_s);
    EXPECT_EQ(ComposeTrackName(u"/m/a.flac"_s, {}), u"/m/a.flac"_s);
}

} // namespace Kestrune
