// Two bit arrays driven by arbitrary calls (ranges, single bits, every word at once, copies and
// assignments, one array to itself included), against a model of their 32-bit words: after each
// call every answer and every word, spare bits included, are the model's.
#include <cstdint>
#include <vector>

#include <yxtools/memory.h>

#include "fuzz_support.h"

namespace {

struct Model {
    unsigned long range = 0;
    bool ok = false;
    std::vector<std::uint32_t> words;

    static std::size_t WordCount(unsigned long r) { return (r >> 5) + 1; }

    // Growing adds zero words; shrinking drops the words past the new range's last one, whose
    // spare bits stay as they were.
    bool SetRange(unsigned long r)
    {
        if (r == range) {
            return false;
        }
        range = r;
        ok = r != 0;
        words.resize(ok ? WordCount(r) : 0, 0);
        return true;
    }

    bool Get(unsigned long bit) const { return ok && bit < range && ((words[bit >> 5] >> (bit & 31)) & 1) != 0; }

    void Set(unsigned long bit, bool value)
    {
        if (ok && bit < range) {
            const std::uint32_t mask = std::uint32_t{1} << (bit & 31);
            words[bit >> 5] = value ? words[bit >> 5] | mask : words[bit >> 5] & ~mask;
        }
    }
};

void Check(const YXBitArray& array, const Model& model)
{
    FUZZ_CHECK(array.IsOk() == model.ok);
    FUZZ_CHECK(array.GetRange() == model.range);
    FUZZ_CHECK(array.GetByteSize() == (model.ok ? ((model.range >> 5) + 2) * 4 : 0));
    bool any = false;
    for (std::size_t i = 0; i < model.words.size(); ++i) {
        FUZZ_CHECK(array.GetBitArray()[i] == model.words[i]);
        any = any || model.words[i] != 0;
    }
    FUZZ_CHECK(array.IsOneSet() == any);
}

unsigned long AnyRange(FuzzInput& in)
{
    return in.Byte() % 8 == 0 ? 0 : in.Below(5000);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput in(data, size);
    YXBitArray arrays[2];
    Model models[2];
    while (!in.Done()) {
        const unsigned op = in.Byte();
        const unsigned a = op & 1;
        const unsigned b = (op >> 1) & 1;
        YXBitArray& array = arrays[a];
        Model& model = models[a];
        switch ((op >> 2) % 6) {
        case 0: {
            const unsigned long range = AnyRange(in);
            FUZZ_CHECK(array.SetRange(range) == model.SetRange(range));
            break;
        }
        case 1: {
            // Bits past the range as well, to see them refused.
            const unsigned long bit = in.Below(5100);
            const bool value = in.Byte() % 2 != 0;
            array.SetValue(bit, value);
            model.Set(bit, value);
            FUZZ_CHECK(array[bit] == model.Get(bit));
            break;
        }
        case 2: {
            const unsigned long bit = in.Below(5100);
            FUZZ_CHECK(array[bit] == model.Get(bit));
            break;
        }
        case 3: {
            const bool value = in.Byte() % 2 != 0;
            array.SetValue(value);
            if (model.ok) {
                for (std::uint32_t& word : model.words) {
                    word = value ? 0xFFFFFFFFU : 0;
                }
            }
            break;
        }
        case 4:
            // An assignment: from the other array, or from itself when a == b.
            array = arrays[b];
            if (&models[b] != &model && models[b].range != 0) {
                model.SetRange(models[b].range);
                model.words = models[b].words;
            } else if (models[b].range == 0) {
                model.SetRange(0);
            }
            break;
        default: {
            const YXBitArray copy(arrays[b]);
            Check(copy, models[b]);
            break;
        }
        }
        Check(arrays[0], models[0]);
        Check(arrays[1], models[1]);
    }
    return 0;
}
