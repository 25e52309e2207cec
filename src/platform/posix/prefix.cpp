#include "platform/posix/prefix.h"

#include <cstdlib>

namespace yxposix {

PrefixChoice ChoosePrefix()
{
    const char* prefix = std::getenv("YXTOOLS_PREFIX");
    if (prefix != nullptr && *prefix != '\0') {
        return {prefix, "YXTOOLS_PREFIX"};
    }
    const char* data = std::getenv("XDG_DATA_HOME");
    if (data != nullptr && *data != '\0') {
        return {std::string(data) + "/yxtools", "XDG_DATA_HOME"};
    }
    const char* home = std::getenv("HOME");
    const bool hasHome = home != nullptr && *home != '\0';
    return {std::string(hasHome ? home : "") + "/.local/share/yxtools", hasHome ? "HOME" : ""};
}

std::string Prefix()
{
    return ChoosePrefix().path;
}

} // namespace yxposix
