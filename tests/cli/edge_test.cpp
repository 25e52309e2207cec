// Text at the command's edges: arguments reach the library in the ANSI code page, results come back
// in the terminal's encoding, bytes that are no text are shown as \xNN and kept exactly in JSON.
//
// Built twice: as cli932_tests (CLI_TEST_932, run with LC_ALL=ja_JP.UTF-8) and as cli1252_tests (run
// with LC_ALL=en_US.UTF-8). Under Wine a program's code page is the one its parent started with, so
// the test program itself runs in the locale it gives the command.
#include <gtest/gtest.h>

#include <string>

#include "run_command.h"

namespace {

#if CLI_TEST_932
const cli_test::Environment kLocale{{"LC_ALL", "ja_JP.UTF-8"}};
#else
const cli_test::Environment kLocale{{"LC_ALL", "en_US.UTF-8"}};
#endif

// What each byte sequence of the library shows as in JSON: text when it converts both ways, else
// \xNN for each byte that does not, with the exact bytes in <key>_hex.
struct Bytes {
    const char* hex;
    const char* json;
    const char* exact; // the <key>_hex member, or null when there is none
};

class EdgeBytes : public testing::TestWithParam<Bytes> {};

TEST_P(EdgeBytes, JsonIsUtf8WithExactBytesBeside)
{
    const cli_test::Outcome run = cli_test::Run({"--json", "--hex", "path", "kind", GetParam().hex}, kLocale);
    ASSERT_EQ(run.status, 0) << run.err;
    const nlohmann::ordered_json json = run.Json();
    EXPECT_EQ(json["path"], GetParam().json);
    if (GetParam().exact == nullptr) {
        EXPECT_FALSE(json.contains("path_hex")) << json.dump();
    } else {
        EXPECT_EQ(json.value("path_hex", std::string("(none)")), GetParam().exact);
    }
}

TEST(Edge, BadHexIsAUsageErrorNamingTheArgument)
{
    for (const char* hex : {"4", "43 3", "zz", "0x43"}) {
        const cli_test::Outcome run = cli_test::Run({"--hex", "path", "split", hex}, kLocale);
        EXPECT_EQ(run.status, 2) << hex;
        EXPECT_NE(run.err.find("PATH"), std::string::npos) << run.err;
    }
}

#if CLI_TEST_932

// The text output of a Japanese run: UTF-8 on POSIX (the locale's codeset), the ANSI code page 932 on
// Windows, where the console speaks it.
std::string Shown(const char* utf8, const char* cp932)
{
    return cli_test::kWindows ? cp932 : utf8;
}

TEST(Edge, ANameFromTheTerminalReachesTheLibraryInCodePage932)
{
    // あ is E3 81 82 on the terminal and 82 A0 in code page 932: were the terminal's bytes passed on,
    // 0x82 would take the next backslash as its trail byte.
    const cli_test::Outcome run = cli_test::Run({"path", "split", "C:\\\xE3\x81\x82\\b.txt"}, kLocale);
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find(Shown("directory: \"\\\xE3\x81\x82\\\"", "directory: \"\\\x82\xA0\\\"")), std::string::npos)
        << run.out;
    EXPECT_NE(run.out.find("name:      \"b\""), std::string::npos) << run.out;
}

TEST(Edge, HexGivesExactBytesAndTheyComeBackAsText)
{
    // C:\ソ\表.txt in code page 932; ソ is 83 5C and 表 is 95 5C: both trail bytes are backslashes.
    const char* const hex = "43 3A 5C 83 5C 5C 95 5C 2E 74 78 74";
    const cli_test::Outcome text = cli_test::Run({"--hex", "path", "split", hex}, kLocale);
    ASSERT_EQ(text.status, 0) << text.err;
    EXPECT_NE(text.out.find(Shown("directory: \"\\\xE3\x82\xBD\\\"", "directory: \"\\\x83\x5C\\\"")), std::string::npos)
        << text.out;
    EXPECT_NE(text.out.find(Shown("name:      \"\xE8\xA1\xA8\"", "name:      \"\x95\x5C\"")), std::string::npos)
        << text.out;

    const nlohmann::ordered_json json = cli_test::Run({"path", "split", hex, "--hex", "--json"}, kLocale).Json();
    EXPECT_EQ(json["path"], "C:\\\xE3\x82\xBD\\\xE8\xA1\xA8.txt");
    EXPECT_EQ(json["directory"], "\\\xE3\x82\xBD\\");
    EXPECT_EQ(json["name"], "\xE8\xA1\xA8");
    EXPECT_FALSE(json.contains("path_hex")) << "lossless text carries no bytes beside it";
}

const Bytes kBytes[] = {
    {"82 A0", "\xE3\x81\x82", nullptr},            // あ
    {"83 5C", "\xE3\x82\xBD", nullptr},            // ソ, trail byte 0x5C
    {"B1", "\xEF\xBD\xB1", nullptr},               // half-width ｱ
    {"81 40", "\xE3\x80\x80", nullptr},            // the ideographic space
    {"83", "\\x83", "83"},                         // a lead byte at the end
    {"61 83 20 62", "a\\x83 b", "61 83 20 62"},    // a lead byte before a single byte
    {"83 5C 83", "\xE3\x82\xBD\\x83", "83 5C 83"}, // a character, then a lead byte alone
};

INSTANTIATE_TEST_SUITE_P(CodePage932, EdgeBytes, testing::ValuesIn(kBytes));

TEST(Edge, BytesThatAreNoTextShowAsEscapesInPlainText)
{
    const cli_test::Outcome run = cli_test::Run({"--hex", "path", "split", "43 3A 5C 83"}, kLocale);
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("name:      \"\\x83\""), std::string::npos) << run.out;
}

#else

const Bytes kBytes[] = {
    {"E9 80", "\xC3\xA9\xE2\x82\xAC", nullptr}, // é €
    {"82 A0", "\xE2\x80\x9A\xC2\xA0", nullptr}, // the bytes of あ in code page 932 are two characters here
};

INSTANTIATE_TEST_SUITE_P(CodePage1252, EdgeBytes, testing::ValuesIn(kBytes));

// A character with no form in the ANSI code page: on POSIX the command refuses it (and points to
// --hex) rather than guess; on Windows the command line is already ANSI, and Windows has put its
// default character in place.
TEST(Edge, ACharacterOutsideTheCodePage)
{
    const cli_test::Outcome run = cli_test::Run({"--json", "path", "kind", "C:\\\xE3\x81\x82"}, kLocale);
    if (cli_test::kWindows) {
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.Json()["path"], "C:\\?");
    } else {
        EXPECT_EQ(run.status, 2);
        EXPECT_NE(run.err.find("PATH"), std::string::npos) << run.err;
        EXPECT_NE(run.err.find("--hex"), std::string::npos) << run.err;
    }
}

#endif

} // namespace
