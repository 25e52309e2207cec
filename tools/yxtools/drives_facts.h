// The drive and share facts that YXPath::ToUNC works from, gathered for people: each drive letter,
// where it leads, its type and where that came from, and the shares of this computer that the
// local route would consider. `yxtools drives` shows them, and so may any other command.
#ifndef YXTOOLS_CLI_DRIVES_FACTS_H
#define YXTOOLS_CLI_DRIVES_FACTS_H

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace cli {

struct DriveFacts {
    // {"computer": NAME, "drives": [{"letter", "type", "type_name", "route", "target", ["link",]
    //  "source", ["remote_name"]}...], "shares_status": N, "shares": [{"name", "path", "type", "considered",
    //  "source"}...]}; every text valid UTF-8.
    nlohmann::ordered_json facts = nlohmann::ordered_json::object();
    // What looks wrong, one line each ("drive E: links to nothing", "smb.conf ... cannot be read").
    std::vector<std::string> problems;
};

// Gathers the facts afresh. Only drives that exist, or whose link is there, are listed.
DriveFacts CollectDriveFacts();

// The name of a GetDriveTypeA number ("DRIVE_FIXED"), and the route of ToUNC it leads to.
const char* DriveTypeName(unsigned type);
const char* DriveRoute(unsigned type);

} // namespace cli

#endif
