// The NLS calls of the stand-in on ICU: the user's locale, conversion of ANSI text to UTF-16, the
// mappings of LCMapStringA, collation for CompareStringA, and the case calls.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>

#include <unicode/normalizer2.h>
#include <unicode/translit.h>
#include <unicode/uchar.h>
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/ucol.h>
#include <unicode/uloc.h>
#include <unicode/unistr.h>

#include "platform/posix/codepage.h"
#include "platform/posix/nls/nls_internal.h"
#include "platform/win32.h"

namespace {

constexpr LCID kEnglishUnitedStates = 0x0409;

struct ConverterCloser {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, ConverterCloser>;

Converter OpenConverter(UINT codePage)
{
    const std::string name = codePage == 65001 ? std::string("UTF-8") : "windows-" + std::to_string(codePage);
    UErrorCode status = U_ZERO_ERROR;
    Converter converter(ucnv_open(name.c_str(), &status));
    if (U_FAILURE(status)) {
        return nullptr;
    }
    // Best fit, as Windows converts: a character with no place of its own takes its nearest one.
    ucnv_setFallback(converter.get(), TRUE);
    return converter;
}

// Language and territory of the locale variables, in ICU's form ("ja_JP"); empty for C and POSIX.
std::string UserLocaleName()
{
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value != nullptr && *value != '\0') {
            std::string name(value);
            name = name.substr(0, name.find_first_of(".@"));
            return name == "C" || name == "POSIX" ? std::string() : name;
        }
    }
    return {};
}

// The kana that have a partner of the other type; the letter vu (U+30F4, U+3094) is left alone.
bool IsKatakana(char16_t c)
{
    return (c >= 0x30A1 && c <= 0x30F6 && c != 0x30F4) || c == 0x30FD || c == 0x30FE;
}
bool IsHiragana(char16_t c)
{
    return (c >= 0x3041 && c <= 0x3096 && c != 0x3094) || c == 0x309D || c == 0x309E;
}

// One transliterator of each direction for the process; ICU's transliterators are not for two
// threads at once.
std::mutex g_widthLock;

void Transliterate(const char* id, std::u16string& text)
{
    static std::unique_ptr<icu::Transliterator> toFull;
    static std::unique_ptr<icu::Transliterator> toHalf;
    const std::lock_guard<std::mutex> guard(g_widthLock);
    const bool full = std::strcmp(id, "Halfwidth-Fullwidth") == 0;
    std::unique_ptr<icu::Transliterator>& slot = full ? toFull : toHalf;
    if (!slot) {
        UErrorCode status = U_ZERO_ERROR;
        slot.reset(icu::Transliterator::createInstance(icu::UnicodeString(id, -1, US_INV), UTRANS_FORWARD, status));
        if (U_FAILURE(status)) {
            slot.reset();
            return;
        }
    }
    icu::UnicodeString work(text.data(), static_cast<int32_t>(text.size()));
    slot->transliterate(work);
    text.assign(work.getBuffer(), static_cast<std::size_t>(work.length()));
}

// What Windows counts as a symbol to be ignored: spaces, punctuation, symbols, and the Latin-1
// signs that stand beside letters (ordinals, micro, superscripts, fractions).
bool IsIgnorableSymbol(char16_t c)
{
    if (c == 0xAA || c == 0xB5 || c == 0xBA) {
        return true;
    }
    // Spaces are the C0 layout controls and the separators; the information separators
    // 0x1C..0x1F are not.
    if ((c >= 0x09 && c <= 0x0D) || u_ispunct(c) || (c >= 0x02B0 && c <= 0x02FF)) {
        return true;
    }
    const int8_t type = u_charType(c);
    if (c < 0x100 && (type == U_OTHER_NUMBER || type == U_SPACE_SEPARATOR)) {
        return true;
    }
    switch (type) {
    case U_MATH_SYMBOL:
    case U_CURRENCY_SYMBOL:
    case U_MODIFIER_SYMBOL:
    case U_OTHER_SYMBOL:
    case U_FORMAT_CHAR:
        return true;
    default:
        return false;
    }
}

