#include "platform/uikit/UIPasteboard.h"

#include "kit/uikit/Pasteboard.h"

#include <utility>

NS_CLASS_IMPLEMENTATION(UIPasteboard, NSObject)

namespace {

seat::Pasteboard& desktopPasteboard() {
    static auto* const pasteboard = new seat::Pasteboard; // outlives every static
    return *pasteboard;
}

std::string& ownText() {
    static auto* const text = new std::string;
    return *text;
}

} // namespace

std::shared_ptr<UIPasteboard> UIPasteboard::generalPasteboard() {
    static const auto* const pasteboard = new std::shared_ptr<UIPasteboard>(alloc());
    return *pasteboard;
}

std::string UIPasteboard::string() const {
    const auto& read = desktopPasteboard().read;
    return read ? read() : ownText();
}

void UIPasteboard::setString(const std::string& text) {
    if (const auto& write = desktopPasteboard().write)
        write(text);
    else
        ownText() = text;
}

void seat::setPasteboard(Pasteboard pasteboard) { desktopPasteboard() = std::move(pasteboard); }
