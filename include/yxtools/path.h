/// @file
/// Paths as text: the kind of a path, cutting it into drive, directory, name and extension, and
/// putting paths together. Nothing here touches the disk; a path need not exist.
#ifndef YXTOOLS_PATH_H
#define YXTOOLS_PATH_H

#include "yxtools/config.h"
#include "yxtools/ss.h"

/// The URL scheme a path starts with; everything else (drive, UNC and relative paths, schemes not
/// listed here) is YXPATHKIND_NONE.
enum YXPATHKIND {
    YXPATHKIND_NONE = 0,
    YXPATHKIND_FILE = 1,
    YXPATHKIND_HTTPS = 2,
    YXPATHKIND_HTTP = 3,
    YXPATHKIND_FTP = 4,
    YXPATHKIND_NEWS = 5,
    YXPATHKIND_TELNET = 6,
    YXPATHKIND_WAIS = 7,
    YXPATHKIND_MAILTO = 8,
    YXPATHKIND_NNTP = 9,
    YXPATHKIND_PROSPERO = 10,
    YXPATHKIND_GOPHER = 11,
};

/// A string under the name of paths. It adds no data; every operation is static and works on plain
/// strings, so no caller needs an instance.
class YXTOOLS_API YXPath : public _SS<char> {
public:
    /// Empty for a null pointer, else a copy of the string.
    YXPath(const _SS<char>* pText = nullptr); // NOLINT(google-explicit-constructor)
    /// A copy of @p other's text.
    YXPath(const YXPath& other);
    /// Nothing happens when both objects use the same storage.
    YXPath& operator=(const YXPath& other);
    ~YXPath();

    /// The scheme prefix of the path ("file:", "https:", ... compared without regard to case), or
    /// YXPATHKIND_NONE.
    static YXPATHKIND GetPathProtocol(const _SS<char>& path);

    /// Cuts the path into its drive ("C:"), directory (up to the last `\` or `/`), name and
    /// extension (from the last dot of the name on); together they hold every byte of the path.
    /// Each non-null out-argument gets its component; the kind, when asked for, comes from
    /// GetPathProtocol and never steers the cut. Always true. An out-argument may be the path
    /// itself. Paths of 255 bytes or more take a route of their own (SlowSplit); a path without a
    /// separator behind the drive that starts with its only dot (`C:.aaa...`) gives that text as
    /// the extension, as the short route does with `.profile`, so both routes cut every path
    /// without double-byte characters alike.
    static bool Split(const _SS<char>& path, _SS<char>* pDrive, _SS<char>* pDirectory, _SS<char>* pName,
                      _SS<char>* pExtension, YXPATHKIND* pKind);

    /// True when the path begins with two backslashes.
    static bool IsUNCPath(const _SS<char>& path);

    /// Joins the addition to the path with exactly one `\` at the joint. With the trailing flag the
    /// result ends in `\`; a null addition then only makes sure of that.
    static void Append(_SS<char>& path, const _SS<char>* pAddition, bool bTrailing);

    /// Puts drive, directory, name and extension together into the output, which may be one of
    /// the inputs. A non-null drive or directory, even an empty one, makes the directory end in
    /// `\`; an extension without a leading dot gets one. True when the output is not empty.
    static bool Make(_SS<char>& output, const _SS<char>* pDrive, const _SS<char>* pDirectory, const _SS<char>* pName,
                     const _SS<char>* pExtension);

protected:
    /// The route of Split for paths of 255 bytes or more, which the runtime's buffers can't take:
    /// the drive from the runtime, the rest cut byte by byte without regard to the code page.
    static bool SlowSplit(const _SS<char>& path, _SS<char>* pDrive, _SS<char>* pDirectory, _SS<char>* pName,
                          _SS<char>* pExtension);
};

#endif
