// YXEfficientHoleManager driven by operations decoded from the input, against the step-by-step
// model of tests/holes: after every call the answer, the whole list in its order, the counters,
// the memory and the lazy state must be the model's, and every invariant must hold.
#include <cstdint>

#include "holes/holes_model.h"
#include "holes_fuzz.h"

using holes_model::EfficientModel;
using holes_model::EfficientView;

namespace {

void Check(const EfficientView& m, const EfficientModel& model)
{
    const std::string broken = m.Invariants() + m.Against(model);
    if (!broken.empty()) {
        std::fprintf(stderr, "%s\n", broken.c_str());
    }
    FUZZ_CHECK(broken.empty());
    FUZZ_CHECK(m.GetNumberOfHoles() == model.Count() && m.GetHolesSize() == model.sum);
    FUZZ_CHECK(m.GetHoleFootPrint() == model.footPrint);
}

void Remove(EfficientView& m, EfficientModel& model, std::uint32_t offset, std::int32_t size, FuzzInput& in)
{
    // The record handed out is the list's own, at the model's place.
    const tagFILEHOLE* rest = m.RemoveHole(Wide<unsigned long>(offset, in), Wide<long>(size, in));
    FUZZ_CHECK(rest == m.At(model.RemoveHole(offset, size)));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput in(data, size);
    EfficientView m;
    EfficientModel model;
    while (!in.Done()) {
        switch (in.Below(12)) {
        case 0:
        case 1:
            AddOne(in, m, model);
            break;
        case 2: { // a run of holes, to cross blocks; lists stay below about 1000 holes, so that
                  // a check after every call stays cheap (the table's growth is a test of its own)
            const unsigned count = model.list.size() > 600 ? 0 : in.Below(450);
            const std::uint32_t base = Offset(in);
            const std::uint32_t stride = in.Below(4) * 5;
            const std::int32_t hole = Size(in);
            for (unsigned i = 0; i < count; ++i) {
                const std::uint32_t offset = base + i * stride;
                const std::int32_t s = (i % 3 == 0) ? hole : static_cast<std::int32_t>(i % 7);
                FUZZ_CHECK(m.AddHole(offset, s));
                model.AddHole(offset, s);
            }
            break;
        }
        case 3:
        case 4: // the merge pass and the order of the question are checked before the removal
            Allocate(in, m, model, [&](std::uint32_t offset, std::int32_t request) {
                Check(m, model);
                Remove(m, model, offset, request, in);
            });
            break;
        case 5: { // any removal, of a hole that is there or not
            const std::uint32_t offset = model.list.empty() || in.Byte() < 64
                                             ? Offset(in)
                                             : model.list[in.Below(static_cast<unsigned>(model.list.size()))].dwOffset;
            Remove(m, model, offset, Size(in), in);
            break;
        }
        case 6: {
            const std::uint32_t offset = Offset(in);
            FUZZ_CHECK(m.IsHole(offset) == model.IsHole(offset));
            break;
        }
        case 7: { // the file's length: the end of some hole, or any number
            std::uint32_t length = Offset(in);
            if (!model.list.empty() && in.Byte() >= 64) {
                length = holes_model::EndOf(model.list[in.Below(static_cast<unsigned>(model.list.size()))]);
            }
            FUZZ_CHECK(m.GetTruncateOffset(Wide<unsigned long>(length, in)) == model.GetTruncateOffset(length));
            break;
        }
        case 8: {
            const std::uint32_t offset = Offset(in);
            FUZZ_CHECK(m.UnlockHole(offset) == model.UnlockHole(offset));
            break;
        }
        case 9:
            FUZZ_CHECK(m.UnlockAllHoles() == model.UnlockAllHoles());
            break;
        case 10: {
            const auto key = static_cast<unsigned short>(in.Below(5));
            m.SortHoles(key);
            model.SortHoles(key);
            break;
        }
        default:
            ClearOrFootPrint(in, m, model, 16);
            break;
        }
        Check(m, model);
    }
    return 0;
}
