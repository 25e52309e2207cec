// Checks one cut of the runtime's _splitpath.
#ifndef YXTOOLS_TESTS_SPLITPATH_CHECK_H
#define YXTOOLS_TESTS_SPLITPATH_CHECK_H

#include <gtest/gtest.h>

#include <string>

#include "platform/win32.h"

struct SplitPathCase {
    const char* path;
    const char* drive;
    const char* dir;
    const char* fname;
    const char* ext;
};

inline void ExpectSplitPath(const SplitPathCase& c)
{
    char drive[_MAX_DRIVE] = "?";
    char dir[_MAX_DIR] = "?";
    char fname[_MAX_FNAME] = "?";
    char ext[_MAX_EXT] = "?";
    _splitpath(c.path, drive, dir, fname, ext);
    EXPECT_EQ(std::string(drive) + "|" + dir + "|" + fname + "|" + ext,
              std::string(c.drive) + "|" + c.dir + "|" + c.fname + "|" + c.ext)
        << c.path;
}

#endif
