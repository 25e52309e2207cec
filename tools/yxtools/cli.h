// The framework of the yxtools command: a table of commands that each family's file adds to,
// and an output that is plain text for people or JSON for scripts.
#ifndef YXTOOLS_CLI_H
#define YXTOOLS_CLI_H

#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

// Lines are printed with the C library's vprintf; on mingw-w64 that is its C99 formatter (the C++
// runtime selects it), so %zu and %lld hold on both builds.
#if defined(_WIN32)
#define CLI_PRINTF(fmt, args) __attribute__((format(gnu_printf, fmt, args)))
#else
#define CLI_PRINTF(fmt, args) __attribute__((format(printf, fmt, args)))
#endif

namespace cli {

// A JSON value: null, bool, number, string, array or object (keys kept in insertion order).
class Json {
public:
    enum class Kind { Null, Bool, Number, String, Array, Object };

    Json() = default;
    Json(bool b) : m_kind(Kind::Bool), m_bool(b) {}                                 // NOLINT
    Json(long long n) : m_kind(Kind::Number), m_text(std::to_string(n)) {}          // NOLINT
    Json(unsigned long long n) : m_kind(Kind::Number), m_text(std::to_string(n)) {} // NOLINT
    Json(int n) : Json(static_cast<long long>(n)) {}                                // NOLINT
    Json(long n) : Json(static_cast<long long>(n)) {}                               // NOLINT
    Json(unsigned long n) : Json(static_cast<unsigned long long>(n)) {}             // NOLINT
    Json(unsigned n) : Json(static_cast<unsigned long long>(n)) {}                  // NOLINT
    Json(double d);                                                                 // NOLINT
    Json(const char* s) : m_kind(Kind::String), m_text(s) {}                        // NOLINT
    Json(std::string s) : m_kind(Kind::String), m_text(std::move(s)) {}             // NOLINT

    static Json Array()
    {
        Json j;
        j.m_kind = Kind::Array;
        return j;
    }
    static Json Object()
    {
        Json j;
        j.m_kind = Kind::Object;
        return j;
    }

    // Appends to an array.
    Json& Push(Json value);
    // Sets a member of an object; returns the object, for chaining.
    Json& Set(const std::string& key, Json value);
    // Sets a member of an object; returns the member, to fill it.
    Json& Child(const std::string& key, Json value);

    std::string Dump() const;

private:
    Kind m_kind = Kind::Null;
    bool m_bool = false;
    std::string m_text;
    std::vector<Json> m_items;
    std::vector<std::pair<std::string, Json>> m_members;
};

// Where a command writes: text lines for people, or one JSON document at the end.
struct Context {
    bool json = false;
    bool interactive = false; // standard output is a terminal
    Json result = Json::Object();

    // A line for people; ignored in JSON mode.
    void Line(const char* format, ...) const CLI_PRINTF(2, 3);
};

using Args = std::vector<std::string>;
using Run = int (*)(Context&, const Args&);

struct Command {
    const char* name;
    const char* usage;
    const char* summary;
    Run run;
};

// Adds a command to the table; used through a static Registration in each command's file.
struct Registration {
    explicit Registration(const Command& command);
};

const std::map<std::string, Command>& Commands();

// Reports a usage error on stderr and gives the exit code for it.
int UsageError(const Command& command, const std::string& message);

// Parses a whole number (decimal or 0x hex); false when the text is not one.
bool ParseNumber(const std::string& text, unsigned long long& value);

} // namespace cli

#endif
