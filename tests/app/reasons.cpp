#include "app/reasons.h"

#include "kit/foundation/translation.h"

#include <gtest/gtest.h>
#include <map>

namespace {

std::string inGerman(const char* text) {
    static const std::map<std::string, std::string> words{{"its folder", "der Ordner"},
                                                          {"Permission denied", "Keine Berechtigung"},
                                                          {"it ended with %1", "es endete mit %1"}};
    const auto found = words.find(text);
    return found == words.end() ? text : found->second;
}

class Reasons : public ::testing::Test {
protected:
    Reasons() { seat::setTranslator(inGerman); }
    ~Reasons() override { seat::setTranslator(nullptr); }
};

} // namespace

TEST_F(Reasons, EachPartIsInTheUsersWords) {
    EXPECT_EQ(app::reasonInUsersWords("its folder: Permission denied"), "der Ordner: Keine Berechtigung");
}

TEST_F(Reasons, NumbersStay) {
    EXPECT_EQ(app::reasonInUsersWords("it ended with 127"), "es endete mit 127");
    EXPECT_EQ(app::reasonInUsersWords("it ended with a bang"), "it ended with a bang");
}

TEST_F(Reasons, WhatIsNotKnownStaysAsItIs) {
    EXPECT_EQ(app::reasonInUsersWords(""), "");
    EXPECT_EQ(app::reasonInUsersWords("/a: b: Permission denied"), "/a: b: Keine Berechtigung");
    EXPECT_EQ(app::reasonInUsersWords("odd: "), "odd: ");
}
