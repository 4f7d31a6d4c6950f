// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uDefaults.h"
#include "uKeptText.h"
#include "uScriptedPrompt.h"
#include "uTestFiles.h"

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

TEST(KeptText, IsWhatARealFileKeeps)
{
    const struct {
        QString Text, Kept;
    } rows[] = {
        {u"0042"_s, u"42"_s},
        {u"12345678901234567890"_s, u"12345678901234567000"_s},
        {u" 7"_s, u"7"_s},
        {u"7 "_s, u"7"_s},
        {u"1e5"_s, u"100000"_s},
        {u"1.50"_s, u"1.5"_s},
        {u"+3"_s, u"3"_s},
        {u".5"_s, u"0.5"_s},
        {u"-0"_s, u"0"_s},
        {u"42"_s, u"42"_s},
        {u"9007199254740993"_s, u"9007199254740993"_s},
        {u"0x10"_s, u"0x10"_s},
        {u"1 000"_s, u"1 000"_s},
        {u"1,5"_s, u"1,5"_s},
        {u"inf"_s, u"inf"_s},
        {u"7a"_s, u"7a"_s},
        {u"٤٢"_s, u"٤٢"_s},
        {u""_s, u""_s},
        {u" "_s, u" "_s},
    };
    const Kit::TTempDir dir;
    Kit::TScriptedPrompt prompt;
    TDataModuleMain data(prompt);
    data.CreateNewDB(dir.File(u"x.db"_s), data.GetNewDatabaseSQL());
    ASSERT_TRUE(data.ConnectToDB(dir.File(u"x.db"_s)));
    TAlbumRelease release;
    data.AddAlbumReleaseToDB(release, true);
    for (const auto& row : rows) {
        data.SelectRelease(1);
        data.qReleaseInfo.Edit();
        data.qReleaseInfo.SetValue(u"Custom1"_s, row.Text);
        data.qReleaseInfo.Post();
        const QString kept = VarToStr(data.ReadRelease(1).Info.Value(u"Custom1"_s));
        EXPECT_EQ(kept, row.Kept) << row.Text.toStdString();
        EXPECT_EQ(KeptText(row.Text), kept) << row.Text.toStdString();
    }
}

TEST(KeptText, IsToldForTextsOfTheUsersOwnFieldsOnly)
{
    const Kit::TTempDir dir;
    Kit::TScriptedPrompt prompt;
    const TDataModuleMain data(prompt);
    TDefaults settings;
    settings.ReleaseFields.Slots[0].DisplayName = u"Shelf"_s;
    settings.ReleaseFields.Slots[1].DataType = static_cast<int>(cftInteger);
    TAlbumRelease release;
    for (const auto& [key, value] : {std::pair{u"Custom1"_s, u"007"_s},
                                     {u"Custom2"_s, u"007"_s},
                                     {u"Custom3"_s, u"A7"_s},
                                     {u"Barcode"_s, u"0042"_s}})
        release.SetItem2(key, value);
    const QStringList notes = KeptTextNotes(data.qReleaseInfo, release, settings);
    ASSERT_EQ(notes.size(), 1) << notes.join(u'|').toStdString();
    EXPECT_TRUE(notes[0].startsWith(u"Shelf: “007” is kept as “7”"_s)) << notes[0].toStdString();
}

} // namespace Kestrune