// Only the combining marks go, after decomposition: a spacing accent (circumflex, grave,
// diaeresis, acute, the kana sound marks) is a character of its own and stays, so the text keeps
// one character for each of its characters. The library's fold tables rely on that.
void RemoveNonSpacing(std::u16string& text)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* nfd = icu::Normalizer2::getNFDInstance(status);
    const icu::Normalizer2* nfc = icu::Normalizer2::getNFCInstance(status);
    if (U_FAILURE(status)) {
        return;
    }
    std::u16string out;
    for (char16_t c : text) {
        // The compatibility ideographs are characters of their own, not forms of others.
        if (c >= 0xF900 && c <= 0xFAFF) {
            out.push_back(c);
            continue;
        }
        icu::UnicodeString decomposed = nfd->normalize(icu::UnicodeString(c), status);
        icu::UnicodeString kept;
        for (int32_t i = 0; i < decomposed.length(); ++i) {
            const char16_t d = decomposed.charAt(i);
            const int8_t type = u_charType(d);
            if (type != U_NON_SPACING_MARK && type != U_ENCLOSING_MARK) {
                kept.append(d);
            }
        }
        icu::UnicodeString composed = nfc->normalize(kept, status);
        if (U_FAILURE(status)) {
            return;
        }
        out.append(composed.getBuffer(), static_cast<std::size_t>(composed.length()));
    }
    text = out;
}

} // namespace

