// GetDriveTypeA, WNetGetUniversalNameA, NetShareEnum, NetApiBufferFree and GetComputerNameA over
// the facts of net_facts.h.
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include <unicode/ustring.h>

#include "platform/posix/files/resolver.h"
#include "platform/posix/net/net_facts.h"
#include "platform/win32.h"

namespace {

namespace net = yx::platform::net;

// The letter of "X:" or "X:\" (also "X:/"), else 0.
char RootLetter(const char* root)
{
    if (root == nullptr || std::isalpha(static_cast<unsigned char>(root[0])) == 0 || root[1] != ':') {
        return 0;
    }
    const bool bare = root[2] == '\0' || ((root[2] == '\\' || root[2] == '/') && root[3] == '\0');
    return bare ? root[0] : 0;
}

// The drive whose folder holds the current folder, else 0.
char CurrentLetter()
{
    char cwd[PATH_MAX];
    if (getcwd(cwd, sizeof cwd) == nullptr) {
        return 0;
    }
    const std::string path = net::DrivePathOf(cwd);
    return path.size() >= 2 && path[1] == ':' ? path[0] : 0;
}

std::u16string Utf16(const std::string& utf8)
{
    std::u16string out(utf8.size() + 1, u'\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(out.data(), static_cast<int32_t>(out.size()), &length, utf8.data(),
                         static_cast<int32_t>(utf8.size()), 0xFFFD, nullptr, &status);
    out.resize(U_SUCCESS(status) ? static_cast<std::size_t>(length) : 0);
    return out;
}

// The buffers that NetShareEnum handed out and NetApiBufferFree has not taken back.
std::mutex g_buffersLock;
std::set<void*> g_buffers;

// The most entries one call hands out, whatever the caller prefers: a server that answers in
// fragments. YXTOOLS_SHARE_BATCH sets it (tests); 0 or unset: no limit.
std::size_t BatchLimit()
{
    const char* value = std::getenv("YXTOOLS_SHARE_BATCH");
    const long limit = value != nullptr ? std::strtol(value, nullptr, 10) : 0;
    return limit > 0 ? static_cast<std::size_t>(limit) : SIZE_MAX;
}

bool IsThisComputer(const WCHAR* server)
{
    if (server == nullptr) {
        return true;
    }
    while (*server == u'\\') {
        ++server;
    }
    const std::u16string name = Utf16(net::ComputerName());
    std::u16string given(server);
    if (given.empty()) {
        return true;
    }
    for (char16_t& c : given) {
        c = c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - u'a' + u'A') : c;
    }
    return given == name;
}

} // namespace

UINT GetDriveTypeA(LPCSTR lpRootPathName)
{
    const char letter = lpRootPathName == nullptr ? CurrentLetter() : RootLetter(lpRootPathName);
    if (letter == 0) {
        // The current folder on no drive lies on the POSIX root, a fixed disk.
        return lpRootPathName == nullptr ? DRIVE_FIXED : DRIVE_NO_ROOT_DIR;
    }
    return net::Drive(letter).type;
}

