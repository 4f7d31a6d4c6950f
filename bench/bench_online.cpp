// SPDX-License-Identifier: GPL-3.0-or-later
// bench_online [ROUNDS]: a search of four services with 25 hits and covers each in the search window, from the command
// to the last painted cover, and the longest time in which the window answered to nothing. The services are on loopback
// and answer at once; their server works on the same cores. Runs on the offscreen platform.
#include "dmMain.h"
#include "uBench.h"
#include "uDefaults.h"
#include "uHostLimiter.h"
#include "uScriptedPrompt.h"
#include "uSearchWindow.h"
#include "uServiceAnswers.h"
#include "uTestFiles.h"
#include "uThemeController.h"
#include "uTileView.h"
#include "uWebServer.h"

#include <QApplication>
#include <QBuffer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QScrollBar>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <stdexcept>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

constexpr int Hits = 25;

// Knows the longest event, for the stalls that are looked for.
class TApplication : public QApplication {
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override
    {
        if (QThread::currentThread() != thread() || FDepth > 0)
            return QApplication::notify(receiver, event);
        const QByteArray name = receiver->metaObject()->className();
        const int type = event->type();
        ++FDepth;
        bool done = false;
        const double time = Bench::Measure([&] { done = QApplication::notify(receiver, event); });
        --FDepth;
        if (time > LongestEvent) {
            LongestEvent = time;
            LongestName = u"%1, type %2"_s.arg(QString::fromLatin1(name)).arg(type);
        }
        return done;
    }

    double LongestEvent = 0.0;
    QString LongestName;

private:
    int FDepth = 0;
};

// Ticks on the main thread; what lies between two ticks is the time in which nothing else would have been answered.
class TStallProbe {
public:
    TStallProbe()
    {
        FTimer.setTimerType(Qt::PreciseTimer);
        FTimer.setInterval(1);
        QObject::connect(&FTimer, &QTimer::timeout, &FTimer, [this] { Tick(); });
    }
    void Start()
    {
        Longest = 0.0;
        FClock.start();
        FTimer.start();
    }
    void Stop()
    {
        Tick();
        FTimer.stop();
    }
    double Longest = 0.0;

private:
    void Tick() { Longest = std::max(Longest, static_cast<double>(FClock.nsecsElapsed()) / 1e6), FClock.start(); }

    QTimer FTimer;
    QElapsedTimer FClock;
};

