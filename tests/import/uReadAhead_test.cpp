// SPDX-License-Identifier: GPL-3.0-or-later
#include "uReadAhead.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <stdexcept>
#include <vector>

namespace Kestrune {

namespace {

using TItem = std::unique_ptr<int>;

// Gives 0, 1, ... up to `count`; counts what was asked for.
struct TCounting {
    int Count = 0;
    int FailAt = -1;
    std::atomic<int> Asked{0};

    std::optional<TItem> Next()
    {
        const int number = Asked++;
        if (number == FailAt)
            throw std::runtime_error("torn");
        return number < Count ? std::optional(std::make_unique<int>(number)) : std::nullopt;
    }
};

} // namespace

TEST(ReadAhead, GivesTheItemsInTheirOrderAndThenNothing)
{
    for (const int count : {0, 1, 100}) {
        TCounting source{.Count = count};
        TReadAhead<TItem> ahead([&] { return source.Next(); });
        for (int i = 0; i < count; ++i)
            ASSERT_EQ(*ahead.Take().value(), i);
        EXPECT_FALSE(ahead.Take());
        EXPECT_FALSE(ahead.Take()) << "the end stays the end";
        EXPECT_EQ(source.Asked, count + 1);
    }
}

TEST(ReadAhead, StaysOneItemAhead)
{
    TCounting source{.Count = 100};
    {
        TReadAhead<TItem> ahead([&] { return source.Next(); });
        for (int i = 0; i < 5; ++i) {
            ahead.Take();
            EXPECT_LE(source.Asked, i + 2);
        }
    }
    EXPECT_LE(source.Asked, 6) << "what nobody takes is not read";
}

TEST(ReadAhead, AFailureComesBehindTheItemsBeforeIt)
{
    TCounting source{.Count = 10, .FailAt = 2};
    TReadAhead<TItem> ahead([&] { return source.Next(); });
    EXPECT_EQ(*ahead.Take().value(), 0);
    EXPECT_EQ(*ahead.Take().value(), 1);
    EXPECT_THROW(ahead.Take(), std::runtime_error);
    EXPECT_FALSE(ahead.Take());
    EXPECT_EQ(source.Asked, 3) << "reading has ended";
}

} // namespace Kestrune
