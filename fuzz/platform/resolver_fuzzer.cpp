// The path resolver of the POSIX file stand-in over arbitrary bytes under code pages 1252 and 932:
// whatever the text, a resolved path lies in its drive's (or share's) folder, carries no "." or
// ".." step, names every folder it passes, and resolving again gives the same answer.
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "fuzz_support.h"
#include "platform/posix/files/resolver.h"

namespace {

namespace files = yx::platform::files;
namespace fs = std::filesystem;

// A prefix of the run's own, with drive C (a small tree with a link that leads out of it) and one
// share, so that lookups, case matching and links all take part.
void MakePrefix()
{
    static bool made = false;
    if (made) {
        return;
    }
    made = true;
    const fs::path base = fs::temp_directory_path() / ("yxtools-resolver-fuzz-" + std::to_string(::getpid()));
    fs::create_directories(base / "drive" / "Data" / "Sub");
    fs::create_directories(base / "share");
    fs::create_directories(base / "prefix" / "dosdevices" / "unc" / "Server");
    std::error_code error;
    fs::create_directory_symlink(base / "drive", base / "prefix" / "dosdevices" / "c:", error);
    fs::create_directory_symlink(base / "share", base / "prefix" / "dosdevices" / "unc" / "Server" / "Share", error);
    fs::create_directory_symlink(base, base / "drive" / "Data" / "out", error);
    for (const char* name : {"drive/Map.txt", "drive/Data/held.txt", "drive/Data/Sub/x", "share/f"}) {
        std::FILE* file = std::fopen((base / name).c_str(), "w");
        if (file != nullptr) {
            std::fclose(file);
        }
    }
    setenv("YXTOOLS_PREFIX", (base / "prefix").c_str(), 1);
}

// True when `path` is `root` or below it, and no step of it below the root is "." or "..".
bool Inside(const std::string& path, const std::string& root)
{
    if (path.compare(0, root.size(), root) != 0) {
        return false;
    }
    if (path.size() > root.size() && path[root.size()] != '/' && root != "/") {
        return false;
    }
    const std::string below = path.substr(root.size()) + "/";
    std::string step;
    for (const char c : below) {
        if (c != '/') {
            step += c;
            continue;
        }
        if (step == "." || step == "..") {
            return false;
        }
        step.clear();
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    MakePrefix();
    FuzzInput in(data, size);
    const std::uint8_t flags = in.Byte();
    setenv("LC_ALL", (flags & 1) != 0 ? "ja_JP.UTF-8" : "C", 1);
    const bool pattern = (flags & 2) != 0;
    const std::string text = in.Rest();
    const char* path = text.c_str(); // up to the first NUL, as a host's string ends

    const files::Resolved r = files::ResolvePath(path, pattern);
    if (r.error != ERROR_SUCCESS || r.device != files::Device::kNone) {
        FUZZ_CHECK(r.error == ERROR_SUCCESS || r.path.empty() || r.device != files::Device::kNone);
        return 0;
    }
    FUZZ_CHECK(std::strlen(path) < MAX_PATH);
    FUZZ_CHECK(!r.root.empty() && Inside(r.path, r.root));
    // A drive path stays on its drive's folder, a share path on its share's.
    if (std::isalpha(static_cast<unsigned char>(path[0])) != 0 && path[1] == ':') {
        FUZZ_CHECK(r.root == files::DriveFolder(path[0]));
    }
    const bool separated = (path[0] == '\\' || path[0] == '/') && (path[1] == '\\' || path[1] == '/');
    if (separated && path[2] != '.' && path[2] != '?') {
        const std::string shares = std::string(std::getenv("YXTOOLS_PREFIX")) + "/dosdevices/unc/";
        FUZZ_CHECK(r.root.compare(0, shares.size(), shares) == 0);
    }
    // Every folder on the way is there: the folder of the last name is a folder.
    const std::string folder = r.path.substr(0, r.path.rfind('/') + 1);
    struct stat st {};
    FUZZ_CHECK(r.path == r.root || (::stat(folder.c_str(), &st) == 0 && S_ISDIR(st.st_mode)));
    FUZZ_CHECK(!r.exists || r.directory || r.regular || ::lstat(r.path.c_str(), &st) == 0);
    // The same text resolves the same way.
    const files::Resolved again = files::ResolvePath(path, pattern);
    FUZZ_CHECK(again.path == r.path && again.exists == r.exists && again.name == r.name);
    return 0;
}
