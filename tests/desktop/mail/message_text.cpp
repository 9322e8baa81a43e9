#include "desktop/mail/message_text.h"

#include "kit/foundation/base64.h"

#include <gtest/gtest.h>
#include <sstream>

namespace {

std::string bodyOf(const std::string& draft) { return draft.substr(draft.find("\r\n\r\n") + 4); }

TEST(MailDraft, HasEmptyFieldsAndAnHTMLBody) {
    EXPECT_EQ(seat::mailDraft("<p>a</p>"), "X-Unsent: 1\r\nTo: \r\nSubject: \r\nMIME-Version: 1.0\r\n"
                                           "Content-Type: text/html; charset=utf-8\r\n"
                                           "Content-Transfer-Encoding: base64\r\n\r\nPHA+YTwvcD4=\r\n");
}

TEST(MailDraft, BodyOfEveryLengthComesBack) {
    for (std::size_t length = 0; length < 200; ++length) {
        std::string body;
        for (std::size_t i = 0; i < length; ++i) body += static_cast<char>(i * 7 + length);

        const auto decoded = seat::decodeBase64(bodyOf(seat::mailDraft(body)));

        ASSERT_TRUE(decoded) << length;
        EXPECT_EQ(std::string(decoded->begin(), decoded->end()), body) << length;
    }
}

TEST(MailDraft, LinesOfTheBodyAreShort) {
    std::istringstream lines(bodyOf(seat::mailDraft(std::string(1000, 'x'))));
    for (std::string line; std::getline(lines, line);) {
        ASSERT_TRUE(line.ends_with('\r'));
        EXPECT_LE(line.size() - 1, 76u);
    }
}

TEST(PlainMessage, HasALineForEachBlockAndWritesLinksOut) {
    EXPECT_EQ(seat::plainMessage("<h1>A</h1>note<ol><li>Get <a href=http://a.example/?b&#61;c>this</a>.</li>"
                                 "<li>Done</li></ol>"),
              "A\r\n\r\nnote\r\n1. Get this <http://a.example/?b=c>.\r\n2. Done\r\n");
    EXPECT_EQ(seat::plainMessage(""), "");
}

TEST(HTMLOfText, KeepsEachCharacterAndLine) {
    EXPECT_EQ(seat::htmlOfText("a < b & c\nd > e"), "a &lt; b &amp; c<br>d > e");
}

TEST(MailAddress, HasTheTextAsItsBodyWhateverItHolds) {
    EXPECT_EQ(seat::mailAddressWithBody("a b&c=d\r\n?ü#%"), "mailto:?body=a%20b%26c%3Dd%0D%0A%3F%C3%BC%23%25");
    EXPECT_EQ(seat::mailAddressWithBody(""), "mailto:?body=");
}

} // namespace
