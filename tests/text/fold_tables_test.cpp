// The fold tables of code page 932 that String_InitTables builds from the platform's mappings,
// compared with the tables built the same way under Wine's Win32 (tests/data/fold932_wine.txt).
// Run the Windows build's program under Wine with YXTOOLS_FOLD_DUMP set to that file's name to
// remake it.
#include <cstdlib>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "text_fixture.h"

namespace {

const char* const kWine932[] = {
#include "fold932_wine.inc"
};

std::vector<std::string> Dump()
{
    std::vector<std::string> lines;
    auto add = [&lines](const char* table, unsigned value, unsigned folded) {
        char line[48];
        std::snprintf(line, sizeof line, "%s %04X=%04X", table, value, folded);
        lines.emplace_back(line);
    };
    for (unsigned v = 0; v < 256; ++v) {
        add("single", v, yx::text::g_tables.foldSingle[v]);
    }
    for (unsigned v = yx::text::kKatakanaFirst; v <= yx::text::kKatakanaLast; ++v) {
        add("katakana", v, yx::text::g_tables.foldKatakana[v - yx::text::kKatakanaFirst]);
    }
    for (unsigned v = yx::text::kHiraganaFirst; v <= yx::text::kHiraganaLast; ++v) {
        add("hiragana", v, yx::text::g_tables.foldHiragana[v - yx::text::kHiraganaFirst]);
    }
    return lines;
}

TEST(FoldTables, AsBuiltUnderWine)
{
    String_InitTables();
    const std::vector<std::string> lines = Dump();
    if (const char* dump = std::getenv("YXTOOLS_FOLD_DUMP")) {
        std::ofstream out(dump);
        for (const std::string& line : lines) {
            out << '"' << line << "\",\n";
        }
    }
    ASSERT_EQ(GetACP(), 932u);
    const std::vector<std::string> wine(std::begin(kWine932), std::end(kWine932));
    ASSERT_EQ(lines.size(), wine.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(lines[i], wine[i]);
    }
}

} // namespace
