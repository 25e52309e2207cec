// yxtools mem: a factory's reuse of its buffers, step by step, and a bit array driven from the
// command line.
#include <yxtools/yxtools.h>

#include <string>
#include <vector>

#include "cli.h"

namespace {

const char kUsage[] = "mem pool [OPERATION...]   a buffer factory, where OPERATION is one of\n"
                      "  limit N                  SetMaxBuffers(N): raises the limit above the buffer count\n"
                      "  get SIZE                 asks for a buffer; buffers are numbered #1, #2... as made\n"
                      "  release ID               gives buffer #ID back\n"
                      "mem bits RANGE [OPERATION...]   a bit array, where OPERATION is one of\n"
                      "  set K | clear K          one bit (ignored at or past the range)\n"
                      "  fill 0|1                 every word, spare bits included\n"
                      "  range N                  a new range: a shrink keeps the words";

int RunMem(cli::Context& context, const cli::Args& args);

const cli::Command kCommand{"mem", kUsage, "try the memory tools: a buffer factory's reuse, a bit array", RunMem};
const cli::Registration registration(kCommand);

bool NumberAfter(const cli::Args& args, std::size_t i, unsigned long long& value)
{
    return i + 1 < args.size() && cli::ParseNumber(args[i + 1], value);
}

int RunPool(cli::Context& context, const cli::Args& args)
{
    YXAutoBufferFactory factory;
    std::vector<YXAutoBuffer*> made; // buffer #n is made[n - 1]
    std::vector<YXAutoBuffer*> out;  // the caller's variable of each buffer, null when given back
    cli::Json& steps = context.result.Child("steps", cli::Json::Array());
    for (std::size_t i = 1; i < args.size(); i += 2) {
        unsigned long long n = 0;
        if (!NumberAfter(args, i, n)) {
            return cli::UsageError(kCommand, "'" + args[i] + "' needs a number after it");
        }
        cli::Json& step = steps.Push(cli::Json::Object());
        step.Set("op", args[i]).Set("value", n);
        if (args[i] == "limit") {
            factory.SetMaxBuffers(static_cast<unsigned short>(n));
            context.Line("limit %llu -> the limit is %u", n, factory.GetMaxBuffers());
            step.Set("limit", factory.GetMaxBuffers());
        } else if (args[i] == "get") {
            YXAutoBuffer* buffer = factory.GetAutoBuffer(static_cast<unsigned long>(n));
            if (buffer == nullptr) {
                context.Line("get %llu -> none (the limit of %u buffers is reached)", n, factory.GetMaxBuffers());
                step.Set("buffer", cli::Json());
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
            step.Set("buffer", id + 1)
                .Set("reused", reused)
                .Set("capacity", buffer->m_dwCapacity)
                .Set("size", buffer->m_dwSize);
        } else if (args[i] == "release") {
            if (n == 0 || n > made.size() || out[n - 1] == nullptr) {
                context.Line("release #%llu -> not out: nothing to give back", n);
                step.Set("released", false);
                continue;
            }
            factory.ReleaseAutoBuffer(out[n - 1]);
            context.Line("release #%llu -> given back, first in line for the next get", n);
            step.Set("released", true);
        } else {
            return cli::UsageError(kCommand, "cannot read '" + args[i] + "' here");
        }
    }
    cli::Json& buffers = context.result.Child("buffers", cli::Json::Array());
    context.Line("buffers: %zu", made.size());
    for (std::size_t id = 0; id < made.size(); ++id) {
        const YXAutoBuffer* buffer = made[id];
        const bool inUse = out[id] != nullptr;
        buffers.Push(cli::Json::Object())
            .Set("buffer", id + 1)
            .Set("capacity", buffer->m_dwCapacity)
            .Set("size", buffer->m_dwSize)
            .Set("inUse", inUse);
        context.Line("  #%zu capacity %lu, size %lu, %s", id + 1, buffer->m_dwCapacity, buffer->m_dwSize,
                     inUse ? "in use" : "free");
    }
    return 0;
}

int RunBits(cli::Context& context, const cli::Args& args)
{
    unsigned long long range = 0;
    if (!NumberAfter(args, 0, range)) {
        return cli::UsageError(kCommand, "bits needs a range");
    }
    YXBitArray bits(static_cast<unsigned long>(range));
    for (std::size_t i = 2; i < args.size(); i += 2) {
        unsigned long long n = 0;
        if (!NumberAfter(args, i, n)) {
            return cli::UsageError(kCommand, "'" + args[i] + "' needs a number after it");
        }
        const auto value = static_cast<unsigned long>(n);
        if (args[i] == "set" || args[i] == "clear") {
            bits.SetValue(value, args[i] == "set");
        } else if (args[i] == "fill") {
            bits.SetValue(n != 0);
        } else if (args[i] == "range") {
            bits.SetRange(value);
        } else {
            return cli::UsageError(kCommand, "cannot read '" + args[i] + "' here");
        }
        context.Line("%s %llu", args[i].c_str(), n);
    }
    const unsigned long words = bits.IsOk() ? (bits.GetRange() >> 5) + 1 : 0;
    context.Line("range %lu, %lu words, any bit set: %s, byte size %lu", bits.GetRange(), words,
                 bits.IsOneSet() ? "yes" : "no", bits.GetByteSize());
    cli::Json& wordList = context.result.Set("range", bits.GetRange())
                              .Set("anySet", bits.IsOneSet())
                              .Set("byteSize", bits.GetByteSize())
                              .Child("words", cli::Json::Array());
    for (unsigned long w = 0; w < words; ++w) {
        const unsigned long word = bits.GetBitArray()[w];
        wordList.Push(word);
        context.Line("  word %lu: 0x%08lX  bits %lu..%lu", w, word, w * 32, w * 32 + 31);
    }
    std::string set;
    cli::Json& setList = context.result.Child("set", cli::Json::Array());
    for (unsigned long k = 0; k < bits.GetRange(); ++k) {
        if (bits[k]) {
            setList.Push(k);
            set += (set.empty() ? "" : " ") + std::to_string(k);
        }
    }
    context.Line("bits set within the range: %s", set.empty() ? "none" : set.c_str());
    return 0;
}

int RunMem(cli::Context& context, const cli::Args& args)
{
    if (!args.empty() && args[0] == "pool") {
        return RunPool(context, args);
    }
    if (!args.empty() && args[0] == "bits") {
        return RunBits(context, args);
    }
    return cli::UsageError(kCommand, "say pool or bits");
}

} // namespace
