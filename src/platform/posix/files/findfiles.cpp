// Directory search in the POSIX stand-in: FindFirstFileA, FindNextFileA, FindClose.
#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "platform/posix/files/files_internal.h"
#include "platform/posix/files/handle_table.h"
#include "platform/posix/files/resolver.h"

using namespace yxposix;

namespace {

namespace files = yx::platform::files;

// Patterns match character by character, on the names converted from the ANSI code page and
// upper-cased, so that `?` takes a double-byte character whole and case never touches a trail
// byte. Windows rewrites a pattern before it matches: `?` becomes kAnyOrNone, a `.` before a
// wildcard or at the end becomes kDotOrEnd, a `*` before a `.` becomes kUpToLastDot.
using Text = std::u16string;
constexpr char16_t kAnyOrNone = u'>';   // one character, or none at a dot or at the end of the name
constexpr char16_t kDotOrEnd = u'"';    // a dot, or the end of the name
constexpr char16_t kUpToLastDot = u'<'; // any characters that do not include the name's last dot

Text Translate(const Text& pattern)
{
    if (pattern == u"*.*") {
        return u"*";
    }
    Text out = pattern;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const char16_t next = i + 1 < pattern.size() ? pattern[i + 1] : u'\0';
        if (pattern[i] == '?') {
            out[i] = kAnyOrNone;
        } else if (pattern[i] == '.' && (next == '?' || next == '*' || next == '\0')) {
            out[i] = kDotOrEnd;
        } else if (pattern[i] == '*' && next == '.') {
            out[i] = kUpToLastDot;
        }
    }
    return out;
}

bool Match(const char16_t* p, const char16_t* n, const char16_t* lastDot)
{
    for (;; ++p) {
        switch (*p) {
        case '\0':
            return *n == '\0';
        case '*':
            for (const char16_t* rest = n;; ++rest) {
                if (Match(p + 1, rest, lastDot)) {
                    return true;
                }
                if (*rest == '\0') {
                    return false;
                }
            }
        case kUpToLastDot:
            for (const char16_t* rest = n;; ++rest) {
                if (Match(p + 1, rest, lastDot)) {
                    return true;
                }
                if (*rest == '\0' || rest == lastDot) {
                    return false;
                }
            }
        case kAnyOrNone:
            if (*n == '\0' || *n == '.') {
                while (p[1] == kAnyOrNone) {
                    ++p;
                }
                continue;
            }
            ++n;
            continue;
        case kDotOrEnd:
            if (*n == '.') {
                ++n;
            } else if (*n != '\0') {
                return false;
            }
            continue;
        default:
            if (*n == '\0' || *p != *n) {
                return false;
            }
            ++n;
            continue;
        }
    }
}

bool Matches(const Text& translated, const Text& name)
{
    const std::size_t dot = name.rfind(u'.');
    return Match(translated.c_str(), name.c_str(), dot == Text::npos ? nullptr : name.c_str() + dot);
}

struct FindState {
    std::string folder; // POSIX path, closed by '/'
    std::vector<std::string> names;
    std::size_t next = 0;
};

yx::platform::HandleTable<FindState> g_searches;

void Fill(const FindState& state, const std::string& name, WIN32_FIND_DATAA* data)
{
    std::memset(data, 0, sizeof(*data));
    struct stat st {};
    const std::string path = state.folder + name;
    if (::stat(path.c_str(), &st) != 0) {
        ::lstat(path.c_str(), &st);
    }
    data->dwFileAttributes = AttributesOf(st);
    data->ftCreationTime = FileTimeOf(st.st_ctim);
    data->ftLastAccessTime = FileTimeOf(st.st_atim);
    data->ftLastWriteTime = FileTimeOf(st.st_mtim);
    const auto size = S_ISDIR(st.st_mode) ? 0 : static_cast<std::uint64_t>(st.st_size);
    data->nFileSizeHigh = static_cast<DWORD>(size >> 32);
    data->nFileSizeLow = static_cast<DWORD>(size);
    std::strncpy(data->cFileName, name.c_str(), MAX_PATH - 1);
}

} // namespace

HANDLE FindFirstFileA(LPCSTR lpFileName, LPWIN32_FIND_DATAA lpFindFileData)
{
    const files::Resolved resolved = files::ResolvePath(lpFileName, true);
    if (resolved.error != ERROR_SUCCESS) {
        SetLastError(resolved.error);
        return INVALID_HANDLE_VALUE;
    }
    // A search needs a pattern: "C:" or a folder closed by a separator has none.
    if (!resolved.named || resolved.closedBySeparator || resolved.name.empty()) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    const std::string posixFolder = resolved.path.substr(0, resolved.path.rfind('/') + 1);
    const std::string& pattern = resolved.name;
    // A device name without wildcards finds itself, as written.
    if (pattern.find_first_of("*?<>\"") == std::string::npos && files::DeviceOf(pattern) != files::Device::kNone) {
        std::memset(lpFindFileData, 0, sizeof(*lpFindFileData));
        lpFindFileData->dwFileAttributes = FILE_ATTRIBUTE_ARCHIVE;
        std::strncpy(lpFindFileData->cFileName, pattern.c_str(), MAX_PATH - 1);
        HANDLE handle = g_searches.Add(new FindState{posixFolder, {pattern}, 1});
        SetLastError(ERROR_SUCCESS);
        return handle;
    }
    DIR* dir = ::opendir(posixFolder.c_str());
    if (dir == nullptr) {
        SetLastError(errno == EACCES ? ERROR_ACCESS_DENIED : ERROR_PATH_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    // A root has no "." and "..", on a drive as at "/".
    const bool root = posixFolder == resolved.root + "/" || posixFolder == resolved.root || posixFolder == "/";
    std::vector<std::string> names;
    bool dot = false;
    bool dotdot = false;
    while (const dirent* entry = ::readdir(dir)) {
        const std::string name = entry->d_name;
        if (name == "." || name == "..") {
            (name == "." ? dot : dotdot) = true;
            continue;
        }
        names.push_back(name);
    }
    ::closedir(dir);
    std::sort(names.begin(), names.end());
    if (!root) {
        if (dotdot) {
            names.insert(names.begin(), "..");
        }
        if (dot) {
            names.insert(names.begin(), ".");
        }
    }
    const files::NameFolding folding;
    const Text translated = Translate(folding.Upper(pattern));
    auto* state = new FindState{posixFolder, {}, 0};
    for (const std::string& name : names) {
        if (Matches(translated, folding.Upper(name))) {
            state->names.push_back(name);
        }
    }
    if (state->names.empty()) {
        delete state;
        SetLastError(ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    Fill(*state, state->names[state->next++], lpFindFileData);
    HANDLE handle = g_searches.Add(state);
    SetLastError(ERROR_SUCCESS);
    return handle;
}

BOOL FindNextFileA(HANDLE hFindFile, LPWIN32_FIND_DATAA lpFindFileData)
{
    FindState* state = g_searches.Find(hFindFile);
    if (state == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    if (state->next >= state->names.size()) {
        SetLastError(ERROR_NO_MORE_FILES);
        return FALSE;
    }
    Fill(*state, state->names[state->next++], lpFindFileData);
    return TRUE;
}

BOOL FindClose(HANDLE hFindFile)
{
    FindState* state = g_searches.Take(hFindFile);
    if (state == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    delete state;
    return TRUE;
}
