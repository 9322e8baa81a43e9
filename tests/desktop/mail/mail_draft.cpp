#include "desktop/mail/mail_draft.h"

#include "kit/foundation/base64.h"
#include "tests/support/FakeDesktop.h"
#include "tests/support/LoggedLines.h"

#include <gtest/gtest.h>
#include <iterator>
#include <sstream>

namespace {

seat::MailMessage message(std::string body) { return {"", "", std::move(body)}; }

std::string bodyOf(const std::string& draft) { return draft.substr(draft.find("\r\n\r\n") + 4); }

std::string contentsOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(MailDraft, HasEmptyFieldsAndAnHTMLBody) {
    const std::string draft = seat::mailDraft(message("<p>a</p>"));

    EXPECT_EQ(draft, "X-Unsent: 1\r\nTo: \r\nSubject: \r\nMIME-Version: 1.0\r\n"
                     "Content-Type: text/html; charset=utf-8\r\nContent-Transfer-Encoding: base64\r\n\r\n"
                     "PHA+YTwvcD4=\r\n");
}

TEST(MailDraft, CarriesRecipientsAndSubject) {
    const std::string draft = seat::mailDraft({"a@b.example, Jörg <j@b.example>", "Hello", "x"});

    EXPECT_NE(draft.find("\r\nTo: a@b.example, =?utf-8?B?SsO2cmc=?= <j@b.example>\r\nSubject: Hello\r\n"),
              std::string::npos)
        << draft;
}

TEST(MailDraft, BodyOfEveryLengthComesBack) {
    for (std::size_t length = 0; length < 200; ++length) {
        std::string body;
        for (std::size_t i = 0; i < length; ++i) body += static_cast<char>(i * 7 + length);

        const auto decoded = seat::decodeBase64(bodyOf(seat::mailDraft(message(body))));

        ASSERT_TRUE(decoded) << length;
        EXPECT_EQ(std::string(decoded->begin(), decoded->end()), body) << length;
    }
}

TEST(MailDraft, LinesOfTheBodyAreShort) {
    std::istringstream lines(bodyOf(seat::mailDraft(message(std::string(1000, 'x')))));
    for (std::string line; std::getline(lines, line);) {
        ASSERT_TRUE(line.ends_with('\r'));
        EXPECT_LE(line.size() - 1, 76u);
    }
}

TEST(MailDraft, IsSavedInTheUsersDataFolder) {
    const testing_support::FakeDesktop desktop;

    const std::string file = seat::saveMailDraft(message("<p>a</p>"));

    EXPECT_EQ(file, desktop.dataHome() + "/joyvane/message.eml");
    EXPECT_EQ(contentsOf(file), seat::mailDraft(message("<p>a</p>")));
}

TEST(MailDraft, LaterDraftReplacesTheEarlierOne) {
    const testing_support::FakeDesktop desktop;
    seat::saveMailDraft(message("<p>a long one</p>"));

    const std::string file = seat::saveMailDraft(message("b"));

    EXPECT_EQ(contentsOf(file), seat::mailDraft(message("b")));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(desktop.dataHome() + "/joyvane"), {}), 1);
}

TEST(MailDraft, WithoutADataFolderItGoesUnderHome) {
    const testing_support::FakeDesktop desktop;
    ::unsetenv("XDG_DATA_HOME");

    EXPECT_EQ(seat::saveMailDraft(message("a")), desktop.file(".local/share/joyvane/message.eml"));
}

TEST(MailDraft, WhatCannotBeWrittenIsLogged) {
    const testing_support::FakeDesktop desktop;
    const testing_support::LoggedLines log;
    std::ofstream(desktop.dataHome() + "/joyvane") << "a file where the folder should be";

    EXPECT_EQ(seat::saveMailDraft(message("a")), "");

    EXPECT_EQ(log.count("the message could not be handed over"), 1u);
}

} // namespace
