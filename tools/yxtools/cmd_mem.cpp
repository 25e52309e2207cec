// yxtools mem: a factory's reuse of its buffers, step by step, and a bit array driven from the
// command line.
#include <yxtools/yxtools.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cli.h"

namespace {

// The operations as pairs of a word and a number.
std::vector<std::pair<std::string, unsigned long long>> Pairs(const std::vector<std::string>& words)
{
    std::vector<std::pair<std::string, unsigned long long>> pairs;
    for (std::size_t i = 0; i < words.size(); i += 2) {
        if (i + 1 >= words.size()) {
            throw cli::UsageError("OPERATION", "'" + words[i] + "' needs a number after it");
        }
        pairs.emplace_back(words[i], cli::Number(words[i + 1], words[i]));
    }
    return pairs;
}

int RunPool(cli::Context& context, const std::vector<std::string>& words)
{
    YXAutoBufferFactory factory;
    std::vector<YXAutoBuffer*> made; // buffer #n is made[n - 1]
    std::vector<YXAutoBuffer*> out;  // the caller's variable of each buffer, null when given back
    cli::Json steps = cli::Json::array();
    for (const auto& [op, n] : Pairs(words)) {
        cli::Json& step = steps.emplace_back(cli::Json{{"op", op}, {"value", n}});
        if (op == "limit") {
            factory.SetMaxBuffers(static_cast<unsigned short>(n));
            context.Line("limit %llu -> the limit is %u", n, factory.GetMaxBuffers());
            step["limit"] = factory.GetMaxBuffers();
        } else if (op == "get") {
            YXAutoBuffer* buffer = factory.GetAutoBuffer(static_cast<unsigned long>(n));
            if (buffer == nullptr) {
                context.Line("get %llu -> none (the limit of %u buffers is reached)", n, factory.GetMaxBuffers());
                step["buffer"] = nullptr;
                continue;
            }
            std::size_t id = 0;
            while (id < made.size() && made[id] != buffer) {
                ++id;
            }
            const bool reused = id < made.size();
            if (!reused) {
                made.push_back(buffer);
                out.push_back(nullptr);
            }
            out[id] = buffer;
            context.Line("get %llu -> buffer #%zu (%s), capacity %lu, size %lu", n, id + 1, reused ? "reused" : "new",
                         buffer->m_dwCapacity, buffer->m_dwSize);
            step["buffer"] = id + 1;
            step["reused"] = reused;
            step["capacity"] = buffer->m_dwCapacity;
            step["size"] = buffer->m_dwSize;
        } else if (op == "release") {
            if (n == 0 || n > made.size() || out[n - 1] == nullptr) {
                context.Line("release #%llu -> not out: nothing to give back", n);
                step["released"] = false;
                continue;
            }
            factory.ReleaseAutoBuffer(out[n - 1]);
            context.Line("release #%llu -> given back, first in line for the next get", n);
            step["released"] = true;
        } else {
            throw cli::UsageError("OPERATION", "cannot read '" + op + "' here");
        }
    }
    context.result["steps"] = std::move(steps);
    cli::Json buffers = cli::Json::array();
    context.Line("buffers: %zu", made.size());
    for (std::size_t id = 0; id < made.size(); ++id) {
        const YXAutoBuffer* buffer = made[id];
        const bool inUse = out[id] != nullptr;
        buffers.push_back(
            {{"buffer", id + 1}, {"capacity", buffer->m_dwCapacity}, {"size", buffer->m_dwSize}, {"inUse", inUse}});
        context.Line("  #%zu capacity %lu, size %lu, %s", id + 1, buffer->m_dwCapacity, buffer->m_dwSize,
                     inUse ? "in use" : "free");
    }
    context.result["buffers"] = std::move(buffers);
    return 0;
}

int RunBits(cli::Context& context, unsigned long range, const std::vector<std::string>& operations)
{
    YXBitArray bits(range);
    for (const auto& [op, n] : Pairs(operations)) {
        const auto value = static_cast<unsigned long>(n);
        if (op == "set" || op == "clear") {
            bits.SetValue(value, op == "set");
        } else if (op == "fill") {
            bits.SetValue(n != 0);
        } else if (op == "range") {
            bits.SetRange(value);
        } else {
            throw cli::UsageError("OPERATION", "cannot read '" + op + "' here");
        }
        context.Line("%s %llu", op.c_str(), n);
    }
    const unsigned long words = bits.IsOk() ? (bits.GetRange() >> 5) + 1 : 0;
    context.Line("range %lu, %lu words, any bit set: %s, byte size %lu", bits.GetRange(), words,
                 bits.IsOneSet() ? "yes" : "no", bits.GetByteSize());
    context.result["range"] = bits.GetRange();
    context.result["anySet"] = bits.IsOneSet();
    context.result["byteSize"] = bits.GetByteSize();
    cli::Json& wordList = context.result["words"] = cli::Json::array();
    for (unsigned long w = 0; w < words; ++w) {
        const unsigned long word = bits.GetBitArray()[w];
        wordList.push_back(word);
        context.Line("  word %lu: 0x%08lX  bits %lu..%lu", w, word, w * 32, w * 32 + 31);
    }
    std::string set;
    cli::Json& setList = context.result["set"] = cli::Json::array();
    for (unsigned long k = 0; k < bits.GetRange(); ++k) {
        if (bits[k]) {
            setList.push_back(k);
            set += (set.empty() ? "" : " ") + std::to_string(k);
        }
    }
    context.Line("bits set within the range: %s", set.empty() ? "none" : set.c_str());
    return 0;
}

} // namespace

namespace cli {

void AddMemCommand(CLI::App& app, Context& context)
{
    CLI::App* command = app.add_subcommand("mem", "try the memory tools: a buffer factory's reuse, a bit array");
    command->require_subcommand(1);
    auto words = std::make_shared<std::vector<std::string>>();

    CLI::App* pool = command->add_subcommand("pool", "a buffer factory, driven by operations");
    pool->add_option("OPERATION", *words,
                     "limit N (SetMaxBuffers(N): raises the limit above the buffer count), get SIZE (asks for "
                     "a buffer; buffers are numbered #1, #2... as made), release ID (gives buffer #ID back)");
    context.SetAction(pool, [&context, words] { return RunPool(context, *words); });

    auto range = std::make_shared<unsigned long>(0);
    CLI::App* bits = command->add_subcommand("bits", "a bit array, driven by operations");
    bits->add_option("RANGE", *range, "the number of bits")->required();
    bits->add_option("OPERATION", *words,
                     "set K | clear K (one bit, ignored at or past the range), fill 0|1 (every word, spare "
                     "bits included), range N (a new range: a shrink keeps the words)");
    context.SetAction(bits, [&context, range, words] { return RunBits(context, *range, *words); });
}

} // namespace cli

namespace {
const cli::Registration registration("mem", cli::AddMemCommand);
}
