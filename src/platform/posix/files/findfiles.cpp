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

using namespace yxposix;

namespace {

// Windows rewrites a pattern before it matches: `?` becomes kAnyOrNone, a `.` before a
// wildcard or at the end becomes kDotOrEnd, a `*` before a `.` becomes kUpToLastDot.
constexpr char kAnyOrNone = '>';   // one character, or none at a dot or at the end of the name
constexpr char kDotOrEnd = '"';    // a dot, or the end of the name
constexpr char kUpToLastDot = '<'; // any characters that do not include the name's last dot

std::string Translate(const std::string& pattern)
{
    if (pattern == "*.*") {
        return "*";
    }
    std::string out = pattern;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const char next = i + 1 < pattern.size() ? pattern[i + 1] : '\0';
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

bool SameLetter(char a, char b)
{
    return std::toupper(static_cast<unsigned char>(a)) == std::toupper(static_cast<unsigned char>(b));
}

bool Match(const char* p, const char* n, const char* lastDot)
{
    for (;; ++p) {
        switch (*p) {
        case '\0':
            return *n == '\0';
        case '*':
            for (const char* rest = n;; ++rest) {
                if (Match(p + 1, rest, lastDot)) {
                    return true;
                }
                if (*rest == '\0') {
                    return false;
                }
            }
        case kUpToLastDot:
            for (const char* rest = n;; ++rest) {
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
            if (*n == '\0' || !SameLetter(*p, *n)) {
                return false;
            }
            ++n;
            continue;
        }
    }
}

bool Matches(const std::string& translated, const std::string& name)
{
    const std::size_t dot = name.rfind('.');
    return Match(translated.c_str(), name.c_str(), dot == std::string::npos ? nullptr : name.c_str() + dot);
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
    const std::string search = lpFileName != nullptr ? lpFileName : "";
    const std::size_t cut = search.find_last_of("\\/");
    const std::string folder = cut == std::string::npos ? std::string() : search.substr(0, cut + 1);
    const std::string pattern = cut == std::string::npos ? search : search.substr(cut + 1);
    if (pattern.empty()) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    std::string posixFolder = folder.empty() ? std::string("./") : PosixPath(folder.c_str());
    if (posixFolder.back() != '/') {
        posixFolder += '/';
    }
    DIR* dir = ::opendir(posixFolder.c_str());
    if (dir == nullptr) {
        SetLastError(errno == EACCES ? ERROR_ACCESS_DENIED : ERROR_PATH_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    // A root has no "." and "..", on a drive as at "/".
    const bool root =
        (!folder.empty() && IsRootPath(folder.c_str())) || posixFolder.find_first_not_of('/') == std::string::npos;
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
    const std::string translated = Translate(pattern);
    auto* state = new FindState{posixFolder, {}, 0};
    for (const std::string& name : names) {
        if (Matches(translated, name)) {
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
