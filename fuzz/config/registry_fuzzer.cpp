// YXRegistry driven by writes and reads decoded from the input, with arbitrary section, name and
// value bytes, against a map of what was stored: every read gives the text, count and flag that
// the map says, and what was written reads back.
//
// Each input works below a section of its own, so the map starts empty with it. On POSIX the
// registry is a database in a prefix of the run's own, replaced every 256 inputs; on Windows it
// is the system's, and each input deletes its section at the end.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <yxtools/registry.h>

#include "fuzz_support.h"
#include "platform/win32.h"

#if !defined(_WIN32)
#include <unistd.h>
#endif

namespace {

namespace fs = std::filesystem;

using Root = YXRegistry::RootKey;

constexpr char kRoot[] = "Software\\Ombrel\\VELT QUARRO\\";
constexpr std::size_t kMaxSubKey = 260;

std::string Lower(std::string text)
{
    for (char& c : text) {
        c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    }
    return text;
}

// Cut at the first zero byte, as a name passed to the registry is.
std::string CString(const std::string& text)
{
    return std::string(text.c_str());
}

int HiveOf(Root root)
{
    return root == YXRegistry::LocalMachine ? 1 : root == YXRegistry::DefaultUser ? 2 : 0;
}

// The subkey a section names, or "" when the registry refuses it (too long).
std::string SubKey(Root root, const std::string& section)
{
    const std::string path = (HiveOf(root) == 2 ? ".DEFAULT\\" : "") + std::string(kRoot) + CString(section);
    return path.size() > kMaxSubKey ? std::string() : path;
}

// The key of the model: the hive and the names of the path, empty ones dropped, case folded.
std::string ModelKey(Root root, const std::string& subKey)
{
    std::string key = std::to_string(HiveOf(root));
    std::size_t start = 0;
    while (start <= subKey.size()) {
        std::size_t end = subKey.find('\\', start);
        end = end == std::string::npos ? subKey.size() : end;
        if (end > start) {
            key += "\\" + Lower(subKey.substr(start, end - start));
        }
        start = end + 1;
    }
    return key;
}

class Model {
public:
    // What a read finds: null when the parameter is not stored.
    const std::string* Find(Root root, const std::string& section, const std::string& name) const
    {
        const std::string subKey = SubKey(root, section);
        if (subKey.empty()) {
            return nullptr;
        }
        const auto key = m_values.find(ModelKey(root, subKey));
        if (key == m_values.end()) {
            return nullptr;
        }
        const auto value = key->second.find(Lower(CString(name)));
        return value == key->second.end() ? nullptr : &value->second;
    }
    // Whether the write succeeds, and records it. The registry adds a zero to a text whose bytes
    // do not end in one.
    bool Write(Root root, const std::string& section, const std::string& name, std::string bytes)
    {
        const std::string subKey = SubKey(root, section);
        if (subKey.empty()) {
            return false;
        }
        if (!bytes.empty() && bytes.back() != '\0') {
            bytes.push_back('\0');
        }
        m_values[ModelKey(root, subKey)][Lower(CString(name))] = bytes;
        return true;
    }

private:
    std::map<std::string, std::map<std::string, std::string>> m_values;
};

// The expected ReadStringParam: count, text and flag.
struct Expected {
    unsigned long count;
    std::string text;
    bool useDefault;
};
Expected ExpectString(const std::string* stored, bool withValue, const std::string& defaultValue,
                      const std::string& former)
{
    if (stored != nullptr && withValue) {
        return {static_cast<unsigned long>(stored->size()), CString(*stored), false};
    }
    const bool useDefault = stored == nullptr;
    if (!defaultValue.empty()) {
        return {static_cast<unsigned long>(defaultValue.size()) + 1, defaultValue, useDefault};
    }
    return {stored != nullptr ? static_cast<unsigned long>(stored->size()) : 0UL, former, useDefault};
}

bool ExpectBoolean(const std::string* stored, bool defaultValue)
{
    if (stored == nullptr) {
        return defaultValue;
    }
    if (stored->empty()) {
        return defaultValue;
    }
    std::string text = CString(*stored);
    if (text.empty()) {
        return false;
    }
    for (char& c : text) {
        c = static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
    }
    return std::strstr("VRAI OUI ACTIF 1 TRUE YES ON ", text.c_str()) != nullptr;
}

long ExpectLong(const std::string* stored, long defaultValue)
{
    if (stored == nullptr || stored->empty()) {
        return defaultValue;
    }
    return std::atol(stored->c_str());
}

// Bytes of a section, a name or a value. On Windows only ASCII: the system folds the case of
// other letters by the code page, which the model does not (the contract tests cover the calls).
std::string Text(FuzzInput& in, std::size_t most)
{
    std::string text = in.Bytes(most);
#if defined(_WIN32)
    for (char& c : text) {
        c = static_cast<char>(c & 0x7F);
    }
#endif
    return text;
}

// The section of this input, below which all its sections lie.
std::string g_base;

void StartInput()
{
    static unsigned long s_inputs = 0;
#if defined(_WIN32)
    g_base = "fuzz-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(s_inputs++);
#else
    // The prefix in use, removed when the next one comes and at the end of the run.
    struct Prefix {
        fs::path path;
        void Remove()
        {
            std::error_code error;
            if (!path.empty()) {
                fs::remove_all(path, error);
            }
        }
        ~Prefix() { Remove(); }
    };
    static Prefix s_prefix;
    if (s_inputs % 256 == 0) {
        s_prefix.Remove();
        std::error_code error;
        s_prefix.path = fs::temp_directory_path(error) /
                        ("yxtools-fuzz-" + std::to_string(getpid()) + "-" + std::to_string(s_inputs));
        setenv("YXTOOLS_PREFIX", s_prefix.path.c_str(), 1);
    }
    g_base = "fuzz" + std::to_string(s_inputs++ % 256);
#endif
}

void EndInput()
{
#if defined(_WIN32)
    const std::string key = std::string(kRoot) + g_base;
    RegDeleteTreeA(HKEY_CURRENT_USER, key.c_str());
    RegDeleteTreeA(HKEY_LOCAL_MACHINE, key.c_str());
    RegDeleteTreeA(HKEY_USERS, (".DEFAULT\\" + key).c_str());
#endif
}

Root RootOf(FuzzInput& in)
{
    static const int kRoots[] = {0, 1, 2, 0, 1, 3, 7, -1};
    return static_cast<Root>(kRoots[in.Below(8)]);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput in(data, size);
    StartInput();
    Model model;
    // A few sections and names, so that reads meet what was written.
    std::vector<std::string> sections;
    std::vector<std::string> names;
    for (int i = 0; i < 3; ++i) {
        // The last may pass the 260 characters of a subkey.
        sections.push_back(g_base + "\\" + Text(in, i == 2 ? 255 : 64));
        names.push_back(Text(in, 32));
    }
    for (int step = 0; step < 24 && !in.Done(); ++step) {
        const unsigned op = in.Below(8);
        const Root root = RootOf(in);
        const std::string& section = sections[in.Below(3)];
        const std::string& name = names[in.Below(3)];
        switch (op) {
        case 0: {
            _SS<char> value(Text(in, 64));
            FUZZ_CHECK(YXRegistry::WriteStringParam(section, name, value, root) ==
                       model.Write(root, section, name, value));
            break;
        }
        case 1: {
            const long value = static_cast<std::int32_t>(in.U32());
            char text[32];
            std::snprintf(text, sizeof(text), "%ld", value);
            FUZZ_CHECK(YXRegistry::WriteLongParam(section, name, value, root) ==
                       model.Write(root, section, name, text));
            break;
        }
        case 2: {
            const bool value = (in.Byte() & 1) != 0;
            FUZZ_CHECK(YXRegistry::WriteBooleanParam(section, name, value, root) ==
                       model.Write(root, section, name, value ? "True" : "False"));
            break;
        }
        case 3:
        case 4: {
            const bool withValue = op == 3;
            const std::string defaultValue = CString(Text(in, 16));
            _SS<char> value("former");
            bool flag = false;
            const unsigned long count =
                YXRegistry::ReadStringParam(section, name, withValue ? &value : nullptr, defaultValue, root, &flag);
            const Expected expected = ExpectString(model.Find(root, section, name), withValue, defaultValue, "former");
            FUZZ_CHECK(count == expected.count);
            FUZZ_CHECK(flag == expected.useDefault);
            FUZZ_CHECK(value == (withValue ? expected.text : "former"));
            break;
        }
        case 5: {
            const bool defaultValue = (in.Byte() & 1) != 0;
            bool flag = false;
            const std::string* stored = model.Find(root, section, name);
            FUZZ_CHECK(YXRegistry::ReadBooleanParam(section, name, defaultValue, root, &flag) ==
                       ExpectBoolean(stored, defaultValue));
            FUZZ_CHECK(flag == (stored == nullptr));
            break;
        }
        case 6: {
            const long defaultValue = static_cast<std::int32_t>(in.U32());
            bool flag = false;
            const std::string* stored = model.Find(root, section, name);
            FUZZ_CHECK(YXRegistry::ReadLongParam(section, name, defaultValue, root, &flag) ==
                       ExpectLong(stored, defaultValue));
            FUZZ_CHECK(flag == (stored == nullptr));
            break;
        }
        default: {
            // The current user first, the local machine when it does not have the parameter.
            const std::string* cu = model.Find(YXRegistry::CurrentUser, section, name);
            const std::string* lm = model.Find(YXRegistry::LocalMachine, section, name);
            const std::string* stored = cu != nullptr ? cu : lm;
            const std::string defaultValue = CString(Text(in, 16));
            _SS<char> value("former");
            bool flag = false;
            const unsigned long count = YXRegistry::ReadStringParamCUAndLM(section, name, &value, defaultValue, &flag);
            const Expected expected = ExpectString(stored, true, defaultValue, "former");
            FUZZ_CHECK(count == expected.count);
            FUZZ_CHECK(value == expected.text);
            FUZZ_CHECK(flag == (stored == nullptr));
            FUZZ_CHECK(YXRegistry::ReadLongParamCUAndLM(section, name, 5, &flag) == ExpectLong(stored, 5));
            FUZZ_CHECK(YXRegistry::ReadBooleanParamCUAndLM(section, name, true, &flag) == ExpectBoolean(stored, true));
            FUZZ_CHECK(flag == (stored == nullptr));
            break;
        }
        }
    }
    EndInput();
    return 0;
}
