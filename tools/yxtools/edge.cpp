#include "edge.h"

#include <cstdint>
#include <memory>

#if defined(_WIN32)
#include <windows.h>
#else
#include <clocale>
#include <langinfo.h>
#include <unicode/ucnv.h>
#include <unicode/utf16.h>

#include "platform/posix/localecodepage.h"
#endif

namespace cli::edge {

namespace {

#if defined(_WIN32)

// One encoding, as Windows converts it: a code page number.
class Codec {
public:
    explicit Codec(unsigned codePage) : m_codePage(codePage) {}

    // Reads one character at p (advancing p past the bytes it takes); false when the bytes there
    // are no character.
    bool Next(const char*& p, const char* end, std::u16string& character) const
    {
        std::size_t length = 1;
        const auto lead = static_cast<unsigned char>(*p);
        if (m_codePage == CP_UTF8) {
            length = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        } else if (IsDBCSLeadByteEx(m_codePage, lead)) {
            length = 2;
        }
        if (length > static_cast<std::size_t>(end - p)) {
            length = 1;
        }
        wchar_t wide[4];
        const int count = MultiByteToWideChar(m_codePage, MB_ERR_INVALID_CHARS, p, static_cast<int>(length), wide, 4);
        p += length;
        if (count <= 0) {
            return false;
        }
        character.assign(wide, wide + count);
        return true;
    }

