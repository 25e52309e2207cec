/// @file
/// Memory tools: a pool of reusable byte buffers, a resizable bit array, and plain functions over
/// the platform's movable memory blocks. The YXHugePtr_ functions are thin passes to the
/// platform's movable memory; their results and failures are the platform's.
///
/// On POSIX, movable blocks are a table of records over the C heap: a movable block's handle is
/// never an address, and a block that may not move is resized in place only.
#ifndef YXTOOLS_MEMORY_H
#define YXTOOLS_MEMORY_H

#include <list>

#include "yxtools/config.h"

/// A byte container. Its fields are read directly by callers; the library exports none of its
/// operations. Reserve and Assign are the library's own, private to it and its entries: a host has
/// nothing of this class to link.
class YXAutoBuffer {
public:
    /// An empty buffer without a block; @p initialSize is what its first Assign reserves.
    explicit YXAutoBuffer(unsigned long initialSize = 100) : m_dwInitialSize(initialSize) {}
    /// Blocks are never shared: an entry copies its buffer with Assign.
    YXAutoBuffer(const YXAutoBuffer&) = delete;
    YXAutoBuffer& operator=(const YXAutoBuffer&) = delete;

    unsigned long m_dwCapacity = 0;   ///< bytes allocated at m_pData
    unsigned long m_dwSize = 0;       ///< bytes in use, never above the capacity
    unsigned char* m_pData = nullptr; ///< the block, null until one is allocated
    bool m_bOwner = true;             ///< the block is released with the entry that holds the buffer
    unsigned long m_dwInitialSize;    ///< the capacity a buffer without a block reserves first

private:
    friend class YXAutoBufferEntry;
    friend struct YXAutoBufferAccess; ///< the library's tests

    /// Makes room for dwSize bytes and keeps the bytes in use. A buffer without a block gets
    /// exactly dwSize; otherwise the capacity doubles until it reaches dwSize. False when the block
    /// cannot be allocated, and then the buffer is as it was.
    bool Reserve(unsigned long dwSize);
    /// Copies the bytes in use of `source`. A buffer without a block first reserves
    /// m_dwInitialSize, also when the source is this buffer; a source larger than the capacity
    /// makes the block exactly its size. False when a block cannot be allocated: the buffer is then
    /// empty (size 0) and keeps the block and capacity it has, so its capacity never claims bytes
    /// it does not have.
    bool Assign(const YXAutoBuffer& source);
};

/// One slot of a factory's pool. Copies are deep: they copy the bytes in use into a block of
/// their own.
class YXTOOLS_API YXAutoBufferEntry {
public:
    /// A free entry with an empty buffer.
    YXAutoBufferEntry();
    /// A copy's capacity is the source's size. A copy whose block cannot be allocated is empty.
    YXAutoBufferEntry(const YXAutoBufferEntry& other);
    /// Keeps this entry's m_bOwner and m_dwInitialSize; on a failed allocation this entry is left
    /// empty (size 0), with its own block and capacity.
    YXAutoBufferEntry& operator=(const YXAutoBufferEntry& other);
    virtual ~YXAutoBufferEntry();

    /// The entry's buffer.
    YXAutoBuffer* GetAutoBuffer() const;
    /// True while the buffer is handed out.
    bool IsUsed() const;
    /// Marks the buffer handed out (true) or free.
    void SetUsed(bool bUsed);

private:
    YXAutoBuffer m_Buffer;
    bool m_bUsed;
};

/// A pool of reusable buffers. Free entries stand towards the front of the list and entries in use
/// towards the back: a new entry and an entry handed out go to the back, an entry given back goes
/// to the front, so the buffer given back last is the first handed out again. Copies share the
/// entries: a factory that holds entries must not be copied.
class YXTOOLS_API YXAutoBufferFactory {
public:
    /// 0 means no limit on the number of buffers.
    explicit YXAutoBufferFactory(unsigned short wMaxBuffers = 0);
    /// Destroys every entry, including buffers still out.
    virtual ~YXAutoBufferFactory();

    /// A buffer of dwSize bytes (contents not cleared), grown to exactly dwSize when it is smaller.
    /// Null when the limit is reached with no buffer free, or when an entry or block cannot be
    /// allocated: a failed request leaves the factory as it was, its entry free again.
    YXAutoBuffer* GetAutoBuffer(unsigned long dwSize);
    /// Gives a buffer back and sets pBuffer to null; a buffer of another factory is left alone.
    void ReleaseAutoBuffer(YXAutoBuffer*& pBuffer);
    /// Raises the limit: stored only when the number of entries is below wMaxBuffers.
    void SetMaxBuffers(unsigned short wMaxBuffers);
    /// The limit on the number of buffers; 0 means none.
    unsigned short GetMaxBuffers() const;

private:
    YXAutoBufferEntry* RetrieveFreeEntry();
    YXAutoBufferEntry* AddEntry();

    std::list<YXAutoBufferEntry*> m_EntryList;
    unsigned short m_wMaxBuffers;
};

