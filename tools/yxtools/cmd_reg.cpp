// yxtools reg: the product's parameters through YXRegistry (get, set), and the keys below
// "Software\Ombrel\VELT QUARRO\" through the registry itself (list, delete, export and import in the
// REGEDIT4 text of .reg files).
//
// On POSIX the registry calls come from the library's stand-in, built into the command from the
// same sources, so that the command opens the very database of the prefix that the library uses.
#include <yxtools/yxtools.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "cli.h"
#include "edge.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <unicode/ucnv.h>

#include "platform/win32.h"

#endif

namespace {

const char kRoot[] = "Software\\Ombrel\\VELT QUARRO\\";

struct Hive {
    const char* option;
    const char* name;
    HKEY key;
    YXRegistry::RootKey root;
};

const Hive kHives[] = {
    {"cu", "HKEY_CURRENT_USER", HKEY_CURRENT_USER, YXRegistry::CurrentUser},
    {"lm", "HKEY_LOCAL_MACHINE", HKEY_LOCAL_MACHINE, YXRegistry::LocalMachine},
    {"users", "HKEY_USERS", HKEY_USERS, YXRegistry::DefaultUser},
};

const Hive& HiveOf(const std::string& option)
{
    for (const Hive& hive : kHives) {
        if (option == hive.option) {
            return hive;
        }
    }
    return kHives[0];
}

// The product's key of a root, and a section below it.
std::string ProductKey(const Hive& hive, const std::string& section)
{
    std::string path = hive.root == YXRegistry::DefaultUser ? ".DEFAULT\\" : "";
    path += kRoot;
    path += section;
    while (!path.empty() && path.back() == '\\') {
        path.pop_back();
    }
    return path;
}

struct Options {
    std::string root = "cu";
    std::string type = "text";
    std::string section;
    std::string name;
    std::string value;
    std::string defaultValue;
    std::string file;
    bool nameGiven = false;
};

// --- get and set --------------------------------------------------------------------------------

int Get(cli::Context& context, const Options& o)
{
    const bool both = o.root == "cu-lm";
    const YXRegistry::RootKey root = HiveOf(o.root).root;
    bool useDefault = true;
    cli::SetText(context.result, "section", o.section);
    cli::SetText(context.result, "name", o.name);
    context.result["root"] = o.root;
    context.result["type"] = o.type;
    if (o.type == "long") {
        const long fallback = std::strtol(o.defaultValue.c_str(), nullptr, 10);
        const long value = both ? YXRegistry::ReadLongParamCUAndLM(o.section, o.name, fallback, &useDefault)
                                : YXRegistry::ReadLongParam(o.section, o.name, fallback, root, &useDefault);
        context.result["value"] = value;
        context.Line("%ld", value);
    } else if (o.type == "bool") {
        const bool fallback = o.defaultValue == "true" || o.defaultValue == "1";
        const bool value = both ? YXRegistry::ReadBooleanParamCUAndLM(o.section, o.name, fallback, &useDefault)
                                : YXRegistry::ReadBooleanParam(o.section, o.name, fallback, root, &useDefault);
        context.result["value"] = value;
        context.Line("%s", value ? "true" : "false");
    } else {
        _SS<char> value;
        const unsigned long count =
            both ? YXRegistry::ReadStringParamCUAndLM(o.section, o.name, &value, o.defaultValue, &useDefault)
                 : YXRegistry::ReadStringParam(o.section, o.name, &value, o.defaultValue, root, &useDefault);
        cli::SetText(context.result, "value", value);
        context.result["count"] = count;
        context.Line("\"%s\" (count %lu)", value.c_str(), count);
    }
    context.result["stored"] = !useDefault;
    context.Line("%s", useDefault ? "not stored: the default" : "stored");
    return useDefault ? 1 : 0;
}

int Set(cli::Context& context, const Options& o)
{
    const YXRegistry::RootKey root = HiveOf(o.root).root;
    bool stored = false;
    if (o.type == "long") {
        char* end = nullptr;
        const long value = std::strtol(o.value.c_str(), &end, 10);
        if (o.value.empty() || *end != '\0') {
            throw cli::UsageError("VALUE", "'" + o.value + "' is not a whole number");
        }
        stored = YXRegistry::WriteLongParam(o.section, o.name, value, root);
    } else if (o.type == "bool") {
        if (o.value != "true" && o.value != "false") {
            throw cli::UsageError("VALUE", "a boolean is true or false");
        }
        stored = YXRegistry::WriteBooleanParam(o.section, o.name, o.value == "true", root);
    } else {
        _SS<char> value(o.value);
        stored = YXRegistry::WriteStringParam(o.section, o.name, value, root);
    }
    context.result["stored"] = stored;
    context.Line("%s", stored ? "stored" : "not stored: the registry refused the write");
    return stored ? 0 : 1;
}

// --- the keys themselves ------------------------------------------------------------------------

struct Value {
    std::string name;
    DWORD type = REG_NONE;
    std::string data;
};

class Key {
public:
    Key(HKEY parent, const std::string& path)
    {
        m_open = RegOpenKeyExA(parent, path.c_str(), 0, KEY_READ, &m_key) == 0;
    }
    ~Key()
    {
        if (m_open) {
            RegCloseKey(m_key);
        }
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    bool Open() const { return m_open; }

    std::vector<std::string> Subkeys() const
    {
        std::vector<std::string> names;
        char name[512];
        DWORD length = sizeof(name);
        for (DWORD i = 0; RegEnumKeyExA(m_key, i, name, &length, nullptr, nullptr, nullptr, nullptr) == 0; ++i) {
            names.emplace_back(name, length);
            length = sizeof(name);
        }
        return names;
    }
    std::vector<Value> Values() const
    {
        std::vector<Value> values;
        for (DWORD i = 0;; ++i) {
            char name[16384];
            DWORD length = sizeof(name);
            DWORD size = 0;
            Value value;
            if (RegEnumValueA(m_key, i, name, &length, nullptr, &value.type, nullptr, &size) != 0) {
                break;
            }
            value.name.assign(name, length);
            value.data.resize(size);
            DWORD room = size;
            if (RegQueryValueExA(m_key, value.name.c_str(), nullptr, &value.type,
                                 reinterpret_cast<BYTE*>(&value.data[0]), &room) == 0) {
                value.data.resize(room);
            }
            values.push_back(std::move(value));
        }
        return values;
    }

private:
    HKEY m_key = nullptr;
    bool m_open = false;
};

std::string HexBytes(const std::string& data)
{
    std::string text;
    char pair[4];
    for (std::size_t i = 0; i < data.size(); ++i) {
        std::snprintf(pair, sizeof(pair), i == 0 ? "%02x" : ",%02x", static_cast<unsigned char>(data[i]));
        text += pair;
    }
    return text;
}

// A text that a REGEDIT4 string holds exactly: one zero at the end, none inside, no line ends.
bool IsPlainText(const Value& value)
{
    const std::string& d = value.data;
    return value.type == REG_SZ && !d.empty() && d.back() == '\0' && d.find('\0') == d.size() - 1 &&
           d.find_first_of("\r\n") == std::string::npos;
}

std::string Quoted(const std::string& text)
{
    std::string out = "\"";
    for (const char c : text) {
        if (c == '\\' || c == '"') {
            out.push_back('\\');
        }
        out.push_back(c);
    }
    return out + "\"";
}

// The value's line of a .reg file.
std::string RegLine(const Value& value)
{
    std::string line = value.name.empty() ? "@=" : Quoted(value.name) + "=";
    if (IsPlainText(value)) {
        return line + Quoted(value.data.substr(0, value.data.size() - 1));
    }
    if (value.type == REG_DWORD && value.data.size() == 4) {
        char number[16];
        const auto* b = reinterpret_cast<const unsigned char*>(value.data.data());
        std::snprintf(number, sizeof(number), "%08x",
                      static_cast<unsigned>(b[0] | (b[1] << 8) | (b[2] << 16) | (static_cast<unsigned>(b[3]) << 24)));
        return line + "dword:" + number;
    }
    if (value.type == REG_BINARY) {
        return line + "hex:" + HexBytes(value.data);
    }
    return line + "hex(" + std::to_string(value.type) + "):" + HexBytes(value.data);
}

// Walks a key and its subkeys, parents first.
template <class Visit>
void Walk(HKEY hive, const std::string& path, Visit visit)
{
    const Key key(hive, path);
    if (!key.Open()) {
        return;
    }
    visit(path, key.Values());
    for (const std::string& sub : key.Subkeys()) {
        Walk(hive, std::string(path).append("\\").append(sub), visit);
    }
}

int List(cli::Context& context, const Options& o)
{
    const Hive& hive = HiveOf(o.root);
    cli::Json keys = cli::Json::array();
    Walk(hive.key, ProductKey(hive, o.section), [&](const std::string& path, const std::vector<Value>& values) {
        cli::Json key;
        cli::SetText(key, "key", std::string(hive.name) + "\\" + path);
        context.Line("[%s\\%s]", hive.name, path.c_str());
        cli::Json list = cli::Json::array();
        for (const Value& value : values) {
            cli::Json item;
            cli::SetText(item, "name", value.name);
            item["type"] = value.type;
            item["bytes"] = cli::edge::ToHex(value.data);
            list.push_back(std::move(item));
            context.Line("  %s", RegLine(value).c_str());
        }
        key["values"] = std::move(list);
        keys.push_back(std::move(key));
    });
    context.result["keys"] = std::move(keys);
    return 0;
}

bool DeleteTree(HKEY parent, const std::string& path)
{
    {
        const Key key(parent, path);
        if (!key.Open()) {
            return false;
        }
        for (const std::string& sub : key.Subkeys()) {
            DeleteTree(parent, std::string(path).append("\\").append(sub));
        }
    }
    const std::size_t cut = path.rfind('\\');
    HKEY above = nullptr;
    if (RegOpenKeyExA(parent, path.substr(0, cut).c_str(), 0, KEY_ALL_ACCESS, &above) != 0) {
        return false;
    }
    const bool deleted = RegDeleteKeyA(above, path.substr(cut + 1).c_str()) == 0;
    RegCloseKey(above);
    return deleted;
}

int Delete(cli::Context& context, const Options& o)
{
    const Hive& hive = HiveOf(o.root);
    const std::string path = ProductKey(hive, o.section);
    bool deleted = false;
    if (o.nameGiven) {
        HKEY key = nullptr;
        if (RegOpenKeyExA(hive.key, path.c_str(), 0, KEY_ALL_ACCESS, &key) == 0) {
            deleted = RegDeleteValueA(key, o.name.c_str()) == 0;
            RegCloseKey(key);
        }
    } else {
        deleted = DeleteTree(hive.key, path);
    }
    context.result["deleted"] = deleted;
    context.Line("%s", deleted ? "deleted" : "nothing to delete");
    return deleted ? 0 : 1;
}

int Export(cli::Context& context, const Options& o)
{
    const Hive& hive = HiveOf(o.root);
    std::string text = "REGEDIT4\r\n";
    int keys = 0;
    Walk(hive.key, ProductKey(hive, o.section), [&](const std::string& path, const std::vector<Value>& values) {
        text += "\r\n[" + std::string(hive.name) + "\\" + path + "]\r\n";
        for (const Value& value : values) {
            text += RegLine(value) + "\r\n";
        }
        ++keys;
    });
    context.result["keys"] = keys;
    if (o.file.empty()) {
        // The file's text as it stands, for a person: converted at the edge like all library text.
        context.result["text_hex"] = cli::edge::ToHex(text);
        std::string shown = text;
        for (std::size_t at = shown.find('\r'); at != std::string::npos; at = shown.find('\r', at)) {
            shown.erase(at, 1);
        }
        context.Line("%s", shown.c_str());
        return keys > 0 ? 0 : 1;
    }
    std::ofstream(o.file, std::ios::binary) << text;
    context.Line("%d keys written", keys);
    return keys > 0 ? 0 : 1;
}

// --- import -------------------------------------------------------------------------------------

// UTF-16LE text (a .reg file of version 5.00) in the ANSI code page.
std::string AnsiOfUtf16(const std::string& bytes)
{
    const std::size_t units = bytes.size() / 2;
#if defined(_WIN32)
    std::wstring wide(units, L'\0');
    for (std::size_t i = 0; i < units; ++i) {
        wide[i] = static_cast<wchar_t>(static_cast<unsigned char>(bytes[2 * i]) |
                                       (static_cast<unsigned char>(bytes[2 * i + 1]) << 8));
    }
    const int size = WideCharToMultiByte(CP_ACP, 0, wide.data(), static_cast<int>(units), nullptr, 0, nullptr, nullptr);
    std::string ansi(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_ACP, 0, wide.data(), static_cast<int>(units), &ansi[0], size, nullptr, nullptr);
    return ansi;
#else
    const std::string name = "windows-" + std::to_string(cli::edge::AnsiCodePage());
    std::string ansi(units * 2 + 1, '\0');
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = ucnv_convert(name.c_str(), "UTF-16LE", &ansi[0], static_cast<int32_t>(ansi.size()),
                                        bytes.data(), static_cast<int32_t>(units * 2), &status);
    ansi.resize(U_SUCCESS(status) ? static_cast<std::size_t>(length) : 0);
    return ansi;
#endif
}

struct Change {
    int hive;
    std::string path;
    bool hasValue;
    Value value;
};

class Malformed : public std::exception {
public:
    Malformed(std::size_t line, const std::string& why) : m_text("line " + std::to_string(line) + ": " + why) {}
    const char* what() const noexcept override { return m_text.c_str(); }

private:
    std::string m_text;
};

// A quoted string from `at` (on its opening quote); `at` ends after the closing quote.
std::string Unquote(const std::string& line, std::size_t& at, std::size_t number)
{
    std::string text;
    for (++at; at < line.size(); ++at) {
        if (line[at] == '\\' && at + 1 < line.size()) {
            text.push_back(line[++at]);
        } else if (line[at] == '"') {
            ++at;
            return text;
        } else {
            text.push_back(line[at]);
        }
    }
    throw Malformed(number, "a string without its closing quote");
}

std::string Unhex(const std::string& text, std::size_t number)
{
    std::string bytes;
    std::size_t at = 0;
    while (at < text.size()) {
        while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) {
            ++at;
        }
        if (at == text.size()) {
            break;
        }
        char* end = nullptr;
        const std::string pair = text.substr(at, 2);
        const unsigned long byte = std::strtoul(pair.c_str(), &end, 16);
        if (pair.size() != 2 || *end != '\0') {
            throw Malformed(number, "'" + text.substr(at) + "' is not hex bytes");
        }
        bytes.push_back(static_cast<char>(byte));
        at += 2;
        while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) {
            ++at;
        }
        if (at < text.size() && text[at] != ',') {
            throw Malformed(number, "hex bytes are separated by commas");
        }
        ++at;
    }
    return bytes;
}

