#include "platform/uikit/UIKeyEvent.h"

NS_CLASS_IMPLEMENTATION(UIKeyEvent, NSObject)

std::shared_ptr<UIKeyEvent> UIKeyEvent::keyEvent(long keyCode, bool isKeyDown, bool isRepeat, unsigned modifiers,
                                                 std::optional<long> symbol) {
    const auto event = alloc();
    event->m_keyCode = keyCode;
    event->m_isKeyDown = isKeyDown;
    event->m_isRepeat = isRepeat;
    event->m_modifiers = modifiers;
    event->m_symbol = symbol.value_or(keyCode);
    return event;
}
