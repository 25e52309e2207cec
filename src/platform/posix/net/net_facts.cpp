#include "platform/posix/net/net_facts.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <set>
#include <sstream>

#include "platform/posix/files/resolver.h"
#include "platform/posix/prefix.h"

namespace yx::platform::net {

namespace {

std::string Env(const char* name, const char* fallback)
{
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : fallback;
}

std::string Lower(std::string text)
{
    for (char& c : text) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return text;
}

std::string Trim(const std::string& text)
{
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

// The folder a path leads to, every link followed; empty when it leads to nothing.
std::string RealFolder(const std::string& path)
{
    char buffer[PATH_MAX];
    return realpath(path.c_str(), buffer) != nullptr ? std::string(buffer) : std::string();
}

// The mount table escapes blanks and backslashes as octal: "\040".
std::string Unescape(const std::string& field)
{
    std::string out;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size() &&
            std::all_of(field.begin() + static_cast<long>(i) + 1, field.begin() + static_cast<long>(i) + 4,
                        [](char c) { return c >= '0' && c <= '7'; })) {
            out.push_back(static_cast<char>(std::strtol(field.substr(i + 1, 3).c_str(), nullptr, 8)));
            i += 3;
        } else {
            out.push_back(field[i]);
        }
    }
    return out;
}

// True when `path` is `folder` or lies below it.
bool Within(const std::string& path, const std::string& folder)
{
    if (folder == "/") {
        return !path.empty() && path[0] == '/';
    }
    return path.compare(0, folder.size(), folder) == 0 && (path.size() == folder.size() || path[folder.size()] == '/');
}

bool IsRemoteType(const std::string& type)
{
    return type == "cifs" || type == "smb3" || type == "smbfs" || type == "nfs" || type == "nfs4";
}

// "//server/share/below" and NFS's "server:/export/below" as "\\server\share\below"; empty when
// the source is neither.
std::string NetworkName(const std::string& source)
{
    std::string rest;
    if (source.size() > 2 && (source.compare(0, 2, "//") == 0 || source.compare(0, 2, "\\\\") == 0)) {
        rest = source.substr(2);
    } else if (const std::size_t colon = source.find(":/");
               colon != std::string::npos && colon > 0 && source.find('/') > colon) {
        rest = source.substr(0, colon) + source.substr(colon + 1);
    } else {
        return {};
    }
    std::string name = "\\\\";
    for (char c : rest) {
        name.push_back(c == '/' ? '\\' : c);
    }
    while (name.size() > 2 && name.back() == '\\') {
        name.pop_back();
    }
    return name.find('\\', 2) == std::string::npos ? std::string() : name;
}

// The removable flag of a block device in sysfs; a partition's flag is its disk's.
bool IsRemovableDevice(const std::string& device)
{
    if (device.compare(0, 5, "/dev/") != 0) {
        return false;
    }
    const std::string node = RealFolder(Env("YXTOOLS_SYSFS", "/sys") + "/class/block/" + device.substr(5));
    if (node.empty()) {
        return false;
    }
    for (const std::string& flag : {node + "/removable", node + "/../removable"}) {
        std::ifstream in(flag);
        int value = 0;
        if (in >> value) {
            return value == 1;
        }
    }
    return false;
}

void AddShare(std::vector<ShareFact>& shares, std::set<std::string>& seen, ShareFact share)
{
    if (share.name.empty() || !seen.insert(Lower(share.name)).second) {
        return;
    }
    shares.push_back(std::move(share));
}

void ReadPrefixShares(std::vector<ShareFact>& shares, std::set<std::string>& seen, std::vector<std::string>* problems)
{
    const std::string file = yxposix::Prefix() + "/shares";
    std::ifstream in(file);
    if (!in) {
        if (errno != ENOENT && problems != nullptr) {
            problems->push_back("shares file " + file + " cannot be read");
        }
        return;
    }
    std::string line;
    int number = 0;
    while (std::getline(in, line)) {
        ++number;
        line = Trim(line);
        if (line.empty() || line[0] == '#') {
            continue;
        }
        const std::size_t bar = line.find('|');
        const std::size_t bar2 = bar == std::string::npos ? bar : line.find('|', bar + 1);
        ShareFact share;
        share.source = file;
        share.name = Trim(line.substr(0, bar));
        share.path = bar == std::string::npos ? std::string() : Trim(line.substr(bar + 1, bar2 - bar - 1));
        if (bar2 != std::string::npos) {
            char* end = nullptr;
            const std::string type = Trim(line.substr(bar2 + 1));
            const unsigned long value = std::strtoul(type.c_str(), &end, 0);
            if (type.empty() || *end != '\0' || value > 0xFFFFFFFFul) {
                if (problems != nullptr) {
                    problems->push_back(file + " line " + std::to_string(number) + ": the type is no number");
                }
                continue;
            }
            share.type = static_cast<DWORD>(value);
        }
        AddShare(shares, seen, std::move(share));
    }
}

// Samba's names of a parameter without case, blanks or underscores.
std::string Key(const std::string& name)
{
    std::string key;
    for (char c : name) {
        if (c != ' ' && c != '\t' && c != '_') {
            key.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(c))));
        }
    }
    return key;
}

