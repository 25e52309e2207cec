// Code pages of the POSIX stand-in, shared by GetACP, IsDBCSLeadByte and the runtime's path calls.
#ifndef YXTOOLS_PLATFORM_POSIX_CODEPAGE_H
#define YXTOOLS_PLATFORM_POSIX_CODEPAGE_H

#include <array>

#include "platform/posix/win32_posix.h"

namespace yx::platform {

using LeadByteTable = std::array<bool, 256>;

// The locale name that rules a category, as the C library picks it: LC_ALL, else the category's
// own variable (none when null), else LANG; "C" when none is set. Read at each call.
YX_PLATFORM const char* LocaleVariable(const char* category);

// The ANSI code page of a POSIX locale name (language[_territory][.codeset][@modifier]).
YX_PLATFORM UINT CodePageOfLocale(const char* name);

// The lead bytes of a Windows code page; built once per code page and kept for the process.
YX_PLATFORM const LeadByteTable& LeadBytes(UINT codePage);

} // namespace yx::platform

#endif
