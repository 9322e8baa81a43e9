#pragma once

#include "platform/runtime/NSObject.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

class NSError;

enum NSDataWritingOptions : unsigned long { NSDataWritingNone = 0, NSDataWritingAtomic = 1 };

// Immutable bytes, copied when they come in. Any thread. Paths are the phone's: the seat puts its root in front.
class NSData final : public NSObject {
    NS_CLASS(NSData)

    // May be empty.
    static std::shared_ptr<NSData> dataWithBytes(std::span<const std::uint8_t> bytes);
    static std::shared_ptr<NSData> dataWithVector(std::vector<std::uint8_t>&& bytes);
    // nil when the file is absent, and, with a logged reason, when it cannot be read, is no regular file (a pipe is not
    // waited for), or is larger than `maximumLength` bytes.
    static std::shared_ptr<NSData> dataWithContentsOfFile(const std::string& path,
                                                          std::size_t maximumLength = 64u << 20);

    std::size_t length() const { return m_bytes.size(); }
    // Valid while the object lives.
    std::span<const std::uint8_t> bytes() const { return m_bytes; }

    // Option 1: written to "<file name>.<suffix>" beside the file, flushed, renamed over it; on failure the file keeps
    // its previous contents and the temporary is removed; mode, owner and group stay those of the file that was there.
    // Without it the bytes go straight into the file. False on failure, with a logged reason, and `error` set where it
    // is not null; the folder must exist.
    bool writeToFile_options_error(const std::string& path, unsigned long options,
                                   std::shared_ptr<NSError>* error) const;

    // Other data with the same bytes.
    bool isEqual(const NSObject& other) const override;

private:
    std::vector<std::uint8_t> m_bytes;
};