    // The bytes of one character; false when it has no exact form in this code page.
    bool Encode(const std::u16string& character, std::string& bytes) const
    {
        char buffer[16];
        BOOL usedDefault = FALSE;
        const bool utf8 = m_codePage == CP_UTF8;
        const int count =
            WideCharToMultiByte(m_codePage, utf8 ? WC_ERR_INVALID_CHARS : WC_NO_BEST_FIT_CHARS,
                                reinterpret_cast<const wchar_t*>(character.data()), static_cast<int>(character.size()),
                                buffer, sizeof(buffer), nullptr, utf8 ? nullptr : &usedDefault);
        if (count <= 0 || usedDefault) {
            return false;
        }
        bytes.assign(buffer, static_cast<std::size_t>(count));
        return true;
    }

private:
    unsigned m_codePage;
};

const Codec& Ansi()
{
    static const Codec codec(GetACP());
    return codec;
}
const Codec& Terminal()
{
    return Ansi();
}
const Codec& Utf8()
{
    static const Codec codec(CP_UTF8);
    return codec;
}

#else

struct ConverterClose {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};

// One encoding, as ICU's converters know it. Callbacks stop at the first fault: the caller decides
// what a fault shows as. Fallback (best-fit) mappings stay off, so every answer is exact.
class Codec {
public:
    explicit Codec(const std::string& name)
    {
        UErrorCode status = U_ZERO_ERROR;
        m_converter.reset(ucnv_open(name.c_str(), &status));
        if (U_FAILURE(status)) {
            // An encoding ICU does not know: ASCII, so that every other byte shows as \xNN.
            status = U_ZERO_ERROR;
            m_converter.reset(ucnv_open("US-ASCII", &status));
        }
        status = U_ZERO_ERROR;
        ucnv_setToUCallBack(m_converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
        ucnv_setFromUCallBack(m_converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    }

    bool Next(const char*& p, const char* end, std::u16string& character) const
    {
        const char* start = p;
        UErrorCode status = U_ZERO_ERROR;
        const UChar32 c = ucnv_getNextUChar(m_converter.get(), &p, end, &status);
        if (p == start) {
            ++p;
        }
        if (U_FAILURE(status)) {
            ucnv_reset(m_converter.get());
            return false;
        }
        character.clear();
        if (U_IS_BMP(c)) {
            character += static_cast<char16_t>(c);
        } else {
            character += static_cast<char16_t>(U16_LEAD(c));
            character += static_cast<char16_t>(U16_TRAIL(c));
        }
        return true;
    }

    bool Encode(const std::u16string& character, std::string& bytes) const
    {
        char buffer[16];
        UErrorCode status = U_ZERO_ERROR;
        const int32_t count = ucnv_fromUChars(m_converter.get(), buffer, sizeof(buffer), character.data(),
                                              static_cast<int32_t>(character.size()), &status);
        if (U_FAILURE(status) || status == U_STRING_NOT_TERMINATED_WARNING || count <= 0) {
            return false;
        }
        bytes.assign(buffer, static_cast<std::size_t>(count));
        return true;
    }

private:
    std::unique_ptr<UConverter, ConverterClose> m_converter;
};

std::string IcuName(unsigned codePage)
{
    return codePage == 65001 ? std::string("UTF-8") : "windows-" + std::to_string(codePage);
}

const Codec& Ansi()
{
    static const Codec codec(IcuName(AnsiCodePage()));
    return codec;
}
const Codec& Terminal()
{
    static const Codec codec(TerminalEncoding());
    return codec;
}
const Codec& Utf8()
{
    static const Codec codec("UTF-8");
    return codec;
}

#endif

void Escape(std::string& out, const char* begin, const char* end)
{
    static const char kDigits[] = "0123456789ABCDEF";
    for (const char* p = begin; p != end; ++p) {
        const auto byte = static_cast<unsigned char>(*p);
        out += "\\x";
        out += kDigits[byte >> 4];
        out += kDigits[byte & 0x0F];
    }
}

// Converts character by character. A character counts only when it comes back to the very bytes it
// was read from: a one-way mapping would otherwise pass for the text it is not.
Converted Convert(const Codec& from, const Codec& to, const std::string& in)
{
    Converted result;
    std::u16string character;
    std::string bytes;
    std::string back;
    const char* p = in.data();
    const char* const end = p + in.size();
    while (p != end) {
        const char* start = p;
        if (from.Next(p, end, character) && to.Encode(character, bytes) && from.Encode(character, back) &&
            back.compare(0, std::string::npos, start, static_cast<std::size_t>(p - start)) == 0) {
            result.text += bytes;
        } else {
            Escape(result.text, start, p);
            result.lossless = false;
        }
    }
    return result;
}

} // namespace

unsigned AnsiCodePage()
{
#if defined(_WIN32)
    return GetACP();
#else
    return yx::platform::CodePageOfLocale(yx::platform::UserLocaleName());
#endif
}

std::string TerminalEncoding()
{
#if defined(_WIN32)
    return "windows-" + std::to_string(GetACP());
#else
    // The codeset of the user's locale, read without touching the process locale. A locale that is
    // not generated on this system still names its codeset (ja_JP.UTF-8); one without a codeset and
    // not generated is taken as ASCII, as the C locale is.
    locale_t locale = newlocale(LC_CTYPE_MASK, "", static_cast<locale_t>(nullptr));
    if (locale != static_cast<locale_t>(nullptr)) {
        std::string codeset = nl_langinfo_l(CODESET, locale);
        freelocale(locale);
        return codeset;
    }
    const std::string name = yx::platform::UserLocaleName();
    const std::size_t dot = name.find('.');
    if (dot == std::string::npos) {
        return "US-ASCII";
    }
    return name.substr(dot + 1, name.find('@', dot) - dot - 1);
#endif
}

Converted ToTerminal(const std::string& ansi)
{
    return Convert(Ansi(), Terminal(), ansi);
}

Converted ToUtf8(const std::string& ansi)
{
    return Convert(Ansi(), Utf8(), ansi);
}

bool FromTerminal(const std::string& text, std::string& ansi)
{
#if defined(_WIN32)
    // Windows has made the command line ANSI already.
    ansi = text;
    return true;
#else
    Converted converted = Convert(Terminal(), Ansi(), text);
    ansi = std::move(converted.text);
    return converted.lossless;
#endif
}

bool FromHex(const std::string& hex, std::string& bytes)
{
    const auto digit = [](char c) {
        return c >= '0' && c <= '9'   ? c - '0'
               : c >= 'a' && c <= 'f' ? c - 'a' + 10
               : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                      : -1;
    };
    std::string out;
    for (std::size_t i = 0; i < hex.size();) {
        if (hex[i] == ' ') {
            ++i;
            continue;
        }
        if (i + 1 >= hex.size() || digit(hex[i]) < 0 || digit(hex[i + 1]) < 0) {
            return false;
        }
        out += static_cast<char>(digit(hex[i]) * 16 + digit(hex[i + 1]));
        i += 2;
    }
    bytes = std::move(out);
    return true;
}

std::string ToHex(const std::string& bytes)
{
    std::string out;
    for (const char c : bytes) {
        out += out.empty() ? "" : " ";
        std::string escaped;
        Escape(escaped, &c, &c + 1);
        out += escaped.substr(2);
    }
    return out;
}

} // namespace cli::edge