namespace yx::platform {

// Code page 932 gives five single bytes that ICU's converter refuses characters of their own.
char16_t Special932ToWide(unsigned char b)
{
    switch (b) {
    case 0x80:
        return 0x0080;
    case 0xA0:
        return 0xF8F0;
    case 0xFD:
    case 0xFE:
    case 0xFF:
        return static_cast<char16_t>(0xF8F1 + (b - 0xFD));
    default:
        return 0;
    }
}

unsigned char Special932FromWide(char16_t c)
{
    for (unsigned b : {0x80u, 0xA0u, 0xFDu, 0xFEu, 0xFFu}) {
        if (Special932ToWide(static_cast<unsigned char>(b)) == c) {
            return static_cast<unsigned char>(b);
        }
    }
    return 0;
}

std::u16string AnsiToWide(const char* text, std::size_t length, bool* valid)
{
    if (GetACP() == 932) {
        // Split at the five bytes where they stand as characters of their own.
        const LeadByteTable& lead = LeadBytes(932);
        for (std::size_t i = 0; i < length; ++i) {
            const auto b = static_cast<unsigned char>(text[i]);
            if (lead[b] && i + 1 < length) {
                ++i;
            } else if (Special932ToWide(b) != 0) {
                std::u16string wide = AnsiToWide932Run(text, i, valid);
                if (valid != nullptr && !*valid) {
                    return wide;
                }
                wide.push_back(Special932ToWide(b));
                const std::u16string rest = AnsiToWide(text + i + 1, length - i - 1, valid);
                return valid != nullptr && !*valid ? rest : wide + rest;
            }
        }
    }
    return AnsiToWide932Run(text, length, valid);
}

namespace {

// Windows reads a double-byte code that code page 932 leaves undefined as the katakana middle
// dot, its default character, where ICU would give the replacement character.
void UndefinedAsMiddleDot(const void* /*context*/, UConverterToUnicodeArgs* args, const char* /*bytes*/,
                          int32_t /*length*/, UConverterCallbackReason reason, UErrorCode* status)
{
    if (reason == UCNV_UNASSIGNED || reason == UCNV_ILLEGAL || reason == UCNV_IRREGULAR) {
        const UChar dot = 0x30FB;
        *status = U_ZERO_ERROR;
        ucnv_cbToUWriteUChars(args, &dot, 1, 0, status);
    }
}

} // namespace

std::u16string AnsiToWide932Run(const char* text, std::size_t length, bool* valid)
{
    if (valid != nullptr) {
        *valid = true;
    }
    std::u16string wide;
    Converter converter = OpenConverter(GetACP());
    if (!converter || length == 0) {
        return wide;
    }
    if (valid != nullptr) {
        UErrorCode status = U_ZERO_ERROR;
        ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    } else if (GetACP() == 932) {
        UErrorCode status = U_ZERO_ERROR;
        ucnv_setToUCallBack(converter.get(), UndefinedAsMiddleDot, nullptr, nullptr, nullptr, &status);
    }
    wide.resize(length * 2 + 2);
    UErrorCode status = U_ZERO_ERROR;
    const int32_t n = ucnv_toUChars(converter.get(), wide.data(), static_cast<int32_t>(wide.size()), text,
                                    static_cast<int32_t>(length), &status);
    if (U_FAILURE(status) && status != U_STRING_NOT_TERMINATED_WARNING) {
        if (valid != nullptr) {
            *valid = false;
        }
        wide.clear();
        return wide;
    }
    wide.resize(static_cast<std::size_t>(n));
    return wide;
}

std::string WideToAnsi(const std::u16string& wide)
{
    std::string text;
    Converter converter = OpenConverter(GetACP());
    if (!converter || wide.empty()) {
        return text;
    }
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    auto convert = [&converter](const char16_t* units, int32_t count, std::string& out) {
        char bytes[32];
        UErrorCode error = U_ZERO_ERROR;
        ucnv_reset(converter.get());
        const int32_t n = ucnv_fromUChars(converter.get(), bytes, sizeof bytes, units, count, &error);
        if (U_FAILURE(error)) {
            return false;
        }
        out.append(bytes, static_cast<std::size_t>(n));
        return true;
    };
    for (std::size_t i = 0; i < wide.size(); ++i) {
        const bool pair = U16_IS_LEAD(wide[i]) && i + 1 < wide.size() && U16_IS_TRAIL(wide[i + 1]);
        const int32_t count = pair ? 2 : 1;
        // The broken bar has no place in code page 932, and Windows fits it to the bar where
        // ICU would take the full-width form.
        unsigned char special = GetACP() == 932 ? Special932FromWide(wide[i]) : 0;
        special = GetACP() == 932 && wide[i] == 0xA6 ? '|' : special;
        if (special != 0) {
            text.push_back(static_cast<char>(special));
        } else if (!convert(&wide[i], count, text)) {
            // Best fit, as Windows has it for every code page: full-width ASCII and the
            // ideographic space take their ASCII forms; anything else is the default character.
            const char16_t c = wide[i];
            char16_t fit = c >= 0xFF01 && c <= 0xFF5E ? static_cast<char16_t>(c - 0xFEE0) : c == 0x3000 ? u' ' : 0;
            fit = c == 0xA6 ? u'|' : c == 0xA5 ? u'\\' : fit;
            if (pair || fit == 0 || !convert(&fit, 1, text)) {
                text.push_back('?');
            }
        }
        i += static_cast<std::size_t>(count - 1);
    }
    return text;
}

bool HasPlace(char16_t c)
{
    return c == u'?' || WideToAnsi(std::u16string(1, c)) != "?";
}

void MapCase(std::u16string& text, bool upper)
{
    for (char16_t& c : text) {
        if (c >= 0xD800 && c <= 0xDFFF) {
            continue;
        }
        const auto mapped = static_cast<char16_t>(upper ? u_toupper(c) : u_tolower(c));
        // A character whose other case has no place in the code page keeps its own: the ANSI
        // text would otherwise get the default character for it.
        if (mapped != c && (mapped < 0x80 || HasPlace(mapped))) {
            c = mapped;
        }
    }
}

void MapKana(std::u16string& text, bool toHiragana)
{
    for (char16_t& c : text) {
        char16_t mapped = c;
        if (toHiragana && IsKatakana(c)) {
            mapped = static_cast<char16_t>(c - 0x60);
        } else if (!toHiragana && IsHiragana(c)) {
            mapped = static_cast<char16_t>(c + 0x60);
        }
        c = mapped;
    }
}

void MapWidth(std::u16string& text, bool toFull)
{
    std::u16string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        // The backslash keeps its width both ways, and the full-width signs of the currencies
        // and of negation and macron keep theirs; the spacing sound marks become the combining
        // ones at full width and the half-width marks at half width.
        if (c == u'\\' || c == 0xFF3C || (!toFull && c >= 0xFFE0 && c <= 0xFFE6 && c != 0xFFE4 && c != 0xFFE5)) {
            out.push_back(c);
            continue;
        }
        if (toFull && (c == 0x309B || c == 0x309C)) {
            out.push_back(static_cast<char16_t>(c - 2));
            continue;
        }
        if (!toFull && (c == 0x309B || c == 0x309C)) {
            out.push_back(c == 0x309B ? 0xFF9E : 0xFF9F);
            continue;
        }
        if (!toFull && (c == 0xFFE4 || c == 0xFFE5)) {
            out.push_back(c == 0xFFE4 ? 0xA6 : 0xA5);
            continue;
        }
        if (!toFull && c == 0x30FE) {
            out += u"\u30FD\uFF9E";
            continue;
        }
        if (!toFull && (c == 0x2018 || c == 0x2019 || c == 0x201C || c == 0x201D)) {
            // The typographic quotes have the ASCII quotes as their narrow forms.
            out.push_back(c <= 0x2019 ? u'\'' : u'"');
            continue;
        }
        // A half-width kana with its sound mark becomes one full-width character.
        const bool withMark = toFull && i + 1 < text.size() && (text[i + 1] == 0xFF9E || text[i + 1] == 0xFF9F);
        std::u16string piece(&text[i], withMark ? 2 : 1);
        Transliterate(toFull ? "Halfwidth-Fullwidth" : "Fullwidth-Halfwidth", piece);
        if (withMark && piece.size() != 1) {
            piece.assign(1, c);
            Transliterate("Halfwidth-Fullwidth", piece);
        } else if (withMark) {
            ++i;
        }
        out += piece;
    }
    text = out;
}

