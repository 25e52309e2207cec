// UNC conversion: a path on a network drive takes the drive's network name, a path on a local
// drive the name of this computer and of the best local disk share that covers it.
#include <cstring>
#include <string>

#include "paths/unc_route.h"
#include "platform/win32.h"
#include "yxtools/path.h"

namespace yx::paths {

namespace {

// A wide text of the platform in the ANSI code page, into an output of 2 × length + 2 bytes; a
// null pointer is an empty text.
std::string Narrow(const WCHAR* wide)
{
    if (wide == nullptr) {
        return {};
    }
    std::size_t length = 0;
    while (wide[length] != 0) {
        ++length;
    }
    std::string text(2 * length + 2, '\0');
    WideCharToMultiByte(CP_ACP, 0, wide, -1, text.data(), static_cast<int>(text.size()), nullptr, nullptr);
    text.resize(std::strlen(text.c_str()));
    return text;
}

std::string Lowered(std::string text)
{
    _strlwr(text.data());
    return text;
}

// The shares of this computer, batch by batch; the best so far carries from one batch to the
// next, so a later batch must beat it.
_SS<char> LocalShares(const _SS<char>& path, const _SS<char>& drive, const _SS<char>& directory, const _SS<char>& name,
                      const _SS<char>& extension, const UncPlatform& platform)
{
    _SS<char> result = path;
    std::size_t best = 0;
    bool bestEndsInBackslash = false;
    std::string shareName;
    const std::string folder = drive + directory;
    const std::string search = Lowered(folder);
    DWORD resume = 0;
    for (;;) {
        LPBYTE buffer = nullptr;
        DWORD read = 0;
        DWORD total = 0;
        const NET_API_STATUS status =
            platform.shareEnum(nullptr, 502, &buffer, MAX_PREFERRED_LENGTH, &read, &total, &resume);
        if (status != NERR_Success && status != ERROR_MORE_DATA) {
            return result;
        }
        const auto* shares = reinterpret_cast<const SHARE_INFO_502*>(buffer);
        for (DWORD i = 0; shares != nullptr && i < read; ++i) {
            if (shares[i].shi502_type != STYPE_DISKTREE) {
                continue;
            }
            const std::string sharePath = Lowered(Narrow(shares[i].shi502_path));
            const std::size_t covered = ShareCovers(search.c_str(), sharePath.c_str());
            if (covered > best) {
                best = covered;
                bestEndsInBackslash = EndsInBackslash(sharePath.c_str());
                shareName = Narrow(shares[i].shi502_netname);
            }
        }
        platform.bufferFree(buffer);
        if (best != 0) {
            // A share path that ends in `\` leaves that `\` to the tail, so the tail always begins
            // with one (C:\ and C:\dir\ give \dir\; C:\data and C:\data\sub\ give \sub\).
            const std::string tail = folder.substr(bestEndsInBackslash ? best - 1 : best);
            // The buffer starts zeroed, and a failed call gives "localhost", the name under which
            // every Windows machine reaches itself, so that the result still leads to the share.
            char computer[16] = {};
            DWORD size = sizeof computer;
            if (platform.getComputerName(computer, &size) == 0) {
                std::strcpy(computer, "localhost");
            }
            result.Format("\\\\%s\\%s%s%s%s", computer, shareName.c_str(), tail.c_str(), name.c_str(),
                          extension.c_str());
        }
        if (status != ERROR_MORE_DATA) {
            return result;
        }
    }
}

} // namespace

const UncPlatform& Win32UncPlatform()
{
    static const UncPlatform platform{&::GetDriveTypeA, &::WNetGetUniversalNameA, &::NetShareEnum, &::NetApiBufferFree,
                                      &::GetComputerNameA};
    return platform;
}

std::size_t ShareCovers(const char* searchLower, const char* sharePathLower)
{
    const std::size_t length = std::strlen(sharePathLower);
    if (length == 0 || std::strncmp(searchLower, sharePathLower, length) != 0) {
        return 0;
    }
    const char next = searchLower[length];
    const bool atFolderEnd = EndsInBackslash(sharePathLower) || next == '\0' || next == '\\' || next == '/';
    return atFolderEnd ? length : 0;
}

bool EndsInBackslash(const char* text)
{
    bool last = false;
    for (const char* p = text; *p != '\0'; ++p) {
        last = *p == '\\';
        if (IsDBCSLeadByte(static_cast<BYTE>(*p)) != 0 && p[1] != '\0') {
            ++p;
        }
    }
    return last;
}

_SS<char> ConvertToUNC(const _SS<char>& path, const UncPlatform& platform)
{
    if (YXPath::IsUNCPath(path)) {
        return path;
    }
    _SS<char> drive;
    _SS<char> directory;
    _SS<char> name;
    _SS<char> extension;
    YXPath::Split(path, &drive, &directory, &name, &extension, nullptr);
    // Relative paths, rooted paths without a drive and URLs end here.
    if (path.size() < 2 || path[1] != ':') {
        return path;
    }
    // The mask, not DRIVE_REMOTE alone: CD-ROM and RAM disk drives take the network route too.
    if ((platform.getDriveType(drive.c_str()) & 4U) == 0) {
        return LocalShares(path, drive, directory, name, extension, platform);
    }
    alignas(REMOTE_NAME_INFOA) char buffer[260] = {};
    DWORD size = sizeof buffer;
    if (platform.getUniversalName(drive.c_str(), REMOTE_NAME_INFO_LEVEL, buffer, &size) != NO_ERROR) {
        return path;
    }
    const char* universal = reinterpret_cast<const REMOTE_NAME_INFOA*>(buffer)->lpUniversalName;
    if (universal == nullptr) {
        return path;
    }
    return _SS<char>(universal) + directory + name + extension;
}

} // namespace yx::paths

_SS<char> YXPath::ToUNC(const _SS<char>& path)
{
    return W32ConvertToUNCPath(path);
}

_SS<char> YXPath::W32ConvertToUNCPath(const _SS<char>& path)
{
    return yx::paths::ConvertToUNC(path, yx::paths::Win32UncPlatform());
}

bool Path_GetFromKernel(_SS<char>& path)
{
    HMODULE module = GetModuleHandleA("YXKernel.dll");
    if (module == nullptr) {
        return false;
    }
    char buffer[2000] = {};
    GetModuleFileNameA(module, buffer, sizeof buffer);
    // A path cut to the buffer may stand without its NUL (as older Windows leave it).
    path = _SS<char>(buffer, strnlen(buffer, sizeof buffer));
    return true;
}