bool Yes(const std::string& value)
{
    const std::string v = Lower(Trim(value));
    return v == "yes" || v == "true" || v == "1";
}

ShareFact SambaShare(const std::string& name, const std::string& posixPath, bool printable, const std::string& file)
{
    ShareFact share;
    share.name = name;
    share.source = file;
    share.type = printable ? STYPE_PRINTQ : STYPE_DISKTREE;
    if (!name.empty() && name.back() == '$') {
        share.type |= STYPE_SPECIAL;
    }
    if (posixPath.empty()) {
        share.noPath = true;
    } else {
        share.path = DrivePathOf(posixPath);
    }
    return share;
}

void ReadSmbConf(std::vector<ShareFact>& shares, std::set<std::string>& seen, std::vector<std::string>* problems)
{
    const std::string file = Env("YXTOOLS_SMB_CONF", "/etc/samba/smb.conf");
    std::ifstream in(file);
    if (!in) {
        if (errno != ENOENT && problems != nullptr) {
            problems->push_back("smb.conf " + file + " cannot be read: " + std::strerror(errno));
        }
        return;
    }
    struct Section {
        std::string name;
        std::string path;
        bool printable = false;
        bool available = true;
    };
    std::vector<Section> sections;
    std::string line;
    std::string joined;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\\') {
            joined += line.substr(0, line.size() - 1);
            continue;
        }
        line = Trim(joined + line);
        joined.clear();
        if (line.empty() || line[0] == '#' || line[0] == ';') {
            continue;
        }
        if (line[0] == '[') {
            const std::size_t close = line.find(']');
            sections.push_back({Trim(line.substr(1, close == std::string::npos ? close : close - 1)), {}, false, true});
            continue;
        }
        const std::size_t equals = line.find('=');
        if (sections.empty() || equals == std::string::npos) {
            continue;
        }
        const std::string key = Key(line.substr(0, equals));
        const std::string value = Trim(line.substr(equals + 1));
        Section& section = sections.back();
        if (key == "path" || key == "directory") {
            section.path = value;
        } else if (key == "printable" || key == "printok") {
            section.printable = Yes(value);
        } else if (key == "available") {
            section.available = Yes(value);
        }
    }
    for (const Section& section : sections) {
        const std::string lower = Lower(section.name);
        if (lower == "global" || lower == "homes" || lower == "printers" || !section.available) {
            continue;
        }
        AddShare(shares, seen, SambaShare(section.name, section.path, section.printable, file));
    }
}

void ReadUsershares(std::vector<ShareFact>& shares, std::set<std::string>& seen, std::vector<std::string>* problems)
{
    const std::string folder = Env("YXTOOLS_USERSHARES", "/var/lib/samba/usershares");
    DIR* dir = opendir(folder.c_str());
    if (dir == nullptr) {
        if (errno != ENOENT && problems != nullptr) {
            problems->push_back("usershares folder " + folder + " cannot be read: " + std::strerror(errno));
        }
        return;
    }
    std::vector<std::string> names;
    while (const dirent* entry = readdir(dir)) {
        if (entry->d_name[0] != '.') {
            names.emplace_back(entry->d_name);
        }
    }
    closedir(dir);
    std::sort(names.begin(), names.end());
    for (const std::string& fileName : names) {
        const std::string file = folder + "/" + fileName;
        std::ifstream in(file);
        std::string line;
        std::string name = fileName;
        std::string path;
        while (std::getline(in, line)) {
            const std::size_t equals = line.find('=');
            if (equals == std::string::npos) {
                continue;
            }
            const std::string key = Key(line.substr(0, equals));
            if (key == "path") {
                path = Trim(line.substr(equals + 1));
            } else if (key == "sharename") {
                name = Trim(line.substr(equals + 1));
            }
        }
        if (!path.empty()) {
            AddShare(shares, seen, SambaShare(name, path, false, file));
        } else if (problems != nullptr) {
            problems->push_back("usershare " + file + " has no path");
        }
    }
}

} // namespace

std::vector<Mount> ReadMounts(std::string* problem)
{
    const std::string file = Env("YXTOOLS_MOUNTS", "/proc/self/mounts");
    std::vector<Mount> mounts;
    std::ifstream in(file);
    if (!in) {
        if (problem != nullptr) {
            *problem = "mount table " + file + " cannot be read";
        }
        return mounts;
    }
    std::string line;
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        Mount mount;
        if (fields >> mount.source >> mount.point >> mount.type) {
            mount.source = Unescape(mount.source);
            mount.point = Unescape(mount.point);
            mounts.push_back(std::move(mount));
        }
    }
    return mounts;
}

