// The prefix of the POSIX stand-in: the folder that plays the part of a Wine prefix.
#ifndef YXTOOLS_PLATFORM_POSIX_PREFIX_H
#define YXTOOLS_PLATFORM_POSIX_PREFIX_H

#include <string>

namespace yxposix {

// $YXTOOLS_PREFIX, else $XDG_DATA_HOME/yxtools, else ~/.local/share/yxtools; read at each call, so
// that a process (a test above all) may move it.
std::string Prefix();

} // namespace yxposix

#endif
