/// @file
/// YXLogFile: an abstract log file for hosts to derive from. The library declares it and never
/// uses it; the error log and the trace write their files without it.
#ifndef YXTOOLS_LOGFILE_H
#define YXTOOLS_LOGFILE_H

#include "yxtools/config.h"
#include "yxtools/ss.h"

/// The interface of a log file: a host's class derives from it and gives every operation its body.
class YXTOOLS_API YXLogFile {
public:
    /// Nothing to set up: the interface holds no state.
    YXLogFile();
    /// Copies nothing: the interface holds no state.
    YXLogFile(const YXLogFile& other);
    /// Copies nothing: the interface holds no state.
    YXLogFile& operator=(const YXLogFile& other);
    /// Virtual, so that a derived log file is destroyed through the interface.
    virtual ~YXLogFile();

    /// Opens (creating when needed) the file at path; true on success.
    virtual bool Open(const _SS<char>& path) = 0;
    /// Closes the file; closing a closed file does nothing.
    virtual void Close() = 0;
    /// True while a file is open.
    virtual bool IsOpen() const = 0;
    /// Appends text as it stands.
    virtual bool Write(const _SS<char>& text) = 0;
    /// Appends text and a line end.
    virtual bool WriteLine(const _SS<char>& text) = 0;
    /// Hands buffered text to the file.
    virtual bool Flush() = 0;
    /// Empties the file.
    virtual bool Clear() = 0;
    /// The path given to Open.
    virtual const _SS<char>& GetPath() const = 0;
    /// The file's length in bytes, -1 when closed.
    virtual long GetSize() const = 0;
};

#endif
