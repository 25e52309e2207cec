// Drives, shares and a computer name made up for UNC conversion: the calls of yx::paths::UncPlatform
// answered from one table, so that a test or the fuzz target gives the route any facts on either
// build. Shares are given in the ANSI code page and handed out as wide texts, as the platform does.
#ifndef YXTOOLS_TESTS_PATHS_UNC_FAKE_H
#define YXTOOLS_TESTS_PATHS_UNC_FAKE_H

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "paths/unc_route.h"
#include "platform/win32.h"

namespace unc_fake {

struct Share {
    std::string name;
    std::string path; // ANSI
    DWORD type = STYPE_DISKTREE;
    bool nullPath = false;
};

struct Facts {
    std::map<char, UINT> driveTypes;    // upper-case letter; a letter not listed is DRIVE_NO_ROOT_DIR
    std::map<char, std::string> remote; // network names; a letter not listed is refused
    std::vector<Share> shares;
    std::size_t batch = SIZE_MAX; // entries per call
    int refuseCall = -1;          // the enumeration call (0 first) that fails
    std::string computer = "HOST";
    bool computerFails = false;
    // What the route did.
    int enumCalls = 0;
    int freeCalls = 0;
    int liveBuffers = 0;
    std::vector<std::string> drivesAsked;
};

inline Facts& Current()
{
    static Facts facts;
    return facts;
}

struct Batch {
    std::vector<SHARE_INFO_502> records;
    std::vector<std::vector<WCHAR>> texts;
};

inline WCHAR* Keep(Batch& batch, const std::string& ansi)
{
    const int n = MultiByteToWideChar(CP_ACP, 0, ansi.c_str(), -1, nullptr, 0);
    batch.texts.emplace_back(static_cast<std::size_t>(n > 0 ? n : 1), WCHAR{0});
    MultiByteToWideChar(CP_ACP, 0, ansi.c_str(), -1, batch.texts.back().data(), n);
    return batch.texts.back().data();
}

// The batches handed out and not given back, by the address of their records.
inline std::map<LPVOID, std::unique_ptr<Batch>>& Live()
{
    static std::map<LPVOID, std::unique_ptr<Batch>> live;
    return live;
}

inline UINT WINAPI GetDriveType(LPCSTR root)
{
    Current().drivesAsked.emplace_back(root);
    const auto it = Current().driveTypes.find(static_cast<char>(std::toupper(static_cast<unsigned char>(root[0]))));
    return it == Current().driveTypes.end() ? DRIVE_NO_ROOT_DIR : it->second;
}

inline DWORD WINAPI GetUniversalName(LPCSTR path, DWORD level, LPVOID buffer, DWORD* size)
{
    const auto it = Current().remote.find(static_cast<char>(std::toupper(static_cast<unsigned char>(path[0]))));
    if (level != REMOTE_NAME_INFO_LEVEL || it == Current().remote.end()) {
        return ERROR_NOT_CONNECTED;
    }
    const std::size_t needed = sizeof(REMOTE_NAME_INFOA) + it->second.size() + 1;
    if (*size < needed) {
        *size = static_cast<DWORD>(needed);
        return ERROR_MORE_DATA;
    }
    auto* info = static_cast<REMOTE_NAME_INFOA*>(buffer);
    char* text = static_cast<char*>(buffer) + sizeof(REMOTE_NAME_INFOA);
    std::memcpy(text, it->second.c_str(), it->second.size() + 1);
    info->lpUniversalName = text;
    info->lpConnectionName = text;
    info->lpRemainingPath = text + it->second.size();
    return NO_ERROR;
}

inline NET_API_STATUS WINAPI ShareEnum(LMSTR server, DWORD level, LPBYTE* buffer, DWORD, DWORD* read, DWORD* total,
                                       DWORD* resume)
{
    Facts& facts = Current();
    const int call = facts.enumCalls++;
    *buffer = nullptr;
    *read = 0;
    if (server != nullptr || level != 502 || call == facts.refuseCall) {
        return ERROR_ACCESS_DENIED;
    }
    const std::size_t first = *resume;
    auto batch = std::make_unique<Batch>();
    for (std::size_t i = first; i < facts.shares.size() && batch->records.size() < facts.batch; ++i) {
        const Share& share = facts.shares[i];
        SHARE_INFO_502 record{};
        record.shi502_netname = Keep(*batch, share.name);
        record.shi502_type = share.type;
        record.shi502_path = share.nullPath ? nullptr : Keep(*batch, share.path);
        batch->records.push_back(record);
    }
    *read = static_cast<DWORD>(batch->records.size());
    *total = static_cast<DWORD>(facts.shares.size() - first);
    const std::size_t next = first + batch->records.size();
    if (!batch->records.empty()) {
        *buffer = reinterpret_cast<LPBYTE>(batch->records.data());
        Live()[*buffer] = std::move(batch);
        ++facts.liveBuffers;
    }
    if (next < facts.shares.size()) {
        *resume = static_cast<DWORD>(next);
        return ERROR_MORE_DATA;
    }
    *resume = 0;
    return NERR_Success;
}

inline NET_API_STATUS WINAPI BufferFree(LPVOID buffer)
{
    ++Current().freeCalls;
    if (buffer == nullptr) {
        return NERR_Success;
    }
    if (Live().erase(buffer) == 0) {
        return ERROR_INVALID_PARAMETER;
    }
    --Current().liveBuffers;
    return NERR_Success;
}

inline BOOL WINAPI GetComputerName(LPSTR buffer, DWORD* size)
{
    const Facts& facts = Current();
    if (facts.computerFails || *size < facts.computer.size() + 1) {
        SetLastError(ERROR_BUFFER_OVERFLOW);
        return FALSE;
    }
    std::memcpy(buffer, facts.computer.c_str(), facts.computer.size() + 1);
    *size = static_cast<DWORD>(facts.computer.size());
    return TRUE;
}

inline const yx::paths::UncPlatform& Platform()
{
    static const yx::paths::UncPlatform platform{&GetDriveType, &GetUniversalName, &ShareEnum, &BufferFree,
                                                 &GetComputerName};
    return platform;
}

// Starts afresh with the example computer: HOST; root on C:\, data on C:\data, deep on
// C:\data\deep, C$ on C:\ with the STYPE_SPECIAL bit; C: and D: fixed; X: mapped to \\server\share.
inline Facts& Example()
{
    Facts& facts = Current();
    facts = Facts();
    facts.driveTypes = {{'C', DRIVE_FIXED}, {'D', DRIVE_FIXED}, {'X', DRIVE_REMOTE}};
    facts.remote = {{'X', "\\\\server\\share"}};
    facts.shares = {{"root", "C:\\"},
                    {"data", "C:\\data"},
                    {"deep", "C:\\data\\deep"},
                    {"C$", "C:\\", STYPE_DISKTREE | STYPE_SPECIAL}};
    return facts;
}

inline std::string Convert(const std::string& path)
{
    return yx::paths::ConvertToUNC(path.c_str(), Platform());
}

} // namespace unc_fake

#endif
