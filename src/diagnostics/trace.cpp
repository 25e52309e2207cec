#include "yxtools/trace.h"

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>

#include "frame/lifecycle.h"
#include "platform/win32.h"
#include "yxtools/registry.h"

namespace {
constexpr long kOutputDebugger = 1;
constexpr long kOutputScreen = 2;
constexpr long kOutputFile = 4;
constexpr int kDefaultLineCount = 10;
constexpr int kRowHeight = 15;
constexpr int kStripWidth = 600;
constexpr int kTextOffset = 10;
constexpr std::size_t kMaxDrawnBytes = 55;
} // namespace

long YXTraceManager::m_iIndent = 0;
bool YXTraceManager::m_bCreated = false;

namespace {
// The library's one static object. Its priority makes it before the load hook runs the
// initialisation sequence and ends it after the unload hook's closing sequence (on Windows the
// runtime makes and ends static objects around DllMain's notifications).
YXTraceManager g_traceManager __attribute__((init_priority(YX_INIT_PRIORITY_TRACE_MANAGER)));
} // namespace

YXTraceManager::YXTraceManager()
    : m_lOutput(0), m_iScreenLine(0), m_iScreenLineCount(kDefaultLineCount), m_iScreenTop(0), m_iScreenLeft(0)
{
    m_bCreated = true;
    InitializeOutput();
}

YXTraceManager::YXTraceManager(const YXTraceManager& other)
    : m_lOutput(other.m_lOutput), m_iScreenLine(other.m_iScreenLine), m_iScreenLineCount(other.m_iScreenLineCount),
      m_iScreenTop(other.m_iScreenTop), m_iScreenLeft(other.m_iScreenLeft), m_strFileName(other.m_strFileName)
{}

YXTraceManager& YXTraceManager::operator=(const YXTraceManager& other)
{
    m_lOutput = other.m_lOutput;
    m_iScreenLine = other.m_iScreenLine;
    m_iScreenLineCount = other.m_iScreenLineCount;
    m_iScreenTop = other.m_iScreenTop;
    m_iScreenLeft = other.m_iScreenLeft;
    m_strFileName = other.m_strFileName;
    return *this;
}

YXTraceManager::~YXTraceManager()
{
    m_bCreated = false;
}

YXTraceManager* YXTraceManager::GetTraceManager()
{
    return m_bCreated ? &g_traceManager : nullptr;
}

// Read at load, in any process: whatever the registry does (no prefix, no database, a locked or
// foreign one), each read gives its default and the load goes on.
void YXTraceManager::InitializeOutput()
{
    const _SS<char> section("Trace");
    m_lOutput = YXRegistry::ReadLongParam(section, "Output", 1, YXRegistry::CurrentUser, nullptr);
    if ((m_lOutput & kOutputScreen) != 0) {
        m_iScreenTop =
            static_cast<int>(YXRegistry::ReadLongParam(section, "ScreenTop", 0, YXRegistry::CurrentUser, nullptr));
        m_iScreenLeft =
            static_cast<int>(YXRegistry::ReadLongParam(section, "ScreenLeft", 0, YXRegistry::CurrentUser, nullptr));
        // Tested after the narrowing to int, where a wider long of 2^32 would also become 0.
        m_iScreenLineCount = static_cast<int>(
            YXRegistry::ReadLongParam(section, "ScreenLineCount", kDefaultLineCount, YXRegistry::CurrentUser, nullptr));
        if (m_iScreenLineCount == 0) {
            m_iScreenLineCount = kDefaultLineCount;
        }
    }
    if ((m_lOutput & kOutputFile) != 0) {
        YXRegistry::ReadStringParam(section, "FileName", &m_strFileName, _SS<char>(), YXRegistry::CurrentUser, nullptr);
    }
    if (!m_strFileName.empty()) {
        // Every load starts with an empty file; a file that cannot be opened is no error here.
        if (std::FILE* file = std::fopen(m_strFileName.c_str(), "w")) {
            std::fclose(file);
        }
    }
}

