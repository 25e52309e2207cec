/// @file
/// The trace channel and the millisecond counter.
///
/// A host writes formatted lines with YXTraceManager::Trace. Where they go is read once, when the
/// library is loaded, from section "Trace" of the product's registry key under the current user:
/// "Output" (bit 1 the debugger, 2 a strip of rows drawn on the screen, 4 a file; 1 when missing),
/// "ScreenTop", "ScreenLeft", "ScreenLineCount" (10 when missing or 0, or when it narrows to an
/// int of 0) and "FileName" (emptied at each load). Strip positions far out of range are worked
/// out in 64 bits and narrowed. The library's own operations never trace.
///
/// On POSIX, debugger output is silent unless someone listens: the file named by
/// `YXTOOLS_DEBUG_OUTPUT` (`-` for the standard error) gets each text appended, and without it a
/// debugger attached to the process gets it on the standard error. The screen strip is drawn on a
/// virtual screen inside the process; when `YXTOOLS_SCREEN` names a file, each finished drawing
/// writes the screen's cells there.
#ifndef YXTOOLS_TRACE_H
#define YXTOOLS_TRACE_H

#include "yxtools/config.h"
#include "yxtools/ss.h"

/// The trace channel. The library makes the one instance that counts at load; a host only calls
/// the static members.
class YXTOOLS_API YXTraceManager {
public:
    /// Formats a line in the manner of printf (texts past 8704 characters are cut there), puts the
    /// current indentation in front and sends it to the outputs: debugger, then file, then screen.
    /// No line end is added. Does nothing once the library's manager has been destroyed.
    static void Trace(const char* format, ...);
    /// Adds delta, which may be negative, to the indentation; a sum of 0 or less indents nothing.
    /// A sum past the range of long wraps.
    static void AddIndent(long delta);

    /// Reads the settings and empties the trace file. The library's own instance is made at load;
    /// a further one empties the file again, and destroying any one ends all tracing.
    YXTraceManager();
    /// Copies the settings; neither reads the registry nor changes whether tracing is on.
    YXTraceManager(const YXTraceManager& other);
    /// Copies the settings, as the copy constructor.
    YXTraceManager& operator=(const YXTraceManager& other);
    ~YXTraceManager();

private:
    static YXTraceManager* GetTraceManager();
    void InitializeOutput();
    void InternalTrace(const _SS<char>& line);
    void OutputTrace(const _SS<char>& line);
    void FileTrace(const _SS<char>& line);
    void ScreenTrace(const _SS<char>& line);

    long m_lOutput;
    int m_iScreenLine;
    int m_iScreenLineCount;
    int m_iScreenTop;
    int m_iScreenLeft;
    _SS<char> m_strFileName;

    static long m_iIndent;
    static bool m_bCreated;
};

/// Milliseconds since the system started, wrapping at 2^32.
YXTOOLS_API unsigned long YXGetTickCount();

/// Splits a span of milliseconds into days, hours (0 to 23), minutes and seconds with the
/// milliseconds as their fraction. All four pointers are written.
YXTOOLS_API void YXGetTickCount_Elapsed(unsigned long ticks, unsigned long* pDays, unsigned char* pHours,
                                        unsigned char* pMinutes, double* pSeconds);

#endif
