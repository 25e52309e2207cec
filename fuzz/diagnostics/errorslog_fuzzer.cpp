// The error log driven by operations decoded from the input, on the default log (through the
// YXErrorsLog_ functions with a null manager) and two logs of the host's own, against a plain
// model: every entry, in order, and every notification, in order, after each call. Texts of a new
// entry may be the texts of an entry of the log itself.
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include <yxtools/errorslog.h>

#include "fuzz_support.h"

namespace {

struct Entry {
    std::string source, description;
    std::uint32_t flags;
};

struct Log {
    std::uint32_t max = 5;
    std::deque<Entry> entries; // oldest first
    int proc = 0;              // 0: none, 1 or 2: which procedure
};

// A notification: which procedure, for which log, and the count that the log showed it.
struct Call {
    int proc;
    const YXErrorsLogManager* log;
    unsigned long count;
    bool operator==(const Call& o) const { return proc == o.proc && log == o.log && count == o.count; }
};
std::vector<Call> g_calls;

void ProcOne(YXErrorsLogManager& m)
{
    g_calls.push_back({1, &m, m.GetCount()});
}
void ProcTwo(YXErrorsLogManager& m)
{
    g_calls.push_back({2, &m, m.GetCount()});
}
YXErrorsLogOnChangeProc Proc(int id)
{
    return id == 1 ? ProcOne : id == 2 ? ProcTwo : nullptr;
}

std::uint32_t Normalised(std::uint32_t flags)
{
    const std::uint32_t kind = flags & 7U;
    return (flags & ~7U) | (kind & (0U - kind)); // the lowest of the three bits that is set
}

class Run {
public:
    explicit Run(FuzzInput& in) : m_in(in)
    {
        // The default log outlives the input: bring it back to a known state without notice.
        YXErrorsLog_SetOnChangeProc(nullptr);
        YXErrorsLog_SetMaxEntries(1);
        YXErrorsLog_Clear();
        YXErrorsLog_SetMaxEntries(5);
        m_own[0] = std::make_unique<YXErrorsLogManager>();
        const std::uint32_t max = in.Below(8);
        m_own[1] = std::make_unique<YXErrorsLogManager>(max);
        m_model[2].max = max;
        g_calls.clear();
    }

    void Step()
    {
        const unsigned slot = m_in.Below(3);
        Log& model = m_model[slot];
        switch (m_in.Below(9)) {
        case 0:
        case 1:
        case 2:
            Add(slot);
            break;
        case 3:
            if (slot == 0) {
                YXErrorsLog_Clear();
            } else {
                Manager(slot).Clear();
            }
            model.entries.clear();
            Notify(slot);
            break;
        case 4: {
            // The maximum is 32 bits wide: of a wider unsigned long only the low 32 bits count.
            unsigned long wide = m_in.Byte() < 240 ? m_in.Below(8) : m_in.U32();
            if (sizeof(unsigned long) > 4 && m_in.Byte() >= 128) {
                wide = static_cast<unsigned long>(static_cast<std::uint64_t>(wide) | (std::uint64_t{1} << 32U));
            }
            const auto max = static_cast<std::uint32_t>(wide);
            YXErrorsLog_SetMaxEntries(wide, slot == 0 ? nullptr : &Manager(slot));
            if (max != 0) {
                while (model.entries.size() > max) {
                    model.entries.pop_front();
                }
                model.max = max;
            }
            break;
        }
        case 5:
            model.proc = static_cast<int>(m_in.Below(3));
            YXErrorsLog_SetOnChangeProc(Proc(model.proc), slot == 0 ? nullptr : &Manager(slot));
            break;
        case 6: { // assignment, also of a log to itself; the default log may be either side
            const unsigned from = m_in.Below(3);
            Manager(slot) = Manager(from);
            m_model[slot] = m_model[from];
            break;
        }
        case 7: { // the second own log becomes a copy of another log
            const unsigned from = m_in.Below(3);
            auto copy = std::make_unique<YXErrorsLogManager>(Manager(from));
            m_own[1] = std::move(copy);
            m_model[2] = m_model[from];
            break;
        }
        default:
            Read(slot);
            break;
        }
        Check();
    }

private:
    YXErrorsLogManager& Manager(unsigned slot) { return slot == 0 ? YXErrorsLog_GetDefault() : *m_own[slot - 1]; }

    void Notify(unsigned slot)
    {
        if (m_model[slot].proc != 0) {
            m_expected.push_back(
                {m_model[slot].proc, &Manager(slot), static_cast<unsigned long>(m_model[slot].entries.size())});
        }
    }

