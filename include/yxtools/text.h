/// @file
/// Byte strings in the system's ANSI code page, which may be a double-byte character set: the
/// character model, walking, counting, comparing, case mapping, truncating copy, character values,
/// and the searches and transformations that never split a double-byte character.
///
/// A character value is a byte (0x01..0xFF) or (lead byte shl 8) + trail byte. A double-byte
/// character stands where a lead byte of the code page is followed by a byte in 0x31..0xFE other
/// than 0x7F; a lead byte followed by anything else is a character of one byte. Counts are bytes
/// unless the name says characters. Nothing here throws; failures are the results told below.
///
/// On POSIX the ANSI code page follows `LC_ALL`, else `LC_CTYPE`, else `LANG`, read at each call,
/// with Wine's choice per language (`ja` 932, `zh_CN` 936, `zh_TW` 950, `ko` 949, `ru` 1251, ...,
/// 1252 for C and unknown languages); the lead bytes and the mappings come from ICU, answering as
/// Wine does for code pages 1252 and 932. An undefined double-byte code of 932 reads as the
/// katakana middle dot, as on Windows.
#ifndef YXTOOLS_TEXT_H
#define YXTOOLS_TEXT_H

#include "yxtools/config.h"
#include "yxtools/ss.h"

/// The 256 entries of the lead-byte table of the system code page (all false before the library
/// has initialised). The table is the library's; read it, never write it.
YXTOOLS_API bool* String_GetTabBLeadByte();
/// True when the system code page has lead bytes.
YXTOOLS_API bool String_IsDBCSEnabled();

/// A value below 0x100 is valid when it is no lead byte; a larger one when its high byte is. The
/// pointer only selects the overload and is never read. Every wide value is valid.
YXTOOLS_API bool String_IsValidChar(unsigned short value, char* tag);
/// The wide overload: always true.
YXTOOLS_API bool String_IsValidChar(unsigned short value, unsigned short* tag);

/// The start of the character before current, never before start; null when either is null.
YXTOOLS_API char* String_CharPrev(char const* start, char const* current);
/// The wide overload: the unit before current, never before start; null when either is null.
YXTOOLS_API unsigned short* String_CharPrev(unsigned short const* start, unsigned short const* current);

/// Characters up to the terminator (0 for null).
YXTOOLS_API long String_NbChar(char const* text);
/// Bytes taken by the first nChars characters, never past the terminator. Without double-byte
/// code page, for a null text or nChars of 0 or less, nChars itself.
YXTOOLS_API long String_NbChar2NbBytes(char const* text, long nChars);
/// Characters in the first nBytes bytes; a character that straddles nBytes counts whole. The walk
/// does not stop at a terminator: nBytes must lie within the string.
YXTOOLS_API long String_NbBytes2NbChar(char const* text, long nBytes);

/// @name Flags of String_Compare
/// @{
constexpr unsigned short YXSTRING_IGNORECASE = 0x0001;     ///< letters compare without case
constexpr unsigned short YXSTRING_IGNOREKANATYPE = 0x0002; ///< hiragana and katakana compare equal
constexpr unsigned short YXSTRING_IGNORENONSPACE = 0x0004; ///< no effect under code page 932
constexpr unsigned short YXSTRING_IGNORESYMBOLS = 0x0008;  ///< symbols and punctuation are skipped
constexpr unsigned short YXSTRING_IGNOREWIDTH = 0x0010;    ///< full and half width compare equal
constexpr unsigned short YXSTRING_STRINGSORT = 0x0020;     ///< hyphen and apostrophe sort as symbols
/// @}

/// The user's collation over count bytes of both texts (a negative count: both zero-terminated):
/// -1, 0 or 1, and -2 when the platform fails. A null text is less than any other; two are equal.
/// A count beyond int is handed to the platform as INT_MAX.
YXTOOLS_API short String_Compare(char const* a, char const* b, long count, unsigned short flags);
/// Case mapping in place: the zero-terminated text for count 0, else count bytes. text must not
/// be null. The result is text.
YXTOOLS_API char* String_CharUpper(char* text, long count);
/// As String_CharUpper, to lower case.
YXTOOLS_API char* String_CharLower(char* text, long count);

/// Copies src into dst of capacity bytes (the terminator included; 0 means no bound), never
/// ending in half a character: a double-byte character that would end at the last byte is left
/// out. Null for a null argument or a negative capacity; otherwise dst. dst may be src.
YXTOOLS_API char* StringCopy(char* dst, char const* src, long capacity);

/// Writes the one or two bytes of value at dst, without terminator; false for a null dst or an
/// invalid value, and nothing is written then. The caller gives room for two bytes.
YXTOOLS_API bool String_SetCharValue(char* dst, unsigned short value);
/// Writes one unit; false only for a null dst.
YXTOOLS_API bool String_SetCharValue(unsigned short* dst, unsigned short value);
/// Appends the bytes of value (a 0 byte for the value 0); false, and text unchanged, for an
/// invalid value.
YXTOOLS_API bool String_AddCharValue(_SS<char>& text, unsigned short value);
/// The wide overload: appends one unit; always true.
YXTOOLS_API bool String_AddCharValue(_SS<unsigned short>& text, unsigned short value);

