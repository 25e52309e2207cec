#include <array>
#include <cstring>
#include <map>
#include <mutex>
#include <string>

#include <unicode/ucnv.h>

#include "platform/posix/codepage.h"
#include "platform/win32.h"

namespace {

// The tables of the code pages asked for so far. Made at their first use: the trace manager's
// constructor reaches them through the registry before the library's other statics are made.
struct Tables {
    std::mutex lock;
    std::map<UINT, yx::platform::LeadByteTable> byCodePage;
};
Tables& TheTables()
{
    static Tables tables;
    return tables;
}

} // namespace

namespace yx::platform {

const LeadByteTable& LeadBytes(UINT codePage)
{
    Tables& tables = TheTables();
    const std::lock_guard<std::mutex> guard(tables.lock);
    auto found = tables.byCodePage.find(codePage);
    if (found != tables.byCodePage.end()) {
        return found->second;
    }
    LeadByteTable& table = tables.byCodePage[codePage];
    table.fill(false);
    // Single-byte and UTF-8 converters have no starters to tell: they keep the empty table.
    const std::string name = "windows-" + std::to_string(codePage);
    UErrorCode status = U_ZERO_ERROR;
    UConverter* converter = ucnv_open(name.c_str(), &status);
    if (U_SUCCESS(status) && ucnv_getType(converter) != UCNV_UTF8 && ucnv_getMaxCharSize(converter) == 2) {
        std::array<UBool, 256> starters{};
        ucnv_getStarters(converter, starters.data(), &status);
        if (U_SUCCESS(status)) {
            for (std::size_t b = 0; b < table.size(); ++b) {
                table[b] = starters[b] != 0;
            }
        }
    }
    ucnv_close(converter);
    return table;
}

} // namespace yx::platform

UINT GetACP()
{
    return yx::platform::CodePageOfLocale(yx::platform::UserLocaleName());
}

BOOL IsDBCSLeadByte(BYTE TestChar)
{
    return yx::platform::LeadBytes(GetACP())[TestChar] ? TRUE : FALSE;
}
