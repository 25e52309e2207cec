// The prefix's win.ini as the profile service reads it; shared with `yxtools doctor`.
#ifndef YXTOOLS_PLATFORM_POSIX_PROFILE_WININI_H
#define YXTOOLS_PLATFORM_POSIX_PROFILE_WININI_H

#include <functional>
#include <string>

namespace yxposix {

// <prefix>/drive_c/windows/win.ini, where Wine keeps the file.
std::string WinIniPath();

// Whether two section or key names are the same, without regard to case.
bool SameProfileName(const std::string& a, const char* b);

// Calls `visit` with each key and value of the first section named `section`, in the order of the
// file, until it returns false. Windows' file rules: names without regard to case, blanks around
// names and values dropped, one pair of matching quotes taken off, ";" starting a comment line, a
// line without "=" holding no value. A key that comes twice is visited twice; the first one is the
// one that counts. False when the file is missing or unreadable.
bool ForEachWinIniKey(const std::string& path, const char* section,
                      const std::function<bool(const std::string& key, const std::string& value)>& visit);

} // namespace yxposix

#endif
