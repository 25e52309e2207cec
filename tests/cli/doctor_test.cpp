// yxtools doctor run as a process: on a machine with no prefix yet, on a prepared prefix, and on
// one with faults; where the prefix, the code page and the locale of each category come from.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "run_command.h"
#include "support/scratch.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::ordered_json;

bool Has(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

#if !defined(_WIN32)

// The locale variables of a run: every one set, most of them empty (which counts as unset).
cli_test::Environment Locale(const cli_test::Environment& set)
{
    cli_test::Environment env = {{"LC_ALL", ""},  {"LC_CTYPE", ""},       {"LC_NUMERIC", ""}, {"LC_MONETARY", ""},
                                 {"LC_TIME", ""}, {"LC_MEASUREMENT", ""}, {"LANG", ""},       {"XDG_DATA_HOME", ""}};
    for (const auto& [name, value] : set) {
        env[name] = value;
    }
    return env;
}

class DoctorTest : public ::testing::Test {
protected:
    fs::path Prefix() const { return m_folder.Native("prefix"); }

    cli_test::Outcome Run(bool json, cli_test::Environment env = {{"LC_ALL", "C"}}) const
    {
        env = Locale(env);
        env.emplace("YXTOOLS_PREFIX", Prefix().string());
        return json ? cli_test::Run({"--json", "doctor"}, env) : cli_test::Run({"doctor"}, env);
    }

    void Write(const fs::path& path, const std::string& bytes) const
    {
        fs::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
    }

    scratch::Folder m_folder;
};

TEST_F(DoctorTest, FreshMachineHasNoPrefixYetAndNoProblem)
{
    const cli_test::Outcome text = Run(false);
    EXPECT_EQ(text.status, 0) << text.out << text.err;
    EXPECT_TRUE(Has(text.out, Prefix().string() + " (from YXTOOLS_PREFIX): not made yet")) << text.out;
    EXPECT_TRUE(Has(text.out, "registry.db: none yet")) << text.out;
    EXPECT_TRUE(Has(text.out, "win.ini: none")) << text.out;
    EXPECT_TRUE(Has(text.out, "no problems")) << text.out;

    const cli_test::Outcome run = Run(true);
    ASSERT_EQ(run.status, 0) << run.out << run.err;
    const ordered_json doc = run.Json();
    EXPECT_EQ(doc["platform"], "posix");
    EXPECT_EQ(doc["prefix"]["path"], Prefix().string());
    EXPECT_EQ(doc["prefix"]["exists"], false);
    EXPECT_EQ(doc["win_ini"]["exists"], false);
    EXPECT_EQ(doc["registry"]["exists"], false);
    EXPECT_TRUE(doc["registry"]["layout"].is_null());
    EXPECT_EQ(doc["drives"], ordered_json::array());
    EXPECT_EQ(doc["problems"], ordered_json::array());
    // Looking makes nothing.
    EXPECT_FALSE(fs::exists(Prefix()));
}

TEST_F(DoctorTest, PreparedPrefixShowsTheDatabaseAndTheWinIniKeysOverTheLocale)
{
    // The first write makes the registry database.
    cli_test::Environment env = Locale({{"LC_ALL", "C"}});
    env["YXTOOLS_PREFIX"] = Prefix().string();
    ASSERT_EQ(cli_test::Run({"reg", "set", "Doctor", "Name", "value"}, env).status, 0);
    fs::create_directories(Prefix() / "dosdevices");
    fs::create_directory_symlink(Prefix() / "drive_c", Prefix() / "dosdevices" / "c:");
    Write(Prefix() / "drive_c" / "windows" / "win.ini",
          "[fonts]\nsDecimal=?\n[Intl]\n sDecimal = \",\" \nsDecimal=;\niDate=1\n[intl]\nsList=|\n");

    const cli_test::Outcome run = Run(true, {{"LC_ALL", "de_DE.UTF-8"}});
    ASSERT_EQ(run.status, 0) << run.out << run.err;
    const ordered_json doc = run.Json();
    EXPECT_EQ(doc["prefix"]["exists"], true);
    EXPECT_EQ(doc["registry"]["exists"], true);
    EXPECT_EQ(doc["registry"]["layout"], 1);
    EXPECT_EQ(doc["registry"]["integrity"], "ok");
    EXPECT_GT(doc["registry"]["size"].get<long long>(), 0);
    // The first section of the name and the first key of a name count; the rest is never read.
    EXPECT_EQ(doc["win_ini"]["intl"], ordered_json::parse(R"([{"key":"sDecimal","value":","},
                                                              {"key":"iDate","value":"1"}])"));
    ASSERT_EQ(doc["drives"].size(), 1U);
    EXPECT_EQ(doc["drives"][0]["letter"], "C:");
    EXPECT_EQ(doc["drives"][0]["target"], (Prefix() / "drive_c").string());
    EXPECT_EQ(doc["problems"], ordered_json::array());

    const cli_test::Outcome text = Run(false, {{"LC_ALL", "de_DE.UTF-8"}});
    EXPECT_EQ(text.status, 0);
    EXPECT_TRUE(Has(text.out, "2 key(s) of [intl] over the locale")) << text.out;
    EXPECT_TRUE(Has(text.out, "layout 1, integrity ok")) << text.out;
}

TEST_F(DoctorTest, BrokenDriveLinkAndCorruptDatabaseAreProblems)
{
    Write(Prefix() / "registry.db", std::string(4096, 'x'));
    fs::create_directories(Prefix() / "dosdevices");
    fs::create_directory_symlink(m_folder.Native("gone"), Prefix() / "dosdevices" / "d:");

    const cli_test::Outcome run = Run(true);
    EXPECT_EQ(run.status, 1) << run.out << run.err;
    const ordered_json doc = run.Json();
    EXPECT_EQ(doc["registry"]["exists"], true);
    EXPECT_EQ(doc["registry"]["size"], 4096);
    EXPECT_TRUE(doc["registry"]["layout"].is_null());
    ASSERT_EQ(doc["problems"].size(), 2U) << doc.dump();
    EXPECT_TRUE(Has(doc["problems"][0].get<std::string>(), "registry.db: file is not a database")) << doc.dump();
    EXPECT_TRUE(Has(doc["problems"][1].get<std::string>(), "drive D: links to nothing")) << doc.dump();
    ASSERT_EQ(doc["drives"].size(), 1U);
    EXPECT_EQ(doc["drives"][0]["letter"], "D:");

    const cli_test::Outcome text = Run(false);
    EXPECT_EQ(text.status, 1);
    EXPECT_TRUE(Has(text.out, "problem: registry: " + (Prefix() / "registry.db").string())) << text.out;
    EXPECT_TRUE(Has(text.out, "\nproblem: drive D: links to nothing")) << text.out;
    EXPECT_FALSE(Has(text.out, "no problems"));
    // The database is left as it was.
    EXPECT_EQ(fs::file_size(Prefix() / "registry.db"), 4096U);
}

TEST_F(DoctorTest, OtherFaults)
{
    // A prefix that is a file.
    Write(Prefix(), "not a folder");
    cli_test::Outcome run = Run(true);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.Json()["problems"][0], "prefix: " + Prefix().string() + " is not a folder");

    // Locales that ICU has no data for: the categories they rule fall to the host's defaults. One
    // problem for each such locale.
    fs::remove(Prefix());
    run = Run(true, {{"LANG", "xx_XX.UTF-8"}, {"LC_NUMERIC", "de_DE"}, {"LC_TIME", "yy"}});
    EXPECT_EQ(run.status, 1);
    const ordered_json doc = run.Json();
    EXPECT_EQ(doc["problems"], ordered_json::parse(R"([
        "locale xx_XX.UTF-8 (language, LC_MONETARY, LC_MEASUREMENT): ICU has no data for it; section intl gives the host's defaults",
        "locale yy (LC_TIME): ICU has no data for it; section intl gives the host's defaults"])"));
    EXPECT_TRUE(doc["locale"][0]["data"].is_null());
    EXPECT_EQ(doc["locale"][1]["data"], "de_DE");
}

