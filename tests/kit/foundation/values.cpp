#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSData.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/NSNumber.h"
#include "platform/foundation/id.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

TEST(Values, NilReadsAsNothingEverywhere) {
    const id nil;

    EXPECT_FALSE(nil);
    EXPECT_EQ(nil.number(), nullptr);
    EXPECT_EQ(nil.string(), nullptr);
    EXPECT_EQ(nil.date(), nullptr);
    EXPECT_EQ(nil.classValue(), nullptr);
    EXPECT_EQ(nil.object<NSArray>(), nullptr);
    EXPECT_EQ(nil.integerValue(), 0);
    EXPECT_EQ(nil.doubleValue(), 0);
    EXPECT_FALSE(nil.boolValue());
}

TEST(Values, AbsentThingsMakeNil) {
    EXPECT_FALSE(id(std::optional<NSNumber>()));
    EXPECT_FALSE(id(std::shared_ptr<NSArray>()));
    EXPECT_FALSE(id(static_cast<Class>(nullptr)));
    EXPECT_TRUE(id(""));
}

TEST(Values, ObjectIsGivenOutAsWhatItIsOnly) {
    const auto array = NSArray::array();
    const id value = array;

    EXPECT_EQ(value.object<NSArray>(), array);
    EXPECT_EQ(value.object<NSObject>(), array);
    EXPECT_EQ(value.objectPointer<NSArray>(), array.get());
    EXPECT_EQ(value.object<NSMutableDictionary>(), nullptr);
    EXPECT_EQ(value.string(), nullptr);
    EXPECT_EQ(id(NSArray::classObject()).classValue(), NSArray::classObject());
}

TEST(Values, IntegerValueOfTextAndNumbers) {
    EXPECT_EQ(id("3").integerValue(), 3);
    EXPECT_EQ(id("abc").integerValue(), 0);
    EXPECT_EQ(id(NSNumber::numberWithDouble(3.9)).integerValue(), 3);
    EXPECT_EQ(id(NSNumber::numberWithBool(true)).integerValue(), 1);
    EXPECT_EQ(id(NSArray::array()).integerValue(), 0);
    EXPECT_EQ(id(NSDate{5}).integerValue(), 0);
}

TEST(Values, RealValueOfTextAndNumbers) {
    EXPECT_EQ(id(" -2.5e1x").doubleValue(), -25);
    EXPECT_EQ(id("+.5").doubleValue(), 0.5);
    EXPECT_EQ(id("0.7").floatValue(), 0.7f);
    EXPECT_EQ(id(NSNumber::numberWithFloat(0.4f)).floatValue(), 0.4f);
    for (const char* const text : {"", "abc", "inf", "-nan", "-", "x1"}) EXPECT_EQ(id(text).doubleValue(), 0) << text;
}

TEST(Values, TruthOfText) {
    for (const char* const text : {"1", "YES", "yes", "true", "T", " 1", "-1", "+007", "9"})
        EXPECT_TRUE(id(text).boolValue()) << text;
    for (const char* const text : {"", " ", "0", "000", "no", "false", "+Y", "-0", "00x1", "é"})
        EXPECT_FALSE(id(text).boolValue()) << text;
    EXPECT_FALSE(id(NSArray::array()).boolValue());
}

TEST(Values, EqualityIsByValueAndKind) {
    const std::uint8_t bytes[] = {1, 2};

    EXPECT_EQ(id(), id(nullptr));
    EXPECT_EQ(id("a"), id(std::string("a")));
    EXPECT_EQ(id(NSNumber::numberWithInt(3)), id(NSNumber::numberWithDouble(3)));
    EXPECT_EQ(id(NSDate{1.5}), id(NSDate{1.5}));
    EXPECT_EQ(id(NSDate{std::nan("")}), id(NSDate{-std::nan("")}));
    EXPECT_FALSE(id(NSDate{std::nan("")}) == id(NSDate{0}));
    EXPECT_EQ(id(NSData::dataWithBytes(bytes)), id(NSData::dataWithBytes(bytes)));
    EXPECT_FALSE(id() == id(""));
    EXPECT_FALSE(id("3") == id(NSNumber::numberWithInt(3)));
    EXPECT_FALSE(id(NSDate{3}) == id(NSNumber::numberWithInt(3)));
    EXPECT_FALSE(id(NSArray::array()) == id(NSMutableDictionary::dictionary()));
    EXPECT_FALSE(id(NSObject::alloc()) == id(NSObject::alloc()));
}

} // namespace
