#include "drives_facts.h"

#include <cstring>

#if defined(_WIN32)
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#include <lm.h>
#include <winnetwk.h>
#else
#include <unicode/ustring.h>

#include "platform/posix/net/net_facts.h"
#endif

namespace cli {

namespace {

using Json = nlohmann::ordered_json;

#if defined(_WIN32)
std::string Utf8(const std::string& ansi)
{
    const int n = MultiByteToWideChar(CP_ACP, 0, ansi.c_str(), -1, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(n > 0 ? n : 1), L'\0');
    MultiByteToWideChar(CP_ACP, 0, ansi.c_str(), -1, wide.data(), n);
    const int m = WideCharToMultiByte(CP_UTF8, 0, wide.c_str(), -1, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<std::size_t>(m > 0 ? m : 1), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.c_str(), -1, out.data(), m, nullptr, nullptr);
    out.resize(std::strlen(out.c_str()));
    return out;
}

std::string Utf8(const wchar_t* wide)
{
    if (wide == nullptr) {
        return {};
    }
    const int m = WideCharToMultiByte(CP_UTF8, 0, wide, -1, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<std::size_t>(m > 0 ? m : 1), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide, -1, out.data(), m, nullptr, nullptr);
    out.resize(std::strlen(out.c_str()));
    return out;
}
#else
// The facts' files are UTF-8 as written; a byte that is no UTF-8 becomes U+FFFD, so JSON stays valid.
std::string Utf8(const std::string& text)
{
    std::u16string wide(text.size() + 1, u'\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(wide.data(), static_cast<int32_t>(wide.size()), &length, text.data(),
                         static_cast<int32_t>(text.size()), 0xFFFD, nullptr, &status);
    std::string out(text.size() * 3 + 4, '\0');
    int32_t outLength = 0;
    UErrorCode back = U_ZERO_ERROR;
    u_strToUTF8(out.data(), static_cast<int32_t>(out.size()), &outLength, wide.data(), length, &back);
    out.resize(U_SUCCESS(status) && U_SUCCESS(back) ? static_cast<std::size_t>(outLength) : 0);
    return out;
}
#endif

Json Share(const std::string& name, const std::string& path, bool hasPath, unsigned long type,
           const std::string& source)
{
    Json share = Json::object();
    share["name"] = name;
    share["path"] = hasPath ? Json(path) : Json(nullptr);
    share["type"] = type;
    // The local route takes disk shares only, and a path that is empty never wins.
    share["considered"] = type == 0 && !path.empty();
    if (!source.empty()) {
        share["source"] = source;
    }
    return share;
}

} // namespace

const char* DriveTypeName(unsigned type)
{
    static const char* const kNames[] = {"DRIVE_UNKNOWN", "DRIVE_NO_ROOT_DIR", "DRIVE_REMOVABLE", "DRIVE_FIXED",
                                         "DRIVE_REMOTE",  "DRIVE_CDROM",       "DRIVE_RAMDISK"};
    return type < 7 ? kNames[type] : "unknown";
}

const char* DriveRoute(unsigned type)
{
    return (type & 4U) != 0 ? "network drive" : "local shares";
}

DriveFacts CollectDriveFacts()
{
    DriveFacts out;
    Json& facts = out.facts;
    Json drives = Json::array();
    Json shares = Json::array();
#if defined(_WIN32)
    char computer[MAX_COMPUTERNAME_LENGTH + 1] = {};
    DWORD size = sizeof computer;
    if (GetComputerNameA(computer, &size) == 0) {
        out.problems.push_back("GetComputerNameA failed with error " + std::to_string(GetLastError()));
    }
    facts["computer"] = Utf8(computer);
    const DWORD letters = GetLogicalDrives();
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
        if ((letters & (1UL << (letter - 'A'))) == 0) {
            continue;
        }
        const char root[] = {letter, ':', '\\', '\0'};
        const char device[] = {letter, ':', '\0'};
        const UINT type = GetDriveTypeA(root);
        char target[1024] = {};
        QueryDosDeviceA(device, target, sizeof target);
        Json drive = Json::object();
        drive["letter"] = std::string(device);
        drive["type"] = type;
        drive["type_name"] = DriveTypeName(type);
        drive["route"] = DriveRoute(type);
        drive["target"] = Utf8(target);
        drive["source"] = "GetDriveTypeA, QueryDosDeviceA";
        char buffer[1024];
        DWORD length = sizeof buffer;
        if ((type & 4U) != 0 && WNetGetUniversalNameA(device, REMOTE_NAME_INFO_LEVEL, buffer, &length) == NO_ERROR) {
            drive["remote_name"] = Utf8(reinterpret_cast<REMOTE_NAME_INFOA*>(buffer)->lpUniversalName);
        }
        if (type == DRIVE_NO_ROOT_DIR) {
            out.problems.push_back("drive " + std::string(device) + " has no root folder");
        }
        drives.push_back(drive);
    }
    DWORD resume = 0;
    NET_API_STATUS status = ERROR_MORE_DATA;
    while (status == ERROR_MORE_DATA) {
        LPBYTE buffer = nullptr;
        DWORD read = 0;
        DWORD total = 0;
        status = NetShareEnum(nullptr, 502, &buffer, MAX_PREFERRED_LENGTH, &read, &total, &resume);
        if (status != NERR_Success && status != ERROR_MORE_DATA) {
            out.problems.push_back("NetShareEnum refused with status " + std::to_string(status));
            break;
        }
        const auto* info = reinterpret_cast<const SHARE_INFO_502*>(buffer);
        for (DWORD i = 0; i < read; ++i) {
            shares.push_back(Share(Utf8(info[i].shi502_netname), Utf8(info[i].shi502_path),
                                   info[i].shi502_path != nullptr, info[i].shi502_type, ""));
        }
        NetApiBufferFree(buffer);
    }
    facts["drives"] = drives;
    facts["shares_status"] = status;
#else
    namespace net = yx::platform::net;
    facts["computer"] = Utf8(net::ComputerName());
    std::string mountProblem;
    net::ReadMounts(&mountProblem);
    if (!mountProblem.empty()) {
        out.problems.push_back(mountProblem);
    }
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
        const net::DriveFact fact = net::Drive(letter);
        if (!fact.linked) {
            continue;
        }
        const std::string device = std::string(1, letter) + ":";
        Json drive = Json::object();
        drive["letter"] = device;
        drive["type"] = fact.type;
        drive["type_name"] = DriveTypeName(fact.type);
        drive["route"] = DriveRoute(fact.type);
        drive["target"] = Utf8(fact.target);
        drive["link"] = Utf8(fact.link);
        drive["source"] = Utf8(fact.why);
        if (!fact.remoteName.empty()) {
            drive["remote_name"] = Utf8(fact.remoteName);
        } else if (fact.type == 4) {
            out.problems.push_back("drive " + device +
                                   " is on a network mount whose source names no share: " + fact.mount.source);
        }
        if (fact.folder.empty()) {
            out.problems.push_back("drive " + device + " links to nothing (" + fact.target + ")");
        }
        drives.push_back(drive);
    }
    for (const net::ShareFact& share : net::Shares(&out.problems)) {
        shares.push_back(Share(Utf8(share.name), Utf8(share.path), !share.noPath, share.type, Utf8(share.source)));
    }
    facts["drives"] = drives;
    facts["shares_status"] = 0;
#endif
    facts["shares"] = shares;
    return out;
}

} // namespace cli
