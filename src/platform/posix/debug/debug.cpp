#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <string>

#include "platform/win32.h"

namespace {

void WriteAll(int fd, const char* text, std::size_t size)
{
    while (size > 0) {
        const ssize_t written = write(fd, text, size);
        if (written <= 0) {
            return;
        }
        text += written;
        size -= static_cast<std::size_t>(written);
    }
}

bool DebuggerAttached()
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.compare(0, 10, "TracerPid:") == 0) {
            return std::atol(line.c_str() + 10) != 0;
        }
    }
    return false;
}

} // namespace

void OutputDebugStringA(LPCSTR lpOutputString)
{
    if (lpOutputString == nullptr) {
        return;
    }
    const std::size_t size = std::strlen(lpOutputString);
    const char* listener = std::getenv("YXTOOLS_DEBUG_OUTPUT");
    if (listener != nullptr && *listener != '\0') {
        if (std::strcmp(listener, "-") == 0) {
            WriteAll(STDERR_FILENO, lpOutputString, size);
            return;
        }
        // One write on a file opened for appending: texts of several processes do not mix.
        const int fd = open(listener, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
        if (fd >= 0) {
            WriteAll(fd, lpOutputString, size);
            close(fd);
        }
        return;
    }
    if (DebuggerAttached()) {
        WriteAll(STDERR_FILENO, lpOutputString, size);
    }
}

DWORD GetTickCount()
{
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    const auto ms = static_cast<unsigned long long>(now.tv_sec) * 1000ULL +
                    static_cast<unsigned long long>(now.tv_nsec) / 1000000ULL;
    return static_cast<DWORD>(ms);
}
