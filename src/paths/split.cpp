#include <yxtools/path.h>

#include <cctype>
#include <cstring>

#include "platform/win32.h"

namespace {

struct Prefix {
    const char* text;
    YXPATHKIND kind;
};

// Tested in this order; the first match decides.
const Prefix kPrefixes[] = {
    {"file:", YXPATHKIND_FILE},         {"https:", YXPATHKIND_HTTPS},   {"http:", YXPATHKIND_HTTP},
    {"ftp:", YXPATHKIND_FTP},           {"news:", YXPATHKIND_NEWS},     {"telnet:", YXPATHKIND_TELNET},
    {"wais:", YXPATHKIND_WAIS},         {"mailto:", YXPATHKIND_MAILTO}, {"nntp:", YXPATHKIND_NNTP},
    {"prospero:", YXPATHKIND_PROSPERO}, {"gopher:", YXPATHKIND_GOPHER},
};

// Whether the path starts with the prefix, ignoring case. A path shorter than the prefix is
// compared whole, and its end differs from the prefix's next byte.
bool StartsWith(const char* path, const char* prefix)
{
    for (; *prefix != '\0'; ++path, ++prefix) {
        if (std::tolower(static_cast<unsigned char>(*path)) != *prefix) {
            return false;
        }
    }
    return true;
}

// Paths this long or longer don't fit the runtime's 256-byte component buffers.
constexpr std::size_t kLongPath = 255;

// A component as text up to its first NUL, into the out-argument when there is one.
void Assign(_SS<char>* out, const char* begin, std::size_t length)
{
    if (out != nullptr) {
        const void* nul = std::memchr(begin, '\0', length);
        out->assign(begin, nul != nullptr ? static_cast<std::size_t>(static_cast<const char*>(nul) - begin) : length);
    }
}

// Whether the path is one of the out-arguments: its text is then read from a copy.
bool Receives(const _SS<char>& path, const _SS<char>* pDrive, const _SS<char>* pDirectory, const _SS<char>* pName,
              const _SS<char>* pExtension)
{
    return pDrive == &path || pDirectory == &path || pName == &path || pExtension == &path;
}

} // namespace

YXPath::YXPath(const _SS<char>* pText)
{
    if (pText != nullptr) {
        assign(*pText);
    }
}

YXPath::YXPath(const YXPath& other) = default;

YXPath& YXPath::operator=(const YXPath& other)
{
    _SS<char>::operator=(other);
    return *this;
}

YXPath::~YXPath() = default;

YXPATHKIND YXPath::GetPathProtocol(const _SS<char>& path)
{
    for (const Prefix& prefix : kPrefixes) {
        if (StartsWith(path.c_str(), prefix.text)) {
            return prefix.kind;
        }
    }
    return YXPATHKIND_NONE;
}

bool YXPath::Split(const _SS<char>& path, _SS<char>* pDrive, _SS<char>* pDirectory, _SS<char>* pName,
                   _SS<char>* pExtension, YXPATHKIND* pKind)
{
    // An out-argument may be the path itself: the split then reads a copy, which the assignments
    // of the components leave alone, and the kind is that of the path as given.
    if (Receives(path, pDrive, pDirectory, pName, pExtension)) {
        const _SS<char> copy(path); // NOLINT(performance-unnecessary-copy-initialization): the outputs overwrite path
        return Split(copy, pDrive, pDirectory, pName, pExtension, pKind);
    }
    bool result = true;
    if (path.size() < kLongPath) {
        char drive[_MAX_DRIVE];
        char directory[_MAX_DIR];
        char name[_MAX_FNAME];
        char extension[_MAX_EXT];
        _splitpath(path.c_str(), drive, directory, name, extension);
        Assign(pDrive, drive, std::strlen(drive));
        Assign(pDirectory, directory, std::strlen(directory));
        Assign(pName, name, std::strlen(name));
        Assign(pExtension, extension, std::strlen(extension));
    } else {
        result = SlowSplit(path, pDrive, pDirectory, pName, pExtension);
    }
    if (pKind != nullptr) {
        *pKind = GetPathProtocol(path);
    }
    return result;
}

bool YXPath::SlowSplit(const _SS<char>& path, _SS<char>* pDrive, _SS<char>* pDirectory, _SS<char>* pName,
                       _SS<char>* pExtension)
{
    // A derived class may call this route with the path as an out-argument too.
    if (Receives(path, pDrive, pDirectory, pName, pExtension)) {
        const _SS<char> copy(path); // NOLINT(performance-unnecessary-copy-initialization): the outputs overwrite path
        return SlowSplit(copy, pDrive, pDirectory, pName, pExtension);
    }
    char drive[_MAX_DRIVE];
    _splitpath(path.c_str(), drive, nullptr, nullptr, nullptr);
    const std::size_t driveLength = std::strlen(drive);
    const char* rest = path.data() + driveLength;
    const std::size_t length = path.size() - driveLength;

    // Byte by byte from the end, with no regard to the code page: a trail byte 0x5C is a separator
    // here, unlike in the runtime's cut of shorter paths.
    std::size_t nameBegin = 0;
    std::size_t nameEnd = length;
    bool separator = false;
    for (std::size_t i = length; i-- > 0;) {
        if (rest[i] == '\\' || rest[i] == '/') {
            nameBegin = i + 1;
            separator = true;
            break;
        }
    }
    for (std::size_t i = length; i-- > 0;) {
        if (rest[i] == '.') {
            if (!separator || i >= nameBegin) {
                nameEnd = i;
            }
            break;
        }
    }

    Assign(pDrive, drive, driveLength);
    Assign(pDirectory, rest, nameBegin);
    Assign(pName, rest + nameBegin, nameEnd - nameBegin);
    // A rest that starts with its only dot and holds no separator (".aaa…" with or without a drive)
    // ends its name at 0. Such text goes to the extension, as the runtime does with ".profile":
    // both routes then cut every path without double-byte characters alike.
    Assign(pExtension, rest + nameEnd, length - nameEnd);
    return true;
}

bool YXPath::IsUNCPath(const _SS<char>& path)
{
    return path.size() >= 2 && path[0] == '\\' && path[1] == '\\';
}