// Where the code page and the locale of each category come from, as the library reads them.
TEST_F(DoctorTest, LocaleVariablesInTheirOrder)
{
    struct Case {
        cli_test::Environment env;
        unsigned codePage;
        const char* from; // null: no variable
        const char* numeric;
        const char* time;
    };
    const Case cases[] = {
        {{{"LC_ALL", "ja_JP.UTF-8"}, {"LC_CTYPE", "ru_RU.UTF-8"}, {"LC_TIME", "de_DE"}},
         932,
         "LC_ALL",
         "ja_JP",
         "ja_JP"},
        {{{"LC_CTYPE", "ru_RU.UTF-8"}, {"LANG", "zh_TW.UTF-8"}, {"LC_TIME", "de_DE"}},
         1251,
         "LC_CTYPE",
         "zh_TW",
         "de_DE"},
        {{{"LANG", "zh_TW.UTF-8"}, {"LC_NUMERIC", "fr_FR.UTF-8"}}, 950, "LANG", "fr_FR", "zh_TW"},
        {{}, 1252, nullptr, "en_US", "en_US"},
    };
    for (const Case& c : cases) {
        const cli_test::Outcome run = Run(true, c.env);
        ASSERT_EQ(run.status, 0) << run.out << run.err;
        const ordered_json doc = run.Json();
        EXPECT_EQ(doc["code_page"]["value"], c.codePage);
        EXPECT_EQ(doc["code_page"]["from"], c.from != nullptr ? ordered_json(c.from) : ordered_json());
        ASSERT_EQ(doc["locale"].size(), 5U);
        EXPECT_EQ(doc["locale"][1]["category"], "LC_NUMERIC");
        EXPECT_EQ(doc["locale"][1]["data"], c.numeric) << c.codePage;
        EXPECT_EQ(doc["locale"][3]["category"], "LC_TIME");
        EXPECT_EQ(doc["locale"][3]["data"], c.time) << c.codePage;
    }
}

