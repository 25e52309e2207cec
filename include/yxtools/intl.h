/// @file
/// Regional settings and numeric text.
///
/// YXIntl holds the user's regional settings as the platform's profile service gives them in its
/// section "intl", and converts numbers to and from text under them. One object exists per
/// process, made at load and reached through YXIntl_Get. Text settings are kept in single-byte
/// (half-width) form, so that full-width separators typed on a double-byte system behave as their
/// plain counterparts.
///
/// Thread use: no lock. The update operations share one profile buffer, and the NumericToText
/// overload that takes a separator changes m_sDecimal for the length of the call; neither may run
/// beside any other use of the object. Every other member only reads.
///
/// On POSIX the profile service reads `<prefix>/drive_c/windows/win.ini` afresh at each call. A
/// key of section "intl" that the file lacks comes from the user's locale: its name from `LC_ALL`,
/// else the setting's category (`LC_NUMERIC`, `LC_MONETARY`, `LC_TIME`, `LC_MEASUREMENT`), else
/// `LANG` (C and POSIX read as en_US); its data from ICU's CLDR, written as Wine writes them. A
/// locale without data, or a key it cannot tell, gives the default of the member's note below.
/// On Windows the section lives in the registry (`Control Panel\International`).
#ifndef YXTOOLS_INTL_H
#define YXTOOLS_INTL_H

#include "yxtools/config.h"
#include "yxtools/ss.h"

/// The user's regional settings, and numbers to and from text under them. Each member's note
/// names its key of section "intl" and, in brackets, the default for a missing key.
class YXTOOLS_API YXIntl {
public:
    /// Reads every setting (InitInternationalValues): a constructed object is always filled.
    YXIntl();
    /// Deep copies of every member, m_bInitialized included; no profile is read.
    YXIntl(const YXIntl& other);
    ~YXIntl();
    /// Deep copy of every member, as the copy constructor.
    YXIntl& operator=(const YXIntl& other);

    /// Runs the five update operations once; later calls change nothing.
    void InitInternationalValues() const;
    /// Re-reads "iDate", "sDate", "sShortDate", "sLongDate"; a missing key gives its default.
    /// Always true.
    bool UpdateDate();
    /// Re-reads "sTime", "iTime", "iTLZero", "s1159", "s2359", as UpdateDate.
    bool UpdateTime();
    /// Re-reads "sCurrency", "iCurrency", "iCurrDigits", "iNegCurr", as UpdateDate.
    bool UpdateCurrency();
    /// Re-reads "iDigits", "sThousand", "sDecimal", "iLzero", "sList", "iMeasure", as UpdateDate.
    bool UpdateNumbers();
    /// Re-reads "sLanguage", "sCountry", "iCountry", as UpdateDate.
    bool UpdateGeneralLocalization();

    /// These three read the members as they are, without first reading the settings.
    /// The decimal separator, m_sDecimal.
    const _SS<char>& GetDecimalSep() const;
    /// The default number of decimals, m_iDigits.
    long GetNumericPrecision() const;
    /// "+-.01234567890 " followed by the thousands and the decimal separators.
    void GetAuthorizedChars(_SS<char>& chars) const;

    /// The short date format into @p format: true; false, format unchanged, when it is empty.
    bool GetShortDateFormat(_SS<char>& format) const;
    /// The long date format into @p format: true; false, format unchanged, when it is empty.
    bool GetLongDateFormat(_SS<char>& format) const;

    /// Text to a 32-bit number. A positive scale divides by that power of ten, a negative one
    /// multiplies and takes in that many digits behind the decimal mark. ok and errorOffset may be
    /// null; a text that cannot be read gives 0, ok false and the offset of the first bad byte.
    /// The cleaned text is read as Windows' atoi reads it on both builds: a value beyond 32 bits
    /// stops at the nearest end of the range; the multiplications of a negative scale wrap at 32
    /// bits, and a text without a point whose product leaves the range gives the lowest long.
    /// There is no hexadecimal form: no cleaned text can hold an "x".
    long TextToLong(const _SS<char>& text, long scale, bool* ok, unsigned long* errorOffset) const;
    /// Text to a double; grouping marks are dropped, only the last point stands as decimal mark.
    double TextToNumeric(const _SS<char>& text, bool* ok, unsigned long* errorOffset) const;