/// The first place where pattern stands in text with case, width, kana type and accents folded
/// away; null for a null argument, an empty text, or no match. The fold tables are built at load
/// by a chain of mappings, each step starting from the text of the step before, so a mapping the
/// platform cannot make passes its text on unchanged.
YXTOOLS_API char const* String_Find(char const* text, char const* pattern);
/// The first character of value (text must not be null). A value whose first byte cannot be a
/// trail byte (outside 0x40..0xFC, or 0x7F), and every value without double-byte code page, is
/// the runtime's strchr of its low byte. An invalid value gives null.
YXTOOLS_API char const* String_StrChr(char const* text, unsigned short value);
/// The wide overload: the first unit of value.
YXTOOLS_API unsigned short const* String_StrChr(unsigned short const* text, unsigned short value);
/// The same within the first count bytes, past terminators (memchr for the plain case); null for
/// a null text; count 0 or less searches to the terminator. Candidates are found with memchr and
/// each one's character boundary is decided backward; no byte past the count is read.
YXTOOLS_API char const* String_StrChr(char const* text, unsigned short value, long count);
/// The wide overload within the first count units.
YXTOOLS_API unsigned short const* String_StrChr(unsigned short const* text, unsigned short value, long count);
/// The last character of value, with the gate of String_StrChr and strrchr as its plain search.
YXTOOLS_API char* String_StrRChr(char const* text, unsigned short value);
/// The first place of pattern, character by character unless every character of pattern has a
/// first byte that cannot be a trail byte; then the runtime's strstr. Arguments must not be null.
YXTOOLS_API char* String_StrStr(char const* text, char const* pattern);

/// @name Modes of String_Extract
/// @{
constexpr unsigned short YXSTRING_EXTRACT_FROM = 0; ///< count characters from the 1-based position first
constexpr unsigned short YXSTRING_EXTRACT_LAST = 1; ///< the last count characters
/// @}

/// Writes characters of text to dst (mode 0: from position first, up to count; mode 1: the last
/// count, within dstSize bytes). false for a null argument, a dstSize of 0, an empty text (with
/// count not 0), an unknown mode, or, in mode 1, a dstSize of count or less. In mode 0 dst must
/// have room for count characters and the terminator; dst may overlap text (it is then read from
/// a copy). Mode 0 with a negative count writes nothing.
YXTOOLS_API bool String_Extract(char const* text, char* dst, long dstSize, unsigned short mode, long first, long count);

/// @name Flags of String_Transform (only the low byte counts)
/// @{
constexpr unsigned long YXSTRING_FULLWIDTH = 0x01; ///< to full width
constexpr unsigned long YXSTRING_HALFWIDTH = 0x02; ///< to half width
constexpr unsigned long YXSTRING_HIRAGANA = 0x04;  ///< katakana to hiragana
constexpr unsigned long YXSTRING_KATAKANA = 0x08;  ///< hiragana to katakana
constexpr unsigned long YXSTRING_LOWERCASE = 0x10; ///< to lower case
constexpr unsigned long YXSTRING_UPPERCASE = 0x20; ///< to upper case
constexpr unsigned long YXSTRING_NONSPACE = 0x40;  ///< no effect under code page 932
constexpr unsigned long YXSTRING_SYMBOLS = 0x80;   ///< symbols and punctuation removed
/// @}

/// The user's locale mapping of src (srcLength bytes, or zero-terminated for 0 or less) into dst of
/// dstSize bytes: the mapped length (without the terminator for a zero-terminated src), -1 on
/// failure. With no flag, a plain copy, whose result is the length up to the first 0 byte copied
/// (or the bytes copied when none), -1 for a null text. dst and src must hold dstSize and
/// srcLength bytes. YXSTRING_NONSPACE removes combining marks only and keeps the spacing accents,
/// one character for each character, as Windows does.
YXTOOLS_API long String_Transform(char const* src, long srcLength, char* dst, long dstSize, unsigned long flags);
/// The same for a zero-terminated src.
YXTOOLS_API long String_Transform(char const* src, char* dst, long dstSize, unsigned long flags);
/// In place, within length bytes (or the text and its terminator for 0 or less); -1, with text
/// unchanged, when the mapping fails or does not fit.
YXTOOLS_API long String_Transform(char* text, long length, unsigned long flags);
/// Half width in place (byte string); the wide form changes nothing and gives twice the units.
YXTOOLS_API long String_Simplify(char* text, long length);
/// The wide overload: changes nothing and gives twice @p length.
YXTOOLS_API long String_Simplify(unsigned short* text, long length);
/// Cuts text to at most nBytes bytes, never leaving a lead byte at the end. Writes a 0 at offset
/// nBytes whatever the text's length: the buffer must hold nBytes + 1 bytes.
YXTOOLS_API char* String_Truncate(char* text, long nBytes);

#endif