TEST_F(DoctorTest, PrefixVariablesInTheirOrder)
{
    const std::string xdg = m_folder.Native("xdg").string();
    const std::string home = m_folder.Native("home").string();
    struct Case {
        cli_test::Environment env;
        std::string path;
        const char* from;
    };
    const Case cases[] = {
        {{{"YXTOOLS_PREFIX", Prefix().string()}, {"XDG_DATA_HOME", xdg}}, Prefix().string(), "YXTOOLS_PREFIX"},
        {{{"YXTOOLS_PREFIX", ""}, {"XDG_DATA_HOME", xdg}, {"HOME", home}}, xdg + "/yxtools", "XDG_DATA_HOME"},
        {{{"YXTOOLS_PREFIX", ""}, {"HOME", home}}, home + "/.local/share/yxtools", "HOME"},
    };
    for (const Case& c : cases) {
        cli_test::Environment env = Locale(c.env);
        env["LC_ALL"] = "C";
        const cli_test::Outcome run = cli_test::Run({"--json", "doctor"}, env);
        ASSERT_EQ(run.status, 0) << run.out << run.err;
        EXPECT_EQ(run.Json()["prefix"]["path"], c.path);
        EXPECT_EQ(run.Json()["prefix"]["from"], c.from);
    }
}

#else

// The prefix's database, win.ini and drive links are the POSIX stand-in's; on Windows the doctor
// reports what Win32 gives, and that much is checked here.
TEST(DoctorTest, WindowsReportsWhatWin32Gives)
{
    const cli_test::Outcome run = cli_test::Run({"--json", "doctor"});
    ASSERT_EQ(run.status, 0) << run.out << run.err;
    const ordered_json doc = run.Json();
    EXPECT_EQ(doc["platform"], "windows");
    EXPECT_EQ(doc["code_page"]["from"], "GetACP");
    EXPECT_FALSE(doc["prefix"]["windows_folder"].get<std::string>().empty());
    ASSERT_FALSE(doc["drives"].empty());
    EXPECT_EQ(doc["drives"][0]["letter"], "C:");
    EXPECT_EQ(doc["problems"], ordered_json::array());
    const cli_test::Outcome text = cli_test::Run({"doctor"});
    EXPECT_EQ(text.status, 0);
    EXPECT_TRUE(Has(text.out, "no problems")) << text.out;
}

#endif

} // namespace
