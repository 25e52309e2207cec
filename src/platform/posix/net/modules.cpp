// GetModuleHandleA and GetModuleFileNameA over the objects loaded in the process.
#include <link.h>
#include <unistd.h>

#include <cctype>
#include <climits>
#include <cstring>
#include <functional>
#include <string>

#include "platform/win32.h"

namespace {

std::string Lower(std::string text)
{
    for (char& c : text) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return text;
}

// The address where an object's image starts: its first loadable segment.
void* ImageStart(const dl_phdr_info* info)
{
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        if (info->dlpi_phdr[i].p_type == PT_LOAD) {
            return reinterpret_cast<void*>(info->dlpi_addr + info->dlpi_phdr[i].p_vaddr);
        }
    }
    return reinterpret_cast<void*>(info->dlpi_addr);
}

// True when a loaded object's file name stands for the module name asked for (lower case, with
// its ".dll" taken off): "libX.so", "X.so", and their versioned forms "libX.so.1...".
bool Stands(const std::string& file, const std::string& stem, const std::string& asked)
{
    const std::string base = Lower(file.substr(file.rfind('/') + 1));
    if (base == asked) {
        return true;
    }
    for (const std::string& name : {"lib" + stem + ".so", stem + ".so"}) {
        if (base.compare(0, name.size(), name) == 0 && (base.size() == name.size() || base[name.size()] == '.')) {
            return true;
        }
    }
    return false;
}

struct Found {
    void* handle = nullptr; // where the object's image starts
    std::string file;       // its file; empty for the program
    bool found = false;
};

// The first loaded object (the program first, with an empty name) that `match` accepts.
Found FindObject(const std::function<bool(const dl_phdr_info*, bool program)>& match)
{
    struct Walk {
        const std::function<bool(const dl_phdr_info*, bool)>* match;
        Found found;
    } walk{&match, {}};
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* data) {
            auto* w = static_cast<Walk*>(data);
            const bool program = info->dlpi_name == nullptr || info->dlpi_name[0] == '\0';
            if (!(*w->match)(info, program)) {
                return 0;
            }
            w->found = {ImageStart(info), program ? std::string() : std::string(info->dlpi_name), true};
            return 1;
        },
        &walk);
    return walk.found;
}

std::string ProgramFile()
{
    char path[PATH_MAX];
    const ssize_t n = readlink("/proc/self/exe", path, sizeof path - 1);
    return n > 0 ? std::string(path, static_cast<std::size_t>(n)) : std::string();
}

} // namespace

HMODULE GetModuleHandleA(LPCSTR lpModuleName)
{
    std::string asked;
    std::string stem;
    if (lpModuleName != nullptr) {
        const std::string name = lpModuleName;
        const std::size_t slash = name.find_last_of("\\/");
        asked = Lower(slash == std::string::npos ? name : name.substr(slash + 1));
        stem = asked;
        if (stem.find('.') == std::string::npos) {
            asked += ".dll";
        } else if (stem.size() > 4 && stem.compare(stem.size() - 4, 4, ".dll") == 0) {
            stem.resize(stem.size() - 4);
        } else {
            stem = asked;
        }
    }
    const Found found = FindObject([&](const dl_phdr_info* info, bool program) {
        return lpModuleName == nullptr ? program : !program && Stands(info->dlpi_name, stem, asked);
    });
    if (!found.found) {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    return found.handle;
}

DWORD GetModuleFileNameA(HMODULE hModule, LPSTR lpFilename, DWORD nSize)
{
    Found found = FindObject([hModule](const dl_phdr_info* info, bool program) {
        return hModule == nullptr ? program : ImageStart(info) == hModule;
    });
    if (!found.found) {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return 0;
    }
    const std::string file = found.file.empty() ? ProgramFile() : found.file;
    if (lpFilename == nullptr || nSize == 0) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    if (file.size() + 1 > nSize) {
        // As Wine answers: the first nSize bytes, with no room left for a NUL.
        std::memcpy(lpFilename, file.data(), nSize);
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return nSize;
    }
    std::memcpy(lpFilename, file.c_str(), file.size() + 1);
    return static_cast<DWORD>(file.size());
}
