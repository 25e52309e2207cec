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
#ifndef YXTOOLS_INTL_H
#define YXTOOLS_INTL_H

#include "yxtools/config.h"
#include "yxtools/ss.h"

class YXTOOLS_API YXIntl {
public:
    /// Reads every setting (InitInternationalValues): a constructed object is always filled.
    YXIntl();
    /// Deep copies of every member, m_bInitialized included; no profile is read.
    YXIntl(const YXIntl& other);
    ~YXIntl();
    YXIntl& operator=(const YXIntl& other);

    /// Runs the five update operations once; later calls change nothing.
    void InitInternationalValues() const;
    /// Each re-reads its keys of section "intl"; a missing key gives its default. Always true.
    bool UpdateDate();
    bool UpdateTime();
    bool UpdateCurrency();
    bool UpdateNumbers();
    bool UpdateGeneralLocalization();

    /// These three read the members as they are, without first reading the settings.
    const _SS<char>& GetDecimalSep() const;
    long GetNumericPrecision() const;
    /// "+-.01234567890 " followed by the thousands and the decimal separators.
    void GetAuthorizedChars(_SS<char>& chars) const;

    /// False, format unchanged, when the setting is empty.
    bool GetShortDateFormat(_SS<char>& format) const;
    bool GetLongDateFormat(_SS<char>& format) const;

    /// Text to a 32-bit number. A positive scale divides by that power of ten, a negative one
    /// multiplies and takes in that many digits behind the decimal mark. ok and errorOffset may be
    /// null; a text that cannot be read gives 0, ok false and the offset of the first bad byte.
    long TextToLong(const _SS<char>& text, long scale, bool* ok, unsigned long* errorOffset) const;
    /// Text to a double; grouping marks are dropped, only the last point stands as decimal mark.
    double TextToNumeric(const _SS<char>& text, bool* ok, unsigned long* errorOffset) const;

    /// Precision: 0 or above is that many decimals with trailing zeros removed; -1000 is
    /// m_iDigits decimals and any other negative value its absolute value, zeros kept. A value
    /// whose magnitude is above 9.999e98 gives the empty text. The output is replaced.
    void NumericToText(double value, _SS<char>& text, const _SS<char>& decimalSep, short precision) const;
    void NumericToText(double value, _SS<char>& text, short precision) const;
    /// A long counted in units of factor (12345 with 0.001 is 12.345); precision only tells
    /// whether trailing zeros go (0 or above) or stay.
    void NumericToText(long value, double factor, _SS<char>& text, short precision) const;
    void LongToText(long value, _SS<char>& text) const;

    /// Removes the zeros that end a text holding decimalSep, then a decimalSep left last.
    static void RemoveTrailingZeros(_SS<char>& text, char decimalSep);

protected:
    void GetProfileStringA(const _SS<char>& section, const _SS<char>& key, const _SS<char>& defaultValue,
                           _SS<char>& value) const;
    /// GetProfileStringA, then the half-width form of the text when it can be made.
    void X_GetProfileString(const _SS<char>& section, const _SS<char>& key, const _SS<char>& defaultValue,
                            _SS<char>& value) const;
    long GetProfileIntA(const _SS<char>& section, const _SS<char>& key, long defaultValue) const;
    /// source and result may be the same string.
    bool MakeSingleByteString(const _SS<char>& source, _SS<char>& result) const;

    bool CleanNumericString(const _SS<char>& text, _SS<char>& clean, unsigned long* errorOffset) const;
    bool IsRealDigit(char c) const;
    bool CanSkipDigit(char c) const;
    bool SameFirstCharacter(char c, const _SS<char>& text) const;

    /// Filled lazily by const members, hence mutable.
    mutable bool m_bInitialized;
    mutable _SS<char> m_sLanguage;
    mutable _SS<char> m_sCountry;
    mutable long m_iCountry;
    mutable long m_iDate;
    mutable long m_iTime;
    mutable long m_iTLZero;
    mutable long m_iCurrency;
    mutable long m_iCurrDigits;
    mutable long m_iNegCurr;
    mutable long m_iLzero;
    mutable long m_iDigits;
    mutable long m_iMeasure;
    mutable _SS<char> m_s1159;
    mutable _SS<char> m_s2359;
    mutable _SS<char> m_sCurrency;
    mutable _SS<char> m_sThousand;
    mutable _SS<char> m_sDecimal;
    mutable _SS<char> m_sDate;
    mutable _SS<char> m_sTime;
    mutable _SS<char> m_sList;
    mutable _SS<char> m_sShortDate;
    mutable _SS<char> m_sLongDate;

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
