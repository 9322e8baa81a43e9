#pragma once

// Turns a C++ member function into a method that the runtime can call:
// method<&Page::connectController>("connectController:"). Arguments and results are value objects on the way: numbers
// and bools by conversion (a float is cut to a whole number, what is no number gives 0), strings as UTF-8, objects by
// their class. What is missing, nil or of another kind arrives as 0, false, the empty string or nil; arguments too many
// are dropped. The type encoding names the result, then the receiver and the selector, then each argument: 'v' nothing,
// 'B' a bool, 'q' a whole number, 'd' a floating-point one, '@' anything else.

#include "platform/foundation/id.h"
#include "platform/runtime/NSObject.h"

#include <concepts>
#include <cstddef>
#include <type_traits>
#include <utility>

namespace runtime_detail {

// Between a value object and a C++ argument, one specialisation a kind.
template <class T> struct Bridge;

template <> struct Bridge<id> {
    static constexpr char code = '@';
    static id from(const id& value) { return value; }
    static id to(id value) { return value; }
};
template <> struct Bridge<bool> {
    static constexpr char code = 'B';
    static bool from(const id& value) { return value.boolValue(); }
    static id to(bool value) { return NSNumber::numberWithBool(value); }
};
template <std::integral T> struct Bridge<T> {
    static constexpr char code = 'q';
    static T from(const id& value) { return static_cast<T>(value.integerValue()); }
    static id to(T value) { return NSNumber::numberWithInteger(static_cast<long>(value)); }
};
template <std::floating_point T> struct Bridge<T> {
    static constexpr char code = 'd';
    static T from(const id& value) { return static_cast<T>(value.doubleValue()); }
    static id to(T value) { return NSNumber::numberWithDouble(value); }
};
template <> struct Bridge<std::string> {
    static constexpr char code = '@';
    static std::string from(const id& value) { return value.string() ? *value.string() : std::string(); }
    static id to(std::string value) { return id(std::move(value)); }
};
template <class T> struct Bridge<std::shared_ptr<T>> {
    static constexpr char code = '@';
    static std::shared_ptr<T> from(const id& value) { return value.template object<T>(); }
    static id to(const std::shared_ptr<T>& value) { return id(value); }
};

// The type without reference and const, by which its bridge is found.
template <class T> using Bare = std::remove_cvref_t<T>;

// The function that the runtime calls for one member: unpacks the arguments, calls, packs the result.
template <auto Member, class C, class R, class... Args> struct Thunk {
    static id call(NSObject& self, SEL, std::span<const id> arguments) {
        return apply(static_cast<C&>(self), arguments, std::index_sequence_for<Args...>{});
    }
    static constexpr auto makeTypes() {
        struct {
            char text[sizeof...(Args) + 4];
        } encoding{};
        std::size_t at = 0;
        if constexpr (std::is_void_v<R>)
            encoding.text[at++] = 'v';
        else
            encoding.text[at++] = Bridge<Bare<R>>::code;
        encoding.text[at++] = '@';
        encoding.text[at++] = ':';
        ((encoding.text[at++] = Bridge<Bare<Args>>::code), ...);
        return encoding;
    }
    static constexpr auto types = makeTypes();

private:
    template <std::size_t... I>
    static id apply(C& object, [[maybe_unused]] std::span<const id> arguments, std::index_sequence<I...>) {
        [[maybe_unused]] const auto argument = [&](std::size_t i) {
            return i < arguments.size() ? arguments[i] : id();
        };
        if constexpr (std::is_void_v<R>) {
            (object.*Member)(Bridge<Bare<Args>>::from(argument(I))...);
            return id();
        } else {
            return Bridge<Bare<R>>::to((object.*Member)(Bridge<Bare<Args>>::from(argument(I))...));
        }
    }
};

// Takes the member's type apart; const and other members alike.
template <auto Member, class C, class R, class... Args>
constexpr MethodDescription describe(const char* name, R (C::*)(Args...)) {
    using T = Thunk<Member, C, R, Args...>;
    return {name, &T::call, T::types.text};
}
template <auto Member, class C, class R, class... Args>
constexpr MethodDescription describe(const char* name, R (C::*)(Args...) const) {
    using T = Thunk<Member, C, R, Args...>;
    return {name, &T::call, T::types.text};
}

} // namespace runtime_detail

// A row of a class's method list; `name` is the selector with its colons.
template <auto Member> constexpr MethodDescription method(const char* name) {
    return runtime_detail::describe<Member>(name, Member);
}
