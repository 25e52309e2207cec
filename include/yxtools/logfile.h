// YXLogFile: an abstract log file for hosts to derive from. The library declares it and never
// uses it; the error log and the trace write their files without it.
#ifndef YXTOOLS_LOGFILE_H
#define YXTOOLS_LOGFILE_H

#include "yxtools/config.h"
#include "yxtools/ss.h"

class YXTOOLS_API YXLogFile {
public:
    YXLogFile();
    YXLogFile(const YXLogFile& other);
    YXLogFile& operator=(const YXLogFile& other);
    virtual ~YXLogFile();

    // Opens (creating when needed) the file at path; true on success.
    virtual bool Open(const _SS<char>& path) = 0;
    // Closes the file; closing a closed file does nothing.
    virtual void Close() = 0;
    virtual bool IsOpen() const = 0;
    // Appends text as it stands.
    virtual bool Write(const _SS<char>& text) = 0;
    // Appends text and a line end.
    virtual bool WriteLine(const _SS<char>& text) = 0;
    // Hands buffered text to the file.
    virtual bool Flush() = 0;
    // Empties the file.
    virtual bool Clear() = 0;
    // The path given to Open.
    virtual const _SS<char>& GetPath() const = 0;
    // The file's length in bytes, -1 when closed.
    virtual long GetSize() const = 0;
};

#endif
