// YXPriorityQueue driven by operations decoded from the input, against the step-by-step model of
// tests/holes: after every call the answer, every cell in place, and every handle variable the
// caller gave (also those of cells gone, which keep their last index).
#include <cstdint>
#include <memory>
#include <vector>

#include "holes/holes_model.h"
#include "holes_fuzz.h"

using holes_model::QueueModel;
using holes_model::QueueView;

namespace {

std::int32_t Value(FuzzInput& in)
{
    const std::uint8_t kind = in.Byte();
    if (kind < 200) {
        return static_cast<std::int32_t>(kind % 20) - 10; // ties come up often
    }
    return kind < 210 ? INT32_MIN : kind < 220 ? INT32_MAX : static_cast<std::int32_t>(in.U32());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput in(data, size);
    const auto increment = static_cast<std::int32_t>(in.Below(12)) - 2; // -2 to 9
    QueueView q(increment);
    QueueModel model(increment);
    holes_model::Handles handles(model);
    while (!in.Done()) {
        long value = 7;
        unsigned long headData = 7;
        std::int32_t modelValue = 7;
        std::uint32_t modelData = 7;
        switch (in.Below(8)) {
        case 0:
        case 1: {
            const std::int32_t v = Value(in);
            const std::uint32_t d = in.Byte();
            const int handle = handles.New(in.Byte() < 200);
            FUZZ_CHECK(q.AddValue(Wide<long>(v, in), d, handles.Pointer(handle)) == model.AddValue(v, d, handle));
            break;
        }
        case 2: {
            const short result = q.RemoveHead(value, headData);
            FUZZ_CHECK(result == (model.RemoveHead(modelValue, modelData) ? 0 : -1));
            FUZZ_CHECK(value == modelValue && headData == modelData);
            break;
        }
        case 3: {
            const std::int32_t v = Value(in);
            const std::uint32_t d = in.Byte();
            // The new cell's handle only when the queue takes it.
            const int handle = q.IsEmpty() != 0 ? -1 : handles.New(in.Byte() < 200);
            const short result = q.RemoveAddHead(value, headData, v, d, handles.Pointer(handle));
            FUZZ_CHECK(result == (model.RemoveAddHead(modelValue, modelData, v, d, handle) ? 0 : -1));
            FUZZ_CHECK(value == modelValue && headData == modelData);
            break;
        }
        case 4: { // a cell by a live handle, or by number; size + 1 and beyond are refused
            std::int32_t cell = static_cast<std::int32_t>(in.Below(static_cast<unsigned>(model.Size()) + 3));
            if (cell == 0) {
                cell = model.Size() + 1;
            }
            FUZZ_CHECK(q.RemoveCell(cell) == (model.RemoveCell(cell) ? 0 : -1));
            break;
        }
        case 5:
            if (model.Size() > 0) {
                const auto cell = static_cast<std::int32_t>(1 + in.Below(static_cast<unsigned>(model.Size())));
                const std::int32_t v = Value(in);
                q.ChangeValue(cell, v);
                model.ChangeValue(cell, v);
            }
            break;
        case 6: {
            const short result = q.ReadHead(value, headData);
            FUZZ_CHECK(result == (model.ReadHead(modelValue, modelData) ? -1 : 0));
            FUZZ_CHECK(value == modelValue && headData == modelData);
            break;
        }
        default:
            if (in.Byte() < 40) {
                q.ReInit();
                model.ReInit();
            }
            break;
        }
        const std::string broken = QueueView::Invariants(q) + QueueView::Against(q, model, handles.All());
        if (!broken.empty()) {
            std::fprintf(stderr, "%s\n", broken.c_str());
        }
        FUZZ_CHECK(broken.empty());
        FUZZ_CHECK(q.IsEmpty() == (model.Size() == 0 ? 1 : 0));
    }
    return 0;
}
