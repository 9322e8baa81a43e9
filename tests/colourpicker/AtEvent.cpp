#include "tests/colourpicker/AtEvent.h"

#include "platform/runtime/method.h"

#include <utility>

NS_CLASS_IMPLEMENTATION(AtEvent, NSObject, method<&AtEvent::look>("look"))

std::shared_ptr<AtEvent> AtEvent::of(UIControl& control, unsigned events, std::function<void()> look) {
    auto watcher = alloc();
    watcher->m_look = std::move(look);
    control.addTarget_action_forControlEvents(watcher, "look", events);
    return watcher;
}

void AtEvent::look() {
    if (m_look) m_look();
}
