// yxtools holes: a host's allocator over a made-up workload, or one manager driven by hand.
#include <yxtools/yxtools.h>

#include <chrono>
#include <cstdio>
#include <iostream>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "cli.h"

namespace {

// An efficient manager whose list a person can look at.
class ListedManager : public YXEfficientHoleManager {
public:
    cli::Json List(const cli::Context& context) const
    {
        cli::Json holes = cli::Json::array();
        for (std::int32_t i = 0; i < m_lNumberOfHoles; ++i) {
            const tagFILEHOLE& h = m_ppBlocks[i / 200][i % 200];
            const bool locked = (h.dwOffset & YXHOLE_LOCKED) != 0;
            const unsigned long offset = h.dwOffset & ~YXHOLE_LOCKED;
            context.Line("  %10lu  %10ld%s", offset, static_cast<long>(h.lSize), locked ? "  locked" : "");
            holes.push_back({{"offset", offset}, {"size", static_cast<long>(h.lSize)}, {"locked", locked}});
        }
        return holes;
    }
};

struct Options {
    bool efficient = true;
    unsigned long long ops = 100000;
    unsigned long long seed = 1;
    unsigned long long footPrint = 0;
    unsigned long long maxSize = 4096;
    std::vector<std::string> words;
};

std::unique_ptr<YXHoleManager> MakeManager(const Options& options)
{
    std::unique_ptr<YXHoleManager> manager;
    if (options.efficient) {
        manager = std::make_unique<ListedManager>();
    } else {
        manager = std::make_unique<YXSpeedHoleManager>();
    }
    manager->SetHoleFootPrint(static_cast<long>(options.footPrint));
    return manager;
}

void Totals(const cli::Context& context, cli::Json& out, YXHoleManager& m)
{
    context.Line("holes: %ld, sum %lu", m.GetNumberOfHoles(), m.GetHolesSize());
    out["holes"] = m.GetNumberOfHoles();
    out["sum"] = m.GetHolesSize();
}

// A host's file: blocks are allocated (best hole, else the end of the file), freed, and
// reallocated (freed, then allocated at the new size). At the end the efficient manager says
// where the file can be cut.
int Simulate(cli::Context& context, const Options& options)
{
    std::unique_ptr<YXHoleManager> m = MakeManager(options);
    std::mt19937 rng(static_cast<std::uint32_t>(options.seed));
    const auto randomSize = [&] { return static_cast<long>(1 + rng() % options.maxSize); };
    std::map<unsigned long, long> blocks; // offset -> size
    unsigned long fileLength = 0;
    unsigned long long fromHoles = 0;
    unsigned long long truncations = 0;
    const auto allocate = [&](long size) {
        unsigned long offset = m->GetBestHole(size);
        if (offset == YXHOLE_NONE) {
            offset = fileLength;
            fileLength += static_cast<unsigned long>(size);
        } else {
            m->RemoveHole(offset, size);
            offset &= ~YXHOLE_LOCKED;
            ++fromHoles;
        }
        blocks[offset] = size;
    };
    const auto freeOne = [&]() {
        auto block = blocks.lower_bound(rng() % (fileLength + 1));
        if (block == blocks.end()) {
            block = blocks.begin();
        }
        const long size = block->second;
        m->AddHole(block->first, size);
        blocks.erase(block);
        return size;
    };
    const auto start = std::chrono::steady_clock::now();
    const unsigned long long step = options.ops / 100 + 1;
    for (unsigned long long i = 0; i < options.ops; ++i) {
        const unsigned op = rng() % 10;
        if (op < 5 || blocks.empty()) {
            allocate(randomSize());
        } else if (op < 9) {
            freeOne();
        } else {
            freeOne();
            allocate(randomSize());
        }
        if (context.interactive && !context.json && i % step == 0) {
            std::fprintf(stderr, "\r  %3llu%%  %ld holes", i * 100 / options.ops, m->GetNumberOfHoles());
        }
    }
    // Before closing, the file is cut where its last hole reaches the end.
    for (unsigned long cut = m->GetTruncateOffset(fileLength); cut != YXHOLE_NONE;
         cut = m->GetTruncateOffset(fileLength)) {
        m->RemoveHole(cut, 0);
        fileLength = cut;
        ++truncations;
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (context.interactive && !context.json) {
        std::fprintf(stderr, "\r%40s\r", "");
    }
    const double wasted = fileLength == 0 ? 0.0 : 100.0 * static_cast<double>(m->GetHolesSize()) / fileLength;
    const double perOp = options.ops == 0 ? 0.0 : seconds * 1e9 / static_cast<double>(options.ops);
    context.Line("%s manager, %llu operations, seed %llu, foot print %llu", options.efficient ? "efficient" : "speed",
                 options.ops, options.seed, options.footPrint);
    Totals(context, context.result, *m);
    context.Line("file length: %lu, live blocks: %zu, wasted: %.2f%%", fileLength, blocks.size(), wasted);
    context.Line("allocations from holes: %llu, truncations: %llu", fromHoles, truncations);
    context.Line("time: %.1f ns per operation", perOp);
    context.result["manager"] = options.efficient ? "efficient" : "speed";
    context.result["file_length"] = fileLength;
    context.result["blocks"] = blocks.size();
    context.result["wasted_percent"] = wasted;
    context.result["from_holes"] = fromHoles;
    context.result["truncations"] = truncations;
    context.result["ns_per_operation"] = perOp;
    return 0;
}

// One operation by hand; false when the words do not make one.
bool Apply(cli::Context& context, YXHoleManager& m, const Options& options, const std::vector<std::string>& words,
           std::size_t& i, cli::Json& steps)
{
    const std::string& op = words[i];
    unsigned long long a = 0;
    unsigned long long b = 0;
    const auto number = [&](std::size_t at, unsigned long long& value) {
        if (at >= words.size()) {
            return false;
        }
        value = cli::Number(words[at], op);
        return true;
    };
    auto* efficient = options.efficient ? static_cast<ListedManager*>(&m) : nullptr;
    cli::Json& step = steps.emplace_back(cli::Json{{"op", op}});
    if ((op == "add" || op == "lock" || op == "remove") && number(i + 1, a) && number(i + 2, b)) {
        i += 2;
        if (op == "remove") {
            const tagFILEHOLE* rest = m.RemoveHole(static_cast<unsigned long>(a), static_cast<long>(b));
            if (rest != nullptr) {
                context.Line("remove %llu %llu: rest (%lu, %ld)", a, b, static_cast<unsigned long>(rest->dwOffset),
                             static_cast<long>(rest->lSize));
                step["rest_offset"] = static_cast<unsigned long>(rest->dwOffset);
                step["rest_size"] = static_cast<long>(rest->lSize);
            } else {
                context.Line("remove %llu %llu: no rest", a, b);
            }
        } else {
            const unsigned long offset = static_cast<unsigned long>(a) | (op == "lock" ? YXHOLE_LOCKED : 0);
            const bool added = m.AddHole(offset, static_cast<long>(b));
            context.Line("%s %llu %llu: %s", op.c_str(), a, b, added ? "added" : "out of memory");
            step["added"] = added;
        }
    } else if ((op == "best" || op == "alloc") && number(i + 1, a)) {
        ++i;
        const unsigned long offset = m.GetBestHole(static_cast<long>(a));
        step["offset"] = offset == YXHOLE_NONE ? cli::Json() : cli::Json(offset);
        if (offset == YXHOLE_NONE) {
            context.Line("%s %llu: no hole takes it", op.c_str(), a);
        } else {
            context.Line("%s %llu: offset %lu%s", op.c_str(), a, offset & ~YXHOLE_LOCKED,
                         (offset & YXHOLE_LOCKED) != 0 ? " (locked)" : "");
            if (op == "alloc") {
                m.RemoveHole(offset, static_cast<long>(a));
            }
        }
    } else if (op == "truncate" && number(i + 1, a)) {
        ++i;
        const unsigned long offset = m.GetTruncateOffset(static_cast<unsigned long>(a));
        step["offset"] = offset == YXHOLE_NONE ? cli::Json() : cli::Json(offset);
        context.Line(offset == YXHOLE_NONE ? "truncate %llu: no" : "truncate %llu: cut at %lu", a, offset);
    } else if (op == "is" && number(i + 1, a)) {
        ++i;
        const bool hole = m.IsHole(static_cast<unsigned long>(a));
        step["hole"] = hole;
        context.Line("is %llu: %s", a, hole ? "a hole starts there" : "no");
    } else if (op == "unlock" && efficient != nullptr && number(i + 1, a)) {
        ++i;
        const bool unlocked = efficient->UnlockHole(static_cast<unsigned long>(a));
        step["unlocked"] = unlocked;
        context.Line("unlock %llu: %s", a, unlocked ? "unlocked" : "no locked hole there");
    } else if (op == "unlockall" && efficient != nullptr) {
        const bool unlocked = efficient->UnlockAllHoles();
        step["unlocked"] = unlocked;
        context.Line("unlockall: %s", unlocked ? "unlocked" : "none was locked");
    } else if (op == "footprint" && number(i + 1, a)) {
        ++i;
        m.SetHoleFootPrint(static_cast<long>(a));
        context.Line("footprint %llu", a);
    } else if (op == "clear") {
        m.ClearHoleList();
        context.Line("clear");
    } else if (op == "show") {
        Totals(context, step, m);
        if (efficient != nullptr) {
            step["list"] = efficient->List(context);
        }
    } else {
        return false;
    }
    return true;
}

int ByHand(cli::Context& context, const Options& options)
{
    std::vector<std::string> words = options.words;
    if (words.empty()) {
        std::string word;
        while (std::cin >> word) {
            words.push_back(word);
        }
    }
    std::unique_ptr<YXHoleManager> m = MakeManager(options);
    cli::Json steps = cli::Json::array();
    for (std::size_t w = 0; w < words.size(); ++w) {
        if (!Apply(context, *m, options, words, w, steps)) {
            throw cli::UsageError("OPERATION", "cannot read '" + words[w] + "' here");
        }
    }
    context.result["steps"] = std::move(steps);
    Totals(context, context.result, *m);
    return 0;
}

} // namespace

namespace cli {

void AddHolesCommand(CLI::App& app, Context& context)
{
    CLI::App* command = app.add_subcommand("holes", "try the hole managers: a simulated host, or operations by hand");
    auto options = std::make_shared<Options>();
    CLI::Option* speed = command->add_flag("--speed", "the speed manager (the efficient one by default)");
    command->add_flag("--efficient", "the efficient manager, which keeps its list in order")->excludes(speed);
    command->add_option("--footprint", options->footPrint, "the hole foot print: smaller holes are not kept")
        ->check(CLI::Range(0ULL, 0x7FFFFFFFULL));
    command->add_option("OPERATION", options->words,
                        "operations (none: read them from standard input): add OFFSET SIZE, lock OFFSET SIZE "
                        "(a locked hole), best SIZE, alloc SIZE (best, then remove), remove OFFSET SIZE, "
                        "truncate LENGTH, is OFFSET, unlock OFFSET, unlockall, footprint N, clear, show");
    context.SetAction(command, [&context, options, speed] {
        options->efficient = speed->count() == 0;
        return ByHand(context, *options);
    });

    CLI::App* simulate = command->add_subcommand("simulate", "a host's allocator over a made-up workload");
    simulate->add_option("--ops", options->ops, "the number of operations")->check(CLI::Range(0ULL, 1000000000000ULL));
    simulate->add_option("--seed", options->seed, "the seed of the workload")->check(CLI::Range(0ULL, 0xFFFFFFFFULL));
    simulate->add_option("--max-size", options->maxSize, "the largest block")->check(CLI::Range(1ULL, 0xFFFFFFFFULL));
    context.SetAction(simulate, [&context, options, speed] {
        options->efficient = speed->count() == 0;
        return Simulate(context, *options);
    });
}

} // namespace cli

namespace {
const cli::Registration registration("holes", cli::AddHolesCommand);
}
