// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFileDialogs.h"
#include "uFileLocks.h"
#include "uFilePath.h"
#include "uScenario.h"
#include "uTestFiles.h"
#include "uWidgetPrompt.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

class FileDialogs : public Kit::TScenario {
protected:
    bool Held() const { return HoldsLockOn(TextToPath(FPath)) && HoldsLockOn(TextToPath(FPath + u"-shm"_s)); }

    // Runs `open`, which shows a dialog, and closes that once `inside` has given true.
    static bool WithDialog(const std::function<void()>& open, const std::function<bool(QDialog&)>& inside)
    {
        bool reached = false;
        QTimer::singleShot(0, qApp, [&] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            reached = dialog && QTest::qWaitFor([&] { return inside(*dialog); });
            if (dialog)
                dialog->reject();
        });
        open();
        return reached;
    }
};

// The listing has come as far as asking for the icon and the kind of the collection.
bool HasListed(QDialog& dialog, const QString& name)
{
    const auto* model = dialog.findChild<QFileSystemModel*>();
    const QModelIndex root = model->index(model->rootPath());
    for (int row = 0; row < model->rowCount(root); ++row) {
        const QModelIndex file = model->index(row, 0, root);
        if (file.data().toString() == name)
            return !file.data(QFileSystemModel::FileIconRole).value<QIcon>().isNull() &&
                   !file.siblingAtColumn(2).data().toString().isEmpty();
    }
    return false;
}

} // namespace

TEST_F(FileDialogs, ListTheCollectionWithoutOpeningIt)
{
    Open(3);
    TWidgetPrompt prompt;
    TFileDialogRequest request;
    request.Folder = FDir.Path();
    request.Filter = u"Collections (*.db)|*.db|All files (*.*)|*.*"_s;
    request.FileName = u"records.db"_s;
    const auto listed = [](QDialog& dialog) { return HasListed(dialog, u"records.db"_s); };
    EXPECT_TRUE(WithDialog([&] { prompt.AskOpenFile(request); }, listed));
    EXPECT_TRUE(Held()) << "open";
    EXPECT_TRUE(WithDialog([&] { prompt.AskSaveFile(request); }, listed));
    EXPECT_TRUE(Held()) << "save";
    EXPECT_TRUE(WithDialog([&] { prompt.AskFolder({}, FDir.Path()); },
                           [](QDialog& dialog) {
                               const auto* model = dialog.findChild<QFileSystemModel*>();
                               return model->rootPath() == static_cast<QFileDialog&>(dialog).directory().path();
                           }));
    EXPECT_TRUE(Held()) << "folder";
}

TEST_F(FileDialogs, AfterADialogThatLookedIntoTheFileItIsLockedAgain)
{
    Open(3);
    InDialog("actAbout", [this](QDialog&) {
        Kit::ReadAll(FPath);
        ASSERT_FALSE(Held()) << "this system keeps them, and the test proves nothing";
        EXPECT_TRUE(QTest::qWaitFor([this] { return Held(); })) << "while it is open";
        Kit::ReadAll(FPath);
    });
    EXPECT_TRUE(Held()) << "when it has closed";
    EXPECT_TRUE(
        Form().Lists().Releases().EditField(Form().Lists().Active().FocusedRelease(), u"Label"_s, u"still ours"_s));
    EXPECT_EQ(InFile(u"SELECT count(*) FROM Releases2 WHERE Label = 'still ours'"_s), u"1"_s);
}

TEST_F(FileDialogs, EveryDialogOfTheWindowLeavesTheLocks)
{
    Open(3);
    for (const char* action :
         {"actSort", "actAdvancedSearch", "actMultiEdit", "actOptions", "actExecSQL", "actPrintPreview", "actAbout",
          "actHelp", "actCommandPalette", "actEditGenres", "actImport"}) {
        InDialog(action, [](QDialog&) {});
        EXPECT_TRUE(Held()) << action;
    }
}

} // namespace Kestrune