DWORD WNetGetUniversalNameA(LPCSTR lpLocalPath, DWORD dwInfoLevel, LPVOID lpBuffer, DWORD* lpBufferSize)
{
    if (lpLocalPath == nullptr || lpBufferSize == nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    if (dwInfoLevel != UNIVERSAL_NAME_INFO_LEVEL && dwInfoLevel != REMOTE_NAME_INFO_LEVEL) {
        return ERROR_INVALID_LEVEL;
    }
    if (std::isalpha(static_cast<unsigned char>(lpLocalPath[0])) == 0 || lpLocalPath[1] != ':') {
        return ERROR_BAD_DEVICE;
    }
    const net::DriveFact drive = net::Drive(lpLocalPath[0]);
    if (drive.type != DRIVE_REMOTE || drive.remoteName.empty()) {
        return ERROR_NOT_CONNECTED;
    }
    const std::string remaining = lpLocalPath + 2;
    const std::string universal = drive.remoteName + remaining;
    const std::size_t record =
        dwInfoLevel == REMOTE_NAME_INFO_LEVEL ? sizeof(REMOTE_NAME_INFOA) : sizeof(UNIVERSAL_NAME_INFOA);
    std::size_t needed = record + universal.size() + 1;
    if (dwInfoLevel == REMOTE_NAME_INFO_LEVEL) {
        needed += drive.remoteName.size() + 1 + remaining.size() + 1;
    }
    if (lpBuffer == nullptr || *lpBufferSize < needed) {
        *lpBufferSize = static_cast<DWORD>(needed);
        return ERROR_MORE_DATA;
    }
    char* text = static_cast<char*>(lpBuffer) + record;
    auto place = [&text](const std::string& value) {
        char* start = text;
        std::memcpy(text, value.c_str(), value.size() + 1);
        text += value.size() + 1;
        return start;
    };
    if (dwInfoLevel == REMOTE_NAME_INFO_LEVEL) {
        auto* info = static_cast<REMOTE_NAME_INFOA*>(lpBuffer);
        info->lpUniversalName = place(universal);
        info->lpConnectionName = place(drive.remoteName);
        info->lpRemainingPath = place(remaining);
    } else {
        static_cast<UNIVERSAL_NAME_INFOA*>(lpBuffer)->lpUniversalName = place(universal);
    }
    return NO_ERROR;
}

NET_API_STATUS NetShareEnum(LMSTR servername, DWORD level, LPBYTE* bufptr, DWORD prefmaxlen, DWORD* entriesread,
                            DWORD* totalentries, DWORD* resume_handle)
{
    if (bufptr == nullptr || entriesread == nullptr || totalentries == nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    *bufptr = nullptr;
    *entriesread = 0;
    *totalentries = 0;
    if (level != 502) {
        return ERROR_INVALID_LEVEL;
    }
    if (!IsThisComputer(servername)) {
        return ERROR_BAD_NETPATH;
    }
    const std::vector<net::ShareFact> shares = net::Shares(nullptr);
    const std::size_t first = resume_handle != nullptr ? *resume_handle : 0;
    if (first >= shares.size()) {
        return NERR_Success;
    }
    struct Texts {
        std::u16string name;
        std::u16string path;
    };
    std::vector<Texts> texts;
    std::size_t bytes = 0;
    const std::size_t limit = BatchLimit();
    for (std::size_t i = first; i < shares.size() && texts.size() < limit; ++i) {
        Texts t{Utf16(shares[i].name), Utf16(shares[i].path)};
        const std::size_t size = sizeof(SHARE_INFO_502) + (t.name.size() + 1 + 1 + t.path.size() + 1) * sizeof(WCHAR);
        if (!texts.empty() && prefmaxlen != MAX_PREFERRED_LENGTH && bytes + size > prefmaxlen) {
            break;
        }
        bytes += size;
        texts.push_back(std::move(t));
    }
    auto* block = static_cast<LPBYTE>(std::calloc(1, bytes));
    if (block == nullptr) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
    auto* records = reinterpret_cast<SHARE_INFO_502*>(block);
    auto* text = reinterpret_cast<WCHAR*>(block + texts.size() * sizeof(SHARE_INFO_502));
    auto place = [&text](const std::u16string& value) {
        WCHAR* start = text;
        std::copy(value.begin(), value.end(), text);
        text[value.size()] = u'\0';
        text += value.size() + 1;
        return start;
    };
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const net::ShareFact& share = shares[first + i];
        SHARE_INFO_502& record = records[i];
        record.shi502_netname = place(texts[i].name);
        record.shi502_type = share.type;
        record.shi502_remark = place(u"");
        record.shi502_path = share.noPath ? nullptr : place(texts[i].path);
        record.shi502_max_uses = 0xFFFFFFFF;
    }
    {
        const std::lock_guard<std::mutex> hold(g_buffersLock);
        g_buffers.insert(block);
    }
    *bufptr = block;
    *entriesread = static_cast<DWORD>(texts.size());
    *totalentries = static_cast<DWORD>(shares.size() - first);
    const std::size_t next = first + texts.size();
    if (next < shares.size()) {
        if (resume_handle != nullptr) {
            *resume_handle = static_cast<DWORD>(next);
        }
        return ERROR_MORE_DATA;
    }
    if (resume_handle != nullptr) {
        *resume_handle = 0;
    }
    return NERR_Success;
}

NET_API_STATUS NetApiBufferFree(LPVOID Buffer)
{
    if (Buffer == nullptr) {
        return NERR_Success;
    }
    {
        const std::lock_guard<std::mutex> hold(g_buffersLock);
        if (g_buffers.erase(Buffer) == 0) {
            return ERROR_INVALID_PARAMETER;
        }
    }
    std::free(Buffer);
    return NERR_Success;
}

BOOL GetComputerNameA(LPSTR lpBuffer, DWORD* nSize)
{
    if (nSize == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const std::string name = yx::platform::net::ComputerName();
    if (lpBuffer == nullptr || *nSize < name.size() + 1) {
        *nSize = static_cast<DWORD>(name.size() + 1);
        SetLastError(ERROR_BUFFER_OVERFLOW);
        return FALSE;
    }
    std::memcpy(lpBuffer, name.c_str(), name.size() + 1);
    *nSize = static_cast<DWORD>(name.size());
    return TRUE;
}
