// yxtools doctor: where each platform fact the library reads comes from on this machine, and
// whether it is sound: the prefix, the ANSI code page, the locale behind section "intl" and the
// win.ini keys over it, the registry database, the drive links and the shares.
//
// On POSIX every fact is taken from the stand-in's own functions (built into the command), so the
// doctor sees exactly what the library sees. On Windows it shows what Win32 gives: the Windows
// folder (and Wine's prefix when Wine runs it), GetACP, the user's locale, whether the registry
// root can be read, and the drives of GetLogicalDriveStringsA with GetDriveTypeA.
//
// Every fault found is one line "problem: ..." at the end (and one string of "problems" in JSON),
// and the status is then 1. A fact that is merely absent (no prefix yet, no win.ini, no registry
// database before the first write) is no fault: the library answers with its defaults then.
#include <cstdlib>
#include <string>
#include <vector>

#include "cli.h"
#include "drives_facts.h"
#include "edge.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/stat.h>

#include "platform/posix/localecodepage.h"
#include "platform/posix/prefix.h"
#include "platform/posix/profile/localedata.h"
#include "platform/posix/profile/winini.h"
#include "platform/win32.h" // the registry stand-in's database check
#endif

namespace {

using cli::Json;

// Collects the facts: the lines for people, the JSON members, the problems.
class Report {
public:
    explicit Report(cli::Context& context) : m_context(context) {}

    // A line of a section: the section's name on its first line only.
    void Line(const char* section, const std::string& text)
    {
        m_context.Line("%-10s %s", section != m_section ? section : "", text.c_str());
        m_section = section;
    }

    void Problem(const std::string& text) { m_problems.push_back(text); }

    Json& Result() { return m_context.result; }

    int Finish()
    {
        Json problems = Json::array();
        for (const std::string& problem : m_problems) {
            m_context.Line("problem: %s", problem.c_str());
            Json entry = Json::object();
            cli::SetText(entry, "text", problem);
            problems.push_back(entry["text"]);
        }
        if (m_problems.empty()) {
            m_context.Line("no problems");
        }
        m_context.result["problems"] = std::move(problems);
        return m_problems.empty() ? 0 : 1;
    }

private:
    cli::Context& m_context;
    const char* m_section = nullptr;
    std::vector<std::string> m_problems;
};

// A path of this machine as text of the library's code page, for lines and JSON alike. On POSIX
// a path is bytes of the terminal's encoding; one that has no form in the code page is shown as
// its bytes.
std::string PathText(const std::string& path)
{
#if defined(_WIN32)
    return path;
#else
    std::string ansi;
    return cli::edge::FromTerminal(path, ansi) ? ansi : path;
#endif
}

Json TextMember(const std::string& key, const std::string& text)
{
    Json object = Json::object();
    cli::SetText(object, key, text);
    return object;
}

std::string Member(const Json& object, const char* key)
{
    return object.contains(key) && object[key].is_string() ? object[key].get<std::string>() : std::string();
}

// Drive links and shares, from the collector that `yxtools drives` shows in full. Its texts are
// UTF-8, as JSON's are.
void Drives(Report& report)
{
    const cli::DriveFacts facts = cli::CollectDriveFacts();
    const Json& drives = facts.facts["drives"];
    const Json& shares = facts.facts["shares"];
    for (const Json& drive : drives) {
        report.Line("drives", Member(drive, "letter") + " -> " + PathText(Member(drive, "target")) + " (" +
                                  Member(drive, "type_name") + ")");
    }
    if (drives.empty()) {
        report.Line("drives", "none");
    }
    for (const Json& share : shares) {
        const std::string path = share["path"].is_string() ? PathText(share["path"].get<std::string>()) : "(no path)";
        report.Line("shares", Member(share, "name") + " -> " + path +
                                  (share["considered"].get<bool>() ? "" : " (not for the UNC route)"));
    }
    if (shares.empty()) {
        report.Line("shares", "none");
    }
    report.Result()["drives"] = drives;
    report.Result()["shares"] = shares;
    for (const std::string& problem : facts.problems) {
#if defined(_WIN32)
        // A system without a share list (Wine answers ERROR_NOT_SUPPORTED) simply has no shares
        // for the UNC route: no fault of this machine's setup.
        if (facts.facts["shares_status"] == ERROR_NOT_SUPPORTED && problem.rfind("NetShareEnum", 0) == 0) {
            report.Line("shares", "the system offers no list of shares (NetShareEnum: not supported)");
            continue;
        }
#endif
        report.Problem(problem);
    }
}

#if defined(_WIN32)

void Facts(Report& report)
{
    report.Result()["platform"] = "windows";
    char folder[MAX_PATH + 1] = {};
    const UINT length = GetWindowsDirectoryA(folder, sizeof(folder));
    Json prefix = TextMember("windows_folder", std::string(folder, length < sizeof(folder) ? length : 0));
    // Wine's ntdll has an export of its own that tells its version.
    using WineVersion = const char*(__cdecl*)();
    const HMODULE ntdll = GetModuleHandleA("ntdll.dll");
    const auto wine = reinterpret_cast<WineVersion>(
        reinterpret_cast<void (*)()>(ntdll != nullptr ? GetProcAddress(ntdll, "wine_get_version") : nullptr));
    const char* winePrefix = std::getenv("WINEPREFIX");
    prefix["wine"] = wine != nullptr ? Json(wine()) : Json(nullptr);
    if (winePrefix != nullptr) {
        cli::SetText(prefix, "wineprefix", winePrefix);
    }
    report.Result()["prefix"] = prefix;
    report.Line("prefix", std::string("Windows folder ") + folder);
    if (wine != nullptr) {
        report.Line("prefix", std::string("Wine ") + wine() + ", WINEPREFIX " +
                                  (winePrefix != nullptr ? winePrefix : "not set (~/.wine)"));
    }

    const UINT codePage = GetACP();
    report.Result()["code_page"] = {{"value", codePage}, {"from", "GetACP"}};
    report.Line("code page", std::to_string(codePage) + ", from GetACP");

    // Section "intl" is the user's settings in the registry (Control Panel\International).
    char locale[LOCALE_NAME_MAX_LENGTH] = {};
    GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SNAME, locale, sizeof(locale));
    report.Result()["locale"] = TextMember("user", locale);
    report.Line("locale", std::string("user locale ") + locale +
                              ", section intl from the registry (Control Panel\\International)");

