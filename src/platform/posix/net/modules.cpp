// GetModuleHandleA and GetModuleFileNameA over the objects loaded in the process.
#include <link.h>
#include <unistd.h>

#include <cctype>
#include <climits>
#include <cstring>
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

struct Search {
    std::string stem;  // module name asked for, lower case, without ".dll"
    std::string asked; // the whole name asked for, lower case
    void* handle;      // in: the handle to find the file of; out: the handle found
    std::string file;  // the object's file
    bool found;
};

std::string ProgramFile()
{
    char path[PATH_MAX];
    const ssize_t n = readlink("/proc/self/exe", path, sizeof path - 1);
    return n > 0 ? std::string(path, static_cast<std::size_t>(n)) : std::string();
}

} // namespace

HMODULE GetModuleHandleA(LPCSTR lpModuleName)
{
    Search search{{}, {}, nullptr, {}, false};
    if (lpModuleName == nullptr) {
        search.stem.clear();
    } else {
        const std::string name = lpModuleName;
        const std::size_t slash = name.find_last_of("\\/");
        search.asked = Lower(slash == std::string::npos ? name : name.substr(slash + 1));
        search.stem = search.asked;
        if (search.stem.find('.') == std::string::npos) {
            search.asked += ".dll";
        } else if (search.stem.size() > 4 && search.stem.compare(search.stem.size() - 4, 4, ".dll") == 0) {
            search.stem.resize(search.stem.size() - 4);
        } else {
            search.stem.clear();
        }
    }
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* data) {
            auto* s = static_cast<Search*>(data);
            // The first object is the program, with an empty name.
            const bool program = info->dlpi_name == nullptr || info->dlpi_name[0] == '\0';
            if (s->asked.empty()
                    ? program
                    : !program && Stands(info->dlpi_name, s->stem.empty() ? s->asked : s->stem, s->asked)) {
                s->handle = ImageStart(info);
                s->found = true;
                return 1;
            }
            return 0;
        },
        &search);
    if (!search.found) {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    return search.handle;
}

DWORD GetModuleFileNameA(HMODULE hModule, LPSTR lpFilename, DWORD nSize)
{
    Search search{{}, {}, hModule, {}, false};
    if (hModule == nullptr) {
        search.file = ProgramFile();
        search.found = true;
    } else {
        dl_iterate_phdr(
            [](dl_phdr_info* info, std::size_t, void* data) {
                auto* s = static_cast<Search*>(data);
                if (ImageStart(info) == s->handle) {
                    const bool program = info->dlpi_name == nullptr || info->dlpi_name[0] == '\0';
                    s->file = program ? ProgramFile() : std::string(info->dlpi_name);
                    s->found = true;
                    return 1;
                }
                return 0;
            },
            &search);
    }
    if (!search.found) {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return 0;
    }
    if (lpFilename == nullptr || nSize == 0) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    if (search.file.size() + 1 > nSize) {
        std::memcpy(lpFilename, search.file.data(), nSize - 1);
        lpFilename[nSize - 1] = '\0';
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return nSize;
    }
    std::memcpy(lpFilename, search.file.c_str(), search.file.size() + 1);
    return static_cast<DWORD>(search.file.size());
}
