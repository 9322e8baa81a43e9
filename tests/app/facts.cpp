// What the help says of how things are: each word of it goes through the translator.

#include "app/help/facts.h"
#include "app/help/pad_text.h"
#include "kit/foundation/translation.h"

#include <gtest/gtest.h>

namespace {

using daemon_status::Bluetooth;
using daemon_status::InputService;

constexpr const char* translationMark = "translated ";

class Facts : public ::testing::Test {
protected:
    Facts() {
        seat::setTranslator([](const char* text) { return translationMark + std::string(text); });
    }
    ~Facts() override { seat::setTranslator(nullptr); }

    static void expectTranslated(const std::string& text) {
        EXPECT_TRUE(text.empty() || text.starts_with(translationMark)) << text;
    }
    static void expectTranslated(const app::Fact& fact) {
        EXPECT_NE(fact.state, "");
        expectTranslated(fact.state);
        expectTranslated(fact.advice);
    }
};

TEST_F(Facts, EveryStateAndEachAdviceIsInTheUsersLanguage) {
    for (const bool isChosen : {false, true})
        for (int bluetooth = 0; bluetooth <= static_cast<int>(Bluetooth::on); ++bluetooth)
            for (int service = 0; service <= static_cast<int>(InputService::connected); ++service)
                for (int readiness = 0; readiness <= static_cast<int>(input::Readiness::playing); ++readiness) {
                    app::HelpFacts facts;
                    facts.status = {.bluetooth = static_cast<Bluetooth>(bluetooth),
                                    .isKeyboardChosen = isChosen,
                                    .inputService = static_cast<InputService>(service),
                                    .readiness = static_cast<input::Readiness>(readiness)};
                    expectTranslated(app::bluetoothFact(facts));
                    expectTranslated(app::keyboardFact(facts));
                }
    for (const bool isInstalled : {false, true})
        for (const bool isSimulated : {false, true}) {
            app::HelpFacts facts;
            facts.isDaemonInstalled = isInstalled;
            facts.isSimulated = isSimulated;
            expectTranslated(app::daemonFact(facts));
            expectTranslated(app::bluetoothFact(facts));
            expectTranslated(app::keyboardFact(facts));
        }
}

TEST_F(Facts, WhatIsSaidBelowTheGamepadIsInTheUsersLanguage) {
    for (int readiness = 0; readiness <= static_cast<int>(input::Readiness::playing); ++readiness)
        for (const std::uint32_t inputs : {0u, 1u << 3}) {
            auto state = input::makeMessage<input::State>();
            state.readiness = static_cast<input::Readiness>(readiness);
            state.inputs = inputs;
            expectTranslated(app::textOf(state).headline);
            expectTranslated(app::textOf(state).advice);
        }
    for (const app::PadText& text : {app::problemText(""), app::problemText("away"), app::simulatedText()}) {
        expectTranslated(text.headline);
        expectTranslated(text.advice);
    }
}

} // namespace
