#include "platform/runtime/NSObject.h"

#include "platform/foundation/id.h"
#include "platform/log.h"

#include <atomic>
#include <map>
#include <mutex>
#include <shared_mutex>

class RuntimeMethod {
public:
    RuntimeMethod(IMP given, const char* typeEncoding) : implementation(given), types(typeEncoding) {}

    std::atomic<IMP> implementation;
    const std::string types;
};

class RuntimeClass {
public:
    std::string name;
    Class superclass = nullptr;
    std::shared_ptr<NSObject> (*create)() = nullptr;
    // Guarded by the registry's mutex. Methods are only ever added, and do not move.
    std::map<SEL, RuntimeMethod> methods;
};

namespace {

// Never destroyed, like the classes in it: objects that die at the process's end still ask for theirs.
struct Registry {
    std::shared_mutex mutex;
    std::map<std::string, Class, std::less<>> classes;

    static Registry& shared() {
        static auto* const registry = new Registry;
        return *registry;
    }

    // With the mutex held.
    static Method find(Class cls, SEL selector) {
        for (; cls; cls = cls->superclass)
            if (const auto found = cls->methods.find(selector); found != cls->methods.end()) return &found->second;
        return nullptr;
    }
};

} // namespace

Class runtime_detail::registerClass(const char* name, Class superclass, std::shared_ptr<NSObject> (*create)(),
                                    std::initializer_list<MethodDescription> methods) {
    auto& registry = Registry::shared();
    std::unique_lock lock(registry.mutex);
    const auto [place, isNew] = registry.classes.try_emplace(name, nullptr);
    const auto cls = isNew ? new RuntimeClass : place->second;
    if (isNew) {
        cls->name = name;
        cls->superclass = superclass;
        cls->create = create;
        for (const auto& method : methods)
            cls->methods.try_emplace(SEL(method.name), method.implementation, method.types ? method.types : "");
        place->second = cls;
    }
    lock.unlock();

    // Two libraries of one process brought the class along. Its objects must agree on one, so the first stays.
    if (!isNew) NSLog("runtime: class %s is registered twice; the first registration stays", name);
    return cls;
}

Class objc_getClass(std::string_view name) {
    auto& registry = Registry::shared();
    const std::shared_lock lock(registry.mutex);
    const auto found = registry.classes.find(name);
    return found == registry.classes.end() ? nullptr : found->second;
}

const std::string& class_getName(Class cls) {
    static const auto* const none = new std::string("nil");
    return cls ? cls->name : *none;
}

Class class_getSuperclass(Class cls) { return cls ? cls->superclass : nullptr; }

bool class_isSubclassOf(Class cls, Class ancestor) {
    while (cls && cls != ancestor) cls = cls->superclass;
    return cls != nullptr;
}

Method class_getInstanceMethod(Class cls, SEL selector) {
    const std::shared_lock lock(Registry::shared().mutex);
    return Registry::find(cls, selector);
}

IMP class_getMethodImplementation(Class cls, SEL selector) {
    return method_getImplementation(class_getInstanceMethod(cls, selector));
}

bool class_addMethod(Class cls, SEL selector, IMP implementation, const char* types) {
    if (!cls || !selector || !implementation) return false;
    const std::unique_lock lock(Registry::shared().mutex);
    return cls->methods.try_emplace(selector, implementation, types ? types : "").second;
}

const char* method_getTypeEncoding(Method method) { return method ? method->types.c_str() : nullptr; }

IMP method_getImplementation(Method method) { return method ? method->implementation.load() : nullptr; }

IMP method_setImplementation(Method method, IMP implementation) {
    return method && implementation ? method->implementation.exchange(implementation) : nullptr;
}

std::shared_ptr<NSObject> class_createInstance(Class cls) { return cls && cls->create ? cls->create() : nullptr; }

id objc_msgSend(NSObject& receiver, SEL selector, std::span<const id> arguments) {
    const auto implementation = class_getMethodImplementation(receiver.isa(), selector);
    if (!implementation) {
        NSLog("runtime: %s does not respond to \"%s\"", class_getName(receiver.isa()).c_str(), selector.name().c_str());
        return nullptr;
    }
    return implementation(receiver, selector, arguments);
}

id objc_msgSend(NSObject& receiver, SEL selector, std::initializer_list<id> arguments) {
    return objc_msgSend(receiver, selector, std::span<const id>(arguments.begin(), arguments.size()));
}
