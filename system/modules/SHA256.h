#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

struct gcry_md_handle;

namespace seat {

// SHA-256 (FIPS 180-4) over bytes that come in pieces, by the system's cryptographic library, which knows the
// processor.
class SHA256 {
public:
    SHA256();
    void add(std::span<const std::uint8_t> bytes);
    // The digest as 64 lower-case hexadecimal digits; nothing can be added after it. Empty when the library cannot
    // work.
    std::string hexDigest();

private:
    struct Close {
        void operator()(gcry_md_handle* handle) const;
    };
    std::unique_ptr<gcry_md_handle, Close> m_handle;
};

} // namespace seat
