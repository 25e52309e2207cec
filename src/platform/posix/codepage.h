// Code pages of the POSIX stand-in, shared by GetACP, IsDBCSLeadByte and the runtime's path calls.
#ifndef YXTOOLS_PLATFORM_POSIX_CODEPAGE_H
#define YXTOOLS_PLATFORM_POSIX_CODEPAGE_H

#include <array>

#include "platform/posix/localecodepage.h"
#include "platform/posix/win32_posix.h"

namespace yx::platform {

using LeadByteTable = std::array<bool, 256>;

// The lead bytes of a Windows code page; built once per code page and kept for the process.
YX_PLATFORM const LeadByteTable& LeadBytes(UINT codePage);

} // namespace yx::platform

#endif
