// The machine's code page both ways: every defined byte comes back as it went.
#include "common/Windows1252.h"

#include <gtest/gtest.h>

TEST(Windows1252Test, DefinedBytesRoundTripAndUndefinedOnesAreMarked) {
    std::string bytes;
    for (int b = 0; b < 256; ++b)
        bytes += static_cast<char>(b);
    const std::string text = common::fromWindows1252(bytes);
    std::string back = common::toWindows1252(text);
    ASSERT_EQ(back.size(), 256u);
    for (const int undefined : {0x81, 0x8D, 0x8F, 0x90, 0x9D}) {
        EXPECT_EQ(back[static_cast<std::size_t>(undefined)], '?') << undefined;
        back[static_cast<std::size_t>(undefined)] = static_cast<char>(undefined);
    }
    EXPECT_EQ(back, bytes);
    EXPECT_EQ(common::fromWindows1252("\x80 \xE9\x9F"), "\u20AC \u00E9\u0178");
    EXPECT_EQ(common::fromWindows1252("\x81"), "\uFFFD");
}