    /// Precision: 0 or above is that many decimals with trailing zeros removed; -1000 is
    /// m_iDigits decimals and any other negative value its absolute value, zeros kept. A value
    /// whose magnitude is above 9.999e98 gives the empty text. The output is replaced.
    /// This overload writes with @p decimalSep as the decimal separator; it changes m_sDecimal for
    /// the length of the call. NaN prints as the C runtime prints it (`nan` on POSIX).
    void NumericToText(double value, _SS<char>& text, const _SS<char>& decimalSep, short precision) const;
    /// As the overload above, with the user's decimal separator.
    void NumericToText(double value, _SS<char>& text, short precision) const;
    /// A long counted in units of factor (12345 with 0.001 is 12.345); precision only tells
    /// whether trailing zeros go (0 or above) or stay. With a factor below 1 the fraction is padded
    /// to the factor's decimals (1005 units of 0.001 read 1.005), and a value whose whole part is
    /// 0 keeps its sign (-5 units of 0.001 read -0.005).
    void NumericToText(long value, double factor, _SS<char>& text, short precision) const;
    /// A whole number with the thousands separator between groups of three digits; the output is
    /// replaced.
    void LongToText(long value, _SS<char>& text) const;

    /// Removes the zeros that end a text holding decimalSep, then a decimalSep left last.
    static void RemoveTrailingZeros(_SS<char>& text, char decimalSep);

protected:
    /// The platform's profile read of @p key in @p section into @p value, @p defaultValue when
    /// missing.
    void GetProfileStringA(const _SS<char>& section, const _SS<char>& key, const _SS<char>& defaultValue,
                           _SS<char>& value) const;
    /// GetProfileStringA, then the half-width form of the text when it can be made.
    void X_GetProfileString(const _SS<char>& section, const _SS<char>& key, const _SS<char>& defaultValue,
                            _SS<char>& value) const;
    /// The platform's whole-number profile read, @p defaultValue when missing.
    long GetProfileIntA(const _SS<char>& section, const _SS<char>& key, long defaultValue) const;
    /// source and result may be the same string.
    bool MakeSingleByteString(const _SS<char>& source, _SS<char>& result) const;

    /// Copies the single-byte form of @p text into @p clean: digits, signs, exponent marks and "."
    /// as they are, the decimal separator as ".", thousands separators and white space dropped.
    /// False for an empty text, or at the first other byte, whose offset goes to @p errorOffset.
    bool CleanNumericString(const _SS<char>& text, _SS<char>& clean, unsigned long* errorOffset) const;
    /// True for a digit, "+", "-", "e", "E" and "."; false for 0xA0.
    bool IsRealDigit(char c) const;
    /// True for the first byte of the thousands separator and for white space.
    bool CanSkipDigit(char c) const;
    /// True when @p c is the first byte of @p text.
    bool SameFirstCharacter(char c, const _SS<char>& text) const;

    /// Filled lazily by const members, hence mutable.
    mutable bool m_bInitialized;    ///< false until the settings have been read
    mutable _SS<char> m_sLanguage;  ///< "sLanguage" ("enu")
    mutable _SS<char> m_sCountry;   ///< "sCountry" ("United States")
    mutable long m_iCountry;        ///< "iCountry" (1)
    mutable long m_iDate;           ///< "iDate" (0)
    mutable long m_iTime;           ///< "iTime" (0)
    mutable long m_iTLZero;         ///< "iTLZero" (0)
    mutable long m_iCurrency;       ///< "iCurrency" (0)
    mutable long m_iCurrDigits;     ///< "iCurrDigits" (2)
    mutable long m_iNegCurr;        ///< "iNegCurr" (0)
    mutable long m_iLzero;          ///< "iLzero" (1): not 0 shows the zero before the separator
    mutable long m_iDigits;         ///< "iDigits" (2): the default number of decimals
    mutable long m_iMeasure;        ///< "iMeasure" (1)
    mutable _SS<char> m_s1159;      ///< "s1159" ("AM")
    mutable _SS<char> m_s2359;      ///< "s2359" ("PM")
    mutable _SS<char> m_sCurrency;  ///< "sCurrency" ("$")
    mutable _SS<char> m_sThousand;  ///< "sThousand" (","); its first byte is used
    mutable _SS<char> m_sDecimal;   ///< "sDecimal" ("."); its first byte is used
    mutable _SS<char> m_sDate;      ///< "sDate" ("/")
    mutable _SS<char> m_sTime;      ///< "sTime" (":")
    mutable _SS<char> m_sList;      ///< "sList" (",")
    mutable _SS<char> m_sShortDate; ///< "sShortDate" ("M/d/yy")
    mutable _SS<char> m_sLongDate;  ///< "sLongDate" ("dddd, MMMM dd, yyyy")

private:
    /// The update operations as const work, for the lazy initialisation.
    void ReadGeneralLocalization() const;
    void ReadNumbers() const;
    void ReadCurrency() const;
    void ReadTime() const;
    void ReadDate() const;
    void SeparatorPass(const _SS<char>& t, _SS<char>& text) const;
};

/// The regional settings of the process; null before the library starts and after YXTools_Close.
YXTOOLS_API YXIntl* YXIntl_Get();

#endif
