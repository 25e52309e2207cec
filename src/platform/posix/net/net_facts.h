// Where the stand-in's drive types, network names, shares and computer name come from. Each
// source is read afresh at each call and can be moved by a variable, so that a process (a test
// above all) pins its own:
//
// | fact              | source                                                | moved by               |
// |-------------------|-------------------------------------------------------|------------------------|
// | drive letters     | the links <prefix>/dosdevices/<letter>: (the resolver) | YXTOOLS_PREFIX         |
// | mounts            | /proc/self/mounts                                     | YXTOOLS_MOUNTS         |
// | removable devices | /sys/class/block/<device>/removable                   | YXTOOLS_SYSFS (/sys)   |
// | shares            | <prefix>/shares, smb.conf, usershares                  | YXTOOLS_SMB_CONF, YXTOOLS_USERSHARES |
// | computer name     | the host name                                         | YXTOOLS_COMPUTERNAME   |
//
// The shares file of the prefix holds one share a line, in UTF-8: NAME|PATH|TYPE, where PATH is a
// Windows path ("C:\data") and TYPE a number (decimal or 0x..., 0 when left out: a disk share);
// blank lines and lines that start with '#' are skipped. Samba's shares are its sections with a
// "path" (printable ones as print queues, names ending in '$' with the STYPE_SPECIAL bit, as
// Samba lists them; [global], [homes] and [printers] are no shares); their POSIX paths become
// drive paths through the drive folders, the deepest drive winning, and a path on no drive is
// written "\\?\unix<path>" as Wine writes such paths. A name seen before (without regard to case)
// is skipped.
#ifndef YXTOOLS_PLATFORM_POSIX_NET_NET_FACTS_H
#define YXTOOLS_PLATFORM_POSIX_NET_NET_FACTS_H

#include <string>
#include <vector>

#include "platform/win32.h"

namespace yx::platform::net {

struct Mount {
    std::string source; // "//server/share", "/dev/sr0", ...
    std::string point;  // where it is mounted
    std::string type;   // "cifs", "ext4", ...
};

// The mount table, in its order; a table that cannot be read is empty and says why in *problem.
YX_PLATFORM std::vector<Mount> ReadMounts(std::string* problem);

struct DriveFact {
    char letter = 'C';   // upper case
    std::string link;    // <prefix>/dosdevices/<letter>:
    bool linked = false; // the link is there
    std::string target;  // what the link holds
    std::string folder;  // the folder it leads to, all links followed; empty: nothing
    UINT type = DRIVE_NO_ROOT_DIR;
    std::string why;        // where the type came from, for people
    Mount mount;            // the mount the folder lies on (empty when none)
    std::string remoteName; // for a network drive: "\\server\share[\below]"; else empty
};

YX_PLATFORM DriveFact Drive(char letter);

struct ShareFact {
    std::string name;    // UTF-8
    std::string path;    // UTF-8, a Windows path; empty with noPath
    bool noPath = false; // the share has no path (a print queue)
    DWORD type = STYPE_DISKTREE;
    std::string source; // the file it came from
};

// Every share, in the order of the sources; what could not be read goes to *problems.
YX_PLATFORM std::vector<ShareFact> Shares(std::vector<std::string>* problems);

// The drive path of a POSIX path: the deepest drive folder that holds it; else "\\?\unix" and the
// path with '\' for '/'.
YX_PLATFORM std::string DrivePathOf(const std::string& posixPath);

// The computer's name as GetComputerNameA gives it.
YX_PLATFORM std::string ComputerName();

} // namespace yx::platform::net

#endif
