// SPDX-License-Identifier: GPL-3.0-or-later
// Start to the first painted view, memory, and frames while scrolling: bench_window FILE [ROUNDS]. Runs on the
// offscreen platform, which paints as the desktop does but shows nothing.
#include "dmMain.h"
#include "frmMain.h"
#include "uAlbumTable.h"
#include "uBench.h"
#include "uDefaults.h"
#include "uMainWindow.h"
#include "uScriptedPrompt.h"
#include "uThemeController.h"
#include "uTileView.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QScrollBar>
#include <QStackedWidget>

#include <algorithm>
#include <memory>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

struct TOpenWindow {
    explicit TOpenWindow(const QString& path)
    {
        Defaults().DBPath = path;
        Defaults().MainFormMaximized = false;
        Defaults().MainFormWidth = 1440;
        Defaults().MainFormHeight = 900;
        Theme.Apply(0, 0);
        Window = std::make_unique<TMainWindow>(Form, Theme, false);
        Window->ShowRestored();
        Window->resize(1440, 900);
        QCoreApplication::processEvents();
        Window->grab();
    }
    Kit::TScriptedPrompt Prompt;
    TThemeController Theme;
    TDataModuleMain Data{Prompt};
    TKRNMainForm Form{Data, Prompt};
    std::unique_ptr<TMainWindow> Window;
};

// One process: from main() to the first painted view. The parent adds the start of the process itself.
int PrintFirstPaint(const QString& path)
{
    const double time = Bench::Measure([&] { TOpenWindow window(path); });
    const Bench::TMemory memory = Bench::ResidentMemory();
    Bench::Print(u"%1 %2 %3"_s.arg(time).arg(memory.Total).arg(memory.Anonymous));
    return 0;
}

void MeasureStart(const QString& path, int rounds)
{
    std::vector<double> whole;
    std::vector<double> inside;
    double total = 0;
    double anonymous = 0;
    for (int i = 0; i < rounds; ++i) {
        QProcess process;
        whole.push_back(Bench::Measure([&] {
            process.start(QCoreApplication::applicationFilePath(), {u"--first-paint"_s, path});
            process.waitForReadyRead(60000);
        }));
        process.waitForFinished();
        const QStringList figures = QString::fromUtf8(process.readAllStandardOutput()).trimmed().split(u' ');
        inside.push_back(figures.value(0).toDouble());
        total = std::max(total, figures.value(1).toDouble());
        anonymous = std::max(anonymous, figures.value(2).toDouble());
    }
    const auto [least, most] = std::ranges::minmax(whole);
    Bench::Print(u"process start to first painted view: %1 (%2 to %3) ms, %4 ms of it behind main()"_s
                     .arg(Bench::Median(whole), 0, 'f', 0)
                     .arg(least, 0, 'f', 0)
                     .arg(most, 0, 'f', 0)
                     .arg(Bench::Median(inside), 0, 'f', 0));
    Bench::Print(
        u"resident then: %1 MiB, %2 MiB of it not file pages"_s.arg(total, 0, 'f', 0).arg(anonymous, 0, 'f', 0));
}

// Frames of a long scroll: each step moves by a third of the view and paints it.
void MeasureScrolling(const QString& name, QAbstractItemView& view, int frames)
{
    QScrollBar& bar = *view.verticalScrollBar();
    bar.setValue(0);
    view.grab();
    const int step = std::max(1, view.viewport()->height() / 12);
    QImage image(view.viewport()->size(), QImage::Format_ARGB32_Premultiplied);
    std::vector<double> times;
    for (int i = 0; i < frames; ++i) {
        times.push_back(Bench::Measure([&] {
            bar.setValue(bar.value() + (view.verticalScrollMode() == QAbstractItemView::ScrollPerPixel ? step : 1));
            view.viewport()->render(&image);
        }));
        QCoreApplication::processEvents();
    }
    std::ranges::sort(times);
    Bench::Print(u"%1: %2 frames, median %3 ms, 95 % under %4 ms, longest %5 ms, %6 % under 16 ms"_s.arg(name)
                     .arg(frames)
                     .arg(Bench::Median(times), 0, 'f', 1)
                     .arg(times[times.size() * 95 / 100], 0, 'f', 1)
                     .arg(times.back(), 0, 'f', 1)
                     .arg(100.0 * static_cast<double>(std::ranges::count_if(times, [](double t) { return t < 16; })) /
                              static_cast<double>(times.size()),
                          0, 'f', 1));
}

