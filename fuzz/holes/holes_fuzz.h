// Numbers for the hole fuzz targets: mostly small, so that holes touch, repeat and fit exactly;
// now and then any 32-bit value, the lock bit and the wrapping sums included.
#ifndef YXTOOLS_FUZZ_HOLES_H
#define YXTOOLS_FUZZ_HOLES_H

#include <cstdint>

#include "fuzz_support.h"
#include "holes/holes_model.h"

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

// One hole, added to the manager and the model.
template <class Manager, class Model>
void AddOne(FuzzInput& in, Manager& m, Model& model)
{
    const std::uint32_t offset = Offset(in);
    const std::int32_t hole = Size(in);
    FUZZ_CHECK(m.AddHole(Wide<unsigned long>(offset, in), Wide<long>(hole, in)));
    model.AddHole(offset, hole);
}

// A host's allocation: the best hole for a request, then remove(offset, request) when there is one.
template <class Manager, class Model, class Remove>
void Allocate(FuzzInput& in, Manager& m, Model& model, Remove remove)
{
    const std::int32_t request = Size(in);
    const unsigned long answer = m.GetBestHole(Wide<long>(request, in));
    FUZZ_CHECK(answer == model.GetBestHole(request));
    if (answer != holes_model::kNone) {
        remove(static_cast<std::uint32_t>(answer), request);
    }
}

// A cleared list when the next byte is below clearBelow, else a new foot print.
template <class Manager, class Model>
void ClearOrFootPrint(FuzzInput& in, Manager& m, Model& model, std::uint8_t clearBelow)
{
    if (in.Byte() < clearBelow) {
        FUZZ_CHECK(m.ClearHoleList() && model.ClearHoleList());
        return;
    }
    const std::int32_t footPrint = in.Byte() < 200 ? static_cast<std::int32_t>(in.Below(20)) : Size(in);
    m.SetHoleFootPrint(footPrint);
    model.footPrint = footPrint;
}

#endif
