// The drive links and shares `yxtools doctor` shows: the one place where it takes them from.
//
// TO WIRE: this hook gives empty lists until it calls the drive and share collector of
// `yxtools drives`; only Collect() below changes then.
#ifndef YXTOOLS_CLI_DRIVES_FACTS_HOOK_H
#define YXTOOLS_CLI_DRIVES_FACTS_HOOK_H

#include <string>
#include <vector>

namespace cli::drives {

struct Drive {
    std::string name;    // "c:"
    std::string target;  // the folder its link leads to (POSIX), or its root (Windows)
    std::string type;    // "folder", "missing", ... (POSIX); GetDriveTypeA's kind (Windows)
    std::string problem; // why the drive cannot serve; empty when it can
};

struct Share {
    std::string name;    // "\\server\share"
    std::string target;  // its folder
    std::string problem; // why the share cannot serve; empty when it can
};

struct Facts {
    std::vector<Drive> drives;
    std::vector<Share> shares;
};

inline Facts Collect()
{
    return {};
}

} // namespace cli::drives

#endif