void MeasureFilters(TOpenWindow& open)
{
    TKRNMainForm& form = open.Form;
    const auto shown = [&](const QString& name, const std::function<void()>& work) {
        Bench::Report(name, 5, [&] {
            work();
            open.Window->grab();
        });
        form.Actions().Trigger(u"actFilterStatusOther"_s);
    };
    shown(u"letter B, painted"_s, [&] { form.Lists().Active().LetterClick(u"B"_s); });
    shown(u"status, painted"_s, [&] { form.Search().FilterStatus(u"In collection"_s); });
    shown(u"search by artist, painted"_s, [&] {
        form.Search().SetSearchBy(u"Artist"_s);
        form.Search().SetSearchText(u"or"_s);
        form.Actions().Trigger(u"actSearch"_s);
    });
    shown(u"sort by artist, painted"_s, [&] { form.Lists().Active().SortBy(u"Artist"_s, false); });
    Bench::Report(u"paint of the window alone"_s, 5, [&] { open.Window->grab(); });
}

// A switch between views with the first paint of the new one; tracks are opened by the first switch to them.
void MeasureSwitches(TOpenWindow& open)
{
    const std::pair<TMainView, QString> views[] = {
        {mvCards, u"cards"_s}, {mvShelf, u"shelf"_s}, {mvAlbums, u"albums"_s}, {mvThumbs, u"thumbs"_s}};
    for (const auto& [view, name] : views) {
        std::vector<double> times;
        for (int i = 0; i < 5; ++i) {
            open.Form.SetCurrentView(view == mvThumbs ? mvAlbums : mvThumbs);
            open.Window->grab();
            times.push_back(Bench::Measure([&] {
                open.Form.SetCurrentView(view);
                open.Window->grab();
            }));
        }
        const auto [least, most] = std::ranges::minmax(times);
        Bench::Print(u"switch to %1, painted: %2 (%3 to %4) ms"_s.arg(name)
                         .arg(Bench::Median(times), 0, 'f', 0)
                         .arg(least, 0, 'f', 0)
                         .arg(most, 0, 'f', 0));
    }
    Bench::Report(u"first switch to all tracks, painted"_s, 1, [&] {
        open.Form.SetCurrentView(mvTracks);
        open.Window->grab();
    });
}

void PrintMemory(const QString& when)
{
    const Bench::TMemory memory = Bench::ResidentMemory();
    Bench::Print(u"resident %1: %2 MiB, %3 MiB of it not file pages"_s.arg(when)
                     .arg(memory.Total, 0, 'f', 0)
                     .arg(memory.Anonymous, 0, 'f', 0));
}

// From the first cover to the last one, as somebody does who leans on Page Down.
void MeasureAllCovers(TOpenWindow& open)
{
    QAbstractItemView& view = *open.Window->Tiles();
    QScrollBar& bar = *view.verticalScrollBar();
    QImage image(view.viewport()->size(), QImage::Format_ARGB32_Premultiplied);
    const double time = Bench::Measure([&] {
        for (int at = 0; at <= bar.maximum(); at += view.viewport()->height()) {
            bar.setValue(at);
            view.viewport()->render(&image);
            QCoreApplication::processEvents();
        }
    });
    Bench::Print(u"through all covers in %1 s"_s.arg(time / 1000.0, 0, 'f', 1));
    PrintMemory(u"after all covers"_s);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.value(1) == "--first-paint"_L1)
        return PrintFirstPaint(arguments.value(2));
    MeasureStart(arguments.value(1), arguments.value(2, u"7"_s).toInt());
    TOpenWindow open(arguments.value(1));
    const auto scroll = [&](TMainView view, const QString& name) {
        open.Form.SetCurrentView(view);
        QCoreApplication::processEvents();
        MeasureScrolling(name, *qobject_cast<QAbstractItemView*>(open.Window->Views()->currentWidget()), 1000);
    };
    scroll(mvThumbs, u"thumbs"_s);
    MeasureAllCovers(open);
    scroll(mvCards, u"cards"_s);
    scroll(mvShelf, u"shelf"_s);
    scroll(mvAlbums, u"album table"_s);
    open.Form.SetCurrentView(mvThumbs);
    MeasureFilters(open);
    MeasureSwitches(open);
    scroll(mvTracks, u"tracks"_s);
    PrintMemory(u"at the end"_s);
    return 0;
}
