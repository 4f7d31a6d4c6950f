// SPDX-License-Identifier: GPL-3.0-or-later
// bench_images [ROUNDS]: lists ISO 9660 and UDF images of 10,000 entries, made in memory and written to a temporary
// folder, and prints the median and the range of the times.
#include "uBench.h"
#include "uISOReader.h"
#include "uImageBuilders.h"
#include "uTestFiles.h"
#include "uUDFReader.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdlib>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

constexpr int Folders = 100;
constexpr int FilesPerFolder = 99; // with their folders 10,000 entries

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 21;
    QList<Kit::TImageFile> files;
    for (int folder = 0; folder < Folders; ++folder)
        for (int file = 0; file < FilesPerFolder; ++file)
            files << Kit::TImageFile{"F" + QByteArray::number(folder) + "/TRACK" + QByteArray::number(file) + ".FLA",
                                     "x"};
    const Kit::TTempDir dir;
    const QString iso = dir.Write(u"a.iso"_s, Kit::IsoImage("BENCH", files));
    const QString udf = dir.Write(u"a.udf"_s, Kit::UdfImage(files, {.Metadata = true}));
    size_t found = 0;
    Bench::Report(u"ISO 9660"_s, rounds, [&] {
        TISOReader reader;
        reader.Open(iso);
        found = reader.Files().size();
    });
    Bench::Print(u"  %1 entries"_s.arg(found));
    Bench::Report(u"UDF with metadata partition"_s, rounds, [&] {
        TUDFReader reader;
        reader.Open(udf);
        found = reader.Files().size();
    });
    Bench::Print(u"  %1 files"_s.arg(found));
    return 0;
}
