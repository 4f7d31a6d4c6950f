// SPDX-License-Identifier: GPL-3.0-or-later
// Writes the small files of the tests as seed corpora: FOLDER/<reader>/<file>.
#include "uFoldedImage.h"
#include "uImageBuilders.h"
#include "uTagBuilders.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

namespace {

using namespace Kestrune;

// The images of the tests, without the empty sectors between their structures.
template <typename T>
void WriteImages(const T& write)
{
    using namespace Kestrune::Kit;
    const QByteArray sync = QByteArray("\x10\x20\0\0\xF8\x72\x6F\xBB", 8) + QByteArray(200, 't');
    const QList<TImageFile> files{{"A/B.FLA", QByteArray(5000, 'b'), 2}, {"A/C/D.CUE", "cue"}, {"E.JPG", "e"}};
    write("iso", "a", Fuzz::Fold(IsoImage("X", files), Fuzz::ISORuns()));
    write("udf", "plain", Fuzz::Fold(UdfImage(files), Fuzz::UDFRuns()));
    write("udf", "metadata", Fuzz::Fold(UdfImage(files, {.Metadata = true}), Fuzz::UDFRuns()));
    write("udf", "embedded",
          Fuzz::Fold(UdfImage({{"a", "a"}}, {.Embedded = true, .Extended = false}), Fuzz::UDFRuns()));
    write("sacd", "a",
          Fuzz::Fold(SacdImage({{.Title = "One", .Performer = "P", .Composer = "C", .Sound = QByteArray(9408, 's')}},
                               {.Title = "T", .Artist = "A"}),
                     Fuzz::SACDRuns()));
    const QByteArray dvda = IsoImage("X", {{"AUDIO_TS/ATS_01_0.IFO", DvdaIfo({{{1, 0, 1}, {2, 1, 1}}})},
                                           {"AUDIO_TS/ATS_01_1.AOB", AobSectors(sync.repeated(10))}});
    write("dvda", "a", Fuzz::Fold(dvda, Fuzz::ISORuns()));
    write("m2ts", "a", TransportStream(0x83, {{9000, sync}, {18000, sync}}, 0x72));
    write("m2ts", "b", TransportStream(0x81, {{9000, "\x0B\x77sound"}}));
    write("mp4container", "a", Mp4File({}));
    write("disctoc", "typed", "1 3 212043 150 33290 52565");
    QByteArray table(202 * 4, '\0'); // of one track and a lead-out
    table[0] = table[4] = 1;
    table[13] = 100;
    write("disctoc", "table", table);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: make_seeds FOLDER\n", stderr);
        return 2;
    }
    const auto write = [&](const char* reader, const std::string& name, const QByteArray& bytes) {
        const std::filesystem::path folder = std::filesystem::path(argv[1]) / reader;
        std::filesystem::create_directories(folder);
        std::ofstream(folder / name, std::ios::binary).write(bytes.constData(), bytes.size());
    };
    for (const Kit::TTagSeed& seed : Kit::TagSeeds()) {
        write(seed.Reader, seed.FileName, seed.Bytes);
        write("sniffer", std::string(seed.Reader) + seed.FileName, seed.Bytes);
    }
    WriteImages(write);
    write("settings", "backup",
          "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\C\\P]\r\n"
          "\"A\"=dword:00000001\r\n\"B\"=\"x\"\r\n\"C\"=hex(1):41,00,0a,00,\\\r\n  00,00\r\n");
    write("settings", "filter",
          R"({"version":1,"status":"a","letter":"B","columns":{"No":">5"},"builder":{"any":true,"not":true,"criteria":)"
          R"([{"column":"No","op":"between","value":[1,2],"text":"1"}],"groups":[{"criteria":[]}]}})");
    write("settings", "layout", "v2|Artist:0,No:52,-Genre:0|Artist,-ReleaseYear|Genre");
    return 0;
}
