#include <cstring>
#include <string>

#include "platform/posix/codepage.h"
#include "platform/win32.h"

namespace {

// Writes a component NUL-terminated. A component longer than the runtime's buffer for it is cut
// to fit; the library never hands over such a path.
void Put(char* buffer, std::size_t capacity, const char* begin, const char* end)
{
    if (buffer == nullptr) {
        return;
    }
    std::size_t length = static_cast<std::size_t>(end - begin);
    if (length >= capacity) {
        length = capacity - 1;
    }
    std::memcpy(buffer, begin, length);
    buffer[length] = '\0';
}

bool IsSeparator(char c)
{
    return c == '\\' || c == '/';
}

} // namespace

void _splitpath(const char* path, char* drive, char* dir, char* fname, char* ext)
{
    if (path == nullptr) {
        return;
    }
    // The drive is the first two bytes whenever the second is a colon, whatever the first is.
    const char* rest = path;
    if (path[0] != '\0' && path[1] == ':') {
        rest += 2;
    }
    Put(drive, _MAX_DRIVE, path, rest);

    // One walk over the rest: a lead byte takes the byte behind it along, so that byte is never a
    // separator or a dot. The runtime works in the ANSI code page unless told otherwise.
    const yx::platform::LeadByteTable& lead = yx::platform::LeadBytes(GetACP());
    const char* dirEnd = rest;
    const char* lastDot = nullptr;
    const char* end = rest;
    for (; *end != '\0'; ++end) {
        if (lead[static_cast<unsigned char>(*end)] && end[1] != '\0') {
            ++end;
        } else if (IsSeparator(*end)) {
            dirEnd = end + 1;
            lastDot = nullptr;
        } else if (*end == '.') {
            lastDot = end;
        }
    }
    const char* nameEnd = lastDot != nullptr ? lastDot : end;
    Put(dir, _MAX_DIR, rest, dirEnd);
    Put(fname, _MAX_FNAME, dirEnd, nameEnd);
    Put(ext, _MAX_EXT, nameEnd, end);
}

void _makepath(char* path, const char* drive, const char* dir, const char* fname, const char* ext)
{
    if (path == nullptr) {
        return;
    }
    std::string out;
    if (drive != nullptr && *drive != '\0') {
        // Only the letter is taken; the colon is always the runtime's own.
        out += drive[0];
        out += ':';
    }
    if (dir != nullptr && *dir != '\0') {
        out += dir;
        // Byte by byte, as the runtime does: a trail byte 0x5C ends the directory as a `\` would.
        if (!IsSeparator(out.back())) {
            out += '\\';
        }
    }
    if (fname != nullptr) {
        out += fname;
    }
    if (ext != nullptr && *ext != '\0') {
        if (*ext != '.') {
            out += '.';
        }
        out += ext;
    }
    std::memcpy(path, out.c_str(), out.size() + 1);
}
