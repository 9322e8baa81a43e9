// joyvane-picker [--size WxH] [--scale S] [--color RRGGBB]
//
// Shows the colour picker alone. Writes a line with each colour that it reports.

#include "colourpicker/ZKColorPickerView.h"
#include "desktop/window/SceneWindow.h"
#include "desktop/window/Toolkit.h"
#include "kit/dispatch/main_queue.h"
#include "kit/uikit/WindowScene.h"
#include "ledcolour/hex_colour.h"
#include "platform/runtime/method.h"
#include "platform/uikit/UIColor.h"
#include "system/bus/session_bus_address.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

struct Options {
    seat::SceneWindowOptions window;
    std::string color = JVNDefaultLEDColor;
};

bool readOption(std::string_view name, const char* value, Options& options) {
    char end = 0;
    if (name == "--size") {
        CGSize& size = options.window.size;
        return std::sscanf(value, "%lfx%lf%c", &size.width, &size.height, &end) == 2 && size.width >= 1 &&
               size.height >= 1;
    }
    if (name == "--scale") return std::sscanf(value, "%lf%c", &options.window.scale, &end) == 1;
    if (name == "--color") {
        options.color = value;
        return true;
    }
    return false;
}

bool readOptions(int argc, char** argv, Options& options) {
    for (int i = 1; i < argc; i += 2)
        if (i + 1 == argc || !readOption(argv[i], argv[i + 1], options)) return false;
    return true;
}

class Printer final : public NSObject {
    NS_CLASS(Printer)
    void picked(const std::shared_ptr<ZKColorPickerView>& picker) {
        std::printf("%s\n", JVNStringColorForUIColor(picker->color()).c_str());
        std::fflush(stdout);
    }
};
NS_CLASS_IMPLEMENTATION(Printer, NSObject, method<&Printer::picked>("picked:"))

void noDisplay(const std::string& reason) {
    std::fprintf(stderr, "joyvane-picker: no display: %s\n", reason.c_str());
    std::_Exit(3);
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    options.window.size = {375, 623};
    options.window.minimumSize = {200, 200};
    if (!readOptions(argc, argv, options)) {
        std::fprintf(stderr, "usage: joyvane-picker [--size WxH] [--scale S] [--color RRGGBB]\n");
        return 2;
    }
    const auto busRelay = seat::settleSessionBus();
    seat::Toolkit toolkit({.name = "joyvane-picker",
                           .desktopEntry = "joyvane-picker",
                           .busRelay = busRelay.get(),
                           .noDisplay = noDisplay});
    auto window = std::make_unique<seat::SceneWindow>(options.window);
    seat::WindowScene scene(window->size(), window->scale());

    const auto picker = ZKColorPickerView::alloc()->initWithFrame({{0, 0}, scene.size()});
    picker->setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);
    picker->setColor(JVNColorForHexString(options.color));
    const auto printer = Printer::alloc();
    picker->addTarget_action_forControlEvents(printer, "picked:", UIControlEventValueChanged);
    scene.window()->addSubview(picker);

    window->setScene(scene);
    window->setTitleSource([] { return std::string("Color Picker"); });
    window->setCloseHandler([&toolkit] { toolkit.quit(0); });
    toolkit.onTermination([&toolkit] { toolkit.quit(0); });
    const int code = toolkit.run();
    seat::drainMainQueue();
    window.reset(); // before the scene
    return code;
}
