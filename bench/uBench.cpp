// SPDX-License-Identifier: GPL-3.0-or-later
#include "uBench.h"

#include <QElapsedTimer>
#include <QFile>

#include <algorithm>
#include <cstdio>

namespace Kestrune::Bench {

using namespace Qt::StringLiterals;

double Measure(const std::function<void()>& work)
{
    QElapsedTimer clock;
    clock.start();
    work();
    return static_cast<double>(clock.nsecsElapsed()) / 1e6;
}

double Median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values.empty() ? 0.0 : values[values.size() / 2];
}

double Report(const QString& name, int rounds, const std::function<void()>& work)
{
    std::vector<double> times;
    for (int i = 0; i < rounds; ++i)
        times.push_back(Measure(work));
    const auto [least, most] = std::ranges::minmax(times);
    const double median = Median(times);
    Print(u"%1: %2 (%3 to %4) ms"_s.arg(name, -46).arg(median, 0, 'f', 1).arg(least, 0, 'f', 1).arg(most, 0, 'f', 1));
    return median;
}

TMemory ResidentMemory()
{
    TMemory memory;
    QFile file(u"/proc/self/status"_s);
    if (!file.open(QIODevice::ReadOnly))
        return memory;
    for (const QByteArray& line : file.readAll().split('\n')) {
        const double mebibytes = line.mid(line.indexOf(':') + 1).simplified().split(' ').value(0).toDouble() / 1024.0;
        if (line.startsWith("VmRSS:"))
            memory.Total = mebibytes;
        if (line.startsWith("RssAnon:"))
            memory.Anonymous = mebibytes;
    }
    return memory;
}

void Print(const QString& line)
{
    std::puts(qUtf8Printable(line));
    std::fflush(stdout);
}

} // namespace Kestrune::Bench
