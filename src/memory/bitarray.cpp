#include <cstddef>
#include <cstring>

#include <yxtools/memory.h>

#include "platform/heap.h"

namespace {

constexpr unsigned long kAllOnes = 0xFFFFFFFFUL; // one 32-bit word, whatever unsigned long's width

// Always one word more than the range needs rounded down, so the last word has spare bits.
std::size_t WordCount(unsigned long dwRange)
{
    return static_cast<std::size_t>(dwRange >> 5) + 1;
}

// The one-bit accessors are inline in the header; taking their addresses here makes the library
// emit and export its own copies too (nothing else would, since no code here calls them).
[[maybe_unused]] __attribute__((used)) bool (YXBitArray::*const kGetBit)(unsigned long) const = &YXBitArray::operator[];
[[maybe_unused]] __attribute__((used)) void (YXBitArray::*const kSetBit)(unsigned long, bool) = &YXBitArray::SetValue;

} // namespace

YXBitArray::YXBitArray(unsigned long dwRange) : m_bOk(false), m_dwRange(0), m_pdwBits(nullptr)
{
    SetRange(dwRange);
}

YXBitArray::YXBitArray(const YXBitArray& other) : m_bOk(false), m_dwRange(0), m_pdwBits(nullptr)
{
    Copy(other.m_dwRange, other.m_pdwBits);
}

YXBitArray::~YXBitArray()
{
    yxplatform::HeapRelease(m_pdwBits);
}

YXBitArray& YXBitArray::operator=(const YXBitArray& other)
{
    if (&other != this) {
        Copy(other.m_dwRange, other.m_pdwBits);
    }
    return *this;
}

bool YXBitArray::IsOneSet() const
{
    if (!m_bOk) {
        return false;
    }
    const std::size_t words = WordCount(m_dwRange);
    for (std::size_t i = 0; i < words; ++i) {
        if (m_pdwBits[i] != 0) {
            return true;
        }
    }
    return false;
}

bool YXBitArray::SetRange(unsigned long dwRange)
{
    if (dwRange == m_dwRange) {
        return false;
    }
    if (dwRange == 0) {
        yxplatform::HeapRelease(m_pdwBits);
        m_pdwBits = nullptr;
        m_dwRange = 0;
        m_bOk = false;
        return true;
    }
    const std::size_t oldWords = m_pdwBits != nullptr ? WordCount(m_dwRange) : 0;
    const std::size_t newWords = WordCount(dwRange);
    if (newWords > oldWords) {
        // The words of the old range are kept; the added ones start at zero. Bits past the old
        // range inside a kept word stay as they were.
        void* pBits = yxplatform::HeapReallocate(m_pdwBits, newWords * sizeof(unsigned long));
        if (pBits == nullptr) {
            return false;
        }
        m_pdwBits = static_cast<unsigned long*>(pBits);
        std::memset(m_pdwBits + oldWords, 0, (newWords - oldWords) * sizeof(unsigned long));
    }
    m_bOk = true;
    m_dwRange = dwRange;
    return true;
}

void YXBitArray::SetValue(bool bValue)
{
    if (!m_bOk) {
        return;
    }
    const std::size_t words = WordCount(m_dwRange);
    for (std::size_t i = 0; i < words; ++i) {
        m_pdwBits[i] = bValue ? kAllOnes : 0;
    }
}

unsigned long YXBitArray::GetRange() const
{
    return m_dwRange;
}

unsigned long* YXBitArray::GetBitArray() const
{
    return m_pdwBits;
}

bool YXBitArray::IsOk() const
{
    return m_bOk;
}

unsigned long YXBitArray::GetByteSize() const
{
    // One 32-bit word more than the words held. Nothing here uses it; a caller may keep a word of
    // its own beside the bits, but reading that many bytes from GetBitArray overruns the words.
    return m_bOk ? ((m_dwRange >> 5) + 2) * 4 : 0;
}

void YXBitArray::Copy(unsigned long dwRange, const unsigned long* pdwBits)
{
    // When the words for the new range cannot be had, the array stays as it was, uncopied.
    SetRange(dwRange);
    if (!m_bOk || m_dwRange != dwRange) {
        return;
    }
    const std::size_t words = WordCount(m_dwRange);
    for (std::size_t i = 0; i < words; ++i) {
        m_pdwBits[i] = pdwBits[i] & kAllOnes;
    }
}
