#include "platform/posix/prefix.h"

#include <cstdlib>

namespace yxposix {

std::string Prefix()
{
    const char* prefix = std::getenv("YXTOOLS_PREFIX");
    if (prefix != nullptr && *prefix != '\0') {
        return prefix;
    }
    const char* data = std::getenv("XDG_DATA_HOME");
    if (data != nullptr && *data != '\0') {
        return std::string(data) + "/yxtools";
    }
    const char* home = std::getenv("HOME");
    return std::string(home != nullptr ? home : "") + "/.local/share/yxtools";
}

} // namespace yxposix
