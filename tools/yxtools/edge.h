// The command's edges: the one place where text changes encoding.
//
// The library works in the ANSI code page. On POSIX the terminal speaks the locale's codeset
// (UTF-8, usually), so arguments are converted from it to the ANSI code page before the library
// sees them, as Wine converts a Unix command line for a Windows program, and results are converted
// back for display. On Windows, arguments and console output are already the ANSI code page as
// Windows gives them. JSON is UTF-8 on both.
//
// A byte sequence that has no character in its encoding, or a character that has no form in the
// target encoding, is written as \xNN for each of its bytes: never dropped, never replaced silently.
// The result then says it is not lossless, so that JSON can carry the exact bytes beside it.
#ifndef YXTOOLS_CLI_EDGE_H
#define YXTOOLS_CLI_EDGE_H

#include <string>

namespace cli::edge {

struct Converted {
    std::string text;
    bool lossless = true; // false when a byte was written as \xNN, or a character would not come back
};

// The ANSI code page the library works in: the same source as the library's stand-in on POSIX,
// GetACP on Windows.
unsigned AnsiCodePage();

// The encoding the terminal speaks: the locale's codeset on POSIX; on Windows the ANSI code page.
std::string TerminalEncoding();

// Text of the library for display.
Converted ToTerminal(const std::string& ansi);

// Text of the library for JSON: always valid UTF-8.
Converted ToUtf8(const std::string& ansi);

// An argument as the terminal gave it, in the ANSI code page; false when some character of it has no
// exact form there (or its bytes are not text in the terminal's encoding): such text is refused, not
// guessed at, and can be given exactly with --hex.
bool FromTerminal(const std::string& text, std::string& ansi);

// Bytes written as hex pairs ("43 3A 5C"); spaces between pairs are allowed. False when the text is
// not whole hex pairs.
bool FromHex(const std::string& hex, std::string& bytes);

// Bytes as upper-case hex pairs separated by spaces, the form FromHex reads back.
std::string ToHex(const std::string& bytes);

} // namespace cli::edge

#endif
