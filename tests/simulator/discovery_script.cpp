#include "simulator/discovery_script.h"

#include <gtest/gtest.h>

namespace {

using namespace simulator;
using Kind = DiscoveryStep::Kind;

TEST(DiscoveryScript, ABelievableSearchStartsSearchesStoresAndSucceeds) {
    const auto script = parseDiscoveryScript(believableDiscovery);

    std::string story;
    for (const auto& step : script.steps) {
        if (step.kind == Kind::Report) story += std::to_string(step.number) + " ";
        if (step.kind == Kind::Store) story += "stored(" + std::to_string(step.bytes.size()) + ") ";
    }
    EXPECT_EQ("", script.problem);
    EXPECT_EQ("4 0 stored(6) 2 ", story);
}

TEST(DiscoveryScript, EachLineIsAStep) {
    const auto script =
        parseDiscoveryScript("report -1\nreport nothing\nreport other\nreport text 4\nflood 3\n\n# note\n"
                             "wait 5\nstore 01:02\nignore-interrupt\ncrash\nexit 7\n");
    std::vector<Kind> kinds;
    for (const auto& step : script.steps) kinds.push_back(step.kind);

    EXPECT_EQ("", script.problem);
    EXPECT_EQ((std::vector<Kind>{Kind::Report, Kind::ReportNothing, Kind::ReportOther, Kind::ReportText, Kind::Flood,
                                 Kind::Wait, Kind::Store, Kind::IgnoreInterrupt, Kind::Crash, Kind::Exit}),
              kinds);
    EXPECT_EQ(-1, script.steps[0].number);
    EXPECT_EQ("4", script.steps[3].text);
    EXPECT_EQ((std::vector<std::uint8_t>{1, 2}), script.steps[6].bytes);
}

TEST(DiscoveryScript, WhatIsNotUnderstoodIsSaid) {
    for (const auto* const line : {"nonsense", "report", "report x", "wait", "store", "store 1:zz", "store 100",
                                   "exit x", "crash now", "report 4 5"})
        EXPECT_NE("", parseDiscoveryScript(line).problem) << line;
}

} // namespace
