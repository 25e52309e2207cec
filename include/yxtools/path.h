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

    /// The form under which other machines reach the file of a drive path: on a network drive the
    /// drive's network name followed by the rest of the path; on a local drive
    /// `\\COMPUTER\share\rest` through the local disk share with the longest path that covers the
    /// path's folder. Any path that can't be converted (UNC already, relative, a URL, no share)
    /// comes back unchanged; IsUNCPath on the result tells which it was.
    ///
    /// A share covers a folder when its path ends in `\`, or the folder goes on with `\` or `/`
    /// behind it, or ends there: `C:\da` does not cover `C:\data\`. "Ends in `\`" is read character
    /// by character under the ANSI code page, and the comparison folds A to Z byte by byte as the
    /// runtime's `_strlwr` does in the "C" locale. When the computer's name cannot be had, the name
    /// is `localhost`. On POSIX the drive types, network names, shares and computer name come from
    /// the mounts, the prefix's `shares` file, Samba's configuration and the host name.
    static _SS<char> ToUNC(const _SS<char>& path);

protected:
    /// The conversion behind ToUNC.
    static _SS<char> W32ConvertToUNCPath(const _SS<char>& path);

    /// The route of Split for paths of 255 bytes or more, which the runtime's buffers can't take:
    /// the drive from the runtime, the rest cut byte by byte without regard to the code page.
    static bool SlowSplit(const _SS<char>& path, _SS<char>* pDrive, _SS<char>* pDirectory, _SS<char>* pName,
                          _SS<char>* pExtension);
};

/// The full path of the sibling module "YXKernel.dll" when the process has loaded it (nothing is
/// loaded here): true and the path in @p path; else false, and @p path keeps its text. On POSIX
/// the module is the shared object `libYXKernel.so` (or `YXKernel.so`, or a versioned form of
/// either, without regard to case), and the path is its POSIX path.
YXTOOLS_API bool Path_GetFromKernel(_SS<char>& path);

#endif
