#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <utility>

#include "platform/win32.h"

struct HDC__ {
    HGDIOBJ font;
    HGDIOBJ brush;
};

namespace {

// The stock objects are distinct addresses that nothing dereferences.
struct StockObject {
    int number;
    bool isFont;
};
StockObject g_whiteBrush{WHITE_BRUSH, false};
StockObject g_ansiFixedFont{ANSI_FIXED_FONT, true};
StockObject g_systemFont{SYSTEM_FONT, true};

bool IsFont(HGDIOBJ object)
{
    return object == &g_ansiFixedFont || object == &g_systemFont;
}
bool IsBrush(HGDIOBJ object)
{
    return object == &g_whiteBrush;
}

// The screen: row y -> (x -> the byte drawn in the cell at x). Made at its first use, which may
// come from the trace manager's constructor at load, and so kept until after its destruction.
struct Screen {
    std::mutex lock;
    std::map<int, std::map<int, char>> rows;
    std::set<HDC> contexts;
};
Screen& TheScreen()
{
    static Screen screen;
    return screen;
}

void Publish(const Screen& screen)
{
    const char* path = std::getenv("YXTOOLS_SCREEN");
    if (path == nullptr || *path == '\0') {
        return;
    }
    std::FILE* file = std::fopen(path, "w");
    if (file == nullptr) {
        return;
    }
    // One line per run of cells that follow each other at the cell width.
    for (const auto& row : screen.rows) {
        std::string text;
        int start = 0;
        int next = 0;
        for (const auto& cell : row.second) {
            if (!text.empty() && cell.first != next) {
                std::fprintf(file, "%d %d: %s\n", row.first, start, text.c_str());
                text.clear();
            }
            if (text.empty()) {
                start = cell.first;
            }
            text.push_back(cell.second);
            next = cell.first + yxposix::kScreenCellWidth;
        }
        if (!text.empty()) {
            std::fprintf(file, "%d %d: %s\n", row.first, start, text.c_str());
        }
    }
    std::fclose(file);
}

} // namespace

HDC CreateDCA(LPCSTR pwszDriver, LPCSTR /*pwszDevice*/, LPCSTR /*pszPort*/, const void* /*pdm*/)
{
    // Driver names compare without regard to case.
    std::string name = pwszDriver != nullptr ? pwszDriver : "";
    for (char& c : name) {
        c = static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
    }
    if (name != "DISPLAY") {
        return nullptr;
    }
    Screen& screen = TheScreen();
    std::lock_guard<std::mutex> guard(screen.lock);
    HDC dc = new HDC__{&g_systemFont, &g_whiteBrush};
    screen.contexts.insert(dc);
    return dc;
}

HGDIOBJ GetStockObject(int i)
{
    switch (i) {
    case WHITE_BRUSH:
        return &g_whiteBrush;
    case ANSI_FIXED_FONT:
        return &g_ansiFixedFont;
    case SYSTEM_FONT:
        return &g_systemFont;
    default:
        return nullptr;
    }
}

HGDIOBJ SelectObject(HDC hdc, HGDIOBJ h)
{
    Screen& screen = TheScreen();
    std::lock_guard<std::mutex> guard(screen.lock);
    if (screen.contexts.count(hdc) == 0) {
        return nullptr;
    }
    HGDIOBJ* slot = IsFont(h) ? &hdc->font : IsBrush(h) ? &hdc->brush : nullptr;
    if (slot == nullptr) {
        return nullptr;
    }
    return std::exchange(*slot, h);
}

BOOL TextOutA(HDC hdc, int x, int y, LPCSTR lpString, int c)
{
    Screen& screen = TheScreen();
    std::lock_guard<std::mutex> guard(screen.lock);
    if (screen.contexts.count(hdc) == 0 || c < 0 || (lpString == nullptr && c > 0)) {
        return FALSE;
    }
    auto& row = screen.rows[y];
    for (int i = 0; i < c; ++i) {
        const int at = x + yxposix::kScreenCellWidth * i;
        // The new cell replaces every cell it overlaps.
        row.erase(row.lower_bound(at - yxposix::kScreenCellWidth + 1), row.lower_bound(at + yxposix::kScreenCellWidth));
        row[at] = lpString[i];
    }
    return TRUE;
}

int FillRect(HDC hDC, const RECT* lprc, HBRUSH hbr)
{
    Screen& screen = TheScreen();
    std::lock_guard<std::mutex> guard(screen.lock);
    if (screen.contexts.count(hDC) == 0 || lprc == nullptr || !IsBrush(hbr)) {
        return 0;
    }
    for (auto row = screen.rows.lower_bound(lprc->top); row != screen.rows.end() && row->first < lprc->bottom; ++row) {
        row->second.erase(row->second.lower_bound(lprc->left), row->second.lower_bound(lprc->right));
    }
    return 1;
}

BOOL DeleteObject(HGDIOBJ ho)
{
    // The stand-in has stock objects only, which stay.
    return IsFont(ho) || IsBrush(ho) ? TRUE : FALSE;
}

BOOL DeleteDC(HDC hdc)
{
    Screen& screen = TheScreen();
    std::lock_guard<std::mutex> guard(screen.lock);
    if (screen.contexts.erase(hdc) == 0) {
        return FALSE;
    }
    delete hdc;
    Publish(screen);
    return TRUE;
}

namespace yxposix {

std::string ScreenRow(int y, int x)
{
    Screen& screen = TheScreen();
    std::lock_guard<std::mutex> guard(screen.lock);
    std::string text;
    const auto row = screen.rows.find(y);
    if (row == screen.rows.end()) {
        return text;
    }
    for (auto cell = row->second.lower_bound(x); cell != row->second.end(); ++cell) {
        const int offset = cell->first - x;
        if (offset % kScreenCellWidth != 0) {
            continue;
        }
        text.resize(static_cast<std::size_t>(offset / kScreenCellWidth), ' ');
        text.push_back(cell->second);
    }
    return text;
}

void ScreenClear()
{
    Screen& screen = TheScreen();
    std::lock_guard<std::mutex> guard(screen.lock);
    screen.rows.clear();
}

int ScreenOpenContexts()
{
    Screen& screen = TheScreen();
    std::lock_guard<std::mutex> guard(screen.lock);
    return static_cast<int>(screen.contexts.size());
}

} // namespace yxposix
