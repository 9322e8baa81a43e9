#include "desktop/window/KeyTranslator.h"

#include "platform/uikit/UIKeyEvent.h"
#include "system/input/hid_usage.h"

#include <cstdint>

std::shared_ptr<UIKeyEvent> seat::KeyTranslator::translate(const RawKeyEvent& event) {
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
    return UIKeyEvent::keyEvent(usage, event.isDown, /*isRepeat=*/event.isDown && wasHeld, event.modifiers,
                                typedText(event.characters, event.modifiers));
}

std::string seat::typedText(const std::string& characters, unsigned modifiers) {
    if (characters.empty()) return {};
    const auto first = static_cast<std::uint8_t>(characters.front());
    if (first >= 0x20 && first != 0x7F) return characters;
    const bool isLetter = characters.size() == 1 && first >= 1 && first <= 26 && (modifiers & UIKeyEvent::Control);
    return isLetter ? std::string(1, static_cast<char>('a' + first - 1)) : std::string();
}
