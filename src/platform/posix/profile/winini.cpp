#include "platform/posix/profile/winini.h"

#include <cctype>
#include <cstring>
#include <fstream>

#include "platform/posix/prefix.h"

namespace {

std::string Trim(const std::string& text)
{
    const char* blanks = " \t\r\n\v\f";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos) {
        return std::string();
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

} // namespace

namespace yxposix {

std::string WinIniPath()
{
    return Prefix() + "/drive_c/windows/win.ini";
}

bool SameProfileName(const std::string& a, const char* b)
{
    const std::size_t length = std::strlen(b);
    if (a.size() != length) {
        return false;
    }
    for (std::size_t i = 0; i < length; ++i) {
        if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i]))) {
            return false;
        }
    }
    return true;
}

bool ForEachWinIniKey(const std::string& path, const char* section,
                      const std::function<bool(const std::string& key, const std::string& value)>& visit)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return false;
    }
    enum class State { Before, Inside, After } state = State::Before;
    std::string line;
    while (state != State::After && std::getline(file, line)) {
        const std::string text = Trim(line);
        if (text.empty() || text[0] == ';') {
            continue;
        }
        if (text[0] == '[') {
            if (state == State::Inside) {
                state = State::After;
            } else {
                const std::size_t close = text.find(']');
                if (SameProfileName(Trim(text.substr(1, close == std::string::npos ? std::string::npos : close - 1)),
                                    section)) {
                    state = State::Inside;
                }
            }
            continue;
        }
        const std::size_t equals = text.find('=');
        if (state != State::Inside || equals == std::string::npos) {
            continue;
        }
        std::string value = Trim(text.substr(equals + 1));
        if (value.size() >= 2 && (value[0] == '"' || value[0] == '\'') && value.back() == value[0]) {
            value = value.substr(1, value.size() - 2);
        }
        if (!visit(Trim(text.substr(0, equals)), value)) {
            break;
        }
    }
    return true;
}

} // namespace yxposix
