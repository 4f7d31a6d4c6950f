// SPDX-License-Identifier: GPL-3.0-or-later
// Writes the small files of the tests as seed corpora: FOLDER/<reader>/<file>.
#include "uTagBuilders.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: make_tag_seeds FOLDER\n", stderr);
        return 2;
    }
    const auto write = [&](const char* reader, const std::string& name, const QByteArray& bytes) {
        const std::filesystem::path folder = std::filesystem::path(argv[1]) / reader;
        std::filesystem::create_directories(folder);
        std::ofstream(folder / name, std::ios::binary).write(bytes.constData(), bytes.size());
    };
    for (const Kestrune::Kit::TTagSeed& seed : Kestrune::Kit::TagSeeds()) {
        write(seed.Reader, seed.FileName, seed.Bytes);
        write("sniffer", std::string(seed.Reader) + seed.FileName, seed.Bytes);
    }
    return 0;
}