    HKEY key = nullptr;
    const LONG status = RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\Ombrel\\VELT QUARRO", 0, KEY_READ, &key);
    if (status == ERROR_SUCCESS) {
        RegCloseKey(key);
    }
    const bool reachable = status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND;
    report.Result()["registry"] = {{"root", "HKEY_CURRENT_USER\\Software\\Ombrel\\VELT QUARRO"},
                                   {"exists", status == ERROR_SUCCESS},
                                   {"status", status}};
    report.Line("registry", status == ERROR_SUCCESS ? "HKEY_CURRENT_USER\\Software\\Ombrel\\VELT QUARRO: present"
                                                    : "HKEY_CURRENT_USER\\Software\\Ombrel\\VELT QUARRO: none yet");
    if (!reachable) {
        report.Problem("registry: the root cannot be read (error " + std::to_string(status) + ")");
    }
}

#else

void Prefix(Report& report)
{
    const yxposix::PrefixChoice choice = yxposix::ChoosePrefix();
    struct stat st {};
    const bool exists = stat(choice.path.c_str(), &st) == 0;
    const std::string path = PathText(choice.path);
    const std::string from = *choice.variable != '\0' ? choice.variable : "none of YXTOOLS_PREFIX, XDG_DATA_HOME, HOME";
    Json prefix = TextMember("path", path);
    prefix["from"] = *choice.variable != '\0' ? Json(choice.variable) : Json(nullptr);
    prefix["exists"] = exists;
    report.Result()["prefix"] = std::move(prefix);
    report.Line("prefix", path + " (from " + from + "): " +
                              (!exists ? "not made yet"
                               : S_ISDIR(st.st_mode) ? "a folder"
                                                     : "not a folder"));
    if (exists && !S_ISDIR(st.st_mode)) {
        report.Problem("prefix: " + path + " is not a folder");
    }
}

std::string VariableText(const yx::platform::LocaleChoice& choice)
{
    return choice.variable != nullptr ? std::string(choice.variable) + "=" + choice.name
                                      : std::string("no locale variable set, C");
}

void CodePage(Report& report)
{
    const yx::platform::LocaleChoice choice = yx::platform::ChooseLocale("LC_CTYPE");
    const unsigned codePage = yx::platform::CodePageOfLocale(choice.name);
    Json member = {{"value", codePage}};
    member["from"] = choice.variable != nullptr ? Json(choice.variable) : Json(nullptr);
    cli::SetText(member, "locale", choice.name);
    report.Result()["code_page"] = std::move(member);
    report.Line("code page", std::to_string(codePage) + ", from " + VariableText(choice));
}

