// What a key event does to the armed row.

#include "keymap/JVNKeymapViewController.h"

#include "keymap/button_table.h"
#include "platform/foundation/NSString.h"
#include "platform/uikit/UIKeyEvent.h"

namespace {

// The row of a code, compared by value as the keymap's number object holds it; nil for a code (or a string) that no row
// has, as a hand-edited file may hold one: then no other row is to be redrawn.
std::shared_ptr<NSIndexPath> rowOfNative(const id& native) {
    const auto* number = native.number();
    if (!number) return nullptr;
    for (std::size_t row = 0; row < keymapButtons.size(); ++row)
        if (*number == NSNumber::numberWithInt(keymapButtons[row].nativeCode))
            return NSIndexPath::indexPathForRow_inSection(static_cast<long>(row), 0);
    return nullptr;
}

} // namespace

void JVNKeymapViewController::keyPressed(const UIKeyEvent& event) {
    if (!m_indexPathOfCellToRemap) return;
    const auto armed = m_indexPathOfCellToRemap;
    const auto native = static_cast<std::uint32_t>(buttonNativeFromIndexPath(*armed));
    const std::string newKey = NSStringFromInteger(event._keyCode());
    NSIndexPathList rowsToRedraw{armed};

    const auto table = tableView();
    if (table) table->deselectRowAtIndexPath_animated(armed, true);

    const auto oldKey = stringSelectedKeyCodeForNative(native);
    if (m_keymap) {
        const id holder = m_keymap->objectForKey(newKey);
        if (holder && holder.integerValue() != static_cast<std::int64_t>(native))
            if (auto row = rowOfNative(holder)) rowsToRedraw.push_back(std::move(row));

        if (oldKey) m_keymap->removeObjectForKey(*oldKey);
        m_keymap->setObject_forKey(NSNumber::numberWithUnsignedInt(native), newKey);
    }
    if (table) table->reloadRowsAtIndexPaths_withRowAnimation(rowsToRedraw, UITableViewRowAnimationFade);
    setIndexPathOfCellToRemap(nullptr);
}
