// The yxtools command's edge converter: any bytes of the ANSI code page become valid UTF-8, text that
// says it is lossless converts back to the very same bytes, text that is not shows an escape, and hex
// reads back what it wrote.
#include <cstdint>
#include <string>

#include "edge.h"
#include "fuzz_support.h"

namespace {

// A UTF-8 checker of its own: shortest forms only, no surrogates, nothing past U+10FFFF.
bool ValidUtf8(const std::string& text)
{
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        std::size_t length = 0;
        std::uint32_t c = 0;
        if (lead < 0x80) {
            length = 1;
            c = lead;
        } else if (lead >= 0xC2 && lead <= 0xDF) {
            length = 2;
            c = lead & 0x1Fu;
        } else if (lead >= 0xE0 && lead <= 0xEF) {
            length = 3;
            c = lead & 0x0Fu;
        } else if (lead >= 0xF0 && lead <= 0xF4) {
            length = 4;
            c = lead & 0x07u;
        } else {
            return false;
        }
        if (i + length > text.size()) {
            return false;
        }
        for (std::size_t k = 1; k < length; ++k) {
            const auto trail = static_cast<unsigned char>(text[i + k]);
            if ((trail & 0xC0) != 0x80) {
                return false;
            }
            c = (c << 6) | (trail & 0x3Fu);
        }
        const std::uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
        if (c < least[length] || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) {
            return false;
        }
        i += length;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const cli::edge::Converted json = cli::edge::ToUtf8(bytes);
    FUZZ_CHECK(ValidUtf8(json.text));
    if (json.lossless) {
        // Nothing was escaped: the text is exactly the bytes' characters. (An escape-like text that
        // the bytes spell themselves, "\x83" in ASCII, is lossless too.)
#if !defined(_WIN32)
        // The terminal speaks UTF-8 here: what it would type comes back to the same bytes.
        std::string back;
        FUZZ_CHECK(cli::edge::FromTerminal(json.text, back));
        FUZZ_CHECK(back == bytes);
#endif
    } else {
        FUZZ_CHECK(json.text.find("\\x") != std::string::npos);
    }
#if !defined(_WIN32)
    // A UTF-8 terminal shows what JSON carries.
    const cli::edge::Converted shown = cli::edge::ToTerminal(bytes);
    FUZZ_CHECK(shown.text == json.text && shown.lossless == json.lossless);
#endif
    const std::string hex = cli::edge::ToHex(bytes);
    FUZZ_CHECK(hex.size() == (bytes.empty() ? 0 : bytes.size() * 3 - 1));
    std::string read;
    FUZZ_CHECK(cli::edge::FromHex(hex, read));
    FUZZ_CHECK(read == bytes);
    return 0;
}
