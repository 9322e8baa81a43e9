#include "desktop/window/KeyTranslator.h"

#include "platform/uikit/UIKeyEvent.h"
#include "system/input/hid_usage.h"

std::shared_ptr<UIKeyEvent> seat::KeyTranslator::translate(const RawKeyEvent& event) {
    const long usage = hidUsageForScanCode(event.scanCode);
    if (usage == 0 && event.symbol == 0) return nullptr;
    const bool wasHeld = m_held.contains(event.scanCode);
    if (event.isAutoRepeat) {
        // A key that went down in another window, and is still held, is none of ours.
        if (!event.isDown || !wasHeld) return nullptr;
    } else if (event.isDown) {
        m_held.insert(event.scanCode);
    } else if (m_held.erase(event.scanCode) == 0) {
        return nullptr;
    }
    return UIKeyEvent::keyEvent(usage, event.isDown, /*isRepeat=*/event.isDown && wasHeld, event.modifiers,
                                event.symbol);
}
