#pragma once

#include "colourpicker/ZKColorPickerView.h"
#include "ledcolour/JVNColorChooserCell.h"
#include "ledcolour/JVNColorPickerController.h"
#include "ledcolour/hex_colour.h"
#include "system/notify/NotifyListener.h"
#include "tests/settings/PageTest.h"
#include "tests/support/LoggedLines.h"

#include <memory>
#include <string>
#include <vector>

using testing_support::hex;
using testing_support::ScriptedDaemon;

// A daemon that answers a query at once with a state that says nothing.
inline void sayNothingNew(testing_support::DaemonPeer& peer) {
    const auto head = peer.read(12);
    if (!head.empty() && head[0] == 5) peer.write({0, 0, 0, 0, 7, 0, 0, 0, 0, 0, 0, 0});
    peer.readToEnd();
}

class LEDColour : public PageTest {
protected:
    LEDColour() : m_changed("com.quorrel.jvnprefs.changed", [this] { ++changes; }) {}

    std::shared_ptr<JVNColorPickerController> openPicker() {
        EXPECT_TRUE(app.tap("Choose LED Color"));
        EXPECT_TRUE(app.waitUntil([&] { return picker() != nullptr; }));
        // The field is drawn on a worker and fades in.
        EXPECT_TRUE(app.waitUntil([&] { return picker()->colorPicker()->colorMapView().view()->alpha() == 1; }));
        app.settle();
        return picker();
    }
    std::shared_ptr<JVNColorPickerController> picker() const {
        return std::dynamic_pointer_cast<JVNColorPickerController>(app.navigation()->topViewController());
    }
    UIView& map() { return *picker()->colorPicker()->colorMapView().view(); }
    std::shared_ptr<UIColor> swatch() {
        const auto cell = page->ds4ColorChooser()->propertyForKey("cellObject").object<JVNColorChooserCell>();
        return cell && cell->accessoryView() ? cell->accessoryView()->backgroundColor() : nullptr;
    }

    const UIView& slider() { return *picker()->colorPicker()->brightnessSlider().view(); }

    int changes = 0;
    testing_support::LoggedLines log;

private:
    seat::NotifyListener m_changed;
};
