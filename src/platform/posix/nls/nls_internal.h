// Helpers of the NLS stand-in: ANSI text to UTF-16 and back, and the mappings on UTF-16.
#ifndef YXTOOLS_PLATFORM_POSIX_NLS_INTERNAL_H
#define YXTOOLS_PLATFORM_POSIX_NLS_INTERNAL_H

#include <cstddef>
#include <string>

#include "platform/posix/win32_posix.h"

namespace yx::platform {

// Bytes of the ANSI code page to UTF-16. With valid, an undefined sequence empties the result
// and clears *valid; without, it becomes ICU's substitute.
YX_PLATFORM std::u16string AnsiToWide(const char* text, std::size_t length, bool* valid);
// The same, for a run that holds none of code page 932's five single bytes outside ICU's table.
YX_PLATFORM std::u16string AnsiToWide932Run(const char* text, std::size_t length, bool* valid);
// UTF-16 to the ANSI code page, with best fit and the code page's substitute.
YX_PLATFORM std::string WideToAnsi(const std::u16string& wide);
// True when the code page has the character, or a best fit for it.
YX_PLATFORM bool HasPlace(char16_t c);

YX_PLATFORM void MapCase(std::u16string& text, bool upper);
YX_PLATFORM void MapKana(std::u16string& text, bool toHiragana);
YX_PLATFORM void MapWidth(std::u16string& text, bool toFull);
YX_PLATFORM void FoldWidth(std::u16string& text);
YX_PLATFORM void RemoveSymbols(std::u16string& text);
YX_PLATFORM void RemoveMarks(std::u16string& text);
// Case-maps length bytes of ANSI text in place; gives length.
YX_PLATFORM DWORD MapCaseInPlace(char* text, DWORD length, bool upper);

} // namespace yx::platform

#endif
