// SPDX-License-Identifier: GPL-3.0-or-later
// bench_xslt [ROUNDS]: what one answer of a service costs until it is a search result document, and what a stylesheet
// that is not meant to end costs until it is stopped. Each hostile stylesheet runs in a process of its own
// (bench_xslt --hostile NUMBER), which tells its peak memory.
#include "uBench.h"
#include "uJSONToXML.h"
#include "uServiceAnswers.h"
#include "uXSLTranformation.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

QByteArray ReadService(const QByteArray& name)
{
    QFile file(QStringLiteral(KESTRUNE_SERVICES_DIR "/") + QString::fromUtf8(name));
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("no stylesheet " + name.toStdString());
    return file.readAll();
}

void MustTransform(const QByteArray& xml, const QByteArray& sheet, QByteArray& output)
{
    QString error;
    if (!TransformXSL(xml, sheet, output, false, &error))
        throw std::runtime_error(error.toStdString());
}

void MeasureConversion(int rounds)
{
    QByteArray json = Kit::SearchAnswer("discogs", 1).Text;
    const auto one = static_cast<int>(Kit::SearchAnswer("discogs", 2).Text.size() - json.size());
    json = Kit::SearchAnswer("discogs", 1024 * 1024 / one).Text;
    Bench::Report(u"JSON to XML, %1 kB"_s.arg(json.size() / 1024), rounds, [&] { (void)JSONToXML(json); });
}

// The first use compiles; a comment at the end makes each a new one.
void MeasureAnswer(const Kit::TServiceAnswer& answer, const QString& name, int rounds)
{
    const QByteArray sheet = ReadService(answer.Stylesheet);
    const QByteArray xml = answer.JSON ? JSONToXML(answer.Text) : answer.Text;
    QByteArray output;
    int made = 0;
    const auto fresh = [&] { return sheet + "<!-- " + QByteArray::number(++made) + " -->"; };
    Bench::Report(name + u", first use"_s, rounds, [&] { MustTransform(xml, fresh(), output); });
    MustTransform(xml, sheet, output);
    Bench::Report(name + u", again"_s, rounds, [&] { MustTransform(xml, sheet, output); });
}

void MeasureAnswers(int rounds)
{
    for (const QByteArray& service : Kit::AnsweringServices()) {
        const QString name = QString::fromUtf8(service);
        MeasureAnswer(Kit::SearchAnswer(service, 25), name + u", 25 hits"_s, rounds);
        MeasureAnswer(Kit::SearchAnswer(service, 100), name + u", 100 hits"_s, rounds);
        MeasureAnswer(Kit::RecordAnswer(service, 20), name + u", 20 tracks"_s, rounds);
        MeasureAnswer(Kit::RecordAnswer(service, 2400), name + u", 2,400 tracks"_s, rounds);
    }
}

struct THostile {
    const char* Name;
    QByteArray Sheet;
    QByteArray Document;
};

QByteArray Sheet(const QByteArray& body)
{
    return "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform' "
           "xmlns:x='http://exslt.org/common' xmlns:s='http://exslt.org/strings'>" +
           body + "</xsl:stylesheet>";
}

QByteArray Call(const QByteArray& name, const QByteArray& value)
{
    return "<xsl:call-template name='" + name + "'><xsl:with-param name='n' select='" + value +
           "'/></xsl:call-template>";
}

