/// @file
/// Hole management: the free ranges of a host's binary file, kept as numbers. A manager never
/// touches a file; the host reads, writes and truncates, and tells the manager what it freed.
///
/// Offsets, sizes and results are 32-bit numbers on every build. Where the interface takes or
/// gives a long or unsigned long (64 bits on 64-bit POSIX), only the low 32 bits of an argument
/// count, and a result is the 32-bit value widened: "no such offset" is 0xFFFFFFFF, not ~0UL.
#ifndef YXTOOLS_HOLES_H
#define YXTOOLS_HOLES_H

#include <cstdint>

#include "yxtools/config.h"

/// One free range of a file. In YXEfficientHoleManager bit 31 of the offset marks a locked hole.
struct tagFILEHOLE {
    std::uint32_t dwOffset; ///< where the hole starts in the file
    std::int32_t lSize;     ///< its size in bytes
};
static_assert(sizeof(tagFILEHOLE) == 8, "a hole record is two 32-bit fields");

/// The "no such offset" result of GetBestHole and GetTruncateOffset.
constexpr unsigned long YXHOLE_NONE = 0xFFFFFFFFUL;
/// The lock mark of YXEfficientHoleManager, carried in the offset.
constexpr unsigned long YXHOLE_LOCKED = 0x80000000UL;

/// @name Orders of YXEfficientHoleManager's list, and the argument of SortHoles
/// @{
constexpr unsigned short YXHOLESORT_NONE = 0;      ///< no order holds
constexpr unsigned short YXHOLESORT_OFFSET = 1;    ///< offset ascending, unsigned, lock bit included
constexpr unsigned short YXHOLESORT_SIZE = 2;      ///< size ascending, signed
constexpr unsigned short YXHOLESORT_SIZE_DESC = 3; ///< size descending, signed
/// @}

/// @name Kinds for CreateHoleManager
/// @{
constexpr unsigned short YXHOLEMANAGER_SPEED = 1;     ///< a YXSpeedHoleManager
constexpr unsigned short YXHOLEMANAGER_EFFICIENT = 2; ///< a YXEfficientHoleManager
/// @}

/// The interface a host works through. One allocation is GetBestHole, a write at the offset it
/// gives (or an extension of the file on YXHOLE_NONE), then RemoveHole with that offset and size,
/// with no other call between. Freeing a range is one AddHole.
class YXTOOLS_API YXHoleManager {
public:
    /// Foot print 0.
    YXHoleManager();
    /// Copies the foot print.
    YXHoleManager(const YXHoleManager& other);
    /// Copies the foot print.
    YXHoleManager& operator=(const YXHoleManager& other);
    /// Virtual: a manager from CreateHoleManager is destroyed through this interface.
    virtual ~YXHoleManager();

    /// The least size the rest of a split hole may have: a hole larger than a request qualifies
    /// only when hole size >= request + foot print; a hole of exactly the request always does.
    virtual void SetHoleFootPrint(long lFootPrint);
    /// The foot print; 0 until set.
    virtual long GetHoleFootPrint() const;
    /// The number of holes recorded.
    virtual long GetNumberOfHoles() const = 0;
    /// The sum of the hole sizes, as an unsigned 32-bit number that wraps.
    virtual unsigned long GetHolesSize() const = 0;
    /// Records a hole, with no test for overlaps, duplicates or size; false when memory ran out,
    /// and then nothing changed.
    virtual bool AddHole(unsigned long dwOffset, long lSize) = 0;
    /// Takes lSize bytes off the front of the hole at dwOffset. Null when the hole is used up (or
    /// not found); otherwise the rest's record, valid until the next call on any manager.
    virtual tagFILEHOLE* RemoveHole(unsigned long dwOffset, long lSize) = 0;
    /// Empties the list and both counters; the foot print stays. Always true.
    virtual bool ClearHoleList() = 0;
    /// True when a hole starts exactly at @p dwOffset.
    virtual bool IsHole(unsigned long dwOffset) = 0;
    /// The offset of a hole that can take lSize bytes, or YXHOLE_NONE. Takes nothing away.
    virtual unsigned long GetBestHole(long lSize) = 0;
    /// Where the file can be cut: the start of a last hole that ends at dwFileLength, or YXHOLE_NONE.
    virtual unsigned long GetTruncateOffset(unsigned long dwFileLength) = 0;

protected:
    std::int32_t m_lFootPrint; ///< the least rest of a split hole
};

