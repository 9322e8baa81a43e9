#pragma once

#include "platform/foundation/NSError.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

// Folders, by the phone's paths. Any thread; every call looks afresh.
class NSFileManager final : public NSObject {
    NS_CLASS(NSFileManager)

    // Never nil, the same at each call.
    static std::shared_ptr<NSFileManager> defaultManager();

    // The names in a folder, hidden ones too, without "." and "..", in no order. Nothing, and
    // `error` set where it is not null, when the folder cannot be listed; that is logged, too, unless it is only
    // absent.
    std::optional<std::vector<std::string>> contentsOfDirectoryAtPath_error(const std::string& path,
                                                                            std::shared_ptr<NSError>* error) const;
};