void RemoveSymbols(std::u16string& text)
{
    std::u16string kept;
    for (char16_t c : text) {
        if (c == 0 || !IsIgnorableSymbol(c)) {
            kept.push_back(c);
        }
    }
    text = kept;
}

void RemoveMarks(std::u16string& text)
{
    RemoveNonSpacing(text);
}

void FoldWidth(std::u16string& text)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* nfkc = icu::Normalizer2::getNFKCInstance(status);
    if (U_FAILURE(status)) {
        return;
    }
    icu::UnicodeString work(text.data(), static_cast<int32_t>(text.size()));
    icu::UnicodeString folded = nfkc->normalize(work, status);
    if (U_SUCCESS(status)) {
        text.assign(folded.getBuffer(), static_cast<std::size_t>(folded.length()));
    }
}

} // namespace yx::platform

LCID GetUserDefaultLCID()
{
    const std::string name = UserLocaleName();
    if (name.empty()) {
        return kEnglishUnitedStates;
    }
    const uint32_t lcid = uloc_getLCID(name.c_str());
    return lcid == 0 ? kEnglishUnitedStates : lcid;
}

int MultiByteToWideChar(UINT CodePage, DWORD dwFlags, LPCSTR lpMultiByteStr, int cbMultiByte, LPWSTR lpWideCharStr,
                        int cchWideChar)
{
    if (lpMultiByteStr == nullptr || cbMultiByte == 0 || cchWideChar < 0 ||
        (lpWideCharStr == nullptr && cchWideChar != 0) || (CodePage != CP_ACP && CodePage != GetACP())) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const std::size_t length =
        cbMultiByte < 0 ? std::strlen(lpMultiByteStr) + 1 : static_cast<std::size_t>(cbMultiByte);
    bool valid = true;
    const std::u16string wide =
        yx::platform::AnsiToWide(lpMultiByteStr, length, (dwFlags & MB_ERR_INVALID_CHARS) != 0 ? &valid : nullptr);
    if (!valid) {
        SetLastError(ERROR_NO_UNICODE_TRANSLATION);
        return 0;
    }
    const int count = static_cast<int>(wide.size());
    if (cchWideChar == 0) {
        return count;
    }
    if (count > cchWideChar) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    std::copy(wide.begin(), wide.end(), lpWideCharStr);
    return count;
}

