#include "tests/kit/foundation/property_list_bytes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace property_list_testing;
using testing::HasSubstr;

Read readBody(const std::string& body) { return read(bytesOf("<plist version=\"1.0\">\n" + body + "</plist>")); }
std::string faultOf(const std::string& body) { return readBody(body).refusal; }

TEST(XMLPropertyListFaults, EachIsNamedWithItsLine) {
    const std::pair<const char*, const char*> faults[] = {
        {"<dict><key>a</key><string>b</strin></dict>", "mismatched tag (line 2)"},
        {"<array><true/></dict>", "mismatched tag"},
        {"<dict><key>a</key></dict>", "a key without a value"},
        {"<dict><true/></dict>", "a value without a key"},
        {"<array>\n<integer>1x</integer></array>", "no value of its type (line 3)"},
        {"<real>1,5</real>", "no value of its type"},
        {"<date>2001-02-29T00:00:00Z</date>", "no value of its type"},
        {"<data>YQ=</data>", "no value of its type"},
        {"<true>yes</true>", "no value of its type"},
        {"<array>\n\nx</array>", "text between its elements (line 4)"},
        {"<string>a<true/></string>", "an element within a text"},
        {"<string>\x01</string>", "invalid token"},
        {"<string>&nbsp;</string>", "undefined entity"},
        {"<strings/>", "an unknown element"},
        {"<string lang='de'>a</string>", "an unknown attribute"},
        {"<true/><true/>", "more than one value"},
        {"", "no value"},
        {"<!-- a -- b --><true/>", "invalid token"},
        {"<true/></plist><plist><true/>", "junk after document element"},
    };
    for (const auto& [body, reason] : faults) {
        EXPECT_THAT(faultOf(body), HasSubstr(reason)) << body;
        EXPECT_FALSE(readBody(body).value) << body;
    }
}

TEST(XMLPropertyListFaults, WhatIsUnusualButSoundIsNone) {
    for (const char* const body : {
             "<dict><key>a</key><dict><key>a</key><true/></dict><key>b</key><true/></dict>",
             "<array><dict><key>a</key><true/></dict><dict><key>a</key><true/></dict></array>",
             "<dict><key>a&amp;</key><true/><key>a</key><true/></dict>",
             // NOLINTNEXTLINE(bugprone-suspicious-missing-comma): one text on two lines
             "<string>]] &lt; &#x1D11E; &#0000000000000000000065; <![CDATA[<raw> &x; \t]]> <!-- & < --> <?x <y> "
             "?></string>",
             "<integer>1<!-- one -->2</integer>",
             "<array>&#32;<true  />\r\n<true\n></true  ></array>",
             "<data> Y W\nI = </data>",
             "<?x > <true/> ?><!-- <true/> --><true/>",
         }) {
        EXPECT_EQ(faultOf(body), "") << body;
        EXPECT_TRUE(readBody(body).value) << body;
    }
    for (const char* const text : {
             "<plist version=\"a>b/\"><true/></plist>",
             "\xef\xbb\xbf<!DOCTYPE plist SYSTEM \"a>b[\"><plist><true/></plist>\n<!-- x --><?y?>",
         }) {
        EXPECT_TRUE(read(bytesOf(text)).value) << text;
    }
}

} // namespace