std::vector<Change> Parse(std::string text)
{
    const bool wide =
        text.size() >= 2 && static_cast<unsigned char>(text[0]) == 0xFF && static_cast<unsigned char>(text[1]) == 0xFE;
    if (wide) {
        text = AnsiOfUtf16(text.substr(2));
    }
    std::vector<std::string> lines;
    std::vector<std::size_t> numbers;
    std::size_t number = 0;
    std::size_t start = 0;
    bool joining = false;
    while (start <= text.size()) {
        std::size_t end = text.find('\n', start);
        end = end == std::string::npos ? text.size() : end;
        std::string line = text.substr(start, end - start);
        start = end + 1;
        ++number;
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        if (joining) {
            const std::size_t first = line.find_first_not_of(" \t");
            lines.back() += first == std::string::npos ? "" : line.substr(first);
        } else {
            lines.push_back(line);
            numbers.push_back(number);
        }
        joining = !lines.back().empty() && lines.back().back() == '\\';
        if (joining) {
            lines.back().pop_back();
        }
    }
    if (lines.empty() || (lines[0] != "REGEDIT4" && lines[0] != "Windows Registry Editor Version 5.00")) {
        throw Malformed(1, "a .reg file starts with REGEDIT4 or Windows Registry Editor Version 5.00");
    }
    std::vector<Change> changes;
    int hive = -1;
    std::string path;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const std::string& line = lines[i];
        const std::size_t n = numbers[i];
        if (line.empty() || line[0] == ';') {
            continue;
        }
        if (line[0] == '[') {
            if (line.back() != ']' || line.size() < 3 || line[1] == '-') {
                throw Malformed(n, line[1] == '-' ? "deleting keys is not supported" : "a key line ends in ]");
            }
            const std::string key = line.substr(1, line.size() - 2);
            hive = -1;
            for (int h = 0; h < 3; ++h) {
                const std::string name = kHives[h].name;
                if (key.compare(0, name.size(), name) == 0 && (key.size() == name.size() || key[name.size()] == '\\')) {
                    hive = h;
                    path = key.size() == name.size() ? "" : key.substr(name.size() + 1);
                }
            }
            if (hive < 0) {
                throw Malformed(n, "the key is not below HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE or HKEY_USERS");
            }
            changes.push_back({hive, path, false, {}});
            continue;
        }
        if (hive < 0) {
            throw Malformed(n, "a value before any key");
        }
        Value value;
        std::size_t at = 0;
        if (line[0] == '@') {
            at = 1;
        } else if (line[0] == '"') {
            value.name = Unquote(line, at, n);
        } else {
            throw Malformed(n, "a value line starts with \" or @");
        }
        if (at >= line.size() || line[at] != '=') {
            throw Malformed(n, "the value's name is followed by =");
        }
        const std::string data = line.substr(at + 1);
        if (!data.empty() && data[0] == '"') {
            std::size_t q = 0;
            value.type = REG_SZ;
            value.data = Unquote(data, q, n);
            value.data.push_back('\0');
            if (q != data.size()) {
                throw Malformed(n, "text after the string's closing quote");
            }
        } else if (data.compare(0, 6, "dword:") == 0) {
            char* end = nullptr;
            const unsigned long number32 = std::strtoul(data.c_str() + 6, &end, 16);
            if (data.size() != 14 || *end != '\0') {
                throw Malformed(n, "dword: takes eight hex digits");
            }
            value.type = REG_DWORD;
            for (int b = 0; b < 4; ++b) {
                value.data.push_back(static_cast<char>((number32 >> (8 * b)) & 0xFF));
            }
        } else if (data.compare(0, 4, "hex:") == 0) {
            value.type = REG_BINARY;
            value.data = Unhex(data.substr(4), n);
        } else if (data.compare(0, 4, "hex(") == 0 && data.find("):") != std::string::npos) {
            const std::size_t close = data.find("):");
            char* end = nullptr;
            const std::string typeText = data.substr(4, close - 4);
            value.type = static_cast<DWORD>(std::strtoul(typeText.c_str(), &end, 16));
            if (typeText.empty() || *end != '\0') {
                throw Malformed(n, "hex( takes the type in hex digits");
            }
            value.data = Unhex(data.substr(close + 2), n);
            if (wide && (value.type == REG_SZ || value.type == REG_EXPAND_SZ || value.type == REG_MULTI_SZ)) {
                // Version 5.00 writes the texts of these types in UTF-16.
                value.data = AnsiOfUtf16(value.data);
            }
        } else {
            throw Malformed(n, "the value is a \"string\", dword:, hex: or hex(type):");
        }
        changes.push_back({hive, path, true, value});
    }
    return changes;
}

