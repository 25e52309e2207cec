// A second process for the share-mode tests: share_probe PATH ACCESS SHARE opens PATH with
// CreateFileA (OPEN_EXISTING) and exits with the last error, 0 when the open succeeded.
#include <cstdlib>

#include "platform/win32.h"

int main(int argc, char** argv)
{
    if (argc != 4) {
        return 255;
    }
    const auto access = static_cast<DWORD>(std::strtoul(argv[2], nullptr, 0));
    const auto share = static_cast<DWORD>(std::strtoul(argv[3], nullptr, 0));
    HANDLE file = CreateFileA(argv[1], access, share, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return static_cast<int>(GetLastError());
    }
    CloseHandle(file);
    return 0;
}