DriveFact Drive(char letter)
{
    DriveFact fact;
    fact.letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
    fact.link = files::DriveFolder(fact.letter);
    struct stat info {};
    if (lstat(fact.link.c_str(), &info) != 0) {
        fact.why = "no link " + fact.link;
        return fact;
    }
    fact.linked = true;
    if (S_ISLNK(info.st_mode)) {
        char target[PATH_MAX];
        const ssize_t n = readlink(fact.link.c_str(), target, sizeof target - 1);
        fact.target.assign(target, n > 0 ? static_cast<std::size_t>(n) : 0);
    } else {
        fact.target = fact.link;
    }
    fact.folder = RealFolder(fact.link);
    struct stat folder {};
    if (fact.folder.empty() || stat(fact.folder.c_str(), &folder) != 0 || !S_ISDIR(folder.st_mode)) {
        fact.folder.clear();
        fact.why = "the link leads to no folder";
        return fact;
    }
    std::string problem;
    const std::vector<Mount> mounts = ReadMounts(&problem);
    std::size_t best = 0;
    bool found = false;
    for (const Mount& mount : mounts) {
        std::string point = RealFolder(mount.point);
        point = point.empty() ? mount.point : point;
        // The later of two mounts on one point hides the earlier one.
        if (Within(fact.folder, point) && (!found || point.size() >= best)) {
            best = point.size();
            fact.mount = mount;
            found = true;
        }
    }
    fact.type = DRIVE_FIXED;
    if (!found) {
        fact.why = problem.empty() ? "on no mount of the mount table" : problem;
        return fact;
    }
    const Mount& mount = fact.mount;
    const std::string device = mount.source.substr(mount.source.rfind('/') + 1);
    std::string where = "mount " + mount.point + " (" + mount.type + " from " + mount.source + ")";
    if (IsRemoteType(mount.type)) {
        fact.type = DRIVE_REMOTE;
        fact.remoteName = NetworkName(mount.source);
        if (!fact.remoteName.empty()) {
            std::string point = RealFolder(mount.point);
            point = point.empty() ? mount.point : point;
            for (std::size_t i = point == "/" ? 0 : point.size(); i < fact.folder.size(); ++i) {
                fact.remoteName.push_back(fact.folder[i] == '/' ? '\\' : fact.folder[i]);
            }
        }
    } else if (mount.type == "iso9660" || mount.type == "udf" || device.compare(0, 2, "sr") == 0 ||
               device.compare(0, 3, "scd") == 0) {
        fact.type = DRIVE_CDROM;
    } else if (IsRemovableDevice(mount.source)) {
        fact.type = DRIVE_REMOVABLE;
        where += ", a removable device";
    }
    fact.why = where;
    return fact;
}

std::vector<ShareFact> Shares(std::vector<std::string>* problems)
{
    std::vector<ShareFact> shares;
    std::set<std::string> seen;
    ReadPrefixShares(shares, seen, problems);
    ReadSmbConf(shares, seen, problems);
    ReadUsershares(shares, seen, problems);
    return shares;
}

std::string DrivePathOf(const std::string& posixPath)
{
    const std::string real = RealFolder(posixPath);
    const std::string path = real.empty() ? posixPath : real;
    std::string best;
    char bestLetter = 0;
    for (char letter = 'a'; letter <= 'z'; ++letter) {
        const std::string folder = RealFolder(files::DriveFolder(letter));
        if (!folder.empty() && Within(path, folder) && (bestLetter == 0 || folder.size() > best.size())) {
            best = folder;
            bestLetter = letter;
        }
    }
    std::string out;
    std::size_t from = 0;
    if (bestLetter != 0) {
        out = std::string(1, static_cast<char>(std::toupper(bestLetter))) + ":";
        from = best == "/" ? 0 : best.size();
    } else {
        out = "\\\\?\\unix";
    }
    for (std::size_t i = from; i < path.size(); ++i) {
        out.push_back(path[i] == '/' ? '\\' : path[i]);
    }
    if (out.size() == 2) {
        out.push_back('\\');
    }
    return out;
}

std::string ComputerName()
{
    std::string name = Env("YXTOOLS_COMPUTERNAME", "");
    if (name.empty()) {
        char host[256] = {};
        if (gethostname(host, sizeof host - 1) == 0) {
            name = host;
        }
        name = name.substr(0, name.find('.'));
    }
    for (char& c : name) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return name.substr(0, MAX_COMPUTERNAME_LENGTH);
}

} // namespace yx::platform::net
