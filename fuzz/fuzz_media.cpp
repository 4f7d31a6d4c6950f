// SPDX-License-Identifier: GPL-3.0-or-later
// One fuzz target per reader of disc images and containers: FUZZ_READER names the function below that a target calls.
#include "uCD.h"
#include "uDVDAReader.h"
#include "uFoldedImage.h"
#include "uISOReader.h"
#include "uM2TSReader.h"
#include "uMP4Reader.h"
#include "uSACDReader.h"
#include "uUDFReader.h"

#include <QBuffer>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace Kestrune {

namespace {

std::shared_ptr<TByteSource> Unfolded(const QByteArray& bytes, const Fuzz::TSectorRuns& runs)
{
    return std::make_shared<Fuzz::TUnfoldedSource>(bytes, runs);
}

[[maybe_unused]] void FuzzISO(const QByteArray& bytes)
{
    TISOReader reader;
    if (!reader.Open(Unfolded(bytes, Fuzz::ISORuns())) || reader.Files().empty())
        return;
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    reader.ExtractToStream(reader.Files().back(), out);
    if (out.size() > reader.Image()->Size())
        std::abort();
}

[[maybe_unused]] void FuzzUDF(const QByteArray& bytes)
{
    TUDFReader reader;
    reader.Open(Unfolded(bytes, Fuzz::UDFRuns()), {});
}

[[maybe_unused]] void FuzzSACD(const QByteArray& bytes)
{
    TSACDReader reader;
    QByteArray out;
    if (reader.Open(Unfolded(bytes, Fuzz::SACDRuns())))
        reader.ExtractTrackToDSF(0, out);
}

[[maybe_unused]] void FuzzDVDA(const QByteArray& bytes)
{
    TDVDAReader reader;
    QByteArray out;
    if (reader.Open(Unfolded(bytes, Fuzz::ISORuns()), {}))
        reader.ExtractTrackMLP(0, out);
}

[[maybe_unused]] void FuzzM2TS(const QByteArray& bytes)
{
    TM2TSReader reader;
    QByteArray out;
    if (!reader.Open(std::make_shared<TMemorySource>(bytes)))
        return;
    reader.ExtractTrueHD(out);
    reader.ExtractAC3Core(out);
}

[[maybe_unused]] void FuzzMP4Container(const QByteArray& bytes)
{
    TMP4Reader reader;
    QByteArray out;
    if (reader.Open(std::make_shared<TMemorySource>(bytes)))
        reader.ExtractTrack(0, out);
}

// The input is a table of a drive, and numbers that were typed: what is understood reads back the same.
[[maybe_unused]] void FuzzDiscTOC(const QByteArray& bytes)
{
    TRawTOC toc;
    TDiscTexts texts;
    TDiscTexts again;
    QString error;
    std::memcpy(&toc, bytes.constData(), std::min(sizeof toc, static_cast<size_t>(bytes.size())));
    if (DiscTextsOf(toc, texts, error) != (texts.DiscID.size() == 28))
        std::abort();
    if (!ParseDecimalTOC(QString::fromUtf8(bytes), toc, error))
        return;
    if (!DiscTextsOf(toc, texts, error) || !ParseDecimalTOC(texts.TOC_DECIMAL, toc, error) ||
        !DiscTextsOf(toc, again, error) || texts.DiscID != again.DiscID)
        std::abort();
}

} // namespace

} // namespace Kestrune

extern "C" int LLVMFuzzerTestOneInput(const char* data, size_t size);

extern "C" int LLVMFuzzerTestOneInput(const char* data, size_t size)
{
    Kestrune::FUZZ_READER(QByteArray(data, static_cast<qsizetype>(size)));
    return 0;
}
