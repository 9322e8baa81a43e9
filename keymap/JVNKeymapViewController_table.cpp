// The table of the editor: its rows, their look, and arming one of them.

#include "keymap/JVNKeymapViewController.h"

#include "keymap/button_table.h"
#include "keymap/key_names.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/NSString.h"

namespace {

// The label in the accessory place is the editor's own: it comes with the cell's first use and stays for its reuse.
std::shared_ptr<UILabel> keyLabel(const UITableViewCell& cell) {
    return std::dynamic_pointer_cast<UILabel>(cell.accessoryView());
}

void show(UILabel& label, std::string text, std::string spoken, const std::shared_ptr<UIColor>& color) {
    label.setText(std::move(text));
    label.setAccessibilityLabel(std::move(spoken));
    label.setTextColor(color);
    label.sizeToFit();
}

void showKey(UILabel& label, long keyCode) {
    show(label, keyDisplayName(keyCode), keySpokenName(keyCode), UIColor::blackColor());
}

} // namespace

long JVNKeymapViewController::numberOfSectionsInTableView(UITableView&) { return 1; }

long JVNKeymapViewController::tableView_numberOfRowsInSection(UITableView&, long) {
    return static_cast<long>(keymapButtons.size());
}

std::string JVNKeymapViewController::tableView_titleForHeaderInSection(UITableView&, long) {
    return "Connect your keyboard either with USB or Bluetooth (with the builtin iOS Bluetooth pairing).";
}

long JVNKeymapViewController::buttonNativeFromIndexPath(const NSIndexPath& indexPath) const {
    return keymapButtons[static_cast<std::size_t>(indexPath.row())].nativeCode;
}

std::optional<std::string> JVNKeymapViewController::stringSelectedKeyCodeForNative(std::uint32_t native) const {
    std::optional<std::string> found;
    if (m_keymap)
        m_keymap->enumerate([&](const std::string& key, const id& value) {
            if (value.integerValue() == static_cast<std::int64_t>(native)) found = key;
            return !found;
        });
    return found;
}

long JVNKeymapViewController::selectedKeyCodeForNative(std::uint32_t native) const {
    const auto key = stringSelectedKeyCodeForNative(native);
    return key ? NSStringIntegerValue(*key) : -1;
}

std::shared_ptr<UITableViewCell>
JVNKeymapViewController::tableView_cellForRowAtIndexPath(UITableView& tableView,
                                                         const std::shared_ptr<NSIndexPath>& indexPath) {
    const auto cell = tableView.dequeueReusableCellWithIdentifier_forIndexPath(JVNKeymapCellID, indexPath);
    if (!cell || !indexPath) return cell;
    const auto& button = keymapButtons[static_cast<std::size_t>(indexPath->row())];
    cell->textLabel()->setText(button.title);
    if (!cell->accessoryView()) cell->setAccessoryView(UILabel::alloc()->init());
    if (const auto label = keyLabel(*cell))
        showKey(*label, selectedKeyCodeForNative(static_cast<std::uint32_t>(button.nativeCode)));
    return cell;
}

void JVNKeymapViewController::tableView_didSelectRowAtIndexPath(UITableView& tableView,
                                                                const std::shared_ptr<NSIndexPath>& indexPath) {
    if (const auto former = m_indexPathOfCellToRemap) {
        tableView.deselectRowAtIndexPath_animated(former, true);
        tableView.reloadRowsAtIndexPaths_withRowAnimation({former}, UITableViewRowAnimationFade);
        // Tapped twice, it waits as after the first tap: without a selected row the application acts on the key, too.
        if (indexPath && former->isEqual(*indexPath)) tableView.selectRowAtIndexPath_animated(indexPath, false);
    }
    setIndexPathOfCellToRemap(indexPath);
    const auto cell = tableView.cellForRowAtIndexPath(indexPath);
    if (const auto label = cell ? keyLabel(*cell) : nullptr)
        show(*label, "Press Key…", NSLocalizedString("Press Key"), UIColor::blueColor());
}