    // A text: a short one of a few (so that repetitions come up), bytes of the input, or the text
    // of an entry of some log, by reference.
    const _SS<char>& Text(std::unique_ptr<_SS<char>>& keep, unsigned slot)
    {
        const unsigned kind = m_in.Below(4);
        static const char* const kShort[] = {"", "a", "b", "ab"};
        if (kind == 0) {
            keep = std::make_unique<_SS<char>>(kShort[m_in.Below(4)]);
            return *keep;
        }
        if (kind == 1) {
            keep = std::make_unique<_SS<char>>(m_in.Bytes(40));
            return *keep;
        }
        const YXErrorsLogManager& from = Manager(m_in.Below(3));
        const YXErrorLogEntry* entry = from.GetItem(m_in.Below(8));
        if (entry == nullptr) {
            keep = std::make_unique<_SS<char>>();
            return *keep;
        }
        // By reference: on a full log it may be the text of the entry that the addition evicts.
        return kind == 2 ? entry->GetSource() : entry->GetDescription();
    }

    void Add(unsigned slot)
    {
        std::unique_ptr<_SS<char>> keepSource;
        std::unique_ptr<_SS<char>> keepDescription;
        const _SS<char>& source = Text(keepSource, slot);
        const _SS<char>& description = Text(keepDescription, slot);
        const std::uint32_t flags = m_in.U32();
        Log& model = m_model[slot];
        const Entry entry{source, description, Normalised(flags)};
        const bool repeated = !model.entries.empty() && model.entries.back().source == entry.source &&
                              model.entries.back().description == entry.description;
        const bool added = YXErrorsLog_Add(source, description, flags, slot == 0 ? nullptr : &Manager(slot));
        FUZZ_CHECK(added == !repeated);
        if (!repeated) {
            // A maximum of 0, which only the constructor takes, keeps one entry.
            while (model.entries.size() >= (model.max == 0 ? 1 : model.max)) {
                model.entries.pop_front();
            }
            model.entries.push_back(entry);
            Notify(slot);
        }
    }

    // The flat readers: outputs stay as they were on false.
    void Read(unsigned slot)
    {
        YXErrorsLogManager* manager = slot == 0 ? nullptr : &Manager(slot);
        const Log& model = m_model[slot];
        const unsigned long index = m_in.Below(8);
        _SS<char> source("untouched");
        _SS<char> description("untouched");
        unsigned long flags = 0xABCDUL;
        const bool last = YXErrorsLog_GetLast(source, description, (index & 1) ? &flags : nullptr, manager);
        FUZZ_CHECK(last == !model.entries.empty());
        const Entry untouched{"untouched", "untouched", 0xABCD};
        const Entry& newest = last ? model.entries.back() : untouched;
        FUZZ_CHECK(source == newest.source && description == newest.description);
        FUZZ_CHECK(flags == ((index & 1) ? newest.flags : 0xABCDUL));
        source = "untouched";
        description = "untouched";
        flags = 0xABCDUL;
        const bool found = YXErrorsLog_GetItemAt(index, source, description, &flags, manager);
        FUZZ_CHECK(found == (index < model.entries.size()));
        const Entry& item = found ? model.entries[model.entries.size() - 1 - index] : untouched;
        FUZZ_CHECK(source == item.source && description == item.description && flags == item.flags);
        YXErrorsLog_GetFilePath(source, manager);
        FUZZ_CHECK(source.empty());
    }

    // Every entry of every log, newest first, and every notification so far.
    void Check()
    {
        for (unsigned slot = 0; slot < 3; ++slot) {
            const YXErrorsLogManager& manager = Manager(slot);
            const Log& model = m_model[slot];
            FUZZ_CHECK(manager.GetCount() == model.entries.size());
            FUZZ_CHECK(YXErrorsLog_GetCount(slot == 0 ? nullptr : &Manager(slot)) == model.entries.size());
            for (std::size_t i = 0; i < model.entries.size(); ++i) {
                const YXErrorLogEntry* entry = manager.GetItem(i);
                const Entry& expected = model.entries[model.entries.size() - 1 - i];
                FUZZ_CHECK(entry != nullptr && entry->GetSource() == expected.source &&
                           entry->GetDescription() == expected.description && entry->GetFlags() == expected.flags);
            }
            FUZZ_CHECK(manager.GetItem(model.entries.size()) == nullptr);
            FUZZ_CHECK(manager.GetLast() == (model.entries.empty() ? nullptr : manager.GetItem(0)));
            FUZZ_CHECK(manager.GetLogFilePath().empty());
        }
        FUZZ_CHECK(g_calls == m_expected);
    }

    FuzzInput& m_in;
    std::unique_ptr<YXErrorsLogManager> m_own[2];
    Log m_model[3];
    std::vector<Call> m_expected;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput in(data, size);
    Run run(in);
    while (!in.Done()) {
        run.Step();
    }
    return 0;
}
