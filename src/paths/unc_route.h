// The conversion of a drive path to UNC form, over the platform calls it makes. The library binds
// them to Win32 (Win32UncPlatform); tests and the fuzz target give calls of their own, so that the
// route can be driven with any drives and shares on either build.
#ifndef YXTOOLS_PATHS_UNC_ROUTE_H
#define YXTOOLS_PATHS_UNC_ROUTE_H

#include <cstddef>

#include "platform/win32.h"
#include "yxtools/ss.h"

namespace yx::paths {

struct UncPlatform {
    decltype(&::GetDriveTypeA) getDriveType;
    decltype(&::WNetGetUniversalNameA) getUniversalName;
    decltype(&::NetShareEnum) shareEnum;
    decltype(&::NetApiBufferFree) bufferFree;
    decltype(&::GetComputerNameA) getComputerName;
};

// The platform's own calls.
const UncPlatform& Win32UncPlatform();

// YXPath::W32ConvertToUNCPath over the given calls.
_SS<char> ConvertToUNC(const _SS<char>& path, const UncPlatform& platform);

// How many bytes of the lowered search text (drive and directory) a lowered share path covers:
// its length when it stands at the start of the text and ends at a folder's end (it ends in `\`,
// or the text goes on with `\` or `/`, or ends with it); else 0. A share path that ends inside a
// folder's name ("c:\da" against "c:\data\") covers nothing: it names another folder.
std::size_t ShareCovers(const char* searchLower, const char* sharePathLower);

// True when the text's last character (under the ANSI code page) is `\`; a trail byte 0x5C is not.
bool EndsInBackslash(const char* text);

} // namespace yx::paths

#endif
