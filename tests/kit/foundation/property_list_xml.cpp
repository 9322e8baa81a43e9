#include "tests/kit/foundation/property_list_bytes.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace property_list_testing;
using testing::HasSubstr;

void expectXMLRefused(const Read& read, const std::string& reason) {
    EXPECT_FALSE(read.value);
    EXPECT_THAT(read.refusal, HasSubstr(reason));
}

TEST(XMLPropertyList, EveryTypeIsRead) {
    const Read read = readXML(R"(
        <dict>
            <key>text</key> <string> a &lt;b&gt; &amp; &#x1D11E; &quot;ü&quot; <![CDATA[<raw>]]></string>
            <key>yes</key> <true/>
            <key>no</key> <false></false>
            <key>real</key> <real>-1.5e3</real>
            <key>data</key> <data>
                AAEC
                /w==
            </data>
            <key>date</key> <date>2024-02-29T23:59:58Z</date>
            <key>array</key> <array><integer>1</integer><array/><dict/><string/></array>
            <!-- a comment -->
        </dict>)");

    EXPECT_EQ(read.refusal, "");
    EXPECT_EQ(read.value,
              dictionary({{"text", " a <b> & 𝄞 \"ü\" <raw>"},
                          {"yes", NSNumber::numberWithBool(true)},
                          {"no", NSNumber::numberWithBool(false)},
                          {"real", real(-1500)},
                          {"data", data(std::string_view("\0\1\2\xff", 4))},
                          {"date", NSDate{730943998}},
                          {"array", array({integer(1), array({}), NSMutableDictionary::dictionary(), ""})}}));
    EXPECT_EQ(read.value.object<NSMutableDictionary>()->objectForKey("yes").number()->type(), NSNumber::Type::Bool);
}

TEST(XMLPropertyList, KeysKeepTheirOrder) {
    const Read read = readXML("<dict><key>z</key><true/><key>a</key><true/><key>m</key><true/></dict>");

    ASSERT_TRUE(read.value);
    EXPECT_THAT(read.value.object<NSMutableDictionary>()->allKeys(), testing::ElementsAre("z", "a", "m"));
}

TEST(XMLPropertyList, IntegersOfTheWholeRange) {
    const auto readInteger = [](const std::string& text) { return readXML("<integer>" + text + "</integer>").value; };

    EXPECT_EQ(readInteger("9223372036854775807"), integer(INT64_MAX));
    EXPECT_EQ(readInteger("-9223372036854775808"), integer(INT64_MIN));
    EXPECT_EQ(readInteger("18446744073709551615"), id(NSNumber::numberWithUnsignedLongLong(UINT64_MAX)));
    EXPECT_EQ(readInteger("0xFFffFFffFFffFFff"), id(NSNumber::numberWithUnsignedLongLong(UINT64_MAX)));
    EXPECT_EQ(readInteger(" \n 0x1f \t"), integer(31));
    EXPECT_EQ(readInteger("-0X10"), integer(-16));
    EXPECT_EQ(readInteger("+007"), integer(7));
    EXPECT_EQ(readInteger("-0"), integer(0));
    for (const char* const text : {"", " ", "1.0", "18446744073709551616", "-9223372036854775809", "0x", "x1", "1 2",
                                   "--1", "+-1", "1_000", "0b1", "é"})
        EXPECT_FALSE(readInteger(text)) << text;
}

TEST(XMLPropertyList, RealsAreReadToTheLastBit) {
    const auto readReal = [](const std::string& text) {
        const id value = readXML("<real>" + text + "</real>").value;
        return value ? value.doubleValue() : -12345;
    };

    EXPECT_EQ(readReal("0.1"), 0.1);
    EXPECT_EQ(readReal("-2.2250738585072014e-308"), -2.2250738585072014e-308);
    EXPECT_EQ(readReal("5e-324"), 5e-324);
    EXPECT_EQ(readReal("1.7976931348623157e308"), 1.7976931348623157e308);
    EXPECT_EQ(readReal(" +3 "), 3);
    EXPECT_TRUE(std::signbit(readReal("-0.0")));
    EXPECT_EQ(readReal("inf"), HUGE_VAL);
    EXPECT_EQ(readReal("-infinity"), -HUGE_VAL);
    EXPECT_EQ(readReal("+Infinity"), HUGE_VAL);
    EXPECT_TRUE(std::isnan(readReal("nan")));
    for (const char* const text : {"", "1,5", "1e400", "0x1p3", "1.5f", "+-1", "nan(1)", "one", "1e"})
        EXPECT_EQ(readReal(text), -12345) << text;
}

