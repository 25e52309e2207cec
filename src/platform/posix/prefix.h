// The prefix of the POSIX stand-in: the folder that plays the part of a Wine prefix.
#ifndef YXTOOLS_PLATFORM_POSIX_PREFIX_H
#define YXTOOLS_PLATFORM_POSIX_PREFIX_H

#include <string>

namespace yxposix {

// The prefix and the environment variable it was taken from: "YXTOOLS_PREFIX", "XDG_DATA_HOME",
// "HOME", or "" when none of them is set (then the path starts at the root).
struct PrefixChoice {
    std::string path;
    const char* variable;
};

// $YXTOOLS_PREFIX, else $XDG_DATA_HOME/yxtools, else ~/.local/share/yxtools; read at each call, so
// that a process (a test above all) may move it.
PrefixChoice ChoosePrefix();

// The path of ChoosePrefix().
std::string Prefix();

} // namespace yxposix

#endif
