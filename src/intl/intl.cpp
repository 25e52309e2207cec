// YXIntl: the regional settings, their reading from the profile service and the plain getters.
#include "yxtools/intl.h"

#include <cstring>
#include <memory>
#include <new>

#include "intl/intl_internal.h"
#include "platform/win32.h"

namespace {

YXIntl* g_intl = nullptr;

// Shared by every text read of every object: see the thread note in intl.h.
constexpr int kProfileBufferSize = 1000;
char g_profileBuffer[kProfileBufferSize];

const char kSection[] = "intl";

} // namespace

bool YXIntl_Create()
{
    if (g_intl == nullptr) {
        g_intl = new (std::nothrow) YXIntl();
    }
    return g_intl != nullptr;
}

void YXIntl_Destroy()
{
    delete g_intl;
    g_intl = nullptr;
}

YXIntl* YXIntl_Get()
{
    return g_intl;
}

YXIntl::YXIntl()
    : m_bInitialized(false), m_iCountry(0), m_iDate(0), m_iTime(0), m_iTLZero(0), m_iCurrency(0), m_iCurrDigits(0),
      m_iNegCurr(0), m_iLzero(0), m_iDigits(0), m_iMeasure(0)
{
    InitInternationalValues();
}

YXIntl::YXIntl(const YXIntl& other) = default;

YXIntl::~YXIntl() = default;

YXIntl& YXIntl::operator=(const YXIntl& other)
{
    // _SS's own assignment skips a string that shares the source's storage.
    m_bInitialized = other.m_bInitialized;
    m_sLanguage = other.m_sLanguage;
    m_sCountry = other.m_sCountry;
    m_iCountry = other.m_iCountry;
    m_iDate = other.m_iDate;
    m_iTime = other.m_iTime;
    m_iTLZero = other.m_iTLZero;
    m_iCurrency = other.m_iCurrency;
    m_iCurrDigits = other.m_iCurrDigits;
    m_iNegCurr = other.m_iNegCurr;
    m_iLzero = other.m_iLzero;
    m_iDigits = other.m_iDigits;
    m_iMeasure = other.m_iMeasure;
    m_s1159 = other.m_s1159;
    m_s2359 = other.m_s2359;
    m_sCurrency = other.m_sCurrency;
    m_sThousand = other.m_sThousand;
    m_sDecimal = other.m_sDecimal;
    m_sDate = other.m_sDate;
    m_sTime = other.m_sTime;
    m_sList = other.m_sList;
    m_sShortDate = other.m_sShortDate;
    m_sLongDate = other.m_sLongDate;
    return *this;
}

void YXIntl::InitInternationalValues() const
{
    if (m_bInitialized) {
        return;
    }
    ReadGeneralLocalization();
    ReadNumbers();
    ReadCurrency();
    ReadTime();
    ReadDate();
    m_bInitialized = true;
}

// Keys are read in this order, each into its member; a missing key gives the default.
void YXIntl::ReadGeneralLocalization() const
{
    // Language and country stay as the profile gives them, full-width or not.
    GetProfileStringA(kSection, "sLanguage", "enu", m_sLanguage);
    GetProfileStringA(kSection, "sCountry", "United States", m_sCountry);
    m_iCountry = GetProfileIntA(kSection, "iCountry", 1);
}

void YXIntl::ReadNumbers() const
{
    m_iDigits = GetProfileIntA(kSection, "iDigits", 2);
    X_GetProfileString(kSection, "sThousand", ",", m_sThousand);
    X_GetProfileString(kSection, "sDecimal", ".", m_sDecimal);
    m_iLzero = GetProfileIntA(kSection, "iLzero", 1);
    X_GetProfileString(kSection, "sList", ",", m_sList);
    m_iMeasure = GetProfileIntA(kSection, "iMeasure", 1);
}

void YXIntl::ReadCurrency() const
{
    X_GetProfileString(kSection, "sCurrency", "$", m_sCurrency);
    m_iCurrency = GetProfileIntA(kSection, "iCurrency", 0);
    m_iCurrDigits = GetProfileIntA(kSection, "iCurrDigits", 2);
    m_iNegCurr = GetProfileIntA(kSection, "iNegCurr", 0);
}