TEST(XMLPropertyList, DatesAreWholeAndReal) {
    const auto readDate = [](const std::string& text) { return readXML("<date>" + text + "</date>").value; };

    EXPECT_EQ(readDate("2001-01-01T00:00:00Z"), id(NSDate{0}));
    EXPECT_EQ(readDate(" 1969-12-31T23:59:59Z "), id(NSDate{-978307201}));
    EXPECT_EQ(readDate("2000-02-29T00:00:00Z"), id(NSDate{-26524800}));
    EXPECT_EQ(readDate("0001-01-01T00:00:00Z"), id(NSDate{-63113904000}));
    for (const char* const text :
         {"", "2001-01-01", "2001-02-29T00:00:00Z", "2001-13-01T00:00:00Z", "2001-00-01T00:00:00Z",
          "2001-01-32T00:00:00Z", "2001-01-01T24:00:00Z", "2001-01-01T00:60:00Z", "2001-01-01T00:00:60Z",
          "2001-01-01T00:00:00", "2001-01-01 00:00:00Z", "2001-1-1T00:00:00ZZZZ", "+001-01-01T00:00:00Z"})
        EXPECT_FALSE(readDate(text)) << text;
}

TEST(XMLPropertyList, DataIsExactBase64) {
    const auto readData = [](const std::string& text) { return readXML("<data>" + text + "</data>").value; };

    EXPECT_EQ(readData(""), data(""));
    EXPECT_EQ(readData("YQ=="), data("a"));
    EXPECT_EQ(readData(" Y\tW\nI= "), data("ab"));
    EXPECT_EQ(readData("YWJj"), data("abc"));
    EXPECT_EQ(readData("++//"), data("\xfb\xef\xff"));
    for (const char* const text :
         {"Y", "YQ", "YQ=", "YQ===", "A===", "Y===", "====", "YQ==YQ==", "YR==", "YWI-", "Y*==", "=YQ="})
        EXPECT_FALSE(readData(text)) << text;
}

TEST(XMLPropertyList, WrongNestingIsRefused) {
    expectXMLRefused(readXML("<dict><string>a</string></dict>"), "has a value without a key (line 3)");
    expectXMLRefused(readXML("<dict><key>a</key></dict>"), "has a key without a value");
    expectXMLRefused(readXML("<dict><key>a</key><key>b</key><true/></dict>"), "has a key without a value");
    expectXMLRefused(readXML("<array><key>a</key></array>"), "has a key outside of a dictionary");
    expectXMLRefused(readXML("<key>a</key>"), "has a key outside of a dictionary");
    expectXMLRefused(readXML("<true/><true/>"), "holds more than one value");
    expectXMLRefused(readXML(""), "holds no value");
    expectXMLRefused(readXML("<plist><true/></plist>"), "wrong order");
    expectXMLRefused(readXML("<string>a<b/></string>"), "unknown element");
    expectXMLRefused(readXML("<string>a<true/></string>"), "has an element within a text");
    expectXMLRefused(readXML("<array>text</array>"), "has text between its elements");
    expectXMLRefused(readXML("text<true/>"), "has text between its elements");
    expectXMLRefused(readXML("<true>yes</true>"), "no value of its type");
    expectXMLRefused(readXML("<set/>"), "unknown element");
    expectXMLRefused(readXML("<String>a</String>"), "unknown element");
    expectXMLRefused(readXML("<string lang='de'>a</string>"), "unknown attribute");
    expectXMLRefused(read(bytesOf("<dict></dict><!-- </plist> -->")), "wrong order");
}

TEST(XMLPropertyList, OfAKeyThatComesTwiceTheLastValueCounts) {
    const auto dictionary =
        readXML("<dict><key>a</key><true/><key>b</key><true/><key>a</key><integer>7</integer></dict>")
            .value.object<NSDictionary>();
    ASSERT_TRUE(dictionary);
    EXPECT_EQ(dictionary->count(), 2u);
    EXPECT_EQ(dictionary->objectForKey("a").integerValue(), 7);
}

