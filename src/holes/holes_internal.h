// Arithmetic shared by the hole managers. Offsets and sizes are 32-bit numbers whose sums wrap
// as they do in 32-bit registers, on every build.
#ifndef YXTOOLS_HOLES_INTERNAL_H
#define YXTOOLS_HOLES_INTERNAL_H

#include <cstdint>

namespace yxholes {

constexpr std::uint32_t kNoOffset = 0xFFFFFFFFU;
constexpr std::uint32_t kLockBit = 0x80000000U;

inline std::int32_t Add32(std::int32_t a, std::int32_t b)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

inline std::int32_t Sub32(std::int32_t a, std::int32_t b)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

// The end of a hole, where the next range begins.
inline std::uint32_t EndOf(std::uint32_t dwOffset, std::int32_t lSize)
{
    return dwOffset + static_cast<std::uint32_t>(lSize);
}

// Whether a hole larger than a request leaves a rest of at least the foot print. The sum is
// taken in 32 bits, as a signed number: a foot print near the top of the range wraps.
inline bool LeavesFootPrint(std::int32_t lHoleSize, std::int32_t lRequest, std::int32_t lFootPrint)
{
    return lHoleSize >= Add32(lFootPrint, lRequest);
}

} // namespace yxholes

#endif
