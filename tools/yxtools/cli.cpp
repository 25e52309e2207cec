#include "cli.h"

#include <cmath>
#include <cstdarg>
#include <cstdlib>

namespace cli {

namespace {
std::map<std::string, Command>& Table()
{
    static std::map<std::string, Command> table;
    return table;
}

void Escape(std::string& out, const std::string& text)
{
    out += '"';
    for (const unsigned char c : text) {
        switch (c) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        default:
            if (c < 0x20) {
                char buffer[8];
                std::snprintf(buffer, sizeof(buffer), "\\u%04x", c);
                out += buffer;
            } else {
                out += static_cast<char>(c);
            }
        }
    }
    out += '"';
}
} // namespace

Json::Json(double d) : m_kind(Kind::Number)
{
    if (!std::isfinite(d)) {
        m_kind = Kind::Null;
        return;
    }
    char buffer[32];
    std::snprintf(buffer, sizeof(buffer), "%.17g", d);
    m_text = buffer;
}

Json& Json::Push(Json value)
{
    m_items.push_back(std::move(value));
    return m_items.back();
}

Json& Json::Set(const std::string& key, Json value)
{
    Child(key, std::move(value));
    return *this;
}

Json& Json::Child(const std::string& key, Json value)
{
    for (auto& member : m_members) {
        if (member.first == key) {
            member.second = std::move(value);
            return member.second;
        }
    }
    m_members.emplace_back(key, std::move(value));
    return m_members.back().second;
}

std::string Json::Dump() const
{
    std::string out;
    switch (m_kind) {
    case Kind::Null:
        return "null";
    case Kind::Bool:
        return m_bool ? "true" : "false";
    case Kind::Number:
        return m_text;
    case Kind::String:
        Escape(out, m_text);
        return out;
    case Kind::Array:
        out += '[';
        for (std::size_t i = 0; i < m_items.size(); ++i) {
            out += (i != 0 ? "," : "");
            out += m_items[i].Dump();
        }
        return out + ']';
    case Kind::Object:
        out += '{';
        for (std::size_t i = 0; i < m_members.size(); ++i) {
            out += (i != 0 ? "," : "");
            Escape(out, m_members[i].first);
            out += ':';
            out += m_members[i].second.Dump();
        }
        return out + '}';
    }
    return out;
}

void Context::Line(const char* format, ...) const
{
    if (json) {
        return;
    }
    va_list args;
    va_start(args, format);
    std::vprintf(format, args);
    va_end(args);
    std::putchar('\n');
}

Registration::Registration(const Command& command)
{
    Table().emplace(command.name, command);
}

const std::map<std::string, Command>& Commands()
{
    return Table();
}

int UsageError(const Command& command, const std::string& message)
{
    std::fprintf(stderr, "yxtools %s: %s\nusage: yxtools %s\n", command.name, message.c_str(), command.usage);
    return 2;
}

bool ParseNumber(const std::string& text, unsigned long long& value)
{
    if (text.empty() || text[0] == '-') {
        return false;
    }
    char* end = nullptr;
    value = std::strtoull(text.c_str(), &end, 0);
    return end != nullptr && *end == '\0';
}

} // namespace cli