QByteArray MakeCover(int number, int side)
{
    QRandomGenerator random(static_cast<quint32>(number + side * 1000));
    QImage image(side, side, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient ground(0, 0, side, side);
    ground.setColorAt(0, QColor::fromRgb(random.generate()));
    ground.setColorAt(1, QColor::fromRgb(random.generate()));
    painter.fillRect(image.rect(), ground);
    for (int i = 0; i < 200; ++i)
        painter.fillRect(random.bounded(side), random.bounded(side), random.bounded(side / 8) + 1,
                         random.bounded(side / 8) + 1, QColor::fromRgb(random.generate()));
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPG", 85);
    return bytes;
}

QByteArray ReadService(const QString& name)
{
    QFile file(QStringLiteral(KESTRUNE_SERVICES_DIR "/") + name);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("no " + name.toStdString());
    return file.readAll();
}

// The delivered package, whose services are all on the server and need no wait.
class TServices {
public:
    explicit TServices(int coverSide)
    {
        for (int i = 0; i < Hits * Kit::AnsweringServices().size(); ++i)
            FCovers.append(MakeCover(i, coverSide));
        const QByteArray url = Server.URL({}).toUtf8();
        for (const QString& name : QDir(QStringLiteral(KESTRUNE_SERVICES_DIR)).entryList(QDir::Files)) {
            QByteArray text = ReadService(name);
            text.replace("https://musicbrainz.org", url + "/musicbrainz");
            text.replace("https://itunes.apple.com", url + "/itunes");
            text.replace("https://api.discogs.com", url + "/discogs");
            text.replace("https://ws.audioscrobbler.com", url + "/lastfm");
            text.replace("https://coverartarchive.org/release", url + "/cover/musicbrainz");
            FDir.Write(name, QString::fromUtf8(text)
                                 .replace(QRegularExpression(u"WaitBetweenRequests=\"\\d+\""_s),
                                          u"WaitBetweenRequests=\"0\""_s)
                                 .toUtf8());
        }
        for (const QByteArray& service : Kit::AnsweringServices())
            FAnswers[service] = Kit::SearchAnswer(service, Hits, url + "/cover/" + service + "/").Text;
        Server.SetHandler([this](const Kit::TWebRequest& request) { return Answer(request); });
    }

    QString Path() const { return FDir.File(u"infograbber.xml"_s); }
    int CoverBytes() const { return static_cast<int>(FCovers.join().size() / FCovers.size()); }

    Kit::TWebServer Server;

private:
    Kit::TWebAnswer Answer(const Kit::TWebRequest& request) const
    {
        const QList<QByteArray> parts = request.Path.split('/');
        if (parts.value(1) != "cover")
            return {.Body = FAnswers.at(parts.value(1))};
        const auto service = Kit::AnsweringServices().indexOf(parts.value(2));
        int number = parts.value(3).toInt();
        for (int i = 0; parts.value(2) == "musicbrainz" && i < Hits; ++i)
            number = parts.value(3) == Kit::MusicBrainzId(i) ? i : number;
        return {.Body = FCovers.at(service * Hits + number), .Type = "image/jpeg"};
    }

    Kit::TTempDir FDir;
    QList<QByteArray> FCovers;
    std::map<QByteArray, QByteArray> FAnswers;
};

QString Spread(std::vector<double> values)
{
    const auto [least, most] = std::ranges::minmax(values);
    return u"%1 (%2 to %3) ms"_s.arg(Bench::Median(values), 0, 'f', 0).arg(least, 0, 'f', 0).arg(most, 0, 'f', 0);
}

void MeasureSearches(TApplication& application, int coverSide, int rounds)
{
    HostLimiter().Clear();
    TServices services(coverSide);
    TInfoGrabber grabber;
    grabber.Parse(services.Path());
    Kit::TScriptedPrompt prompt;
    TDataModuleMain data(prompt);
    TAddMusicForm form(grabber, data, prompt);
    TSearchWindow window(form, nullptr);
    window.show();
    for (int i = 0; i < 20; ++i)
        QCoreApplication::processEvents();
    const auto all = static_cast<size_t>(Hits * Kit::AnsweringServices().size());
    const auto isThere = [&] {
        return form.Tabs().Current().Hits.size() == all &&
               std::ranges::none_of(form.Tabs().Current().Hits,
                                    [](const TSearchHit& hit) { return hit.Cover.isNull(); });
    };

    TStallProbe probe;
    std::vector<double> cards, whole, stalls, events, pages;
    QString longest;
    double worst = 0.0;
    for (int round = 0; round < rounds; ++round) {
        form.Fields().Artist = u"Band %1"_s.arg(round);
        application.LongestEvent = 0.0;
        probe.Start();
        QElapsedTimer clock;
        clock.start();
        double firstCards = 0.0;
        form.Search();
        while (form.Busy() || !isThere()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            if (firstCards == 0.0 && form.Tabs().Current().Hits.size() == all)
                firstCards = static_cast<double>(clock.nsecsElapsed()) / 1e6;
            if (clock.elapsed() > 60000)
                throw std::runtime_error("the search does not end");
        }
        QCoreApplication::processEvents(); // the last paint
        QCoreApplication::processEvents();
        whole.push_back(static_cast<double>(clock.nsecsElapsed()) / 1e6);
        probe.Stop();
        cards.push_back(firstCards);
        stalls.push_back(probe.Longest);
        events.push_back(application.LongestEvent);
        if (application.LongestEvent > worst) {
            worst = application.LongestEvent;
            longest = application.LongestName;
        }
        QScrollBar& bar = *window.View()->verticalScrollBar();
        pages.push_back(Bench::Measure([&] {
            for (int at = 0; at <= bar.maximum(); at += std::max(1, bar.pageStep())) {
                bar.setValue(at);
                window.View()->viewport()->repaint();
            }
        }));
        bar.setValue(0);
    }
    Bench::Print(u"covers of %1 x %1, %2 kB each, %3 rounds"_s.arg(coverSide)
                     .arg(services.CoverBytes() / 1024.0, 0, 'f', 1)
                     .arg(rounds));
    Bench::Print(u"  all cards there:                   %1"_s.arg(Spread(cards)));
    Bench::Print(
        u"  all cards and covers, painted:     %1, the first %2 ms"_s.arg(Spread(whole)).arg(whole[0], 0, 'f', 0));
    Bench::Print(u"  longest gap between two ticks:     %1"_s.arg(Spread(stalls)));
    Bench::Print(u"  longest event of the main thread:  %1, the worst %2"_s.arg(Spread(events), longest));
    Bench::Print(u"  then paging through all, painted:  %1"_s.arg(Spread(pages)));
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    TApplication application(argc, argv);
    QFont font(QStringList{u"DejaVu Sans"_s});
    font.setPixelSize(13);
    QApplication::setFont(font);
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 11;
    Defaults() = MakeDefaults();
    Defaults().SearchByArtistRelease = 15;
    TThemeController theme;
    theme.Apply(0, 0);
    for (const int side : {250, 500})
        MeasureSearches(application, side, rounds);
    return 0;
}
