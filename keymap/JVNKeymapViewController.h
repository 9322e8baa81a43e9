#pragma once

#include "platform/foundation/NSDictionary.h"
#include "platform/uikit/NSIndexPath.h"
#include "platform/uikit/UITableViewController.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

class UIKeyEvent;

// The reuse identifier of the editor's cells.
extern "C" [[gnu::visibility("default")]] const char JVNKeymapCellID[];

// The keymap editor: a row for each controller input, with the key that drives it. Tapping a row arms it; the next key
// event binds that key. The keymap lives inside the preferences file, which is read whole at creation and written whole
// each time the view disappears.
class JVNKeymapViewController : public UITableViewController {
    NS_CLASS(JVNKeymapViewController)
public:
    ~JVNKeymapViewController() override;

    // `path` is the preferences file's. Makes this the editor that key events go to.
    std::shared_ptr<JVNKeymapViewController> initWithKeymapPath(const std::string& path);

    // The editor created last, which outlives its screen until the next one is created; nil when there is none. Main
    // thread only.
    static const std::shared_ptr<JVNKeymapViewController>& activeKeymapController();

    const std::shared_ptr<NSMutableDictionary>& rootSettings() const { return m_rootSettings; }
    void setRootSettings(std::shared_ptr<NSMutableDictionary> settings) { m_rootSettings = std::move(settings); }
    const std::shared_ptr<NSMutableDictionary>& keymap() const { return m_keymap; }
    void setKeymap(std::shared_ptr<NSMutableDictionary> keymap) { m_keymap = std::move(keymap); }
    const std::shared_ptr<NSIndexPath>& indexPathOfCellToRemap() const { return m_indexPathOfCellToRemap; }
    void setIndexPathOfCellToRemap(std::shared_ptr<NSIndexPath> path) { m_indexPathOfCellToRemap = std::move(path); }
    const std::string& path() const { return m_path; }
    void setPath(std::string path) { m_path = std::move(path); }

    void viewDidDisappear(bool animated) override;

    // Rows and their inputs.
    long numberOfSectionsInTableView(UITableView& tableView) override;
    long tableView_numberOfRowsInSection(UITableView& tableView, long section) override;
    std::string tableView_titleForHeaderInSection(UITableView& tableView, long section) override;
    std::shared_ptr<UITableViewCell>
    tableView_cellForRowAtIndexPath(UITableView& tableView, const std::shared_ptr<NSIndexPath>& indexPath) override;
    void tableView_didSelectRowAtIndexPath(UITableView& tableView,
                                           const std::shared_ptr<NSIndexPath>& indexPath) override;
    // The row must be one of the 21.
    long buttonNativeFromIndexPath(const NSIndexPath& indexPath) const;
    // The keymap's key for a code, the first one in the keymap's order; nothing when no key is bound.
    std::optional<std::string> stringSelectedKeyCodeForNative(std::uint32_t native) const;
    // The same as a number, -1 when none.
    long selectedKeyCodeForNative(std::uint32_t native) const;

    // Binds the event's key to the armed row and disarms it. Nothing while no row is armed.
    void keyPressed(const UIKeyEvent& event);

protected:
    JVNKeymapViewController();

private:
    std::shared_ptr<NSMutableDictionary> m_rootSettings; // nil when the file could not be read
    std::shared_ptr<NSMutableDictionary> m_keymap;
    std::shared_ptr<NSIndexPath> m_indexPathOfCellToRemap;
    std::string m_path;
};
