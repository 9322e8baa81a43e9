#include "host/window/key_translator.h"

#include "host/window/hid_usage.h"
#include "platform/uikit/UIKeyEvent.h"

std::shared_ptr<UIKeyEvent> host::KeyTranslator::translate(const RawKeyEvent& event) {
    const long usage = hidUsageForScanCode(event.scanCode);
    if (usage == 0) return nullptr;
    const bool wasHeld = m_held.contains(usage);
    if (event.isAutoRepeat) {
        // A key that went down in another window, and is still held, is none of ours.
        if (!event.isDown || !wasHeld) return nullptr;
    } else if (event.isDown) {
        m_held.insert(usage);
    } else if (m_held.erase(usage) == 0) {
        return nullptr;
    }
    return UIKeyEvent::keyEvent(usage, event.isDown, /*isRepeat=*/event.isDown && wasHeld, event.modifiers);
}
