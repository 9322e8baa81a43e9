#include "kit/foundation/translation.h"

#include <gtest/gtest.h>

namespace {

class Translation : public ::testing::Test {
protected:
    ~Translation() override { seat::setTranslator(nullptr); }
};

TEST_F(Translation, TextsStayAsTheyAreUntilSomebodyTranslatesThem) {
    EXPECT_EQ(seat::translated("Close"), "Close");
    seat::setTranslator([](const char* text) { return std::string(text) + "!"; });
    EXPECT_EQ(seat::translated("Close"), "Close!");
    EXPECT_EQ(seat::translated(""), "") << "in a catalogue that is the header";
}

TEST_F(Translation, ValuesGoWhereTheSentenceHasThem) {
    EXPECT_EQ(seat::filled("%2 by %1, %1", {"a", "b"}), "b by a, a");
    EXPECT_EQ(seat::filled("100 %", {"a"}), "100 %");
    EXPECT_EQ(seat::filled("%0 %2 %% %", {"a"}), "%0 %2 %% %");
    EXPECT_EQ(seat::filled("%1", {"%1"}), "%1");
}

} // namespace
