// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>

#include <algorithm>
#include <array>
#include <string_view>

namespace Kestrune {

/// Four bytes that name a chunk, an atom or a frame.
struct TFourCC {
    std::array<char, 4> Bytes = {};

    constexpr TFourCC() = default;
    constexpr TFourCC(const char (&text)[5]) : Bytes{text[0], text[1], text[2], text[3]} {}
    /// The first four bytes; missing ones are zero.
    explicit TFourCC(QByteArrayView bytes)
    {
        std::copy_n(bytes.begin(), std::min<qsizetype>(bytes.size(), 4), Bytes.begin());
    }

    bool operator==(const TFourCC&) const = default;
    std::string_view Text() const { return {Bytes.data(), Bytes.size()}; }
};

} // namespace Kestrune
