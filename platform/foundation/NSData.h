#pragma once

#include "platform/runtime/NSObject.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

class NSError;

enum NSDataWritingOptions : unsigned long { NSDataWritingNone = 0, NSDataWritingAtomic = 1 };

// Immutable bytes.
class NSData final : public NSObject {
    NS_CLASS(NSData)

    static std::shared_ptr<NSData> dataWithBytes(std::span<const std::uint8_t> bytes);
    static std::shared_ptr<NSData> dataWithVector(std::vector<std::uint8_t>&& bytes);
    // nil when the file cannot be read, is no regular file, or is larger than `maximumLength`.
    static std::shared_ptr<NSData> dataWithContentsOfFile(const std::string& path,
                                                          std::size_t maximumLength = 64u << 20);

    std::size_t length() const { return m_bytes.size(); }
    std::span<const std::uint8_t> bytes() const { return m_bytes; }

    // Option 1: written to "<file name>.<suffix>" beside the file, flushed, renamed over it; on failure the file keeps
    // its previous contents and the temporary is removed. False (and a logged reason) on failure.
    bool writeToFile_options_error(const std::string& path, unsigned long options,
                                   std::shared_ptr<NSError>* error) const;

    bool isEqual(const NSObject& other) const override;

private:
    std::vector<std::uint8_t> m_bytes;
};
