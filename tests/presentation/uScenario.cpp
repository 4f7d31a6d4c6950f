// SPDX-License-Identifier: GPL-3.0-or-later
#include "uScenario.h"

#include "dmMain.h"
#include "uActionSet.h"
#include "uAlbumTable.h"
#include "uDefaults.h"
#include "uReleaseRoles.h"
#include "uTileView.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QStackedWidget>
#include <QTest>
#include <QTimer>

namespace Kestrune::Kit {

using namespace Qt::StringLiterals;

TScenario::TScenario() { Defaults() = MakeDefaults(); }

TScenario::~TScenario()
{
    FWindow.reset();
    FForm.reset();
    OpenSettingsStore({});
}

void TScenario::Open(int releases, const std::function<void()>& settings)
{
    OpenSettingsStore(FDir.File(u"settings.ini"_s));
    FData.CreateNewDB(FPath, FData.GetNewDatabaseSQL());
    ASSERT_TRUE(FData.ConnectToDB(FPath));
    const QString genres[] = {u"Rock"_s, u"Folk"_s, u"Jazz"_s};
    for (int i = 0; i < releases; ++i) {
        TAlbumRelease release;
        release.SetItem2(u"Artist"_s, i % 2 ? u"Northern Kiln"_s : u"Ilva Marren"_s);
        release.SetItem2(u"ReleaseName"_s, u"Salt Atlas %1"_s.arg(i, 3, 10, QChar(u'0')));
        release.SetItem2(u"ReleaseYear"_s, QString::number(1960 + i % 50));
        release.SetItem2(u"Genre"_s, genres[i % 3]);
        for (int track = 1; track <= 3; ++track) {
            TAlbumTrack song;
            song.TrackNo = track;
            song.TrackName = u"Song %1 of %2"_s.arg(track).arg(i, 3, 10, QChar(u'0'));
            song.DurationSec = 60 * track;
            release.Tracks.push_back(song);
        }
        FData.AddAlbumReleaseToDB(release, true);
    }
    Defaults().DBPath = FPath;
    if (settings)
        settings();
    Show();
}

void TScenario::Show()
{
    FForm = std::make_unique<TKRNMainForm>(FData, FPrompt);
    QObject::connect(FForm.get(), &TKRNMainForm::barRaised, FForm.get(),
                     [this](TBarKind, const QString& bold, const QString& sentence) {
                         FBars << (bold + u' ' + sentence).trimmed();
                     });
    QObject::connect(&FForm->Shell(), &TShell::offerRaised, FForm.get(),
                     [this](TBarKind, const QString& bold, const QString& sentence, const TBarOffer&) {
                         FBars << (bold + u' ' + sentence).trimmed();
                     });
    FWindow = std::make_unique<TMainWindow>(*FForm, FTheme, false);
    QSignalSpy shown(FWindow.get(), &TMainWindow::shownFirst);
    FWindow->ShowRestored();
    FWindow->activateWindow();
    shown.wait(2000);
    FWindow->resize(1440, 900);
    Settle();
}

void TScenario::Reopen()
{
    FWindow->close();
    FWindow.reset();
    FForm.reset();
    Show();
}

void TScenario::Settle()
{
    // The longest delay in the window is that of the detail pane, which tells when it has followed.
    QSignalSpy detail(FForm.get(), &TKRNMainForm::detailChanged);
    QApplication::processEvents();
    if (FForm->Lists().Active().FocusedRelease() != 0 &&
        FForm->Pane().Detail().ID != FForm->Lists().Active().FocusedRelease())
        detail.wait(2000);
    QApplication::processEvents();
}

void TScenario::Do(const char* action)
{
    QAction* found = FWindow->Actions().Find(QString::fromLatin1(action));
    ASSERT_TRUE(found) << action;
    ASSERT_TRUE(found->isVisible() && found->isEnabled()) << action;
    found->trigger();
    Settle();
}

void TScenario::Press(const QString& keys)
{
    const QKeySequence sequence(keys);
    QWidget* focus = QApplication::focusWidget() ? QApplication::focusWidget() : FWindow.get();
    QTest::keyClick(focus, sequence[0].key(), sequence[0].keyboardModifiers());
    Settle();
}

void TScenario::Type(const QString& text)
{
    QWidget* focus = QApplication::focusWidget();
    ASSERT_TRUE(focus) << "nothing has the keyboard";
    QTest::keyClicks(focus, text);
}

void TScenario::InDialog(const char* action, const std::function<void(QDialog&)>& inside)
{
    bool reached = false;
    QTimer timer; // fires within the event loop of the dialog
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, FWindow.get(), [&] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        ASSERT_TRUE(dialog) << action;
        reached = true;
        dialog->activateWindow();
        EXPECT_TRUE(QTest::qWaitFor([dialog] { return QApplication::activeWindow() == dialog; })) << action;
        inside(*dialog);
        if (dialog->isVisible())
            dialog->reject();
    });
    timer.start(0);
    Do(action);
    EXPECT_TRUE(reached) << action;
}

QStringList TScenario::Rows() const
{
    const TListDataset& list = FForm->Lists().Active().List();
    const int field = list.FieldIndex(FForm->TracksShown() ? u"TrackTitle"_s : u"ReleaseName"_s);
    QStringList rows;
    for (int row = 0; row < list.RecordCount(); ++row)
        rows << list.ValueAt(row, field).toString();
    return rows;
}

QStringList TScenario::Chips() const
{
    QStringList chips;
    for (const TFilterChip& chip : FForm->Lists().Active().Filters().Chips())
        chips << (chip.Field + u'=' + chip.Value);
    return chips;
}

QString TScenario::State() const
{
    const QString views[] = {u"thumbs"_s, u"cards"_s, u"shelf"_s, u"albums"_s, u"tracks"_s};
    const auto* view = qobject_cast<QAbstractItemView*>(FWindow->Views()->currentWidget());
    if (!view)
        return views[static_cast<int>(FForm->CurrentView())] + u" | nothing"_s;
    return u"%1 | %2 | %3"_s
        .arg(views[static_cast<int>(FForm->CurrentView())], view->currentIndex().data(rrTitle).toString())
        .arg(FForm->Lists().Active().Keys().size());
}

QString TScenario::InFile(const QString& sql) const
{
    TSQLiteConnection other;
    other.Open(FPath, somReadOnly);
    return VarToStr(other.Scalar(sql));
}

QStringList TScenario::Bars() const { return FBars; }

} // namespace Kestrune::Kit
