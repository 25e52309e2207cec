// UNC conversion over made-up drives and shares: any path, any share list in any batches, refused
// calls, against a model of the route written apart from it.
#include <algorithm>
#include <cstdint>
#include <string>

#include "fuzz_support.h"
#include "paths/unc_fake.h"

namespace {

// Bytes that make paths and share paths meet often.
const char kAlphabet[] = {'c', 'C', 'd', ':', '\\', '/', 'a', 'A', '.', 'x', '$', static_cast<char>(0xE9)};

std::string Text(FuzzInput& in, std::size_t most)
{
    const std::size_t n = in.Below(static_cast<unsigned>(most + 1));
    std::string text;
    for (std::size_t i = 0; i < n; ++i) {
        text.push_back(kAlphabet[in.Below(sizeof kAlphabet)]);
    }
    return text;
}

std::string Lower(std::string text)
{
    for (char& c : text) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return text;
}

// The route as the model has it, code page 1252.
std::string Model(const std::string& path, const unc_fake::Facts& facts)
{
    if (path.size() >= 2 && path[0] == '\\' && path[1] == '\\') {
        return path;
    }
    if (path.size() < 2 || path[1] != ':') {
        return path;
    }
    const char letter = static_cast<char>(std::toupper(static_cast<unsigned char>(path[0])));
    const auto type = facts.driveTypes.find(letter);
    const UINT driveType = type == facts.driveTypes.end() ? DRIVE_NO_ROOT_DIR : type->second;
    if ((driveType & 4U) != 0) {
        const auto remote = facts.remote.find(letter);
        return remote == facts.remote.end() ? path : remote->second + path.substr(2);
    }
    const std::size_t lastSeparator = path.find_last_of("\\/");
    const std::string folder =
        lastSeparator == std::string::npos || lastSeparator < 2 ? path.substr(0, 2) : path.substr(0, lastSeparator + 1);
    const std::string rest = path.substr(folder.size());
    const std::string search = Lower(folder);
    std::string result = path;
    std::size_t best = 0;
    std::string bestName;
    bool bestSlash = false;
    const std::size_t batch = std::max<std::size_t>(facts.batch, 1);
    for (std::size_t start = 0, call = 0;; start += batch, ++call) {
        if (static_cast<int>(call) == facts.refuseCall) {
            return result;
        }
        for (std::size_t i = start; i < facts.shares.size() && i < start + batch; ++i) {
            const unc_fake::Share& share = facts.shares[i];
            const std::string sharePath = share.nullPath ? std::string() : Lower(share.path);
            const bool prefix = !sharePath.empty() && search.compare(0, sharePath.size(), sharePath) == 0;
            const char next = prefix && sharePath.size() < search.size() ? search[sharePath.size()] : '\0';
            const bool boundary = prefix && (sharePath.back() == '\\' || next == '\0' || next == '\\' || next == '/');
            if (share.type == 0 && boundary && sharePath.size() > best) {
                best = sharePath.size();
                bestName = share.name;
                bestSlash = sharePath.back() == '\\';
            }
        }
        if (best != 0) {
            const std::string computer = facts.computerFails ? "localhost" : facts.computer;
            result = "\\\\" + computer + "\\" + bestName + folder.substr(bestSlash ? best - 1 : best) + rest;
        }
        if (start + batch >= facts.shares.size()) {
            return result;
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput in(data, size);
    unc_fake::Facts& facts = unc_fake::Current();
    facts = unc_fake::Facts();
    static const UINT kTypes[] = {0, 1, 2, 3, 4, 5, 6};
    for (const char letter : {'C', 'D', 'X'}) {
        facts.driveTypes[letter] = kTypes[in.Below(7)];
        if (in.Below(2) == 1) {
            facts.remote[letter] = "\\\\s\\" + Text(in, 6);
        }
    }
    const unsigned count = in.Below(9);
    for (unsigned i = 0; i < count; ++i) {
        unc_fake::Share share;
        share.name = "s" + std::to_string(i);
        share.path = Text(in, 12);
        share.type = in.Below(4) == 0 ? (in.Below(2) == 0 ? STYPE_SPECIAL : STYPE_PRINTQ) : STYPE_DISKTREE;
        share.nullPath = in.Below(8) == 0;
        facts.shares.push_back(share);
    }
    facts.batch = 1 + in.Below(4);
    facts.refuseCall = static_cast<int>(in.Below(6)) - 1;
    facts.computerFails = in.Below(8) == 0;
    std::string path = Text(in, 40);
    if (in.Below(4) == 0) {
        path += std::string(in.Below(300), 'a'); // the long route of Split
    }
    const std::string expected = Model(path, facts);
    const std::string got = unc_fake::Convert(path);
    FUZZ_CHECK(got == expected);
    FUZZ_CHECK(facts.liveBuffers == 0);
    return 0;
}
