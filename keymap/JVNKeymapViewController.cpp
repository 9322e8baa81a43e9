#include "keymap/JVNKeymapViewController.h"

#include "keymap/default_keymap.h"
#include "platform/foundation/NSError.h"
#include "platform/foundation/NSPropertyListSerialization.h"
#include "platform/log.h"

#include <utility>

const char JVNKeymapCellID[] = "JVNKeymapCellID";

NS_CLASS_IMPLEMENTATION(JVNKeymapViewController, UITableViewController)

namespace {

constexpr const char* keymapKey = "JVNKeyboardKeymapKey";

// Never destroyed: at the end of the process the interface kit may be gone before a global would be.
std::shared_ptr<JVNKeymapViewController>& active() {
    static auto* const controller = new std::shared_ptr<JVNKeymapViewController>;
    return *controller;
}

// The former editor clears the reference as it dies. The reference is therefore empty before it does, so that neither
// its end empties what has just been stored, nor the reference is released twice.
void clearActive() { const auto former = std::exchange(active(), nullptr); }

} // namespace

JVNKeymapViewController::JVNKeymapViewController() = default;

JVNKeymapViewController::~JVNKeymapViewController() {
    clearActive();
    m_rootSettings = nullptr;
    m_keymap = nullptr;
    m_path.clear();
}

std::shared_ptr<JVNKeymapViewController> JVNKeymapViewController::initWithKeymapPath(const std::string& path) {
    std::shared_ptr<JVNKeymapViewController> editor;
    if (UITableViewController::initWithStyle(UITableViewStyleGrouped)) {
        editor = self(this);
        setPath(path);
        setRootSettings(NSMutableDictionary::dictionaryWithContentsOfFile(path));
        std::shared_ptr<NSMutableDictionary> stored;
        if (m_rootSettings) stored = m_rootSettings->objectForKey(keymapKey).object<NSMutableDictionary>();
        setKeymap(stored ? stored->mutableCopy() : defaultKeymap());
        if (const auto table = tableView())
            table->registerClass_forCellReuseIdentifier(UITableViewCell::classObject(), JVNKeymapCellID);
    }
    clearActive();
    active() = editor;
    return editor;
}

const std::shared_ptr<JVNKeymapViewController>& JVNKeymapViewController::activeKeymapController() { return active(); }

// Writes back everything that was read, changed or not. Without a file there is nothing to write the keymap into, and
// none is made.
void JVNKeymapViewController::viewDidDisappear(bool animated) {
    UITableViewController::viewDidDisappear(animated);
    if (!m_rootSettings) return;
    m_rootSettings->setObject_forKey(m_keymap, keymapKey);
    std::shared_ptr<NSError> error;
    const auto data = NSPropertyListSerialization::dataWithPropertyList_format_options_error(
        m_rootSettings, NSPropertyListBinaryFormat_v1_0, 0, &error);
    if (!data) NSLog("saving the keymap in %s: %s", m_path.c_str(), error->localizedDescription().c_str());
    if (data) data->writeToFile_options_error(m_path, NSDataWritingAtomic, nullptr);
}
