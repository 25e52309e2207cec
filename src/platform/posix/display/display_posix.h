// The display device of the POSIX stand-in: a virtual screen inside the process.
//
// CreateDCA("DISPLAY", ...) gives a device context on it; any other driver gives null. Text is
// kept as character cells of a fixed font 8 units wide: TextOutA puts byte i of its text in the
// cell at x + 8 * i on row y, replacing a cell it overlaps, and FillRect clears the cells whose
// origin lies inside the rectangle. Nothing is drawn anywhere: tests read the screen through
// yxposix::ScreenRow, and when YXTOOLS_SCREEN names a file, each DeleteDC writes the screen's
// cells there, one line "y x: text" for each run of cells that follow each other at the cell
// width, for a person or another process to look at.
#ifndef YXTOOLS_PLATFORM_POSIX_DISPLAY_POSIX_H
#define YXTOOLS_PLATFORM_POSIX_DISPLAY_POSIX_H

#include <string>

struct HDC__;
using HDC = HDC__*;
using HGDIOBJ = void*;
using HBRUSH = HGDIOBJ;
using HFONT = HGDIOBJ;

struct RECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};

// The stock objects the library uses, with Windows' numbers.
constexpr int WHITE_BRUSH = 0;
constexpr int ANSI_FIXED_FONT = 11;
constexpr int SYSTEM_FONT = 13;

YX_PLATFORM HDC CreateDCA(LPCSTR pwszDriver, LPCSTR pwszDevice, LPCSTR pszPort, const void* pdm);
// Null for a number that is no stock object the stand-in has.
YX_PLATFORM HGDIOBJ GetStockObject(int i);
// Gives the object of the same kind that was selected before (a new context holds the system
// font); null for a context or object that is not there.
YX_PLATFORM HGDIOBJ SelectObject(HDC hdc, HGDIOBJ h);
YX_PLATFORM BOOL TextOutA(HDC hdc, int x, int y, LPCSTR lpString, int c);
// 1 on success, 0 for a bad context, rectangle or brush.
YX_PLATFORM int FillRect(HDC hDC, const RECT* lprc, HBRUSH hbr);
// Stock objects are never deleted and answer TRUE.
YX_PLATFORM BOOL DeleteObject(HGDIOBJ ho);
YX_PLATFORM BOOL DeleteDC(HDC hdc);

namespace yxposix {

constexpr int kScreenCellWidth = 8;

// The cells of row y from x on, up to the last cell drawn there, with a blank for each cell
// between that holds nothing.
YX_PLATFORM std::string ScreenRow(int y, int x);
// Clears the screen.
YX_PLATFORM void ScreenClear();
// Device contexts created and not yet deleted.
YX_PLATFORM int ScreenOpenContexts();

} // namespace yxposix

#endif
