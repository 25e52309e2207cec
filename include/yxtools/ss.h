/// @file
/// _SS<T>: the library's string, a thin layer over std::basic_string<T>.
///
/// _SS<char> is the byte string in which all text crosses the interface; _SS<unsigned short>
/// is the wide string. On top of the standard string it adds tolerant construction from a text
/// pointer, assignment that recognises its own storage, bounded printf-style formatting and Right.
#ifndef YXTOOLS_SS_H
#define YXTOOLS_SS_H

#include <cstdarg>
#include <cstdint>
#include <functional>
#include <string>
#include <type_traits>

#include "yxtools/config.h"

/// The library's string over units of type T: std::basic_string<T> with tolerant construction
/// from a text pointer, assignment that recognises its own storage, Format and Right. Memory
/// exhaustion passes to the caller as the standard string's exception.
template <class T>
class _SS : public std::basic_string<T> {
public:
    using Base = std::basic_string<T>;          ///< the standard string underneath
    using size_type = typename Base::size_type; ///< the standard string's size type

    /// The empty string.
    _SS() = default;
    /// A pointer value below 0x10000, null included, is taken for "no text": the platform's
    /// resource identifiers live there.
    _SS(const T* p) // NOLINT(google-explicit-constructor): text pointers convert, as in every host
    {
        if (reinterpret_cast<std::uintptr_t>(p) >= 0x10000) {
            Base::assign(p);
        }
    }
    /// The @p n units at @p p, zeros included.
    _SS(const T* p, size_type n) : Base(p, n) {}
    /// @p n copies of the unit @p c.
    _SS(size_type n, T c) : Base(n, c) {}
    /// A copy of a standard string.
    _SS(const Base& s) : Base(s) {} // NOLINT(google-explicit-constructor)
    /// Takes over a standard string's text.
    _SS(Base&& s) noexcept : Base(std::move(s)) {} // NOLINT(google-explicit-constructor)
    /// A copy.
    _SS(const _SS&) = default;
    /// Takes over the other's text.
    _SS(_SS&&) noexcept = default;
    ~_SS() = default;

    /// Null empties the string; a pointer into the string's own text (its terminator included)
    /// keeps the text from there on; anything else is copied up to its first NUL.
    _SS& operator=(const T* p)
    {
        if (p == nullptr) {
            Base::clear();
            return *this;
        }
        const T* begin = Base::data();
        const T* end = begin + Base::size();
        const std::less_equal<const T*> le;
        if (le(begin, p) && le(p, end)) {
            Base::erase(0, static_cast<size_type>(p - begin));
        } else {
            Base::assign(p);
        }
        return *this;
    }

    /// Nothing happens when both strings use the same storage.
    _SS& operator=(const _SS& other)
    {
        if (Base::data() != other.data()) {
            Base::assign(other);
        }
        return *this;
    }
    /// Takes over the other's text; moving to itself changes nothing.
    _SS& operator=(_SS&& other) noexcept
    {
        if (this != &other) {
            Base::operator=(std::move(other));
        }
        return *this;
    }

    /// printf-style formatting with rising limits: texts up to 8704 characters come whole, longer
    /// ones are cut there without notice. Byte strings only: the wide string has no formatter.
    /// An argument may be the string's own text.
    _SS& Format(const char* format, ...)
    {
        static_assert(std::is_same<T, char>::value, "Format is offered on _SS<char> only");
        va_list args;
        va_start(args, format);
        FormatV(format, args);
        va_end(args);
        return *this;
    }
    /// Format with the arguments in a va_list. On POSIX texts below 1024 characters that reach a
    /// limit are finished on the stack, so a text of up to 511 characters touches the heap only
    /// for the assignment. On Windows the conversions are those of the C runtime (msvcrt.dll).
    _SS& FormatV(const char* format, va_list args);

    /// The last n units; the whole string when it is shorter, the empty string for n <= 0.
    _SS Right(long n) const
    {
        if (n <= 0) {
            return _SS();
        }
        const auto count = static_cast<size_type>(n);
        if (count >= Base::size()) {
            return *this;
        }
        return _SS(Base::data() + Base::size() - count, count);
    }
};

/// The two texts one after the other.
template <class T>
_SS<T> operator+(const _SS<T>& left, const _SS<T>& right)
{
    _SS<T> result;
    result.reserve(left.size() + right.size());
    result.append(left);
    result.append(right);
    return result;
}

/// @cond
// The formatter is the library's: hosts link it, never instantiate it.
template <>
YXTOOLS_API _SS<char>& _SS<char>::FormatV(const char* format, va_list args);
/// @endcond

#endif
