// YXPath over arbitrary bytes under code pages 1252 and 932: Split on both routes (the runtime's
// cut below 255 bytes, the byte-wise one from 255 on), GetPathProtocol, IsUNCPath, Append and Make,
// each against a plain model, with out-arguments that are the path itself.
#include <cstdlib>
#include <string>

#include <yxtools/path.h>

#include "fuzz_support.h"
#include "paths/path_routes.h"
#include "platform/win32.h"

namespace {

struct Parts {
    std::string drive, directory, name, extension;
    bool operator==(const Parts& o) const
    {
        return drive == o.drive && directory == o.directory && name == o.name && extension == o.extension;
    }
};

std::string UpToNul(const std::string& s)
{
    return s.substr(0, s.find('\0'));
}

// The lead bytes of the input's code page, asked of the platform once for each of the two.
struct LeadTable {
    bool known = false;
    bool lead[256] = {};
};
LeadTable g_tables[2];
const LeadTable* g_lead = nullptr;

bool Lead(char c)
{
    return g_lead->lead[static_cast<unsigned char>(c)];
}

// The drive is the first two bytes when the second is a colon.
std::size_t DriveLength(const std::string& text)
{
    return text.size() >= 2 && text[0] != '\0' && text[1] == ':' ? 2 : 0;
}

// The runtime's cut: the text up to its first NUL, walked character by character, so that a trail
// byte is never a separator or a dot.
Parts RuntimeCut(const std::string& path)
{
    const std::string text = UpToNul(path);
    const std::size_t rest = DriveLength(text);
    std::size_t dirEnd = rest;
    std::size_t dot = std::string::npos;
    for (std::size_t i = rest; i < text.size(); ++i) {
        if (Lead(text[i]) && i + 1 < text.size()) {
            ++i;
        } else if (text[i] == '\\' || text[i] == '/') {
            dirEnd = i + 1;
            dot = std::string::npos;
        } else if (text[i] == '.') {
            dot = i;
        }
    }
    const std::size_t nameEnd = dot != std::string::npos ? dot : text.size();
    return {text.substr(0, rest), text.substr(rest, dirEnd - rest), text.substr(dirEnd, nameEnd - dirEnd),
            text.substr(nameEnd)};
}

// The long route: byte by byte over the whole string, each component then taken up to its first
// NUL. A remainder without separator that starts with its last dot is all extension.
Parts ByteCut(const std::string& path)
{
    const std::size_t driveLength = DriveLength(path);
    const std::string rest = path.substr(driveLength);
    const std::size_t separator = rest.find_last_of("\\/");
    const std::size_t nameBegin = separator == std::string::npos ? 0 : separator + 1;
    std::size_t nameEnd = rest.rfind('.');
    if (nameEnd == std::string::npos || nameEnd < nameBegin) {
        nameEnd = rest.size();
    }
    return {UpToNul(path.substr(0, driveLength)), UpToNul(rest.substr(0, nameBegin)),
            UpToNul(rest.substr(nameBegin, nameEnd - nameBegin)), UpToNul(rest.substr(nameEnd))};
}

YXPATHKIND Kind(const std::string& path)
{
    static const char* const kPrefixes[] = {
        "file:", "https:", "http:", "ftp:", "news:", "telnet:", "wais:", "mailto:", "nntp:", "prospero:", "gopher:"};
    const std::string text = UpToNul(path);
    for (int k = 0; k < 11; ++k) {
        const std::string prefix = kPrefixes[k];
        bool match = text.size() >= prefix.size();
        for (std::size_t i = 0; match && i < prefix.size(); ++i) {
            const char c = text[i];
            match = (c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c) == prefix[i];
        }
        if (match) {
            return static_cast<YXPATHKIND>(k + 1);
        }
    }
    return YXPATHKIND_NONE;
}

// Split into four separate strings, or with the path's own object as one of them (slot 0-3).
Parts Split(const std::string& path, int aliased, bool slow)
{
    _SS<char> c[4];
    _SS<char> own(path);
    _SS<char>* out[4] = {&c[0], &c[1], &c[2], &c[3]};
    if (aliased >= 0) {
        out[aliased] = &own;
    }
    YXPATHKIND kind = YXPATHKIND_GOPHER;
    if (slow) {
        FUZZ_CHECK(PathRoutes::SlowSplit(own, out[0], out[1], out[2], out[3]));
    } else {
        FUZZ_CHECK(YXPath::Split(own, out[0], out[1], out[2], out[3], &kind));
        // The kind is that of the path as given, also when the path received a component.
        FUZZ_CHECK(kind == Kind(path));
    }
    return {*out[0], *out[1], *out[2], *out[3]};
}

void CheckSplit(const std::string& path, int aliased)
{
    const bool longRoute = path.size() >= 255;
    const Parts parts = Split(path, aliased, false);
    FUZZ_CHECK(parts == (longRoute ? ByteCut(path) : RuntimeCut(path)));
    FUZZ_CHECK(Split(path, aliased, true) == ByteCut(path));
    // Without NUL and double-byte characters both routes cut alike, and the parts hold the path.
    bool plain = path.find('\0') == std::string::npos;
    for (const char c : path) {
        plain = plain && !Lead(c);
    }
    if (plain) {
        FUZZ_CHECK(parts == ByteCut(path) && parts == RuntimeCut(path));
        FUZZ_CHECK(parts.drive + parts.directory + parts.name + parts.extension == path);
    }
    FUZZ_CHECK(YXPath::IsUNCPath(path) == (path.size() >= 2 && path[0] == '\\' && path[1] == '\\'));
}

// Append on plain strings: one `\` at the joint, and a final one with the trailing flag.
std::string AppendModel(std::string path, const std::string* addition, bool trailing)
{
    std::string work = addition != nullptr ? *addition : trailing ? "\\" : "";
    if (!path.empty() && !work.empty()) {
        if (path.back() == '\\' && work.front() == '\\') {
            path.pop_back();
        } else if (path.back() != '\\' && work.front() != '\\') {
            path += '\\';
        }
    }
    if (trailing && (work.empty() || work.back() != '\\')) {
        work += '\\';
    }
    return path + work;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput in(data, size);
    const std::uint8_t flags = in.Byte();
#ifndef _WIN32
    // The ANSI code page follows LC_ALL at each call; under Wine the one of the start holds.
    setenv("LC_ALL", (flags & 1) != 0 ? "ja_JP.UTF-8" : "en_US.UTF-8", 1);
#endif
    LeadTable& table = g_tables[flags & 1];
    if (!table.known) {
        for (int b = 0; b < 256; ++b) {
            table.lead[b] = IsDBCSLeadByte(static_cast<BYTE>(b)) != FALSE;
        }
        table.known = true;
    }
    g_lead = &table;
    // Four short strings for Append and Make, each present or absent.
    std::string strings[4];
    bool present[4];
    for (int i = 0; i < 4; ++i) {
        present[i] = ((flags >> (i + 1)) & 1) != 0;
        strings[i] = in.Bytes(40);
    }
    const int aliased = static_cast<int>(in.Below(5)) - 1;
    const bool trailing = (flags & 0x20) != 0;
    // The path: the rest of the input, behind a run of up to 400 bytes that carries it across the
    // routes' boundary.
    const unsigned run = in.Below(401);
    const char fill = static_cast<char>(in.Byte());
    std::string path(run, fill);
    path += in.Rest();

    CheckSplit(path, aliased);
    CheckSplit(path.substr(0, 254), aliased);
    CheckSplit(path.substr(0, 255), aliased);

    // Append, also with the path as its own addition.
    for (const bool self : {false, true}) {
        _SS<char> target(path);
        const _SS<char> addition(strings[0]);
        const std::string* modelAddition = self ? &path : present[0] ? &strings[0] : nullptr;
        const _SS<char>* addArg = self ? &target : present[0] ? &addition : nullptr;
        YXPath::Append(target, addArg, trailing);
        FUZZ_CHECK(target == AppendModel(path, modelAddition, trailing));
    }

    // Make: drive, then the directory appended (with the trailing flag when a drive or a
    // directory is given), then the name, then the extension behind a dot.
    _SS<char> in4[4];
    const _SS<char>* args[4];
    for (int i = 0; i < 4; ++i) {
        in4[i] = strings[i];
        args[i] = present[i] ? &in4[i] : nullptr;
    }
    _SS<char> output(path);
    const bool made = YXPath::Make(output, args[0], args[1], args[2], args[3]);
    std::string expected = present[0] ? strings[0] : "";
    expected = AppendModel(expected, present[1] ? &strings[1] : nullptr, present[0] || present[1]);
    if (present[2]) {
        expected += strings[2];
    }
    if (present[3]) {
        expected += (strings[3].empty() || strings[3][0] != '.' ? "." : "") + strings[3];
    }
    FUZZ_CHECK(output == expected && made == !expected.empty());
    return 0;
}
