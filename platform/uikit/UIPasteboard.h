#pragma once

#include "platform/runtime/NSObject.h"

#include <string>

// What was cut or copied, in whatever program. Main thread only.
class UIPasteboard final : public NSObject {
    NS_CLASS(UIPasteboard)
public:
    static std::shared_ptr<UIPasteboard> generalPasteboard();

    // UTF-8; empty when there is no text.
    std::string string() const;
    void setString(const std::string& text);
};
