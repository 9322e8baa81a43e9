#pragma once

#include "platform/runtime/Class.h"

#include <initializer_list>
#include <memory>

// What a protocol may ask of any object that adopts it.
class NSObjectProtocol {
public:
    virtual ~NSObjectProtocol() = default;
    virtual bool respondsToSelector(SEL selector) const = 0;
};

// Root of every platform and logic class. Strong reference = std::shared_ptr, weak = std::weak_ptr, non-owning = raw
// pointer. Creation has two steps: `T::alloc()` makes the object, an `init...` sets it up and gives it back, or nil.
class NSObject : public std::enable_shared_from_this<NSObject> {
public:
    // Never nil. What comes of it is not to be used before an `init...`.
    static std::shared_ptr<NSObject> alloc();
    static Class classObject();

    // On the thread of the last release, or on the main one where the class wants that. Tells nobody: whoever held it
    // weakly finds nil.
    virtual ~NSObject();
    NSObject(const NSObject&) = delete;
    NSObject& operator=(const NSObject&) = delete;

    // Itself. An `init...` that cannot set the object up gives nil, and the object dies.
    std::shared_ptr<NSObject> init();

    // Of the object itself, not of the pointer's type.
    virtual Class isa() const;
    // Inherited and added methods count.
    virtual bool respondsToSelector(SEL selector) const;
    // The class or one derived from it; false for nil.
    bool isKindOfClass(Class cls) const;

    // Value equality; identity unless a class knows better.
    virtual bool isEqual(const NSObject& other) const;

    // Objects that belong to the interface set this to true: their last release on another thread is handed to the main
    // queue, so that their destructor always runs on the main thread.
    static constexpr bool diesOnMainThread = false;

protected:
    NSObject();

    // The strong reference to `this`, typed: `return self(this);` at the end of an `init...`.
    template <class T> static std::shared_ptr<T> self(T* object) {
        return std::static_pointer_cast<T>(object->shared_from_this());
    }
};

// Sends a message by selector. A receiver without the method gets nothing: nil comes back and one line is logged. What
// a method without a result returns is nil. The receiver must be held by somebody while it is called.
id objc_msgSend(NSObject& receiver, SEL selector, std::initializer_list<id> arguments);
id objc_msgSend(NSObject& receiver, SEL selector, std::span<const id> arguments);

namespace runtime_detail {
// Registers once; the class lives for ever. `create` may be null for a class that is never made by name.
Class registerClass(const char* name, Class superclass, std::shared_ptr<NSObject> (*create)(),
                    std::initializer_list<MethodDescription> methods);
// Deletes here on the main thread, else hands the deletion to the main queue.
void deleteOnMainThread(void (*destroy)(void*), void* object);

template <class T> std::shared_ptr<T> allocate() {
    if constexpr (T::diesOnMainThread)
        return std::shared_ptr<T>(
            new T, [](T* object) { deleteOnMainThread([](void* o) { delete static_cast<T*>(o); }, object); });
    else
        return std::shared_ptr<T>(new T);
}
} // namespace runtime_detail

// Makes an instance of a class known by name (uninitialised, as from `alloc`); nil for nil.
std::shared_ptr<NSObject> class_createInstance(Class cls);

// In the declaration of every class; leaves the access at `public`. Constructors stay protected or private where
// possible; `alloc` is the one way in.
#define NS_CLASS(Self)                                                                                                 \
public:                                                                                                                \
    static std::shared_ptr<Self> alloc() { return runtime_detail::allocate<Self>(); }                                  \
    static Class classObject();                                                                                        \
    Class isa() const override { return classObject(); }                                                               \
                                                                                                                       \
private:                                                                                                               \
    template <class T> friend std::shared_ptr<T> runtime_detail::allocate();                                           \
                                                                                                                       \
public:

// In the source file of every class: registers it under its name when its library is loaded.
// The rest of the arguments is its method list: method<&Self::pairController>("pairController"), ...
#define NS_CLASS_IMPLEMENTATION(Self, Super, ...)                                                                      \
    Class Self::classObject() {                                                                                        \
        static const Class registered = runtime_detail::registerClass(                                                 \
            #Self, Super::classObject(),                                                                               \
            []() -> std::shared_ptr<NSObject> { return runtime_detail::allocate<Self>(); }, {__VA_ARGS__});            \
        return registered;                                                                                             \
    }                                                                                                                  \
    [[maybe_unused]] static const Class registered##Self = Self::classObject();
