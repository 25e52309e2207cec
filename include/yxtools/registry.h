/// @file
/// Typed parameters under the product's key of the registry.
///
/// A parameter is a section, the subkey below "Software\Ombrel\VELT QUARRO\" that names it, and a
/// name, the value in that key. Every type is stored as text (REG_SZ): strings as they are, booleans
/// as "True" or "False", numbers in decimal. Every operation opens the key, works and closes it
/// again; a missing parameter gives the caller's default, and pUseDefault, when not null, tells
/// whether it was missing (true) or stored (false). Failures are results only.
#ifndef YXTOOLS_REGISTRY_H
#define YXTOOLS_REGISTRY_H

#include "yxtools/config.h"
#include "yxtools/ss.h"

/// The typed parameters: static operations only, the object holds nothing.
///
/// On POSIX the registry is `registry.db` in the prefix, a SQLite database shared by all processes
/// of the prefix: each change is one transaction, a reader never waits, a writer waits up to 3 s for
/// another and then fails. A write that returned true survives the end of its process. A missing
/// prefix or database is an empty registry that reading does not create; a file that is not such
/// a database is left alone: reads give their defaults and writes fail. Names compare without
/// regard to the case of ASCII letters only (Windows folds other letters too), and a key name of
/// more than 255 bytes is refused.
class YXTOOLS_API YXRegistry {
public:
    /// The root of the product's key. Any other value acts as CurrentUser.
    enum RootKey : int {
        CurrentUser = 0,  ///< HKEY_CURRENT_USER
        LocalMachine = 1, ///< HKEY_LOCAL_MACHINE
        DefaultUser = 2   ///< HKEY_USERS, below ".DEFAULT\"
    };

    /// Nothing to set up.
    YXRegistry() {}
    ~YXRegistry() {}
    /// Copies nothing: the object holds no state.
    YXRegistry(const YXRegistry&) {}
    /// Copies nothing: the object holds no state.
    YXRegistry& operator=(const YXRegistry&) { return *this; }

    /// Stores the text, its length in bytes without a terminating zero. The key and the keys above
    /// it are created when missing. True when the value was stored.
    static bool WriteStringParam(const _SS<char>& section, const _SS<char>& name, _SS<char>& value, RootKey root);
    /// Stores "True" or "False".
    static bool WriteBooleanParam(const _SS<char>& section, const _SS<char>& name, bool value, RootKey root);
    /// Stores the number in decimal.
    static bool WriteLongParam(const _SS<char>& section, const _SS<char>& name, long value, RootKey root);

    /// Reads a text, of whatever type it was stored with, up to its first zero byte. The result is
    /// the byte count the registry reported when the text was read; the length of a non-empty
    /// default + 1 when that was taken (a missing parameter, a null value, a failed read); 0 when
    /// the parameter is missing and the default is empty, in which case *value is left alone. With
    /// a null value and an empty default it is the way to ask for the stored size.
    static unsigned long ReadStringParam(const _SS<char>& section, const _SS<char>& name, _SS<char>* value,
                                         const _SS<char>& defaultValue, RootKey root, bool* pUseDefault);
    /// True when the stored text, upper-cased, occurs anywhere in "VRAI OUI ACTIF 1 TRUE YES ON "
    /// (so "oui", "1" and "E YES" are true, "NO" and "10" are false); an empty stored text is false,
    /// and one of size zero gives the default.
    static bool ReadBooleanParam(const _SS<char>& section, const _SS<char>& name, bool defaultValue, RootKey root,
                                 bool* pUseDefault);
    /// atol of the stored text: "12abc" is 12 and "abc" is 0; one of size zero gives the default.
    static long ReadLongParam(const _SS<char>& section, const _SS<char>& name, long defaultValue, RootKey root,
                              bool* pUseDefault);

    /// The same reads from CurrentUser, and from LocalMachine when CurrentUser does not have the
    /// parameter; the default only when neither has it. The count is that of ReadStringParam from
    /// whichever root answered.
    static unsigned long ReadStringParamCUAndLM(const _SS<char>& section, const _SS<char>& name, _SS<char>* value,
                                                const _SS<char>& defaultValue, bool* pUseDefault);
    /// ReadBooleanParam from CurrentUser, else LocalMachine, else the default.
    static bool ReadBooleanParamCUAndLM(const _SS<char>& section, const _SS<char>& name, bool defaultValue,
                                        bool* pUseDefault);
    /// ReadLongParam from CurrentUser, else LocalMachine, else the default.
    static long ReadLongParamCUAndLM(const _SS<char>& section, const _SS<char>& name, long defaultValue,
                                     bool* pUseDefault);
};

#endif