void YXTraceManager::Trace(const char* format, ...)
{
    YXTraceManager* manager = GetTraceManager();
    if (manager == nullptr) {
        return;
    }
    _SS<char> text;
    va_list args;
    va_start(args, format);
    text.FormatV(format, args);
    va_end(args);
    // The indentation once at the front, then the text up to its first zero byte.
    _SS<char> line;
    if (m_iIndent > 0) {
        line.assign(static_cast<std::size_t>(m_iIndent), ' ');
    }
    line.append(text.c_str());
    manager->InternalTrace(line);
}

void YXTraceManager::AddIndent(long delta)
{
    // The sum has no bound; past the range of long it wraps rather than overflow.
    m_iIndent = static_cast<long>(static_cast<unsigned long>(m_iIndent) + static_cast<unsigned long>(delta));
}

void YXTraceManager::InternalTrace(const _SS<char>& line)
{
    if ((m_lOutput & kOutputDebugger) != 0) {
        OutputTrace(line);
    }
    if ((m_lOutput & kOutputFile) != 0) {
        FileTrace(line);
    }
    if ((m_lOutput & kOutputScreen) != 0) {
        ScreenTrace(line);
    }
}

void YXTraceManager::OutputTrace(const _SS<char>& line)
{
    OutputDebugStringA(line.c_str());
}

// The file is open for this one line; the name goes to the runtime as it stands, so a relative
// name follows the current directory of the moment.
void YXTraceManager::FileTrace(const _SS<char>& line)
{
    if (m_strFileName.empty()) {
        return;
    }
    std::FILE* file = std::fopen(m_strFileName.c_str(), "a");
    if (file == nullptr) {
        return;
    }
    std::fprintf(file, "%s", line.c_str());
    std::fclose(file);
}

namespace {
// y of a row of the strip. Worked out in 64 bits and narrowed, so that settings far out of range
// wrap rather than overflow.
int RowY(int top, int line, int count)
{
    return static_cast<int>(static_cast<std::int64_t>(top) + std::int64_t{kRowHeight} * (line % count));
}
} // namespace

// The strip: m_iScreenLineCount rows of 15 by 600 units on the display itself, reused in a ring,
// with ">" before the newest row. A count below 1 keeps every line in row 0.
void YXTraceManager::ScreenTrace(const _SS<char>& line)
{
    HDC dc = CreateDCA("DISPLAY", nullptr, nullptr, nullptr);
    if (dc == nullptr) {
        return;
    }
    HGDIOBJ kept = SelectObject(dc, GetStockObject(ANSI_FIXED_FONT));
    // Wipe the marker of the row before.
    TextOutA(dc, m_iScreenLeft, RowY(m_iScreenTop, m_iScreenLine, m_iScreenLineCount), " ", 1);
    ++m_iScreenLine;
    if (m_iScreenLine >= m_iScreenLineCount) {
        m_iScreenLine = 0;
    }
    const int y = RowY(m_iScreenTop, m_iScreenLine, m_iScreenLineCount);
    const RECT row = {m_iScreenLeft, y, m_iScreenLeft + kStripWidth, y + kRowHeight};
    FillRect(dc, &row, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    TextOutA(dc, m_iScreenLeft, y, ">", 1);
    TextOutA(dc, m_iScreenLeft + kTextOffset, y, line.c_str(), static_cast<int>(std::min(line.size(), kMaxDrawnBytes)));
    DeleteObject(SelectObject(dc, kept));
    DeleteDC(dc);
}

unsigned long YXGetTickCount()
{
    return GetTickCount();
}

void YXGetTickCount_Elapsed(unsigned long ticks, unsigned long* pDays, unsigned char* pHours, unsigned char* pMinutes,
                            double* pSeconds)
{
    const unsigned long hours = ticks / 3600000UL;
    *pMinutes = static_cast<unsigned char>((ticks % 3600000UL) / 60000UL);
    *pSeconds = static_cast<double>(ticks % 60000UL) * 0.001;
    if (hours > 23) {
        *pDays = hours / 24;
        *pHours = static_cast<unsigned char>(hours % 24);
    } else {
        *pDays = 0;
        *pHours = static_cast<unsigned char>(hours);
    }
}
