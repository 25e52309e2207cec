// The character model's internal operations and tables, for the text family and its tests.
#ifndef YXTOOLS_TEXT_INTERNAL_H
#define YXTOOLS_TEXT_INTERNAL_H

#include <cstdint>

#include "yxtools/text.h"

namespace yx::text {

// The process-wide tables: zero until String_InitTables runs, read without a lock afterwards.
struct Tables {
    bool leadBytes[256];
    bool dbcs;
    std::uint32_t codePage;
    unsigned short foldSingle[256];
    unsigned short foldKatakana[87]; // 0x8340..0x8396
    unsigned short foldHiragana[84]; // 0x829F..0x82F2
};
extern Tables g_tables;

constexpr unsigned short kKatakanaFirst = 0x8340;
constexpr unsigned short kKatakanaLast = 0x8396;
constexpr unsigned short kHiraganaFirst = 0x829F;
constexpr unsigned short kHiraganaLast = 0x82F2;

inline bool IsLead(unsigned char b)
{
    return g_tables.leadBytes[b];
}
// The trail byte of a character: 0x31..0xFE without 0x7F.
inline bool IsLegalTrail(unsigned char b)
{
    return b >= 0x31 && b <= 0xFE && b != 0x7F;
}
// Whether a byte could be a trail byte at all, for the backward walk and the searches' gate:
// 0x40..0xFC without 0x7F.
inline bool CouldBeTrail(unsigned char b)
{
    return b >= 0x40 && b <= 0xFC && b != 0x7F;
}
inline unsigned char FirstByte(unsigned short value)
{
    return static_cast<unsigned char>(value < 0x100 ? value : value >> 8);
}

} // namespace yx::text

// Fills every table: lead bytes, the DBCS flag, the code page and the three fold tables.
void String_InitTables();
bool String_IsDoubleByteChar(char const* p);
char* String_CharNext(char const* p);
unsigned short String_GetCharValue(char const* p);
char* String_StoreCharValue(char* p, unsigned short value);
unsigned short String_FoldChar(unsigned short value);
char* String_DBCSCharPrev(char const* start, char const* current);
bool String_IsDBCSSearchNeeded(char const* pattern);

#endif
