#pragma once

#include <cstddef>
#include <cstdint>

// CRC-32 over the reflected polynomial 0xEDB88320 without the usual inversions before and after: "123456789" gives
// 0x2DFD2D88, nothing gives 0. The name is also a widespread compression library's: the module links its own calls to
// itself and is loaded with local scope.
extern "C" [[gnu::visibility("default")]] std::uint32_t crc32(const void* bytes, std::size_t length);
