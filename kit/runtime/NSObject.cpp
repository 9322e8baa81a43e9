#include "platform/runtime/NSObject.h"

#include "platform/runtime/method.h"

NSObject::NSObject() = default;
NSObject::~NSObject() = default;

std::shared_ptr<NSObject> NSObject::alloc() { return std::shared_ptr<NSObject>(new NSObject); }
std::shared_ptr<NSObject> NSObject::init() { return shared_from_this(); }

Class NSObject::classObject() {
    static const Class registered = runtime_detail::registerClass(
        "NSObject", nullptr, []() -> std::shared_ptr<NSObject> { return alloc(); }, {method<&NSObject::init>("init")});
    return registered;
}
[[maybe_unused]] static const Class registeredNSObject = NSObject::classObject();

Class NSObject::isa() const { return classObject(); }

bool NSObject::respondsToSelector(SEL selector) const { return class_getInstanceMethod(isa(), selector) != nullptr; }
bool NSObject::isKindOfClass(Class cls) const { return class_isSubclassOf(isa(), cls); }
bool NSObject::isEqual(const NSObject& other) const { return this == &other; }
