#include "platform/win32.h"

// The runtime's _strupr under the "C" locale, the one a program starts in: a to z only.
char* _strupr(char* str)
{
    for (char* p = str; *p != '\0'; ++p) {
        if (*p >= 'a' && *p <= 'z') {
            *p = static_cast<char>(*p - 'a' + 'A');
        }
    }
    return str;
}

// The runtime's _strlwr under the "C" locale: A to Z only.
char* _strlwr(char* str)
{
    for (char* p = str; *p != '\0'; ++p) {
        if (*p >= 'A' && *p <= 'Z') {
            *p = static_cast<char>(*p - 'A' + 'a');
        }
    }
    return str;
}
