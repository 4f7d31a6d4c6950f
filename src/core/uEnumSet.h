// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <initializer_list>
#include <type_traits>

namespace Kestrune {

/// A set of values of an enumeration whose values lie in 0 to 63.
template <typename T>
requires std::is_enum_v<T>
class TEnumSet {
public:
    constexpr TEnumSet() = default;
    constexpr TEnumSet(std::initializer_list<T> values)
    {
        for (const T value : values)
            FBits |= Bit(value);
    }

    constexpr bool Contains(T value) const { return (FBits & Bit(value)) != 0; }
    constexpr bool IsEmpty() const { return FBits == 0; }
    constexpr void Include(T value) { FBits |= Bit(value); }
    constexpr void Exclude(T value) { FBits &= ~Bit(value); }
    constexpr bool operator==(const TEnumSet&) const = default;

private:
    static constexpr quint64 Bit(T value) { return quint64(1) << static_cast<unsigned>(value); }

    quint64 FBits = 0;
};

} // namespace Kestrune
