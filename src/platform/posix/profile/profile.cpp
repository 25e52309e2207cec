// The profile service of the POSIX stand-in: GetProfileStringA and GetProfileIntA.
//
// A key is looked for first in the prefix's drive_c/windows/win.ini, where Wine keeps the file
// and a Windows user's copy can be dropped, read afresh at each call; then, for section "intl",
// in the user's POSIX locale (localeintl.h); else the caller's default answers.
#include <cctype>
#include <cstdint>
#include <cstring>
#include <string>

#include "platform/posix/profile/localeintl.h"
#include "platform/posix/profile/winini.h"
#include "platform/win32.h"

namespace {

// The value of key in the first section of that name in the prefix's win.ini. False when the
// file is missing or unreadable, or has no such key.
bool FromWinIni(const char* section, const char* key, std::string& value)
{
    bool found = false;
    yxposix::ForEachWinIniKey(yxposix::WinIniPath(), section, [&](const std::string& name, const std::string& text) {
        found = yxposix::SameProfileName(name, key);
        if (found) {
            value = text;
        }
        return !found;
    });
    return found;
}

bool Lookup(const char* section, const char* key, std::string& value)
{
    if (FromWinIni(section, key, value)) {
        return true;
    }
    return yxposix::SameProfileName(section, "intl") && yx::platform::IntlLocaleValue(key, value);
}

} // namespace

DWORD GetProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName, LPCSTR lpDefault, LPSTR lpReturnedString, DWORD nSize)
{
    if (lpReturnedString == nullptr || nSize == 0) {
        return 0;
    }
    std::string value;
    if (lpAppName == nullptr || lpKeyName == nullptr || !Lookup(lpAppName, lpKeyName, value)) {
        // Windows drops the blanks that end a default; a null default is the empty text.
        value = lpDefault != nullptr ? lpDefault : "";
        value.erase(value.find_last_not_of(' ') + 1);
    }
    const std::size_t count = value.size() < nSize - 1 ? value.size() : nSize - 1;
    std::memcpy(lpReturnedString, value.data(), count);
    lpReturnedString[count] = '\0';
    return static_cast<DWORD>(count);
}

UINT GetProfileIntA(LPCSTR lpAppName, LPCSTR lpKeyName, INT nDefault)
{
    std::string value;
    if (lpAppName == nullptr || lpKeyName == nullptr || !Lookup(lpAppName, lpKeyName, value) || value.empty()) {
        return static_cast<UINT>(nDefault);
    }
    // Blanks, a sign, then decimal digits or "0x" and hexadecimal ones, as far as they go; the
    // number wraps to 32 bits. A value with no digits reads 0.
    const char* p = value.c_str();
    while (std::isspace(static_cast<unsigned char>(*p)) != 0) {
        ++p;
    }
    const bool negative = *p == '-';
    if (*p == '-' || *p == '+') {
        ++p;
    }
    std::uint32_t number = 0;
    if (p[0] == '0' && (p[1] == 'x' || p[1] == 'X')) {
        for (p += 2; std::isxdigit(static_cast<unsigned char>(*p)) != 0; ++p) {
            const int digit = std::isdigit(static_cast<unsigned char>(*p)) != 0
                                  ? *p - '0'
                                  : std::tolower(static_cast<unsigned char>(*p)) - 'a' + 10;
            number = number * 16 + static_cast<std::uint32_t>(digit);
        }
    } else {
        for (; std::isdigit(static_cast<unsigned char>(*p)) != 0; ++p) {
            number = number * 10 + static_cast<std::uint32_t>(*p - '0');
        }
    }
    return negative ? 0 - number : number;
}
