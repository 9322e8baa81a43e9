#pragma once

// Any value object, or nil: what a property list holds, what a message carries. Reading from nil, or from a value of
// another kind, gives nil, 0 or false; it never fails. A copy shares an object and copies anything else.

#include "platform/foundation/NSNumber.h"
#include "platform/runtime/NSObject.h"

#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>

// Seconds since 2001-01-01 00:00:00 UTC.
struct NSDate {
    double timeIntervalSinceReferenceDate = 0;
    // As with numbers, what is no number equals itself.
    friend bool operator==(NSDate a, NSDate b) {
        const double left = a.timeIntervalSinceReferenceDate;
        const double right = b.timeIntervalSinceReferenceDate;
        return left == right || (left != left && right != right);
    }
};

// A value that is copied is another value: only objects are shared. Any thread, as far as the object in it allows.
class id {
public:
    id() = default;
    // nil, also from an absent number, a nil class and a nil object.
    id(std::nullptr_t) {}
    id(NSNumber number) : m_value(number) {}
    id(std::optional<NSNumber> number) {
        if (number) m_value = *number;
    }
    id(std::string string) : m_value(std::move(string)) {}
    id(const char* string) : m_value(std::string(string)) {}
    id(NSDate date) : m_value(date) {}
    id(Class cls) {
        if (cls) m_value = cls;
    }
    // Strong: the value holds the object.
    template <std::derived_from<NSObject> T> id(std::shared_ptr<T> object) {
        if (object) m_value = std::shared_ptr<NSObject>(std::move(object));
    }

    // Whether it is not nil: 0, false and the empty string are values.
    explicit operator bool() const { return !std::holds_alternative<std::monostate>(m_value); }

    // nullptr when the value is of another kind: a string is no number, whatever it says. Valid while this value lives
    // and is not assigned to.
    const NSNumber* number() const { return std::get_if<NSNumber>(&m_value); }
    const std::string* string() const { return std::get_if<std::string>(&m_value); }
    const NSDate* date() const { return std::get_if<NSDate>(&m_value); }
    Class classValue() const;
    // The object as a T; nil when it is none.
    template <class T> std::shared_ptr<T> object() const {
        const auto* held = std::get_if<std::shared_ptr<NSObject>>(&m_value);
        return held ? std::dynamic_pointer_cast<T>(*held) : nullptr;
    }
    // Without touching the count: valid while this value lives.
    template <class T> T* objectPointer() const {
        const auto* held = std::get_if<std::shared_ptr<NSObject>>(&m_value);
        return held ? dynamic_cast<T*>(held->get()) : nullptr;
    }

    // A number's value, or a string's leading decimal number ("3" gives 3, "abc" 0); 0 for anything else. Whole numbers
    // saturate; "inf" and "nan" are no numbers.
    std::int64_t integerValue() const;
    double doubleValue() const;
    float floatValue() const;
    // A number that is not zero; a string that begins, after white space, with Y, y, T, t or, after a sign and zeros,
    // with a digit from 1 to 9. An object is false, and so is nil.
    bool boolValue() const;

    // Equality by value; nil equals nil only. Values of different kinds differ ("3" is not 3), numbers of different
    // types do not (3 is 3.0); objects are asked by `isEqual`.
    friend bool operator==(const id& a, const id& b);

private:
    std::variant<std::monostate, NSNumber, std::string, NSDate, Class, std::shared_ptr<NSObject>> m_value;
};