// The locale of each category of section "intl", and whose data ICU gives for it.
void Locale(Report& report)
{
    struct Category {
        const char* label;
        const char* variable; // the category's own variable; none for language and country
    };
    const Category categories[] = {{"language", nullptr},
                                   {"LC_NUMERIC", "LC_NUMERIC"},
                                   {"LC_MONETARY", "LC_MONETARY"},
                                   {"LC_TIME", "LC_TIME"},
                                   {"LC_MEASUREMENT", "LC_MEASUREMENT"}};
    Json locales = Json::array();
    // Each locale without data is one problem, with the categories it rules.
    std::vector<std::pair<std::string, std::string>> missing;
    for (const Category& category : categories) {
        const yx::platform::LocaleChoice choice = yx::platform::ChooseLocale(category.variable);
        const std::string icu = yx::platform::IcuLocaleName(choice.name);
        const bool data = yx::platform::HasLocaleData(icu);
        Json entry = {{"category", category.label}};
        cli::SetText(entry, "locale", choice.name);
        entry["from"] = choice.variable != nullptr ? Json(choice.variable) : Json(nullptr);
        entry["data"] = data ? Json(icu) : Json(nullptr);
        locales.push_back(std::move(entry));
        const std::string label(category.label);
        report.Line("locale", label + std::string(16 - label.size(), ' ') + VariableText(choice) + ": " +
                                  (data ? "data of " + icu : "no data"));
        if (data) {
            continue;
        }
        auto found = missing.begin();
        while (found != missing.end() && found->first != choice.name) {
            ++found;
        }
        if (found == missing.end()) {
            missing.emplace_back(choice.name, label);
        } else {
            found->second += ", " + label;
        }
    }
    for (const auto& [name, labels] : missing) {
        std::string problem = "locale " + name;
        problem += " (" + labels + "): ICU has no data for it; section intl gives the host's defaults";
        report.Problem(problem);
    }
    report.Result()["locale"] = std::move(locales);
}

// The keys of section "intl" in the prefix's win.ini: each one answers instead of the locale.
void WinIni(Report& report)
{
    const std::string path = yxposix::WinIniPath();
    struct stat st {};
    const bool exists = stat(path.c_str(), &st) == 0;
    std::vector<std::pair<std::string, std::string>> keys;
    const bool read =
        exists && yxposix::ForEachWinIniKey(path, "intl", [&](const std::string& key, const std::string& value) {
            for (const auto& earlier : keys) {
                if (yxposix::SameProfileName(earlier.first, key.c_str())) {
                    return true; // the first key of a name is the one read
                }
            }
            keys.emplace_back(key, value);
            return true;
        });
    Json member = TextMember("path", PathText(path));
    member["exists"] = exists;
    Json overrides = Json::array();
    for (const auto& [key, value] : keys) {
        Json entry = Json::object();
        cli::SetText(entry, "key", key);
        cli::SetText(entry, "value", value);
        overrides.push_back(std::move(entry));
    }
    member["intl"] = std::move(overrides);
    report.Result()["win_ini"] = std::move(member);
    if (!exists) {
        report.Line("win.ini", PathText(path) + ": none");
        return;
    }
    report.Line("win.ini", PathText(path) + ": " + std::to_string(keys.size()) + " key(s) of [intl] over the locale");
    for (const auto& [key, value] : keys) {
        std::string line = "  " + key;
        line += "=\"" + value + "\"";
        report.Line("win.ini", line);
    }
    if (!read) {
        report.Problem("win.ini: " + PathText(path) + " cannot be read");
    }
}

void Registry(Report& report)
{
    const yxposix::RegistryDatabase db = yxposix::InspectRegistryDatabase();
    const std::string path = PathText(db.path);
    Json member = TextMember("path", path);
    member["exists"] = db.exists;
    member["size"] = db.size >= 0 ? Json(db.size) : Json(nullptr);
    member["layout"] = db.layout >= 0 ? Json(db.layout) : Json(nullptr);
    member["integrity"] = db.integrity.empty() ? Json(nullptr) : Json(db.integrity);
    report.Result()["registry"] = std::move(member);
    if (!db.exists && db.problem.empty()) {
        report.Line("registry", path + ": none yet (an empty registry; the first write makes it)");
    } else if (db.problem.empty()) {
        report.Line("registry", path + ": " + std::to_string(db.size) + " bytes, layout " + std::to_string(db.layout) +
                                    ", integrity " + db.integrity);
    } else {
        report.Line("registry", path + ": " + db.problem);
        report.Problem("registry: " + path + ": " + db.problem);
    }
}

void Facts(Report& report)
{
    report.Result()["platform"] = "posix";
    Prefix(report);
    CodePage(report);
    Locale(report);
    WinIni(report);
    Registry(report);
}

#endif

} // namespace

namespace cli {

void AddDoctorCommand(CLI::App& app, Context& context)
{
    CLI::App* doctor =
        app.add_subcommand("doctor", "where each platform fact comes from on this machine, and whether it is sound");
    context.SetAction(doctor, [&context] {
        Report report(context);
        Facts(report);
        Drives(report);
        return report.Finish();
    });
}

} // namespace cli

namespace {
const cli::Registration registration("doctor", cli::AddDoctorCommand);
}
