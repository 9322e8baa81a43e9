#pragma once

// A picker in a window, its default parts, and a client that hears it.

#include "colourpicker/ZKBrightnessSlider.h"
#include "colourpicker/ZKColorInfoView.h"
#include "colourpicker/ZKColorMapView.h"
#include "colourpicker/ZKColorPickerView.h"
#include "tests/colourpicker/PickerScene.h"

#include <gtest/gtest.h>

class ColorPicker : public ::testing::Test {
protected:
    ZKColorMapView& map() {
        const auto& view = picker->colorMapView().view();
        return *std::static_pointer_cast<ZKColorMapView>(view);
    }
    ZKBrightnessSlider& slider() {
        return *std::static_pointer_cast<ZKBrightnessSlider>(picker->brightnessSlider().view());
    }
    ZKColorInfoView& info() { return *std::static_pointer_cast<ZKColorInfoView>(picker->colorInfoView().view()); }
    void show(CGSize size = {320, 460}) {
        window.show(picker, {{0, 0}, size});
        window.keep(std::static_pointer_cast<ZKColorMapView>(picker->colorMapView().view()));
        window.waitForField(map());
    }
    CGPoint onTile(double column, double row) {
        return map().convertPoint_toView({column * 16 + 8, row * 16 + 8}, nullptr);
    }
    CGPoint onTrack(double fraction) { return slider().convertPoint_toView({28 + 212 * fraction, 15}, nullptr); }
    HSBA color() { return hsba(picker->color()); }

    PickerScene window{{320, 460}, 2};
    std::shared_ptr<ZKColorPickerView> picker = ZKColorPickerView::alloc()->init();
};

// Reads the picker's colour in its action, as a client does.
class Client final : public NSObject {
    NS_CLASS(Client)
    void changed(const std::shared_ptr<ZKColorPickerView>& sender) { heard.push_back(hsba(sender->color())); }
    std::vector<HSBA> heard;
};

std::shared_ptr<Client> clientOf(ZKColorPickerView& picker);
