#include "yxtools/logfile.h"

// The class has no data: construction and copies only set up the object.
YXLogFile::YXLogFile() = default;
YXLogFile::YXLogFile(const YXLogFile& /*other*/) {}
YXLogFile& YXLogFile::operator=(const YXLogFile& /*other*/)
{
    return *this;
}
YXLogFile::~YXLogFile() = default;
