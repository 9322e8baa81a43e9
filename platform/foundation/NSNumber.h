#pragma once

#include <cstdint>
#include <optional>

// A number object: an immutable value that keeps the type it was made with. A number that may be absent is a
// std::optional<NSNumber>; `floatValue(optional)` and its kin read 0 from an absent one. Any thread.
class NSNumber {
public:
    enum class Type : std::uint8_t { Bool, Int, Integer, UnsignedInt, UnsignedLongLong, Float, Double };

    // The type is kept: what is stored as a bool is written to a property list as one, and reads back as one.
    static NSNumber numberWithBool(bool value);
    static NSNumber numberWithInt(std::int32_t value);
    static NSNumber numberWithInteger(std::int64_t value);
    static NSNumber numberWithUnsignedInt(std::uint32_t value);
    static NSNumber numberWithUnsignedLongLong(std::uint64_t value);
    // A float is kept in double precision, so that nothing of it is lost; it stays a float by its type. What is no
    // number, and infinities, are kept.
    static NSNumber numberWithFloat(float value);
    static NSNumber numberWithDouble(double value);

    // What it was made as.
    Type type() const { return m_type; }
    // Made as a float or a double.
    bool isFloatingPoint() const { return m_type == Type::Float || m_type == Type::Double; }

    // Conversions to whole numbers truncate towards zero and saturate at the type's bounds; NaN gives 0. `boolValue` is
    // false for 0 and NaN; `floatValue` rounds to the nearest single-precision number, beyond its range to
    // infinity.
    bool boolValue() const;
    std::int32_t intValue() const;
    std::int64_t integerValue() const;
    std::uint32_t unsignedIntValue() const;
    std::uint64_t unsignedLongLongValue() const;
    float floatValue() const;
    double doubleValue() const;

    // Equality by value, whatever the types: 3, 3u and 3.0 are equal, and so are true and 1; exact at 64 bits, so that
    // 2^53 + 1 differs from the double nearest to it. Not-a-number equals itself.
    bool isEqualToNumber(NSNumber other) const;
    friend bool operator==(NSNumber a, NSNumber b) { return a.isEqualToNumber(b); }

private:
    explicit NSNumber(Type type) : m_type(type), m_unsigned(0) {}

    bool isUnsigned() const;
    template <class To> To as() const;

    Type m_type;
    union {
        std::int64_t m_signed;    // Bool, Int, Integer
        std::uint64_t m_unsigned; // UnsignedInt, UnsignedLongLong
        double m_real;            // Float, Double
    };
};

// Reading a number that may be absent: 0 or false when it is.
inline bool boolValue(const std::optional<NSNumber>& number) { return number && number->boolValue(); }
inline int intValue(const std::optional<NSNumber>& number) { return number ? number->intValue() : 0; }
inline std::int64_t integerValue(const std::optional<NSNumber>& number) { return number ? number->integerValue() : 0; }
inline std::uint32_t unsignedIntValue(const std::optional<NSNumber>& number) {
    return number ? number->unsignedIntValue() : 0;
}
inline float floatValue(const std::optional<NSNumber>& number) { return number ? number->floatValue() : 0; }
inline double doubleValue(const std::optional<NSNumber>& number) { return number ? number->doubleValue() : 0; }