int WideCharToMultiByte(UINT CodePage, DWORD dwFlags, LPCWSTR lpWideCharStr, int cchWideChar, LPSTR lpMultiByteStr,
                        int cbMultiByte, LPCSTR lpDefaultChar, BOOL* lpUsedDefaultChar)
{
    if (lpWideCharStr == nullptr || cchWideChar == 0 || cbMultiByte < 0 ||
        (lpMultiByteStr == nullptr && cbMultiByte != 0) || (CodePage != CP_ACP && CodePage != GetACP())) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    if (dwFlags != 0 || lpDefaultChar != nullptr || lpUsedDefaultChar != nullptr) {
        // The library asks for the plain conversion only.
        SetLastError(ERROR_INVALID_FLAGS);
        return 0;
    }
    std::size_t length = 0;
    if (cchWideChar < 0) {
        while (lpWideCharStr[length] != u'\0') {
            ++length;
        }
    } else {
        length = static_cast<std::size_t>(cchWideChar);
    }
    std::u16string wide(lpWideCharStr, length);
    // The terminator and any zero inside pass through as zero bytes.
    std::string text;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= wide.size(); ++i) {
        if (i == wide.size() || wide[i] == u'\0') {
            text += yx::platform::WideToAnsi(wide.substr(start, i - start));
            if (i < wide.size()) {
                text.push_back('\0');
            }
            start = i + 1;
        }
    }
    if (cchWideChar < 0) {
        text.push_back('\0');
    }
    const int count = static_cast<int>(text.size());
    if (cbMultiByte == 0) {
        return count;
    }
    if (count > cbMultiByte) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    std::copy(text.begin(), text.end(), lpMultiByteStr);
    return count;
}

