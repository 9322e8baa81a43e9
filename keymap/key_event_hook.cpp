#include "keymap/key_event_hook.h"

#include "keymap/JVNKeymapViewController.h"
#include "platform/runtime/method.h"
#include "platform/uikit/UIKeyEvent.h"

namespace {

constexpr const char* handlerName = "handleKeyUIEvent:";

Class keyEventSuperclass = nullptr;
IMP previousHandleKeyUIEvent = nullptr;

id forwardKeyEventToSuperclass(NSObject& application, SEL command, std::span<const id> arguments) {
    // Looked up at each call: somebody else may replace the superclass's handler later.
    const IMP handler = class_getMethodImplementation(keyEventSuperclass, handlerName);
    return handler ? handler(application, command, arguments) : id();
}

id hookedHandleKeyUIEvent(NSObject& application, SEL command, std::span<const id> arguments) {
    if (previousHandleKeyUIEvent) previousHandleKeyUIEvent(application, command, arguments);
    // The editor may be replaced while it hears of the key: held until it has.
    const auto editor = JVNKeymapViewController::activeKeymapController();
    const auto event = arguments.empty() ? nullptr : arguments[0].object<UIKeyEvent>();
    if (editor && event) editor->keyPressed(*event);
    return id();
}

// Loaded means hooked, before anything else of the bundle runs: also before its classes make themselves known, which
// the initialisers without a priority do.
[[gnu::constructor(101)]] void initializeModule() { installKeyEventHook(); }

} // namespace

void installKeyEventHook() { installKeyEventHookOnClass(objc_getClass("UIApplication")); }

void installKeyEventHookOnClass(Class applicationClass) {
    // Hooked already, here or above: once more, and the hook would take itself for the handler before it.
    if (class_getMethodImplementation(applicationClass, handlerName) == hookedHandleKeyUIEvent) return;
    keyEventSuperclass = class_getSuperclass(applicationClass);
    const Method handler = class_getInstanceMethod(applicationClass, handlerName);
    if (!handler) return;
    previousHandleKeyUIEvent = forwardKeyEventToSuperclass;
    if (class_addMethod(applicationClass, handlerName, hookedHandleKeyUIEvent, method_getTypeEncoding(handler))) return;
    previousHandleKeyUIEvent = method_getImplementation(handler);
    previousHandleKeyUIEvent = method_setImplementation(handler, hookedHandleKeyUIEvent);
}
