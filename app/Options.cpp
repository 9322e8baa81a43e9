#include "app/Options.h"

#include "kit/foundation/translation.h"
#include "platform/foundation/NSString.h"

#include <charconv>
#include <cmath>
#include <string_view>

namespace {

using app::Options;

// The whole text as a number; nothing when it is none.
std::optional<double> number(std::string_view text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) return {};
    return value;
}

std::string setSize(Options& options, std::string_view text) {
    const auto cross = text.find('x');
    if (cross != std::string_view::npos) {
        const auto width = number(text.substr(0, cross));
        const auto height = number(text.substr(cross + 1));
        if (width && height && app::isWindowSize({*width, *height})) {
            options.size = {*width, *height};
            options.isSizeGiven = true;
            return {};
        }
    }
    return "is no size; it takes WIDTHxHEIGHT in points, from 320x240 to 16384x16384, as in 384x667";
}

std::string setScale(Options& options, std::string_view text) {
    const auto scale = number(text);
    if (!scale || *scale < 0.5 || *scale > 8) return "is no scale; it takes a number from 0.5 to 8";
    options.scale = *scale;
    return {};
}

std::string setFolder(std::string& folder, std::string_view text) {
    if (text.empty()) return "is no folder";
    folder = text;
    return {};
}

std::string setSocket(std::string& path, std::string_view text) {
    if (text.empty()) return "is no path";
    path = text;
    return {};
}

// Empty, or what is wrong with the size and the scale together.
std::string sizeProblem(const Options& options) {
    const double scale = options.scale > 0 ? options.scale : options.tour.empty() ? 1 : app::tourScale;
    const double width = std::ceil(options.size.width * scale);
    const double height = std::ceil(options.size.height * scale);
    if (width * height <= app::mostPixels) return {};
    return "--size: at scale " + NSStringWithFormat("%g", scale) + " that is " +
           NSStringWithFormat("%.0fx%.0f", width, height) +
           " pixels; 7680x4320, or as many in another shape, are the most";
}

// Empty, or what is wrong with the value, as the rest of a sentence.
using SetValue = std::string (*)(Options& options, std::string_view value);
using SetFlag = void (*)(Options& options);

struct Option {
    std::string_view name;
    SetValue value; // null: the option takes none
    SetFlag flag;
};

constexpr Option known[] = {
    {"--root", [](Options& o, std::string_view text) { return setFolder(o.root, text); }, nullptr},
    {"--bundle", [](Options& o, std::string_view text) { return setFolder(o.bundle, text); }, nullptr},
    {"--tour", [](Options& o, std::string_view text) { return setFolder(o.tour, text); }, nullptr},
    {"--input-socket", [](Options& o, std::string_view text) { return setSocket(o.inputSocket, text); }, nullptr},
    {"--size", setSize, nullptr},
    {"--scale", setScale, nullptr},
    {"--simulate", nullptr, [](Options& o) { o.simulate = true; }},
    {"--help", nullptr, [](Options& o) { o.showHelp = true; }},
    {"-h", nullptr, [](Options& o) { o.showHelp = true; }},
    {"--version", nullptr, [](Options& o) { o.showVersion = true; }},
};

const Option* find(std::string_view name) {
    for (const Option& option : known)
        if (option.name == name) return &option;
    return nullptr;
}

} // namespace

bool app::isWindowSize(CGSize size) {
    return size.width >= 320 && size.width <= 16384 && size.height >= 240 && size.height <= 16384;
}

app::ParsedOptions app::parseOptions(std::span<const char* const> arguments) {
    ParsedOptions result;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        const auto equals = argument.starts_with("--") ? argument.find('=') : std::string_view::npos;
        const std::string name(argument.substr(0, equals));
        const Option* const option = find(name);
        if (!option) {
            result.problem = name.starts_with('-') ? "unknown option " + name : "unexpected argument \"" + name + "\"";
            return result;
        }
        std::optional<std::string_view> value;
        if (equals != std::string_view::npos) value = argument.substr(equals + 1);
        if (!option->value) {
            if (value)
                result.problem = name + " takes no value";
            else
                option->flag(result.options);
        } else {
            if (!value && i + 1 < arguments.size()) value = arguments[++i];
            if (!value)
                result.problem = name + " needs a value";
            else if (auto wrong = option->value(result.options, *value); !wrong.empty())
                result.problem.append(name).append(": \"").append(*value).append("\" ").append(wrong);
        }
        if (!result.problem.empty()) return result;
    }
    result.problem = sizeProblem(result.options);
    return result;
}

std::string app::helpText() {
    return seat::translated(R"(Usage: joyvane-settings [OPTION]...
Shows the settings page of a game-controller add-on.

  --root DIR       the folder that stands for the phone's file system
                   (default: joyvane in the user's data folder; with
                   --simulate a folder that is gone after the session)
  --bundle DIR     the settings bundle to show
                   (default: Joyvane.bundle beside this program)
  --simulate       start the add-on's daemon and discovery tool for this root,
                   with simulated controllers
  --input-socket PATH
                   where the service listens that plays the keyboard
                   (default: /run/jvninputd.socket)
  --size WxH       the window's size in points (default: 384x667)
  --scale S        pixels a point (default: the screen's)
  --tour DIR       show nothing; walk through the page by touches and keys, and
                   write a picture a step and a log into DIR
  --help, -h       print this and end
  --version        print the version and end

Exit codes: 0 all went well; 1 something failed, as was said; 2 there is no
display; 3 the command line was not understood; 4 the bundle was refused.
)");
}
