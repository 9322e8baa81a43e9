#include "services/jvnd/options.h"

#include <gtest/gtest.h>
#include <vector>

using jvnd::CommandLine;

namespace {

CommandLine parse(std::vector<const char*> arguments) { return jvnd::parseCommandLine(arguments); }

TEST(Options, ValuesFollowTheirOptionOrAnEqualsSign) {
    const auto line = parse({"--root", "/a", "--input-socket=/b", "--simulate", "--trace"});
    EXPECT_EQ(line.problem, "");
    EXPECT_EQ(line.root, "/a");
    EXPECT_EQ(line.inputSocket, "/b");
    EXPECT_TRUE(line.simulates && line.traces);
    EXPECT_FALSE(line.showsHelp || line.showsVersion);
}

TEST(Options, WhatIsWrongIsSaidInOneSentence) {
    EXPECT_EQ(parse({"--root"}).problem, "--root takes a value");
    EXPECT_EQ(parse({"--root="}).problem, "--root takes a value");
    EXPECT_EQ(parse({"--root", ""}).problem, "--root takes a value");
    EXPECT_EQ(parse({"--trace=1"}).problem, "--trace takes no value");
    EXPECT_EQ(parse({"--dance"}).problem, "--dance is no option");
    EXPECT_EQ(parse({"root"}).problem, "root is no option");
    EXPECT_EQ(parse({""}).problem, " is no option");
}

TEST(Options, HelpNamesEveryOptionAndTheSimulatedControllers) {
    const auto help = jvnd::helpText();
    for (const char* const word :
         {"--root", "--simulate", "--trace", "--input-socket", "--help", "--version", "simulated"})
        EXPECT_NE(help.find(word), std::string::npos) << word;
}

} // namespace
