// Both routes of YXPath::Split; the long-path route is protected.
#ifndef YXTOOLS_TESTS_PATH_ROUTES_H
#define YXTOOLS_TESTS_PATH_ROUTES_H

#include <string>

#include <yxtools/path.h>

struct PathRoutes : YXPath {
    using YXPath::SlowSplit;
};

// The four components as "drive|directory|name|extension".
inline std::string SplitText(const _SS<char>& path, bool slow = false)
{
    _SS<char> c[4];
    if (slow) {
        PathRoutes::SlowSplit(path, &c[0], &c[1], &c[2], &c[3]);
    } else {
        YXPath::Split(path, &c[0], &c[1], &c[2], &c[3], nullptr);
    }
    return c[0] + "|" + c[1] + "|" + c[2] + "|" + c[3];
}

#endif
