// A preferences file of any bytes, opened in the keymap editor, some rows shown, one bound anew, and saved: what
// could be read before can be read after, and what is no affair of the editor's is as it was.

#include "keymap/JVNKeymapViewController.h"
#include "kit/foundation/property_list.h"
#include "kit/runtime/log.h"
#include "platform/uikit/UIKeyEvent.h"
#include "platform/uikit/UITableView.h"
#include "system/files/root.h"
#include "tests/fuzz/support.h"

namespace {

constexpr const char* logicalPath = "/keymap.plist";
constexpr const char* keymapKey = "JVNKeyboardKeymapKey";

std::shared_ptr<NSDictionary> stored() {
    return seat::readPropertyListFile(fuzz::folder() + logicalPath, nullptr).object<NSDictionary>();
}

} // namespace

// The first two bytes say which row is bound to which key. Some other rows are shown besides, which differ from
// input to input: all of them would take ten times as long.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    seat::setLogSink([](std::string_view) {});
    seat::setRoot(fuzz::folder());
    fuzz::write(fuzz::folder() + logicalPath, data + 2, size - 2);
    const auto before = stored();

    auto editor = JVNKeymapViewController::alloc()->initWithKeymapPath(logicalPath);
    fuzz::expect(editor != nullptr, "there is an editor for every file");
    auto& table = *editor->tableView();
    const long rows = editor->tableView_numberOfRowsInSection(table, 0);
    for (long i = 0; i < 8; ++i) {
        const long row = (data[0] + i * 5) % rows;
        fuzz::expect(editor->tableView_cellForRowAtIndexPath(table, NSIndexPath::indexPathForRow_inSection(row, 0)) !=
                         nullptr,
                     "every row can be shown");
    }
    editor->tableView_didSelectRowAtIndexPath(table, NSIndexPath::indexPathForRow_inSection(data[0] % rows, 0));
    editor->keyPressed(*UIKeyEvent::keyEvent(data[1], true));
    editor->viewDidDisappear(false);

    const auto after = stored();
    fuzz::expect(bool(before) == bool(after), "a file that could be read still can be, and no other is made");
    if (before)
        before->enumerate([&](const std::string& key, const id& value) {
            fuzz::expect(key == keymapKey || after->objectForKey(key) == value, "other settings are kept");
            return true;
        });
    editor.reset();
    // The last editor is kept until the next one is made: that one holds nothing of this file.
    return 0;
}
