#pragma once

#include "platform/foundation/NSError.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

class NSFileManager final : public NSObject {
    NS_CLASS(NSFileManager)

    static std::shared_ptr<NSFileManager> defaultManager();

    // The names in a folder, hidden ones too, without "." and "..", in no order; nothing when it cannot be listed.
    std::optional<std::vector<std::string>> contentsOfDirectoryAtPath_error(const std::string& path,
                                                                            std::shared_ptr<NSError>* error) const;
};