int Import(cli::Context& context, const Options& o)
{
    std::ifstream in(o.file, std::ios::binary);
    if (!in) {
        throw cli::UsageError("FILE", "cannot read " + o.file);
    }
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::vector<Change> changes;
    try {
        changes = Parse(text);
    } catch (const Malformed& error) {
        // Nothing of a malformed file is imported.
        context.result["imported"] = 0;
        context.result["error"] = error.what();
        context.Line("not imported: %s", error.what());
        return 1;
    }
    int values = 0;
    int failed = 0;
    HKEY key = nullptr;
    for (const Change& change : changes) {
        if (!change.hasValue) {
            if (key != nullptr) {
                RegCloseKey(key);
            }
            key = nullptr;
            if (RegCreateKeyExA(kHives[change.hive].key, change.path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                                &key, nullptr) != 0) {
                key = nullptr;
                ++failed;
            }
            continue;
        }
        const Value& v = change.value;
        if (key != nullptr &&
            RegSetValueExA(key, v.name.c_str(), 0, v.type, reinterpret_cast<const BYTE*>(v.data.data()),
                           static_cast<DWORD>(v.data.size())) == 0) {
            ++values;
        } else {
            ++failed;
        }
    }
    if (key != nullptr) {
        RegCloseKey(key);
    }
    context.result["imported"] = values;
    context.result["failed"] = failed;
    context.Line("%d values imported%s", values, failed > 0 ? ", some refused by the registry" : "");
    return failed == 0 ? 0 : 1;
}