const std::vector<THostile>& HostileSheets()
{
    const QByteArray small = "<d><i/><i/></d>";
    QByteArray wide = "<d>";
    for (int i = 0; i < 2000; ++i)
        wide += "<i n='" + QByteArray::number(i) + "'>t</i>";
    wide += "</d>";
    QByteArray deep;
    for (int i = 0; i < 200; ++i)
        deep += "<i>";
    deep += QByteArray("<i/>").repeated(1800);
    for (int i = 0; i < 200; ++i)
        deep += "</i>";
    const QByteArray start = "<xsl:template match='/'><r>" + Call("t", "60") + "</r></xsl:template>";
    const QByteArray head = start + "<xsl:template name='t'><xsl:param name='n'/>";
    const QByteArray once = "<xsl:template match='/'><r>";
    const QByteArray end = "</r></xsl:template>";
    static const std::vector<THostile> sheets{
        {"endless recursion", Sheet(head + Call("t", "$n + 1") + "</xsl:template>"), small},
        {"endless recursion by matching",
         Sheet("<xsl:template match='/ | *'><xsl:apply-templates select='/d'/></xsl:template>"), small},
        {"exponential calls",
         Sheet(head + "<xsl:if test='$n &gt; 0'>" + Call("t", "$n - 1") + Call("t", "$n - 1") +
               "</xsl:if></xsl:template>"),
         small},
        {"exponential elements",
         Sheet(head + "<e><xsl:if test='$n &gt; 0'>" + Call("t", "$n - 1") + Call("t", "$n - 1") +
               "</xsl:if></e></xsl:template>"),
         small},
        {"nested predicates",
         Sheet(once + "<xsl:value-of select='count(//*[count(//*[count(//*) &gt; 1]) &gt; 1])'/>" + end), wide},
        {"nested predicates, deep", Sheet(once + "<xsl:value-of select='count(//*[count(//*//*) &gt; 1])'/>" + end),
         deep},
        {"nested loops",
         Sheet(once +
               "<xsl:for-each select='//*'><xsl:for-each select='//*'><xsl:for-each select='//*'>"
               "<xsl:if test='. = /d'>x</xsl:if></xsl:for-each></xsl:for-each></xsl:for-each>" +
               end),
         wide},
        {"nested loops with output",
         Sheet(once +
               "<xsl:for-each select='//*'><xsl:for-each select='//*'><o a='{.}'>t</o></xsl:for-each>"
               "</xsl:for-each>" +
               end),
         wide},
        {"a copy of all for each",
         Sheet(once + "<xsl:for-each select='//*'><xsl:copy-of select='/'/></xsl:for-each>" + end), wide},
        {"ancestors of descendants",
         Sheet(once + "<xsl:value-of select='count(//*/ancestor::*/descendant::*/ancestor::*/descendant::*)'/>" + end),
         deep},
        {"comparing all with all", Sheet(once + "<xsl:value-of select='count(//i[. != //i[. = \"u\"]])'/>" + end),
         wide},
        {"numbering all",
         Sheet(once + "<xsl:for-each select='//*'><xsl:number level='any' count='*[//*]'/></xsl:for-each>" + end),
         wide},
        {"sorting all in a loop",
         Sheet(once +
               "<xsl:for-each select='//*'><xsl:for-each select='//*'><xsl:sort select='count(//*)'/>x"
               "</xsl:for-each></xsl:for-each>" +
               end),
         wide},
        {"a pattern with predicates",
         Sheet("<xsl:template match='*[count(//*[. = current()]) &gt; 5000]'/><xsl:template match='*'>"
               "<xsl:apply-templates/></xsl:template>"),
         wide},
        {"a string that doubles",
         Sheet("<xsl:template match='/'><r>" + Call("t", "\"0123456789\"") +
               "</r></xsl:template><xsl:template name='t'><xsl:param name='n'/>" + Call("t", "concat($n, $n)") +
               "</xsl:template>"),
         small},
        {"a string that doubles, written",
         Sheet("<xsl:template match='/'><r>" + Call("t", "\"0123456789\"") +
               "</r></xsl:template><xsl:template name='t'><xsl:param name='n'/><xsl:value-of select='$n'/>" +
               Call("t", "concat($n, $n)") + "</xsl:template>"),
         small},
        {"a long string, looked at often",
         Sheet(
             "<xsl:variable name='v'><xsl:for-each select='//*'>0123456789012345678901234567890123456789</xsl:for-each>"
             "</xsl:variable>" +
             once +
             "<xsl:for-each select='//*'><xsl:for-each select='//*'><xsl:if test='contains($v, \"xyz\")'>x"
             "</xsl:if></xsl:for-each></xsl:for-each>" +
             end),
         wide},
        {"a list that doubles",
         Sheet("<xsl:template match='/'><r>" + Call("t", "/d/i") +
               "</r></xsl:template><xsl:template name='t'><xsl:param name='n'/><xsl:variable name='v'><xsl:copy-of "
               "select='$n'/><xsl:copy-of select='$n'/></xsl:variable>" +
               Call("t", "x:node-set($v)/i") + "</xsl:template>"),
         small},
        {"a replacement of 10 GB",
         Sheet(once + "<xsl:value-of select='s:replace(s:padding(99999, \"x\"), \"x\", s:padding(99999, \"y\"))'/>" +
               end),
         small},
        {"padding", Sheet(once + "<xsl:value-of select='s:padding(2000000000, \"x\")'/>" + end), small},
    };
    return sheets;
}