int LCMapStringA(LCID Locale, DWORD dwMapFlags, LPCSTR lpSrcStr, int cchSrc, LPSTR lpDestStr, int cchDest)
{
    if (lpSrcStr == nullptr || cchSrc == 0 || cchDest < 0 || (lpDestStr == nullptr && cchDest != 0)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    constexpr DWORD kMaps =
        LCMAP_LOWERCASE | LCMAP_UPPERCASE | LCMAP_HIRAGANA | LCMAP_KATAKANA | LCMAP_HALFWIDTH | LCMAP_FULLWIDTH;
    constexpr DWORD kRemovals = NORM_IGNORENONSPACE | NORM_IGNORESYMBOLS;
    auto both = [dwMapFlags](DWORD a, DWORD b) { return (dwMapFlags & a) != 0 && (dwMapFlags & b) != 0; };
    if (dwMapFlags == 0 || (dwMapFlags & ~(kMaps | kRemovals)) != 0 || both(kMaps, kRemovals) ||
        both(LCMAP_LOWERCASE, LCMAP_UPPERCASE) || both(LCMAP_HIRAGANA, LCMAP_KATAKANA) ||
        both(LCMAP_HALFWIDTH, LCMAP_FULLWIDTH)) {
        SetLastError(ERROR_INVALID_FLAGS);
        return 0;
    }
    const std::size_t length = cchSrc < 0 ? std::strlen(lpSrcStr) + 1 : static_cast<std::size_t>(cchSrc);
    std::u16string wide = yx::platform::AnsiToWide(lpSrcStr, length, nullptr);
    // Width to full first, so that the kana calls see the full-width forms of half-width kana;
    // width to half last, after the kana type is set.
    if ((dwMapFlags & LCMAP_FULLWIDTH) != 0) {
        yx::platform::MapWidth(wide, true);
    }
    if ((dwMapFlags & (LCMAP_HIRAGANA | LCMAP_KATAKANA)) != 0) {
        yx::platform::MapKana(wide, (dwMapFlags & LCMAP_HIRAGANA) != 0);
    }
    if ((dwMapFlags & LCMAP_HALFWIDTH) != 0) {
        yx::platform::MapWidth(wide, false);
    }
    if ((dwMapFlags & (LCMAP_LOWERCASE | LCMAP_UPPERCASE)) != 0) {
        yx::platform::MapCase(wide, (dwMapFlags & LCMAP_UPPERCASE) != 0);
    }
    if ((dwMapFlags & NORM_IGNORENONSPACE) != 0) {
        yx::platform::RemoveMarks(wide);
    }
    if ((dwMapFlags & NORM_IGNORESYMBOLS) != 0) {
        yx::platform::RemoveSymbols(wide);
    }
    const std::string mapped = yx::platform::WideToAnsi(wide);
    const int count = static_cast<int>(mapped.size());
    if (count == 0) {
        // Everything removed: a count of 0 that is no failure.
        SetLastError(ERROR_SUCCESS);
        return 0;
    }
    if (cchDest == 0) {
        return count;
    }
    if (count > cchDest) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    std::copy(mapped.begin(), mapped.end(), lpDestStr);
    return count;
}

namespace {

struct CollatorCloser {
    void operator()(UCollator* collator) const { ucol_close(collator); }
};

std::u16string Widen(LPCSTR text, int count)
{
    const std::size_t length = count < 0 ? std::strlen(text) : static_cast<std::size_t>(count);
    return yx::platform::AnsiToWide(text, length, nullptr);
}

// What the flags take away: case, accents, symbols.
std::u16string Prepare(std::u16string wide, DWORD flags)
{
    if ((flags & NORM_IGNORECASE) != 0) {
        for (char16_t& c : wide) {
            c = static_cast<char16_t>(u_tolower(c));
        }
    }
    if ((flags & NORM_IGNORENONSPACE) != 0) {
        yx::platform::RemoveMarks(wide);
    }
    if ((flags & NORM_IGNORESYMBOLS) != 0) {
        yx::platform::RemoveSymbols(wide);
    }
    return wide;
}

int Collate(const std::u16string& a, const std::u16string& b, DWORD flags)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<UCollator, CollatorCloser> collator(ucol_open(UserLocaleName().c_str(), &status));
    if (U_FAILURE(status)) {
        return 0;
    }
    ucol_setStrength(collator.get(), UCOL_TERTIARY);
    const UCollationResult r = ucol_strcoll(collator.get(), a.data(), static_cast<int32_t>(a.size()), b.data(),
                                            static_cast<int32_t>(b.size()));
    return r == UCOL_LESS ? CSTR_LESS_THAN : r == UCOL_EQUAL ? CSTR_EQUAL : CSTR_GREATER_THAN;
}

// Width and kana type weigh last, as on Windows: narrow before wide, katakana before hiragana.
// The collator sees both folded away, and these ranks break its ties.
std::u16string Ranks(const std::u16string& text, DWORD flags)
{
    std::u16string ranks;
    for (char16_t c : text) {
        const bool wide = (c >= 0x3000 && c <= 0x30FF) || (c >= 0xFF01 && c <= 0xFF60) || (c >= 0xFFE0 && c <= 0xFFE6);
        const bool hiragana = c >= 0x3041 && c <= 0x309F;
        char16_t rank = 0;
        rank = static_cast<char16_t>(rank + ((flags & NORM_IGNOREWIDTH) == 0 && wide ? 2 : 0));
        rank = static_cast<char16_t>(rank + ((flags & NORM_IGNOREKANATYPE) == 0 && hiragana ? 1 : 0));
        ranks.push_back(rank);
    }
    return ranks;
}

std::u16string WithoutWordBreaks(const std::u16string& text)
{
    std::u16string kept;
    for (char16_t c : text) {
        if (c != u'-' && c != u'\'') {
            kept.push_back(c);
        }
    }
    return kept;
}

} // namespace

