#include "desktop/mail/mail_program.h"

#include "desktop/mail/message_text.h"
#include "system/files/root.h"
#include "system/run_loop/PollLoop.h"
#include "tests/support/FakeDesktop.h"
#include "tests/support/LoggedLines.h"

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>

namespace {

using testing::ElementsAre;
using Takes = seat::MailProgram::Takes;

class MailProgram : public testing::Test {
protected:
    MailProgram() { seat::setRoot(desktop.file("root")); }
    ~MailProgram() override { seat::setRoot(""); }

    // Whether the program could be started.
    bool handOver(const std::string& html) {
        const auto mail = seat::mailProgram();
        std::optional<bool> started;
        if (mail) seat::handOver(*mail, html, [&](bool isStarted) { started = isStarted; });
        loop.runUntil([&] { return started.has_value(); });
        return started.value_or(false);
    }
    std::vector<std::string> startedWith(const std::string& program) {
        loop.runUntil([&] { return !desktop.argumentsOf(program).empty(); });
        return desktop.argumentsOf(program);
    }
    bool hasDrafts() const {
        std::error_code error;
        return std::filesystem::directory_iterator(desktop.file("root/tmp/mail"), error) !=
               std::filesystem::directory_iterator();
    }

    testing_support::FakeDesktop desktop;
    testing_support::LoggedLines log;
    seat::PollLoop loop;
};

TEST_F(MailProgram, TheOneForMessagesComesBeforeTheOneForAddresses) {
    EXPECT_FALSE(seat::mailProgram());

    desktop.install("x-scheme-handler/mailto", "webmail");
    ASSERT_TRUE(seat::mailProgram());
    EXPECT_EQ(seat::mailProgram()->takes, Takes::Address);

    desktop.install("message/rfc822", "mailer");
    ASSERT_TRUE(seat::mailProgram());
    EXPECT_EQ(seat::mailProgram()->takes, Takes::Draft);
}

TEST_F(MailProgram, OneWithoutAPlaceForTheMessageDoesNotCount) {
    const std::string program = desktop.addProgram("mailer");
    for (const auto& [type, command] : {std::pair{"x-scheme-handler/mailto", " --inbox"},
                                        {"x-scheme-handler/mailto", " %f"},
                                        {"message/rfc822", " --inbox"},
                                        {"message/rfc822", " 100%%u"}}) {
        desktop.addDesktopFile("mailer", program + command);
        desktop.setDefault(type, "mailer");
        EXPECT_FALSE(seat::mailProgram()) << type << command;
    }
    desktop.addDesktopFile("mailer", program + " %%%U");
    ASSERT_TRUE(seat::mailProgram());
}

TEST_F(MailProgram, GetsTheMessageAsADraftBelowTheRoot) {
    desktop.install("message/rfc822", "mailer");

    EXPECT_TRUE(handOver("<p>a</p>"));

    const auto arguments = startedWith("mailer");
    ASSERT_EQ(arguments.size(), 1u);
    EXPECT_TRUE(arguments[0].starts_with(desktop.file("root/"))) << arguments[0];
    std::ifstream file(arguments[0], std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), seat::mailDraft("<p>a</p>"));
}

TEST_F(MailProgram, ThatTakesAddressesOnlyGetsTheTextWithTheLinksWrittenOut) {
    desktop.install("x-scheme-handler/mailto", "webmail");

    EXPECT_TRUE(handOver("<p>Get <a href=http://a.example/>this</a></p>"));

    EXPECT_THAT(startedWith("webmail"),
                ElementsAre("mailto:?body=Get%20this%20%3Chttp%3A%2F%2Fa%2Eexample%2F%3E%0D%0A"));
    EXPECT_FALSE(hasDrafts());
}

TEST_F(MailProgram, ThatCannotBeStartedIsReportedAndLeavesNoDraft) {
    desktop.install("message/rfc822", "mailer");
    const auto mail = seat::mailProgram();
    ASSERT_TRUE(mail);
    desktop.removeProgram("mailer");

    std::optional<bool> started;
    seat::handOver(*mail, "a", [&](bool isStarted) { started = isStarted; });
    loop.runUntil([&] { return started.has_value(); });

    EXPECT_EQ(started, false);
    EXPECT_FALSE(hasDrafts());
}

TEST_F(MailProgram, ADraftThatCannotBeWrittenIsReported) {
    desktop.install("message/rfc822", "mailer");
    std::ofstream(desktop.file("root")) << "a file where the folder should be";

    EXPECT_FALSE(handOver("a"));

    EXPECT_EQ(log.count("the message could not be written"), 1u);
    EXPECT_TRUE(desktop.argumentsOf("mailer").empty());
}

} // namespace