/// The manager that knows every hole, in the least memory: one dense list of records in blocks
/// of 200, sorted on demand into the order a lookup needs and merged lazily before the questions
/// that depend on it. Even its reading calls reorder the list: every call needs the caller's
/// exclusion. Copies share the source's blocks: a manager that holds blocks must not be copied.
class YXTOOLS_API YXEfficientHoleManager : public YXHoleManager {
public:
    /// An empty list with no block.
    YXEfficientHoleManager();
    /// Member-wise: shares @p other's blocks.
    YXEfficientHoleManager(const YXEfficientHoleManager& other);
    /// Member-wise: shares @p other's blocks; the target's own are not released.
    YXEfficientHoleManager& operator=(const YXEfficientHoleManager& other);
    ~YXEfficientHoleManager() override;

    /// The number of holes, locked ones included.
    long GetNumberOfHoles() const override;
    unsigned long GetHolesSize() const override;
    /// An offset with bit 31 set adds a locked hole: counted and found like any other, never
    /// merged, and while one exists GetTruncateOffset has no answer below 2 GiB. At most 65535
    /// blocks (13107000 holes) are held: past that the answer is false.
    bool AddHole(unsigned long dwOffset, long lSize) override;
    /// Finds the hole by the offset as given, else with bit 31 set. lSize 0 or the hole's size
    /// removes it whole; a rest of a locked hole is unlocked.
    tagFILEHOLE* RemoveHole(unsigned long dwOffset, long lSize) override;
    bool ClearHoleList() override;
    /// True when a hole, locked or not, starts exactly there.
    bool IsHole(unsigned long dwOffset) override;
    /// Merges touching holes, then: a hole of exactly lSize if there is one, else the largest
    /// hole if it is large enough. Not best fit. A locked hole's offset comes with bit 31.
    unsigned long GetBestHole(long lSize) override;
    unsigned long GetTruncateOffset(unsigned long dwFileLength) override;

    /// Sorts into the order of a YXHOLESORT_ value now. Another value sorts by offset and is kept
    /// as given, so no later lookup trusts it.
    void SortHoles(unsigned short wKey);
    /// Unlocks the hole at that offset; false when no locked hole starts there.
    bool UnlockHole(unsigned long dwOffset);
    /// Unlocks every hole; true when at least one was locked.
    bool UnlockAllHoles();

protected:
    std::int32_t m_lNumberOfHoles;      ///< holes in the list
    std::uint32_t m_dwHolesSize;        ///< the sum of their sizes, wrapping at 32 bits
    std::int32_t m_lFreeEntries;        ///< entries allocated in blocks and not in use
    tagFILEHOLE** m_ppBlocks;           ///< table of blocks: held blocks first, then null entries
    std::int32_t m_lBlockTableSize;     ///< entries in the table
    unsigned short m_wFreeTableEntries; ///< null entries of the table
    unsigned short m_wSortKey;          ///< the YXHOLESORT_ order that holds now
    bool m_bOptimized;                  ///< no two unlocked holes touch

private:
    /// A walking position over the list.
    struct tagFFHOLE {
        std::int32_t lIndex;    ///< counted from 1
        std::int32_t lPosition; ///< in the current block, 1 to 200
        tagFILEHOLE** ppBlock;
        tagFILEHOLE* pHole;
    };

    void EnsureOrder(unsigned short wKey);
    tagFILEHOLE* RetrieveHoleByOffset(std::uint32_t dwOffset);
    tagFILEHOLE* RetrieveHoleBySize(std::int32_t lSize);
    bool ExpandHoleList(std::int32_t lCount);
    bool ShrinkHoleList();
    bool RemoveEmptyHoles();
    bool OptimizeHoles();
    tagFILEHOLE* GetFirstHole(tagFFHOLE& pos) const;
    tagFILEHOLE* GetNextHole(tagFFHOLE& pos) const;
    tagFILEHOLE* GetLastHole(tagFFHOLE& pos) const;
    tagFILEHOLE* GetPreviousHole(tagFFHOLE& pos) const;
    void RemoveHole(tagFILEHOLE* pHole);
};

/// One cell of YXPriorityQueue. While the cell is in the queue, the long that plIndex points to
/// (when it is not null) holds the cell's index.
struct tagPQCELL {
    std::int32_t lValue;  ///< the key; the smallest is at the head
    long* plIndex;        ///< the caller's handle variable, or null
    std::uint32_t dwData; ///< the caller's data
};

/// A binary min-heap of (value, data) cells with handles: the queue keeps each cell's handle
/// equal to its index as it moves, so a caller can change or remove a cell without a search.
/// Cell 1 is the head; cell 0 is the walk's sentinel. Values are signed 32-bit numbers. Copies
/// share the source's array: a queue that holds an array must not be copied.
class YXTOOLS_API YXPriorityQueue {
public:
    /// Allocates room for lIncrement cells; the capacity grows by lIncrement at a time. A queue
    /// with an increment of 0 or less gets no array and refuses every AddValue.
    explicit YXPriorityQueue(long lIncrement = 100);
    /// Member-wise: shares @p other's array.
    YXPriorityQueue(const YXPriorityQueue& other);
    /// Member-wise: shares @p other's array; the target's own is not released.
    YXPriorityQueue& operator=(const YXPriorityQueue& other);
    virtual ~YXPriorityQueue();

