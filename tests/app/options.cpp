#include "app/Options.h"

#include <gtest/gtest.h>

namespace {

app::ParsedOptions parse(std::initializer_list<const char*> arguments) {
    return app::parseOptions({arguments.begin(), arguments.size()});
}

TEST(Options, WithoutArgumentsTheDefaultsHold) {
    const auto [options, problem] = parse({});

    EXPECT_EQ("", problem);
    EXPECT_EQ("", options.root);
    EXPECT_EQ("", options.bundle);
    EXPECT_EQ("", options.tour);
    EXPECT_EQ((CGSize{384, 667}), options.size);
    EXPECT_EQ(0, options.scale);
    EXPECT_FALSE(options.simulate);
    EXPECT_FALSE(options.showHelp);
    EXPECT_FALSE(options.showVersion);
}

TEST(Options, AllAtOnce) {
    const auto [options, problem] = parse({"--root", "/r", "--bundle", "b", "--tour", "t", "--size", "320x480.5",
                                           "--scale", "1.5", "--simulate", "--help", "--version"});

    EXPECT_EQ("", problem);
    EXPECT_EQ("/r", options.root);
    EXPECT_EQ("b", options.bundle);
    EXPECT_EQ("t", options.tour);
    EXPECT_EQ((CGSize{320, 480.5}), options.size);
    EXPECT_EQ(1.5, options.scale);
    EXPECT_TRUE(options.simulate);
    EXPECT_TRUE(options.showHelp);
    EXPECT_TRUE(options.showVersion);
}

TEST(Options, AValueMayFollowAnEqualsSign) {
    const auto [options, problem] = parse({"--root=/a=b", "--scale=3", "--size=400x500"});

    EXPECT_EQ("", problem);
    EXPECT_EQ("/a=b", options.root);
    EXPECT_EQ(3, options.scale);
    EXPECT_EQ((CGSize{400, 500}), options.size);
}

TEST(Options, TheLastOfSeveralCounts) { EXPECT_EQ("b", parse({"--root", "a", "--root", "b"}).options.root); }

TEST(Options, WhatIsWrongIsNamed) {
    EXPECT_EQ("unknown option --rot", parse({"--rot", "/r"}).problem);
    EXPECT_EQ("unknown option -x", parse({"-x"}).problem);
    EXPECT_EQ("unexpected argument \"page\"", parse({"page"}).problem);
    EXPECT_EQ("--root needs a value", parse({"--simulate", "--root"}).problem);
    EXPECT_EQ("--root: \"\" is no folder", parse({"--root", ""}).problem);
    EXPECT_EQ("--simulate takes no value", parse({"--simulate=yes"}).problem);
}

TEST(Options, SizesThatAreNoneAreRefused) {
    for (const char* size : {"", "x", "300", "300x", "x300", "300x400x500", "300,400", "-300x400", "319x400", "320x239",
                             "320x20000", "nanx320", "infx320", "0x10p3x320", "3e99x320", "320 x400"}) {
        const auto problem = parse({"--size", size}).problem;
        EXPECT_TRUE(problem.starts_with("--size: \"" + std::string(size) + "\" is no size")) << problem;
    }
}

TEST(Options, ScalesThatAreNoneAreRefused) {
    for (const char* scale : {"", "0", "-1", "0.49", "8.1", "two", "2x", "nan", "inf"})
        EXPECT_TRUE(parse({"--scale", scale}).problem.starts_with("--scale: ")) << scale;
    EXPECT_EQ(0.5, parse({"--scale", "0.5"}).options.scale);
    EXPECT_EQ(8, parse({"--scale", "8"}).options.scale);
}

TEST(Options, MorePixelsThanAnyScreenHasAreRefused) {
    const auto problem = [](const char* size, const char* scale) {
        return parse({"--size", size, "--scale", scale}).problem;
    };

    EXPECT_EQ(problem("16384x16384", "8"), "--size: at scale 8 that is 131072x131072 pixels; 7680x4320, or as many in "
                                           "another shape, are the most");
    EXPECT_EQ(problem("7680x4320", "1"), "");
    EXPECT_EQ(problem("3840x2160", "2"), "");
    EXPECT_NE(problem("3840x2161", "2"), "");
    EXPECT_EQ(problem("960x540", "8"), "");
    EXPECT_NE(problem("375x667", "100"), "");
    EXPECT_EQ(parse({"--size", "7680x4320"}).problem, "") << "a window is never larger than its screen";
    EXPECT_NE(parse({"--size", "7680x4320", "--tour", "t"}).problem, "") << "a tour's pictures are";
}

TEST(Options, HelpNamesEachOption) {
    const auto help = app::helpText();
    for (const char* name :
         {"--root", "--bundle", "--simulate", "--input-socket", "--size", "--scale", "--tour", "--help", "--version"})
        EXPECT_NE(std::string::npos, help.find(name)) << name;
}

} // namespace
