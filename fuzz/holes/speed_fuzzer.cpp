// Two YXSpeedHoleManager objects driven by operations decoded from the input, against the model
// of tests/holes: after every call the answer, every cell of each queue in place, the counters,
// and the one removal record that all speed managers share.
#include <cstdint>

#include "holes/holes_model.h"
#include "holes_fuzz.h"

using holes_model::kNone;
using holes_model::SpeedModel;
using holes_model::SpeedView;

namespace {

void Check(const SpeedView& m, const SpeedModel& model)
{
    const std::string broken = m.Against(model);
    if (!broken.empty()) {
        std::fprintf(stderr, "%s\n", broken.c_str());
    }
    FUZZ_CHECK(broken.empty());
    FUZZ_CHECK(m.GetNumberOfHoles() == model.count && m.GetHolesSize() == model.sum);
    FUZZ_CHECK(m.GetHoleFootPrint() == model.footPrint);
}

// The removal record is one for the process: every non-null answer is the same address.
const tagFILEHOLE* g_record = nullptr;

void Remove(SpeedView& m, SpeedModel& model, std::uint32_t offset, std::int32_t size, FuzzInput& in)
{
    const tagFILEHOLE* rest = m.RemoveHole(Wide<unsigned long>(offset, in), Wide<long>(size, in));
    FUZZ_CHECK((rest != nullptr) == model.RemoveHole(offset, size));
    if (rest != nullptr) {
        FUZZ_CHECK(g_record == nullptr || rest == g_record);
        g_record = rest;
    }
    if (g_record != nullptr) {
        FUZZ_CHECK(holes_model::Same(*g_record, SpeedModel::Removed()));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput in(data, size);
    SpeedView managers[2];
    SpeedModel models[2];
    while (!in.Done()) {
        const unsigned which = in.Byte() & 1U;
        SpeedView& m = managers[which];
        SpeedModel& model = models[which];
        switch (in.Below(8)) {
        case 0:
        case 1:
            AddOne(in, m, model);
            break;
        case 2: { // a run of holes, to make the queue grow
            const unsigned count = model.count > 300 ? 0 : in.Below(150);
            const std::int32_t hole = Size(in);
            for (unsigned i = 0; i < count; ++i) {
                const std::int32_t s = holes_model::Add32(hole, static_cast<std::int32_t>(i % 5));
                FUZZ_CHECK(m.AddHole(i * 7, s));
                model.AddHole(i * 7, s);
            }
            break;
        }
        case 3:
        case 4:
            Allocate(in, m, model,
                     [&](std::uint32_t offset, std::int32_t request) { Remove(m, model, offset, request, in); });
            break;
        case 5: // any removal: only the head's offset is taken
            Remove(m, model, Offset(in), Size(in), in);
            break;
        case 6: {
            const std::uint32_t offset = Offset(in);
            FUZZ_CHECK(!m.IsHole(offset) && m.GetTruncateOffset(offset) == kNone);
            break;
        }
        default:
            ClearOrFootPrint(in, m, model, 32);
            break;
        }
        Check(managers[0], models[0]);
        Check(managers[1], models[1]);
    }
    return 0;
}