    /// 1 when empty, else 0.
    short IsEmpty() const;
    /// Adds a cell; @p plIndex, when not null, then holds its index as long as it is in the queue.
    /// False when memory or the capacity of 0x7FFFFFFF cells ran out; the queue is as it was.
    bool AddValue(long lValue, unsigned long dwData, long* plIndex);
    /// -1 with the head in the arguments; 0 when empty, arguments untouched. Note the senses.
    short ReadHead(long& lValue, unsigned long& dwData) const;
    /// 0 with the head in the arguments, and the head gone; -1 when empty.
    short RemoveHead(long& lValue, unsigned long& dwData);
    /// 0 when cell lCell (1 to the size) was removed; -1 when lCell is above the size.
    short RemoveCell(long lCell);
    /// Replaces the head by a new cell in one walk: 0 with the old head in the arguments; -1 when
    /// empty, and then nothing is added.
    short RemoveAddHead(long& lValue, unsigned long& dwData, long lNewValue, unsigned long dwNewData, long* plNewIndex);
    /// Gives cell lCell (1 to the size, not checked) a new value and moves it.
    void ChangeValue(long lCell, long lNewValue);
    /// Releases the array; the queue can be used again.
    void ReInit();

protected:
    std::int32_t m_lIncrement;  ///< cells added to the capacity at a time
    std::int32_t m_lCapacity;   ///< cells the queue may hold before it grows
    std::int32_t m_lSize;       ///< cells in the queue
    tagPQCELL* m_pCells;        ///< the array; cell 0 is the sentinel
    tagPQCELL* m_pLast;         ///< cell m_lSize
    std::int64_t m_llAllocated; ///< cells the array has room for, the sentinel included

private:
    void SetCell(std::int32_t lCell, const tagPQCELL& cell);
    void UpHeap(std::int32_t lCell);
    void DownHeap(std::int32_t lCell);
    void IncrementSize();
    void DecrementSize();
    bool CreateIncrementArray(std::int32_t lIncrement);
};

/// The manager for hosts that only allocate and free: a heap of holes, largest first. It answers
/// with the largest hole only, removes only that one, never merges, and has no answer to IsHole
/// or GetTruncateOffset. The record RemoveHole returns is one for the whole process: all speed
/// managers of a process need one lock, or one thread. Copies share the source's queue: a
/// manager that holds a queue must not be copied.
class YXTOOLS_API YXSpeedHoleManager : public YXHoleManager {
public:
    /// No queue yet.
    YXSpeedHoleManager();
    /// Member-wise: shares @p other's queue.
    YXSpeedHoleManager(const YXSpeedHoleManager& other);
    /// Member-wise: shares @p other's queue; the target's own is not released.
    YXSpeedHoleManager& operator=(const YXSpeedHoleManager& other);
    ~YXSpeedHoleManager() override;

    /// The number of holes in the queue.
    long GetNumberOfHoles() const override;
    unsigned long GetHolesSize() const override;
    bool AddHole(unsigned long dwOffset, long lSize) override;
    /// Only the largest hole can be removed; any other offset gives null. lSize 0 removes nothing
    /// and gives the record, unless the hole has size 0.
    tagFILEHOLE* RemoveHole(unsigned long dwOffset, long lSize) override;
    bool ClearHoleList() override;
    /// Always false: this manager cannot look holes up by offset.
    bool IsHole(unsigned long dwOffset) override;
    /// The offset of the largest hole when its size is @p lSize or at least @p lSize plus the foot
    /// print, else YXHOLE_NONE: a hole of exactly the size is found only when it is the largest.
    unsigned long GetBestHole(long lSize) override;
    /// Always YXHOLE_NONE.
    unsigned long GetTruncateOffset(unsigned long dwFileLength) override;

protected:
    std::int32_t m_lNumberOfHoles; ///< holes in the queue
    std::uint32_t m_dwHolesSize;   ///< the sum of their sizes, wrapping at 32 bits
    YXPriorityQueue* m_pQueue;     ///< null until the first AddHole and after ClearHoleList
};

/// A new, empty manager of a YXHOLEMANAGER_ kind with foot print 0; null for another kind or
/// when memory ran out.
YXTOOLS_PLAIN YXHoleManager* CreateHoleManager(unsigned short wType);
/// Destroys *ppManager, if not null, and sets it to null. Always false.
YXTOOLS_PLAIN bool DestroyHoleManager(YXHoleManager** ppManager);

#endif
