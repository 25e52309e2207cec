// Numbers for the hole fuzz targets: mostly small, so that holes touch, repeat and fit exactly;
// now and then any 32-bit value, the lock bit and the wrapping sums included.
#ifndef YXTOOLS_FUZZ_HOLES_H
#define YXTOOLS_FUZZ_HOLES_H

#include <cstdint>

#include "fuzz_support.h"

inline std::uint32_t Offset(FuzzInput& in)
{
    const std::uint8_t kind = in.Byte();
    if (kind < 200) {
        return static_cast<std::uint32_t>(kind % 50) * 10U + (kind >= 150 ? 0x80000000U : 0U);
    }
    return in.U32();
}

inline std::int32_t Size(FuzzInput& in)
{
    const std::uint8_t kind = in.Byte();
    if (kind < 220) {
        return static_cast<std::int32_t>(kind % 22) * 5;
    }
    return static_cast<std::int32_t>(in.U32());
}

// A long argument: on builds where long is 64 bits, now and then with high bits that must not
// count.
template <class Long>
Long Wide(Long value, FuzzInput& in)
{
    if (sizeof(Long) > 4 && in.Byte() == 0xFF) {
        return static_cast<Long>(static_cast<std::uint64_t>(value) ^
                                 (static_cast<std::uint64_t>(in.Byte() | 1U) << 40U));
    }
    return value;
}

#endif
