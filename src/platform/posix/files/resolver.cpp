// The path resolver of the file stand-in (rules in resolver.h).
#include "platform/posix/files/resolver.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <strings.h>
#include <string>
#include <unicode/uchar.h>
#include <unicode/ucnv.h>
#include <vector>

#include "platform/posix/codepage.h"
#include "platform/posix/prefix.h"

namespace yx::platform::files {

namespace {

using Names = std::vector<std::string>;

bool IsSeparator(char c)
{
    return c == '\\' || c == '/';
}

std::string Join(const std::string& folder, const std::string& name)
{
    return !folder.empty() && folder.back() == '/' ? folder + name : folder + "/" + name;
}

bool IsFolder(const std::string& path)
{
    struct stat st {};
    return ::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

// The names of a path, cut at the separators that are characters of their own. A lead byte with
// nothing after it is dropped. `invalid` tells, name by name, whether a character Win32 refuses
// in names is in it; `closed` whether a separator ends the text.
struct Split {
    Names names;
    std::vector<bool> invalid;
    bool closed = false;
    // A double-byte character whose trail byte is '/' (none of the Windows code pages has one): no
    // name on disk can hold it.
    bool slashTrail = false;
};

Split SplitNames(const char* text, const LeadByteTable& lead)
{
    Split out;
    std::string name;
    bool invalid = false;
    bool separatorLast = false;
    const auto endName = [&] {
        if (!name.empty()) {
            out.names.push_back(name);
            out.invalid.push_back(invalid);
        }
        name.clear();
        invalid = false;
    };
    for (const char* p = text; *p != '\0'; ++p) {
        const auto byte = static_cast<unsigned char>(*p);
        separatorLast = false;
        if (lead[byte]) {
            if (p[1] == '\0') {
                break;
            }
            out.slashTrail = out.slashTrail || p[1] == '/';
            name += *p;
            name += *++p;
            continue;
        }
        if (IsSeparator(*p)) {
            endName();
            separatorLast = true;
            continue;
        }
        if (byte < 0x20 || std::strchr("*?<>|\"", *p) != nullptr) {
            invalid = true;
        }
        name += *p;
    }
    out.closed = separatorLast && !out.names.empty();
    endName();
    return out;
}

// The folder names of `path` below `root`, when `path` lies in `root` (both resolved).
bool NamesBelow(const std::string& path, const std::string& root, Names& names)
{
    if (path.compare(0, root.size(), root) != 0 ||
        (path.size() > root.size() && path[root.size()] != '/' && root != "/")) {
        return false;
    }
    names.clear();
    std::string name;
    for (std::size_t i = root.size(); i <= path.size(); ++i) {
        if (i == path.size() || path[i] == '/') {
            if (!name.empty()) {
                names.push_back(name);
            }
            name.clear();
        } else {
            name += path[i];
        }
    }
    return true;
}

std::string CurrentFolder()
{
    char buffer[PATH_MAX];
    return ::getcwd(buffer, sizeof(buffer)) != nullptr ? std::string(buffer) : std::string("/");
}

std::string RealPath(const std::string& path)
{
    char buffer[PATH_MAX];
    return ::realpath(path.c_str(), buffer) != nullptr ? std::string(buffer) : std::string();
}

// The current folder of drive `letter` as names below its root: the process's current folder
// when it lies on that drive, else none (the root).
Names DriveCurrentNames(char letter)
{
    Names names;
    const std::string drive = RealPath(DriveFolder(letter));
    if (drive.empty() || !NamesBelow(CurrentFolder(), drive, names)) {
        names.clear();
    }
    return names;
}

// The current drive: the drive whose folder holds the process's current folder (the deepest one
// when drive folders nest), else the POSIX root.
std::string CurrentDrive(Names& names)
{
    const std::string current = CurrentFolder();
    std::string best = "/";
    std::size_t bestLength = 0;
    NamesBelow(current, "/", names);
    for (char letter = 'a'; letter <= 'z'; ++letter) {
        const std::string drive = RealPath(DriveFolder(letter));
        Names below;
        if (!drive.empty() && drive.size() > bestLength && NamesBelow(current, drive, below)) {
            best = DriveFolder(letter);
            bestLength = drive.size();
            names = below;
        }
    }
    return best;
}

// The entry of `folder` that is `name` for Windows: the exact name, else the first in byte order
// that is the same name in upper case. False when there is none.
bool FindEntry(const std::string& folder, const std::string& name, std::string& found)
{
    struct stat st {};
    if (::lstat(Join(folder, name).c_str(), &st) == 0) {
        found = name;
        return true;
    }
    DIR* dir = ::opendir(folder.c_str());
    if (dir == nullptr) {
        return false;
    }
    const NameFolding folding;
    const std::u16string wanted = folding.Upper(name);
    bool any = false;
    while (const dirent* entry = ::readdir(dir)) {
        const std::string candidate = entry->d_name;
        if (candidate == "." || candidate == ".." || (any && candidate >= found)) {
            continue;
        }
        if (folding.Upper(candidate) == wanted) {
            found = candidate;
            any = true;
        }
    }
    ::closedir(dir);
    return any;
}

// The device a last name stands for: its part before the first dot or colon, without trailing
// spaces, compared without case.
} // namespace

NameFolding::NameFolding()
{
    const UINT codePage = GetACP();
    const std::string name = codePage == 65001 ? std::string("UTF-8") : "windows-" + std::to_string(codePage);
    UErrorCode status = U_ZERO_ERROR;
    m_converter = ucnv_open(name.c_str(), &status);
    if (U_FAILURE(status)) {
        m_converter = nullptr;
    }
}

NameFolding::~NameFolding()
{
    if (m_converter != nullptr) {
        ucnv_close(m_converter);
    }
}

std::u16string NameFolding::Upper(const std::string& name) const
{
    std::u16string out;
    if (m_converter == nullptr) {
        for (const char c : name) {
            out += static_cast<char16_t>(std::toupper(static_cast<unsigned char>(c)));
        }
        return out;
    }
    out.resize(name.size() * 2 + 1);
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = ucnv_toUChars(m_converter, out.data(), static_cast<int32_t>(out.size()), name.data(),
                                         static_cast<int32_t>(name.size()), &status);
    out.resize(U_SUCCESS(status) ? static_cast<std::size_t>(length) : 0);
    for (char16_t& c : out) {
        c = static_cast<char16_t>(u_toupper(c));
    }
    return out;
}

Device DeviceOf(const std::string& name)
{
    std::string base = name.substr(0, name.find_first_of(".:"));
    while (!base.empty() && base.back() == ' ') {
        base.pop_back();
    }
    for (char& c : base) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    if (base == "NUL") {
        return Device::kNull;
    }
    if (base == "CON" || base == "CONIN$" || base == "CONOUT$") {
        return Device::kConsole;
    }
    if (base == "AUX" || base == "PRN") {
        return Device::kPort;
    }
    const bool numbered = base.size() == 4 && (base.compare(0, 3, "COM") == 0 || base.compare(0, 3, "LPT") == 0);
    return numbered && base[3] >= '1' && base[3] <= '9' ? Device::kPort : Device::kNone;
}

namespace {

void StripTrailingDotsAndSpaces(std::string& name)
{
    while (!name.empty() && (name.back() == '.' || name.back() == ' ')) {
        name.pop_back();
    }
}

bool AllDots(const std::string& name)
{
    return name.find_first_not_of('.') == std::string::npos;
}

// The text after the separators at `p` and the name that follows them.
const char* SkipName(const char* p, const LeadByteTable& lead)
{
    while (IsSeparator(*p)) {
        ++p;
    }
    for (; *p != '\0' && !IsSeparator(*p); ++p) {
        if (lead[static_cast<unsigned char>(*p)] && p[1] != '\0') {
            ++p;
        }
    }
    return p;
}

// Where a path starts: the root folder it cannot climb out of, the names it starts from (a
// current folder), the rest of its text, and whether the rest is taken as written.
struct Start {
    DWORD error = ERROR_SUCCESS;
    std::string root;
    Names base;
    const char* rest = "";
    bool literal = false;
    Device device = Device::kNone;
};

Start StartOf(const char* path, const LeadByteTable& lead)
{
    Start start;
    const auto isDrive = [](const char* p) {
        return std::isalpha(static_cast<unsigned char>(p[0])) != 0 && p[1] == ':';
    };
    if (IsSeparator(path[0]) && IsSeparator(path[1])) {
        const char* unc = path + 2; // "server\share\..."
        if ((path[2] == '.' || path[2] == '?') && IsSeparator(path[3])) {
            // The device name space: a drive path, a share, or a device.
            const char* rest = path + 4;
            start.literal = path[2] == '?';
            if (isDrive(rest) && (IsSeparator(rest[2]) || rest[2] == '\0')) {
                start.root = DriveFolder(rest[0]);
                start.rest = rest + 2;
                return start;
            }
            if (strncasecmp(rest, "UNC", 3) != 0 || !IsSeparator(rest[3])) {
                start.device = std::strpbrk(rest, "\\/") == nullptr ? DeviceOf(rest) : Device::kNone;
                start.error = start.device == Device::kNone ? ERROR_FILE_NOT_FOUND : ERROR_SUCCESS;
                return start;
            }
            unc = rest + 4;
        }
        const Split parts = SplitNames(unc, lead);
        if (parts.slashTrail || parts.names.size() < 2) {
            start.error = parts.slashTrail ? ERROR_INVALID_NAME : ERROR_PATH_NOT_FOUND;
            return start;
        }
        std::string server;
        std::string share;
        const std::string shares = yxposix::Prefix() + "/dosdevices/unc";
        if (!FindEntry(shares, parts.names[0], server) || !FindEntry(Join(shares, server), parts.names[1], share)) {
            server = parts.names[0];
            share = parts.names[1];
        }
        start.root = UncFolder(server, share);
        start.rest = SkipName(SkipName(unc, lead), lead); // the rest starts after the share's name
        return start;
    }
    if (isDrive(path)) {
        start.root = DriveFolder(path[0]);
        if (!IsSeparator(path[2])) {
            start.base = DriveCurrentNames(path[0]);
        }
        start.rest = path + 2;
        return start;
    }
    start.root = CurrentDrive(start.base);
    if (IsSeparator(path[0])) {
        start.base.clear();
    }
    start.rest = path;
    return start;
}

} // namespace

std::string DriveFolder(char letter)
{
    return yxposix::Prefix() + "/dosdevices/" + static_cast<char>(std::tolower(static_cast<unsigned char>(letter))) +
           ':';
}

std::string UncFolder(const std::string& server, const std::string& share)
{
    return yxposix::Prefix() + "/dosdevices/unc/" + server + "/" + share;
}

bool SameName(const std::string& a, const std::string& b)
{
    const NameFolding folding;
    return a == b || folding.Upper(a) == folding.Upper(b);
}

Resolved ResolvePath(const char* path, bool pattern)
{
    Resolved r;
    if (path == nullptr || *path == '\0') {
        r.error = ERROR_PATH_NOT_FOUND;
        return r;
    }
    if (std::strlen(path) >= MAX_PATH) {
        r.error = ERROR_FILENAME_EXCED_RANGE;
        return r;
    }
    const LeadByteTable& lead = LeadBytes(GetACP());
    const Start start = StartOf(path, lead);
    r.error = start.error;
    if (start.device != Device::kNone) {
        r.device = start.device;
        r.exists = true;
        r.path = start.device == Device::kNull ? "/dev/null" : std::string();
        return r;
    }
    if (r.error != ERROR_SUCCESS) {
        return r;
    }
    r.root = start.root;
    const Split split = SplitNames(start.rest, lead);
    if (split.slashTrail) {
        r.error = ERROR_INVALID_NAME;
        return r;
    }
    r.closedBySeparator = split.closed;
    r.named = !split.names.empty();

    // The names in the text first: nothing on disk is looked at before the whole path is valid.
    Names names = start.base;
    for (std::size_t i = 0; i < split.names.size(); ++i) {
        std::string name = split.names[i];
        const bool last = i + 1 == split.names.size();
        if (split.invalid[i] && !(pattern && last)) {
            r.error = ERROR_INVALID_NAME;
            return r;
        }
        if (start.literal) {
            if (name == "." || name == "..") {
                r.error = ERROR_INVALID_NAME;
                return r;
            }
        } else if (name == ".") {
            continue;
        } else if (name == "..") {
            if (!names.empty()) {
                names.pop_back();
            }
            continue;
        } else if (last) {
            if (!pattern) {
                StripTrailingDotsAndSpaces(name);
            }
        } else if (AllDots(name)) {
            r.error = ERROR_INVALID_NAME;
            return r;
        } else if (name.back() == '.') {
            name.pop_back();
        }
        if (!name.empty()) {
            names.push_back(name);
        }
    }

    // Then the walk: every folder must be there.
    std::string folder = start.root;
    if (!IsFolder(folder)) {
        r.error = ERROR_PATH_NOT_FOUND;
        return r;
    }
    for (std::size_t i = 0; i + 1 < names.size(); ++i) {
        std::string found;
        if (!FindEntry(folder, names[i], found) || !IsFolder(Join(folder, found))) {
            r.error = ERROR_PATH_NOT_FOUND;
            return r;
        }
        folder = Join(folder, found);
    }
    if (names.empty()) {
        r.path = folder;
        r.exists = true;
        r.directory = true;
        return r;
    }
    const std::string& name = names.back();
    r.name = name;
    if (pattern) {
        r.path = Join(folder, name); // the folder is the part before the last '/'
        return r;
    }
    r.device = start.literal ? Device::kNone : DeviceOf(name);
    if (r.device != Device::kNone) {
        r.exists = true;
        r.path = r.device == Device::kNull ? "/dev/null" : std::string();
        return r;
    }
    std::string found;
    r.exists = FindEntry(folder, name, found);
    r.path = Join(folder, r.exists ? found : name);
    if (r.exists) {
        struct stat st {};
        if (::stat(r.path.c_str(), &st) == 0) {
            r.directory = S_ISDIR(st.st_mode);
            r.regular = S_ISREG(st.st_mode);
        }
    }
    return r;
}

} // namespace yx::platform::files
