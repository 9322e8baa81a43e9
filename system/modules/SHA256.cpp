#include "system/modules/SHA256.h"

#include <gcrypt.h>

namespace {

// Once a process, before anything else of the library, unless somebody else has done it. Digests are no secrets: none
// of its locked memory is wanted.
void initialiseLibrary() {
    [[maybe_unused]] static const bool isInitialised = [] {
        if (gcry_control(GCRYCTL_INITIALIZATION_FINISHED_P)) return true;
        gcry_check_version(nullptr);
        gcry_control(GCRYCTL_DISABLE_SECMEM, 0);
        gcry_control(GCRYCTL_INITIALIZATION_FINISHED, 0);
        return true;
    }();
}

} // namespace

seat::SHA256::SHA256() {
    initialiseLibrary();
    gcry_md_hd_t handle = nullptr;
    if (gcry_md_open(&handle, GCRY_MD_SHA256, 0) == 0) m_handle.reset(handle);
}

void seat::SHA256::Close::operator()(gcry_md_handle* handle) const { gcry_md_close(handle); }

void seat::SHA256::add(std::span<const std::uint8_t> bytes) {
    if (m_handle) gcry_md_write(m_handle.get(), bytes.data(), bytes.size());
}

std::string seat::SHA256::hexDigest() {
    if (!m_handle) return {};
    static constexpr char digits[] = "0123456789abcdef";
    const unsigned char* const digest = gcry_md_read(m_handle.get(), GCRY_MD_SHA256);
    std::string text;
    for (unsigned i = 0; digest && i < gcry_md_get_algo_dlen(GCRY_MD_SHA256); ++i) {
        text += digits[digest[i] >> 4];
        text += digits[digest[i] & 15];
    }
    return text;
}