void AddRoot(CLI::App* app, Options& o, bool both)
{
    const std::vector<std::string> roots =
        both ? std::vector<std::string>{"cu", "lm", "users", "cu-lm"} : std::vector<std::string>{"cu", "lm", "users"};
    app->add_option("--root", o.root,
                    both ? "cu (default), lm, users (HKEY_USERS\\.DEFAULT) or cu-lm (the current user, then "
                           "the local machine)"
                         : "cu (default), lm or users (HKEY_USERS\\.DEFAULT)")
        ->check(CLI::IsMember(roots));
}

} // namespace

namespace cli {

void AddRegCommand(CLI::App& app, Context& context)
{
    CLI::App* reg = app.add_subcommand("reg", "registry parameters under Software\\Ombrel\\VELT QUARRO\\");
    reg->require_subcommand(1);
    auto o = std::make_shared<Options>();

    CLI::App* get = reg->add_subcommand("get", "read a parameter (exit 1 when it is not stored)");
    context.AddText(get, "SECTION", o->section, "the section: the key below the product's root")->required();
    context.AddText(get, "NAME", o->name, "the parameter's name")->required();
    get->add_option("--type", o->type, "text (default), long or bool")->check(CLI::IsMember({"text", "long", "bool"}));
    context.AddText(get, "--default", o->defaultValue, "the default (a number for long, true or false for bool)");
    AddRoot(get, *o, true);
    context.SetAction(get, [&context, o] { return Get(context, *o); });

    CLI::App* set = reg->add_subcommand("set", "store a parameter (as text, whatever its type)");
    context.AddText(set, "SECTION", o->section, "the section")->required();
    context.AddText(set, "NAME", o->name, "the parameter's name")->required();
    context.AddText(set, "VALUE", o->value, "the value")->required();
    set->add_option("--type", o->type, "text (default), long or bool")->check(CLI::IsMember({"text", "long", "bool"}));
    AddRoot(set, *o, false);
    context.SetAction(set, [&context, o] { return Set(context, *o); });

    CLI::App* list = reg->add_subcommand("list", "the keys and values below the root, or below a section");
    context.AddText(list, "SECTION", o->section, "a section (default: the whole root)");
    AddRoot(list, *o, false);
    context.SetAction(list, [&context, o] { return List(context, *o); });

    CLI::App* del = reg->add_subcommand("delete", "delete a parameter, or a section with all below it");
    context.AddText(del, "SECTION", o->section, "the section")->required();
    context.AddText(del, "NAME", o->name, "the parameter (default: the whole section)")->each([o](const std::string&) {
        o->nameGiven = true;
    });
    AddRoot(del, *o, false);
    context.SetAction(del, [&context, o] { return Delete(context, *o); });

    CLI::App* exp = reg->add_subcommand("export", "write the root, or a section, as a REGEDIT4 .reg file");
    context.AddText(exp, "SECTION", o->section, "a section (default: the whole root)");
    exp->add_option("-o,--output", o->file, "the file (default: the standard output)");
    AddRoot(exp, *o, false);
    context.SetAction(exp, [&context, o] { return Export(context, *o); });

    CLI::App* imp = reg->add_subcommand(
        "import", "import a .reg file (REGEDIT4, or version 5.00 in UTF-16); a malformed one is refused whole");
    imp->add_option("FILE", o->file, "the .reg file")->required();
    context.SetAction(imp, [&context, o] { return Import(context, *o); });
}

} // namespace cli

namespace {
const cli::Registration registration("reg", cli::AddRegCommand);
}
