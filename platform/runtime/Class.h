#pragma once

// The object runtime: classes by name, methods by selector, adding and replacing methods.
// Safe to use from any thread; classes and selectors live for ever.

#include <span>
#include <string>
#include <string_view>

class NSObject;
class id;

// A selector: an interned name, compared by identity. Keeps the phone's spelling, colons included.
class SEL {
public:
    constexpr SEL() = default;
    constexpr SEL(std::nullptr_t) {}
    SEL(const char* name);
    SEL(std::string_view name);
    SEL(const std::string& name);

    explicit operator bool() const { return m_name != nullptr; }
    // The empty string for the null selector. Valid for ever.
    const std::string& name() const;

    friend bool operator==(SEL a, SEL b) { return a.m_name == b.m_name; }
    friend bool operator<(SEL a, SEL b) { return a.m_name < b.m_name; }

private:
    const std::string* m_name = nullptr;
};

// An implementation: the receiver, the selector it was found by, the arguments as value objects.
// Missing arguments read as nil; a method without a result returns nil.
using IMP = id (*)(NSObject& self, SEL command, std::span<const id> arguments);

class RuntimeClass;  // opaque
class RuntimeMethod; // opaque
using Class = RuntimeClass*;
using Method = RuntimeMethod*;

// One row of a class's own method list; `types` is the method's type encoding ("v@:@").
struct MethodDescription {
    const char* name;
    IMP implementation;
    const char* types;
};

// nil when no class of that name is registered.
Class objc_getClass(std::string_view name);
const std::string& class_getName(Class cls);
// nil for a root class and for nil.
Class class_getSuperclass(Class cls);
bool class_isSubclassOf(Class cls, Class ancestor);

// Inherited methods count; nil when neither the class nor an ancestor has one.
Method class_getInstanceMethod(Class cls, SEL selector);
// nil when there is none.
IMP class_getMethodImplementation(Class cls, SEL selector);
// Gives the class a method of its own (overriding an inherited one). False, and nothing changes, if it already has its
// own.
bool class_addMethod(Class cls, SEL selector, IMP implementation, const char* types);

// Null for a nil method. The encoding holds for ever.
const char* method_getTypeEncoding(Method method);
IMP method_getImplementation(Method method);
// Returns the implementation that was there; calls that run already end in it. A nil method or implementation changes
// nothing and gives null.
IMP method_setImplementation(Method method, IMP implementation);
