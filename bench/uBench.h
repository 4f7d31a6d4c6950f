// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>
#include <vector>

namespace Kestrune::Bench {

/// Milliseconds of one call.
double Measure(const std::function<void()>& work);

/// Runs the work `rounds` times and prints "name: median (min to max) ms".
double Report(const QString& name, int rounds, const std::function<void()>& work);

/// Resident memory of this process in MiB: all of it, and without pages that mirror files.
struct TMemory {
    double Total = 0.0;
    double Anonymous = 0.0;
};
TMemory ResidentMemory();

void Print(const QString& line);

double Median(std::vector<double> values);

} // namespace Kestrune::Bench
