// Reaches the long-path route of YXPath::Split, which is protected.
#ifndef YXTOOLS_TESTS_PATH_ROUTES_H
#define YXTOOLS_TESTS_PATH_ROUTES_H

#include <yxtools/path.h>

struct PathRoutes : YXPath {
    using YXPath::SlowSplit;
};

struct Components {
    _SS<char> drive;
    _SS<char> directory;
    _SS<char> name;
    _SS<char> extension;

    bool operator==(const Components& other) const
    {
        return drive == other.drive && directory == other.directory && name == other.name &&
               extension == other.extension;
    }
};

inline Components SplitFast(const _SS<char>& path)
{
    Components c;
    YXPath::Split(path, &c.drive, &c.directory, &c.name, &c.extension, nullptr);
    return c;
}

inline Components SplitSlow(const _SS<char>& path)
{
    Components c;
    PathRoutes::SlowSplit(path, &c.drive, &c.directory, &c.name, &c.extension);
    return c;
}

#endif