/// A resizable array of bits in 32-bit words. Bit k is in word k >> 5 under 1 << (k & 31), and an
/// array of range r holds (r >> 5) + 1 words, so the last word always has spare bits. Whole-word
/// operations read and write the spare bits; single-bit ones stop at the range. Each word is an
/// unsigned long whose value never goes above 32 bits, also where unsigned long is wider.
class YXTOOLS_API YXBitArray {
public:
    /// An array of @p dwRange bits, all zero; range 0 gives an array that is not ok (no words).
    explicit YXBitArray(unsigned long dwRange = 0);
    /// A deep copy: range and words, spare bits included.
    YXBitArray(const YXBitArray& other);
    virtual ~YXBitArray();
    /// Takes over range and words of @p other, as Copy; an array of range 0 empties the target.
    YXBitArray& operator=(const YXBitArray& other);

    /// Bit @p dwBit; false when not ok or at or past the range. Defined inline in this header, as
    /// is SetValue of one bit, and exported by the library as well.
    bool operator[](unsigned long dwBit) const;
    /// True when any word is not 0, spare bits included.
    bool IsOneSet() const;
    /// False when the range is unchanged, or when the words cannot be allocated (nothing changes
    /// then). Shrinking keeps the words and their bits; new words are zero.
    bool SetRange(unsigned long dwRange);
    /// Every word all ones or all zeros, spare bits included.
    void SetValue(bool bValue);
    /// Sets or clears bit @p dwBit; nothing when not ok or at or past the range.
    void SetValue(unsigned long dwBit, bool bValue);
    /// The number of bits.
    unsigned long GetRange() const;
    /// The words themselves (null when not ok); they move when SetRange reallocates.
    unsigned long* GetBitArray() const;
    /// True while the array holds words.
    bool IsOk() const;
    /// 0 when not ok, else ((range >> 5) + 2) * 4: one 32-bit word more than the array holds, room
    /// for a caller that stores a word beside the bits. Never read that many bytes from
    /// GetBitArray.
    unsigned long GetByteSize() const;

protected:
    /// SetRange(dwRange), then the (dwRange >> 5) + 1 words from pdwBits, each cut to 32 bits.
    void Copy(unsigned long dwRange, const unsigned long* pdwBits);

private:
    bool m_bOk;
    unsigned long m_dwRange;
    unsigned long* m_pdwBits;
};

// The one-bit accessors are defined here, where a host's compiler inlines them into its loops: a
// call into the library would cost several times the access. The library exports them as well,
// for hosts that take their address or build without inlining. They are declared plainly in the
// class and defined inline out of it: the library's build hides members defined inside a class.
inline bool YXBitArray::operator[](unsigned long dwBit) const
{
    return m_bOk && dwBit < m_dwRange && (m_pdwBits[dwBit >> 5] & 1UL << (dwBit & 31)) != 0;
}

inline void YXBitArray::SetValue(unsigned long dwBit, bool bValue)
{
    if (!m_bOk || dwBit >= m_dwRange) {
        return;
    }
    const unsigned long mask = 1UL << (dwBit & 31);
    if (bValue) {
        m_pdwBits[dwBit >> 5] |= mask;
    } else {
        m_pdwBits[dwBit >> 5] &= ~mask;
    }
}

/// Kinds of memory block of the YXHugePtr_ functions. Any other kind is a fixed block, whose
/// handle is its address.
enum : unsigned {
    YXHUGEPTR_ZEROINIT = 1, ///< movable, cleared
    YXHUGEPTR_MOVEABLE = 2, ///< movable
};

/// A new block of @p dwSize bytes of the kind: its handle, null on failure.
YXTOOLS_PLAIN void* YXHugePtr_Allocate(unsigned kind, unsigned long dwSize);
/// Resizes the block (the kind stands last here): its handle, null on failure.
YXTOOLS_PLAIN void* YXHugePtr_ReAllocate(void* handle, unsigned long dwSize, unsigned kind);
/// The block's address, one lock more; null on failure.
YXTOOLS_PLAIN void* YXHugePtr_Lock(void* handle);
/// True while the block stays locked; false once unlocked for good, or on failure.
YXTOOLS_PLAIN bool YXHugePtr_Unlock(void* handle);
/// The block's size in bytes, 0 on failure.
YXTOOLS_PLAIN unsigned long YXHugePtr_Size(void* handle);
/// Null on success, the handle on failure.
YXTOOLS_PLAIN void* YXHugePtr_Free(void* handle);
/// The handle of a locked block from its address.
YXTOOLS_PLAIN void* YXHugePtr_GetHandle(void* address);
/// The lock count in the low byte, and the platform's other flags.
YXTOOLS_PLAIN unsigned YXHugePtr_Flags(void* handle);

/// A copy of the block with its own handle. The source's flags pick the copy's kind, so a source
/// locked once gives a cleared movable copy, one locked twice a movable copy, and one not locked a
/// fixed copy. Null for a null handle or when the copy cannot be allocated.
YXTOOLS_PLAIN void* YXHugePtr_Duplicate(void* handle);
/// A new block of the kind holding the buffer's bytes in use; null when it cannot be allocated.
YXTOOLS_PLAIN void* YXHugePtr_FromBuffer(unsigned kind, const YXAutoBuffer* pBuffer);
/// Copies the block into the buffer, which grows to exactly the block's size when it is smaller.
/// False for a null handle, and false with the buffer as it was when it cannot grow. The block
/// stays the caller's.
YXTOOLS_PLAIN bool YXHugePtr_ToBuffer(void* handle, YXAutoBuffer* pBuffer);

#endif