// One process: milliseconds, how it ended, and the peak of its memory above that at the start.
int RunHostile(int number)
{
    const THostile& hostile = HostileSheets().at(static_cast<size_t>(number));
    QByteArray output;
    (void)TransformXSL("<d/>", Sheet("<xsl:template match='/'><r/></xsl:template>"), output);
    const auto peak = [] {
        QFile status(u"/proc/self/status"_s);
        double kilobytes = 0.0;
        if (status.open(QIODevice::ReadOnly)) {
            for (const QByteArray& line : status.readAll().split('\n'))
                kilobytes = line.startsWith("VmHWM:") ? line.simplified().split(' ').value(1).toDouble() : kilobytes;
        }
        return kilobytes / 1024.0;
    };
    const double before = peak();
    bool done = false;
    const double time = Bench::Measure([&] { done = TransformXSL(hostile.Document, hostile.Sheet, output); });
    Bench::Print(u"%1 %2 %3"_s.arg(time).arg(peak() - before).arg(done ? 1 : 0));
    return 0;
}

void MeasureHostile(int rounds)
{
    for (size_t i = 0; i < HostileSheets().size(); ++i) {
        std::vector<double> times;
        double memory = 0.0;
        QString outcome;
        for (int round = 0; round < rounds; ++round) {
            QProcess process;
            process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
            process.start(QCoreApplication::applicationFilePath(), {u"--hostile"_s, QString::number(i)});
            process.waitForFinished(120000);
            const QStringList figures = QString::fromUtf8(process.readAllStandardOutput()).trimmed().split(u' ');
            if (figures.size() != 3) {
                process.kill();
                process.waitForFinished();
                outcome = u"ended by itself or took more than two minutes"_s;
                break;
            }
            times.push_back(figures[0].toDouble());
            memory = std::max(memory, figures[1].toDouble());
            outcome = figures[2] == "1"_L1 ? u"finished"_s : u"stopped"_s;
        }
        const auto [least, most] =
            times.empty() ? std::pair(0.0, 0.0) : std::pair(std::ranges::min(times), std::ranges::max(times));
        Bench::Print(u"%1: %2 (%3 to %4) ms, %5 MiB, %6"_s.arg(QString::fromLatin1(HostileSheets()[i].Name), -32)
                         .arg(Bench::Median(times), 0, 'f', 0)
                         .arg(least, 0, 'f', 0)
                         .arg(most, 0, 'f', 0)
                         .arg(memory, 0, 'f', 0)
                         .arg(outcome));
    }
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    if (argc == 3 && QByteArray(argv[1]) == "--hostile")
        return RunHostile(std::atoi(argv[2]));
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 11;
    MeasureConversion(rounds);
    MeasureAnswers(rounds);
    MeasureHostile(std::max(5, rounds / 2));
    return 0;
}
