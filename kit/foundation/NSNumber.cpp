#include "platform/foundation/NSNumber.h"

#include <cmath>
#include <limits>
#include <utility>

namespace {

// Truncates towards zero and saturates; NaN gives 0.
template <class To> To fromReal(double value) {
    if (std::isnan(value)) return 0;
    // The upper bound of a 64-bit type is no double; one above it is, and so is the lower bound.
    if (value >= std::ldexp(1.0, std::numeric_limits<To>::digits)) return std::numeric_limits<To>::max();
    if (value <= static_cast<double>(std::numeric_limits<To>::min())) return std::numeric_limits<To>::min();
    return static_cast<To>(value);
}

template <class To, class From> To fromInteger(From value) {
    if (std::cmp_greater(value, std::numeric_limits<To>::max())) return std::numeric_limits<To>::max();
    if (std::cmp_less(value, std::numeric_limits<To>::min())) return std::numeric_limits<To>::min();
    return static_cast<To>(value);
}

bool equalsReal(std::int64_t integer, double real) {
    return real >= -0x1p63 && real < 0x1p63 && static_cast<double>(static_cast<std::int64_t>(real)) == real &&
           static_cast<std::int64_t>(real) == integer;
}
bool equalsReal(std::uint64_t integer, double real) {
    return real >= 0 && real < 0x1p64 && static_cast<double>(static_cast<std::uint64_t>(real)) == real &&
           static_cast<std::uint64_t>(real) == integer;
}

} // namespace

NSNumber NSNumber::numberWithBool(bool value) {
    NSNumber number(Type::Bool);
    number.m_signed = value ? 1 : 0;
    return number;
}

NSNumber NSNumber::numberWithInt(std::int32_t value) {
    NSNumber number(Type::Int);
    number.m_signed = value;
    return number;
}

NSNumber NSNumber::numberWithInteger(std::int64_t value) {
    NSNumber number(Type::Integer);
    number.m_signed = value;
    return number;
}

NSNumber NSNumber::numberWithUnsignedInt(std::uint32_t value) {
    NSNumber number(Type::UnsignedInt);
    number.m_unsigned = value;
    return number;
}

NSNumber NSNumber::numberWithUnsignedLongLong(std::uint64_t value) {
    NSNumber number(Type::UnsignedLongLong);
    number.m_unsigned = value;
    return number;
}

NSNumber NSNumber::numberWithFloat(float value) {
    NSNumber number(Type::Float);
    number.m_real = static_cast<double>(value);
    return number;
}

NSNumber NSNumber::numberWithDouble(double value) {
    NSNumber number(Type::Double);
    number.m_real = value;
    return number;
}

bool NSNumber::isUnsigned() const { return m_type == Type::UnsignedInt || m_type == Type::UnsignedLongLong; }

template <class To> To NSNumber::as() const {
    if (isFloatingPoint()) return fromReal<To>(m_real);
    return isUnsigned() ? fromInteger<To>(m_unsigned) : fromInteger<To>(m_signed);
}

bool NSNumber::boolValue() const {
    if (isFloatingPoint()) return m_real != 0 && !std::isnan(m_real);
    return isUnsigned() ? m_unsigned != 0 : m_signed != 0;
}

std::int32_t NSNumber::intValue() const { return as<std::int32_t>(); }
std::int64_t NSNumber::integerValue() const { return as<std::int64_t>(); }
std::uint32_t NSNumber::unsignedIntValue() const { return as<std::uint32_t>(); }
std::uint64_t NSNumber::unsignedLongLongValue() const { return as<std::uint64_t>(); }
float NSNumber::floatValue() const { return static_cast<float>(doubleValue()); }

double NSNumber::doubleValue() const {
    if (isFloatingPoint()) return m_real;
    return isUnsigned() ? static_cast<double>(m_unsigned) : static_cast<double>(m_signed);
}

bool NSNumber::isEqualToNumber(NSNumber other) const {
    if (isFloatingPoint() && other.isFloatingPoint())
        return m_real == other.m_real || (std::isnan(m_real) && std::isnan(other.m_real));
    if (isFloatingPoint()) return other.isEqualToNumber(*this);
    if (other.isFloatingPoint())
        return isUnsigned() ? equalsReal(m_unsigned, other.m_real) : equalsReal(m_signed, other.m_real);

    if (isUnsigned())
        return other.isUnsigned() ? m_unsigned == other.m_unsigned : std::cmp_equal(m_unsigned, other.m_signed);
    return other.isUnsigned() ? std::cmp_equal(m_signed, other.m_unsigned) : m_signed == other.m_signed;
}