int CompareStringA(LCID Locale, DWORD dwCmpFlags, LPCSTR lpString1, int cchCount1, LPCSTR lpString2, int cchCount2)
{
    if (lpString1 == nullptr || lpString2 == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    constexpr DWORD kKnown = NORM_IGNORECASE | NORM_IGNORENONSPACE | NORM_IGNORESYMBOLS | SORT_STRINGSORT |
                             NORM_IGNOREKANATYPE | NORM_IGNOREWIDTH;
    if ((dwCmpFlags & ~kKnown) != 0) {
        SetLastError(ERROR_INVALID_FLAGS);
        return 0;
    }
    const std::u16string wideA = Prepare(Widen(lpString1, cchCount1), dwCmpFlags);
    const std::u16string wideB = Prepare(Widen(lpString2, cchCount2), dwCmpFlags);
    // Compatibility composition brings full-width Latin to half width and half-width kana to
    // full width, its voiced marks joined: each pair meets in one form for the collator.
    std::u16string a = wideA;
    std::u16string b = wideB;
    for (std::u16string* text : {&a, &b}) {
        yx::platform::FoldWidth(*text);
        yx::platform::MapKana(*text, true);
    }
    if ((dwCmpFlags & SORT_STRINGSORT) == 0) {
        // Word sort: the hyphen and the apostrophe weigh nothing first, and only break ties.
        const std::u16string wordsA = WithoutWordBreaks(a);
        const std::u16string wordsB = WithoutWordBreaks(b);
        const int words = Collate(wordsA, wordsB, dwCmpFlags);
        if (words != CSTR_EQUAL) {
            return words;
        }
        // Equal words: the text with more hyphens and apostrophes is the greater.
        const std::size_t breaksA = a.size() - wordsA.size();
        const std::size_t breaksB = b.size() - wordsB.size();
        if (breaksA != breaksB) {
            return breaksA < breaksB ? CSTR_LESS_THAN : CSTR_GREATER_THAN;
        }
    }
    const int collated = Collate(a, b, dwCmpFlags);
    if (collated != CSTR_EQUAL) {
        return collated;
    }
    const std::u16string ranksA = Ranks(wideA, dwCmpFlags);
    const std::u16string ranksB = Ranks(wideB, dwCmpFlags);
    return ranksA < ranksB ? CSTR_LESS_THAN : ranksA == ranksB ? CSTR_EQUAL : CSTR_GREATER_THAN;
}

DWORD CharUpperBuffA(LPSTR lpsz, DWORD cchLength)
{
    return yx::platform::MapCaseInPlace(lpsz, cchLength, true);
}

DWORD CharLowerBuffA(LPSTR lpsz, DWORD cchLength)
{
    return yx::platform::MapCaseInPlace(lpsz, cchLength, false);
}

namespace {

LPSTR CaseOfTextOrCharacter(LPSTR lpsz, bool upper)
{
    const auto value = reinterpret_cast<std::uintptr_t>(lpsz);
    if ((value >> 16) == 0) {
        // A single character in the low byte, mapped and handed back in the pointer.
        char c = static_cast<char>(value & 0xFF);
        yx::platform::MapCaseInPlace(&c, 1, upper);
        return reinterpret_cast<LPSTR>(static_cast<std::uintptr_t>(static_cast<unsigned char>(c)));
    }
    yx::platform::MapCaseInPlace(lpsz, static_cast<DWORD>(std::strlen(lpsz)), upper);
    return lpsz;
}

} // namespace

LPSTR CharUpperA(LPSTR lpsz)
{
    return CaseOfTextOrCharacter(lpsz, true);
}
LPSTR CharLowerA(LPSTR lpsz)
{
    return CaseOfTextOrCharacter(lpsz, false);
}

namespace yx::platform {

DWORD MapCaseInPlace(char* text, DWORD length, bool upper)
{
    if (text == nullptr || length == 0) {
        return 0;
    }
    std::u16string wide = AnsiToWide(text, length, nullptr);
    MapCase(wide, upper);
    const std::string mapped = WideToAnsi(wide);
    // Case pairs of one code page take the same number of bytes; should one not, the text keeps
    // its length.
    std::copy_n(mapped.data(), mapped.size() < length ? mapped.size() : length, text);
    return length;
}

} // namespace yx::platform