TEST(XMLPropertyList, OwnEntitiesAreRefusedAndNeverExpanded) {
    const std::string bomb = R"(<?xml version="1.0"?><!DOCTYPE plist [
        <!ENTITY a "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx">
        <!ENTITY b "&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;">
        <!ENTITY c "&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;">
        ]><plist version="1.0"><string>&c;</string></plist>)";

    expectXMLRefused(read(bytesOf(bomb)), "declares entities or types of its own");
    expectXMLRefused(readXML("<string>&nbsp;</string>"), "refers to an entity that XML does not define");
    expectXMLRefused(read(bytesOf("<!DOCTYPE plist SYSTEM \"file:///etc/passwd\"><plist><string>&x;</string></plist>")),
                     "refers to an entity that XML does not define");
    expectXMLRefused(read(bytesOf("<plist><string>&x;</string></plist>")), "is no XML");
    expectXMLRefused(read(bytesOf("<!DOCTYPE html><plist><true/></plist>")), "another type");
}

TEST(XMLPropertyList, ISO8859_1IsReadAsItsDeclarationSays) {
    const auto read1 = [](const std::string& name) {
        return read(bytesOf("<?xml version='1.0' encoding='" + name +
                            "' standalone='yes'?><plist><string>M\xfcller \xa9\xff</string></plist>"));
    };
    for (const char* const name : {"ISO-8859-1", "iso-8859-1"}) {
        const id value = read1(name).value;
        ASSERT_TRUE(value.string()) << name;
        EXPECT_EQ(*value.string(), "M\u00fcller \u00a9\u00ff");
    }
    expectXMLRefused(read1("utf-8"), "is not UTF-8");
}

TEST(XMLPropertyList, UTF16IsReadInEitherOrderWithAndWithoutItsMark) {
    const std::u16string text =
        u"<?xml version='1.0' encoding='UTF-16'?><plist><string>\u00fc\u20ac\U0001d11e</string></plist>";
    for (const bool bigEndian : {false, true})
        for (const bool marked : {false, true}) {
            std::string bytes;
            for (const char16_t unit : marked ? u"\ufeff" + text : text) {
                const char high = static_cast<char>(unit >> 8), low = static_cast<char>(unit & 0xff);
                bytes += bigEndian ? std::string{high, low} : std::string{low, high};
            }
            const id value = read(bytesOf(bytes)).value;
            ASSERT_TRUE(value.string()) << bigEndian << marked;
            EXPECT_EQ(*value.string(), "\u00fc\u20ac\U0001d11e");
            EXPECT_FALSE(read(bytesOf(bytes.substr(0, bytes.size() - 1))).value);
            expectXMLRefused(read(bytesOf(bytes.substr(0, bytes.size() - 4))), "is cut");
        }
    expectXMLRefused(read(bytesOf(std::string("\xff\xfe\x00\xd8<\0", 6))), "is not UTF-16");
}

TEST(XMLPropertyList, OtherEncodingsAreRefused) {
    expectXMLRefused(read(bytesOf("<?xml version='1.0' encoding='UTF-16'?><plist><true/></plist>")), "encoding");
    expectXMLRefused(read(bytesOf("<?xml version='1.0' encoding='EBCDIC-CP-US'?><plist><true/></plist>")), "encoding");
    EXPECT_TRUE(read(bytesOf("<?xml version='1.0' encoding='utf-8'?><plist><true/></plist>")).value);
    EXPECT_TRUE(read(bytesOf("\xef\xbb\xbf<plist><true/></plist>")).value);
}

TEST(XMLPropertyList, TextThatIsNotUTF8IsRefused) {
    for (const char* const text : {"\xff", "\xc3", "\xc0\xaf", "\xed\xa0\x80", "\xf4\x90\x80\x80", "\xe2\x82", "\x80"})
        expectXMLRefused(readXML(std::string("<string>") + text + "</string>"), "is not UTF-8");
    EXPECT_EQ(readXML("<string>\xf0\x9d\x84\x9e\xef\xbf\xbd</string>").value, id("\xf0\x9d\x84\x9e\xef\xbf\xbd"));
}

TEST(XMLPropertyList, CutFileIsRefusedAtEveryLength) {
    const std::string whole =
        "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>a</key><array><integer>1</integer>"
        "<data>YQ==</data></array></dict></plist>";
    ASSERT_TRUE(read(bytesOf(whole)).value);

    for (std::size_t length = 0; length < whole.size(); ++length) {
        const Read cut = read(bytesOf(whole.substr(0, length)));
        EXPECT_FALSE(cut.value) << length;
        EXPECT_NE(cut.refusal, "") << length;
    }
    expectXMLRefused(read(bytesOf(whole.substr(0, 60))), "is cut");
    expectXMLRefused(read(bytesOf("what is this")), "is no property list");
}

} // namespace