void YXIntl::ReadTime() const
{
    X_GetProfileString(kSection, "sTime", ":", m_sTime);
    m_iTime = GetProfileIntA(kSection, "iTime", 0);
    m_iTLZero = GetProfileIntA(kSection, "iTLZero", 0);
    X_GetProfileString(kSection, "s1159", "AM", m_s1159);
    X_GetProfileString(kSection, "s2359", "PM", m_s2359);
}

void YXIntl::ReadDate() const
{
    m_iDate = GetProfileIntA(kSection, "iDate", 0);
    X_GetProfileString(kSection, "sDate", "/", m_sDate);
    X_GetProfileString(kSection, "sShortDate", "M/d/yy", m_sShortDate);
    X_GetProfileString(kSection, "sLongDate", "dddd, MMMM dd, yyyy", m_sLongDate);
}

bool YXIntl::UpdateDate()
{
    ReadDate();
    return true;
}

bool YXIntl::UpdateTime()
{
    ReadTime();
    return true;
}

bool YXIntl::UpdateCurrency()
{
    ReadCurrency();
    return true;
}

bool YXIntl::UpdateNumbers()
{
    ReadNumbers();
    return true;
}

bool YXIntl::UpdateGeneralLocalization()
{
    ReadGeneralLocalization();
    return true;
}

const _SS<char>& YXIntl::GetDecimalSep() const
{
    return m_sDecimal;
}

long YXIntl::GetNumericPrecision() const
{
    return m_iDigits;
}

void YXIntl::GetAuthorizedChars(_SS<char>& chars) const
{
    // The 0 stands twice, as it always has: callers may count on the length.
    _SS<char> result("+-.01234567890 ");
    result += m_sThousand;
    result += m_sDecimal;
    chars = std::move(result);
}

bool YXIntl::GetShortDateFormat(_SS<char>& format) const
{
    InitInternationalValues();
    if (m_sShortDate.empty()) {
        return false;
    }
    format = m_sShortDate;
    return true;
}

bool YXIntl::GetLongDateFormat(_SS<char>& format) const
{
    InitInternationalValues();
    if (m_sLongDate.empty()) {
        return false;
    }
    format = m_sLongDate;
    return true;
}

void YXIntl::GetProfileStringA(const _SS<char>& section, const _SS<char>& key, const _SS<char>& defaultValue,
                               _SS<char>& value) const
{
    g_profileBuffer[0] = '\0';
    ::GetProfileStringA(section.c_str(), key.c_str(), defaultValue.c_str(), g_profileBuffer, kProfileBufferSize);
    value = _SS<char>(g_profileBuffer);
}

void YXIntl::X_GetProfileString(const _SS<char>& section, const _SS<char>& key, const _SS<char>& defaultValue,
                                _SS<char>& value) const
{
    GetProfileStringA(section, key, defaultValue, value);
    // On failure value keeps the raw text.
    MakeSingleByteString(value, value);
}

long YXIntl::GetProfileIntA(const _SS<char>& section, const _SS<char>& key, long defaultValue) const
{
    // The platform gives an unsigned 32-bit number; a negative setting reads back negative.
    const UINT number = ::GetProfileIntA(section.c_str(), key.c_str(), static_cast<int>(defaultValue));
    return static_cast<long>(static_cast<std::int32_t>(number));
}

bool YXIntl::MakeSingleByteString(const _SS<char>& source, _SS<char>& result) const
{
    // The buffer has the source's size with its terminator: half-width forms never take more
    // bytes than their full-width originals. source and result may be one string, which is
    // written only once the mapping is done.
    // Text of plain ASCII bytes has no wide forms in any code page: the mapping would give it back
    // unchanged, so the platform is not asked (the conversions read numbers a user typed, mostly
    // plain digits, and the mapping costs microseconds).
    const char* text = source.c_str();
    bool plain = true;
    for (const char* p = text; *p != '\0'; ++p) {
        plain = plain && static_cast<unsigned char>(*p) < 0x80;
    }
    if (plain) {
        // Up to the first NUL, as the platform reads it.
        result = std::strlen(text) == source.size() ? source : _SS<char>(text);
        return true;
    }
    const int size = static_cast<int>(source.size()) + 1;
    std::unique_ptr<char[]> buffer(new char[static_cast<std::size_t>(size)]);
    const int count = LCMapStringA(GetUserDefaultLCID(), LCMAP_HALFWIDTH, source.c_str(), -1, buffer.get(), size);
    if (count <= 0) {
        return false;
    }
    result = _SS<char>(buffer.get());
    return true;
}
