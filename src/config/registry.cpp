#include "yxtools/registry.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/win32.h"

namespace {

const char kRoot[] = "Software\\Ombrel\\VELT QUARRO\\";
const char kBooleanTrueTexts[] = "VRAI OUI ACTIF 1 TRUE YES ON ";

HKEY HiveOf(YXRegistry::RootKey root)
{
    switch (root) {
    case YXRegistry::LocalMachine:
        return HKEY_LOCAL_MACHINE;
    case YXRegistry::DefaultUser:
        return HKEY_USERS;
    default:
        return HKEY_CURRENT_USER;
    }
}

// The subkey: the root's prefix, the product's key (which ends in a separator) and the section
// as it stands, so that a section with backslashes addresses a deeper key.
std::string SubKeyOf(YXRegistry::RootKey root, const _SS<char>& section)
{
    std::string path = root == YXRegistry::DefaultUser ? ".DEFAULT\\" : "";
    path += kRoot;
    path += section;
    return path;
}

_SS<char> LongText(long value)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%ld", value);
    return text;
}

// Runs read(root, flag) on CurrentUser, and on LocalMachine when CurrentUser does not have the
// parameter; the flag that comes out is true only when neither has it.
template <class Read>
auto ReadCUThenLM(bool* pUseDefault, Read read)
{
    bool useDefault = true;
    auto result = read(YXRegistry::CurrentUser, &useDefault);
    if (useDefault) {
        result = read(YXRegistry::LocalMachine, &useDefault);
    }
    if (pUseDefault != nullptr) {
        *pUseDefault = useDefault;
    }
    return result;
}

} // namespace

bool YXRegistry::WriteStringParam(const _SS<char>& section, const _SS<char>& name, _SS<char>& value, RootKey root)
{
    const HKEY hive = HiveOf(root);
    const std::string subKey = SubKeyOf(root, section);
    HKEY key = nullptr;
    if (RegOpenKeyExA(hive, subKey.c_str(), 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS &&
        RegCreateKeyExA(hive, subKey.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr) != ERROR_SUCCESS) {
        return false;
    }
    // The text's own bytes, without a terminating zero.
    const bool stored = RegSetValueExA(key, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(value.data()),
                                       static_cast<DWORD>(value.size())) == ERROR_SUCCESS;
    RegCloseKey(key);
    return stored;
}

bool YXRegistry::WriteBooleanParam(const _SS<char>& section, const _SS<char>& name, bool value, RootKey root)
{
    _SS<char> text(value ? "True" : "False");
    return WriteStringParam(section, name, text, root);
}

bool YXRegistry::WriteLongParam(const _SS<char>& section, const _SS<char>& name, long value, RootKey root)
{
    _SS<char> text = LongText(value);
    return WriteStringParam(section, name, text, root);
}

unsigned long YXRegistry::ReadStringParam(const _SS<char>& section, const _SS<char>& name, _SS<char>* value,
                                          const _SS<char>& defaultValue, RootKey root, bool* pUseDefault)
{
    // *value may be one of the other arguments: everything needed from them is taken before it
    // changes.
    const HKEY hive = HiveOf(root);
    const std::string subKey = SubKeyOf(root, section);
    const std::string valueName(name.c_str());
    const _SS<char> fallback = value == &defaultValue ? defaultValue : _SS<char>();
    const _SS<char>& defaultText = value == &defaultValue ? fallback : defaultValue;

    DWORD count = 0;
    bool notStored = true;
    bool dataRead = false;
    HKEY key = nullptr;
    // Full access also to read: a key that cannot be had so counts as missing, and is never made.
    if (RegOpenKeyExA(hive, subKey.c_str(), 0, KEY_ALL_ACCESS, &key) == ERROR_SUCCESS) {
        DWORD type = 0;
        if (RegQueryValueExA(key, valueName.c_str(), nullptr, &type, nullptr, &count) == ERROR_SUCCESS) {
            notStored = false;
            if (value != nullptr) {
                value->resize(count);
                // The query leaves in count what it reports, also when it fails.
                dataRead = RegQueryValueExA(key, valueName.c_str(), nullptr, &type,
                                            reinterpret_cast<BYTE*>(&(*value)[0]), &count) == ERROR_SUCCESS;
                value->resize(std::strlen(value->c_str()));
            }
        }
        RegCloseKey(key);
    }
    if (pUseDefault != nullptr) {
        *pUseDefault = notStored;
    }
    unsigned long result = count;
    if (!dataRead && !defaultText.empty()) {
        result = static_cast<unsigned long>(defaultText.size()) + 1;
        if (value != nullptr) {
            *value = defaultText;
        }
    }
    return result;
}

bool YXRegistry::ReadBooleanParam(const _SS<char>& section, const _SS<char>& name, bool defaultValue, RootKey root,
                                  bool* pUseDefault)
{
    const _SS<char> defaultText(defaultValue ? "True" : "False");
    _SS<char> text;
    if (ReadStringParam(section, name, &text, defaultText, root, pUseDefault) == 0) {
        return defaultValue;
    }
    if (text.empty()) {
        return false;
    }
    _strupr(&text[0]);
    // A substring test, not a comparison of words: "TRU", "E YES" and " " are true as well.
    return std::strstr(kBooleanTrueTexts, text.c_str()) != nullptr;
}

long YXRegistry::ReadLongParam(const _SS<char>& section, const _SS<char>& name, long defaultValue, RootKey root,
                               bool* pUseDefault)
{
    _SS<char> text;
    if (ReadStringParam(section, name, &text, LongText(defaultValue), root, pUseDefault) == 0) {
        return defaultValue;
    }
    return std::atol(text.c_str());
}

// Both branches give what ReadStringParam gave for the root that answered: the byte count of a
// text read from either root, so that a caller can use the result alike, whichever root had it.
// It is not 0 whenever a text of non-zero size was obtained.
unsigned long YXRegistry::ReadStringParamCUAndLM(const _SS<char>& section, const _SS<char>& name, _SS<char>* value,
                                                 const _SS<char>& defaultValue, bool* pUseDefault)
{
    return ReadCUThenLM(pUseDefault, [&](RootKey root, bool* flag) {
        return ReadStringParam(section, name, value, defaultValue, root, flag);
    });
}

bool YXRegistry::ReadBooleanParamCUAndLM(const _SS<char>& section, const _SS<char>& name, bool defaultValue,
                                         bool* pUseDefault)
{
    return ReadCUThenLM(pUseDefault, [&](RootKey root, bool* flag) {
        return ReadBooleanParam(section, name, defaultValue, root, flag);
    });
}

long YXRegistry::ReadLongParamCUAndLM(const _SS<char>& section, const _SS<char>& name, long defaultValue,
                                      bool* pUseDefault)
{
    return ReadCUThenLM(
        pUseDefault, [&](RootKey root, bool* flag) { return ReadLongParam(section, name, defaultValue, root, flag); });
}
