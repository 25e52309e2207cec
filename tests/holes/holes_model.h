// Reference models of the hole managers and the priority queue, and views that read the real
// objects' state, shared by the test suites and the fuzz targets (so no test framework here).
//
// The models follow the managers' algorithms step by step on plain vectors: the same sort
// (a Hoare partition around the middle record), the same binary search, the same merge pass and
// the same heap walks. So they give the exact answers, which hole among equal ones and which
// cell where, and the exact order of the list, and a caller compares those after every call.
#ifndef YXTOOLS_TESTS_HOLES_MODEL_H
#define YXTOOLS_TESTS_HOLES_MODEL_H

#include <algorithm>
#include <climits>
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <yxtools/holes.h>

// The models are no part of what a fuzz target explores: their branches give libFuzzer no
// coverage to chase, and cost no comparison tracing.
#if defined(__clang__)
#pragma clang attribute push(__attribute__((no_sanitize("coverage"))), apply_to = function)
#endif

namespace holes_model {

constexpr std::uint32_t kNone = 0xFFFFFFFFU;
constexpr std::uint32_t kLock = 0x80000000U;
constexpr std::int32_t kBlock = 200; // records per block
constexpr std::int32_t kStep = 20;   // the block table grows by this many entries

inline std::int32_t Add32(std::int32_t a, std::int32_t b)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

inline std::int32_t Neg32(std::int32_t a)
{
    return static_cast<std::int32_t>(0U - static_cast<std::uint32_t>(a));
}

inline std::uint32_t EndOf(const tagFILEHOLE& h)
{
    return h.dwOffset + static_cast<std::uint32_t>(h.lSize);
}

inline bool Same(const tagFILEHOLE& a, const tagFILEHOLE& b)
{
    return a.dwOffset == b.dwOffset && a.lSize == b.lSize;
}

// What broke, written only when something did: a check that passes costs no stream.
class Problems {
public:
    template <class T>
    Problems& operator<<(const T& value)
    {
        if (!m_out) {
            m_out = std::make_unique<std::ostringstream>();
        }
        *m_out << value;
        return *this;
    }
    std::string str() const { return m_out ? m_out->str() : std::string(); }

private:
    std::unique_ptr<std::ostringstream> m_out;
};

inline std::string Text(const std::vector<tagFILEHOLE>& holes)
{
    std::ostringstream out;
    for (const tagFILEHOLE& h : holes) {
        out << "(" << h.dwOffset << "," << h.lSize << ")";
    }
    return out.str();
}

// YXEfficientHoleManager on one vector: the list in its order, the lazy state, and the memory
// counts (free entries, table size) that the blocks would have.
class EfficientModel {
public:
    std::vector<tagFILEHOLE> list;
    std::uint32_t sum = 0;
    unsigned short key = YXHOLESORT_NONE;
    bool optimized = false;
    std::int32_t freeEntries = 0;
    std::int32_t tableSize = 0;
    std::int32_t footPrint = 0;

    std::int32_t Count() const { return static_cast<std::int32_t>(list.size()); }
    std::int32_t Blocks() const { return (Count() + freeEntries) / kBlock; }

    void AddHole(std::uint32_t offset, std::int32_t size)
    {
        if (freeEntries == 0) {
            const std::int32_t needed = (Count() + kBlock) / kBlock;
            const std::int32_t table = (needed / kStep + 1) * kStep;
            if (table > tableSize) {
                tableSize = table;
            }
            freeEntries += kBlock;
        }
        list.push_back({offset, size});
        --freeEntries;
        sum += static_cast<std::uint32_t>(size);
        key = YXHOLESORT_NONE;
        optimized = false;
    }

    // The list index of the record the real manager returns; -1 for null (not found, or the
    // whole hole went).
    std::int32_t RemoveHole(std::uint32_t offset, std::int32_t size)
    {
        std::int32_t i = ByOffset(offset);
        if (i < 0 && (offset & kLock) == 0) {
            i = ByOffset(offset | kLock);
        }
        if (i < 0) {
            return -1;
        }
        tagFILEHOLE& h = list[static_cast<std::size_t>(i)];
        if (size != 0 && size != h.lSize) {
            const bool locked = (h.dwOffset & kLock) != 0;
            h.lSize = Add32(h.lSize, Neg32(size));
            h.dwOffset = (h.dwOffset & ~kLock) + static_cast<std::uint32_t>(size);
            sum -= static_cast<std::uint32_t>(size);
            if (locked) {
                key = YXHOLESORT_NONE;
                optimized = false;
            }
            return i;
        }
        RemoveWhole(i);
        key = YXHOLESORT_NONE;
        return -1;
    }

    bool ClearHoleList()
    {
        list.clear();
        sum = 0;
        key = YXHOLESORT_NONE;
        optimized = false;
        freeEntries = 0;
        tableSize = 0;
        return true;
    }

    bool IsHole(std::uint32_t offset) { return ByOffset(offset) >= 0 || ByOffset(offset | kLock) >= 0; }

    std::uint32_t GetBestHole(std::int32_t size)
    {
        if (list.empty()) {
            return kNone;
        }
        Optimize();
        if (list.empty()) { // the merge pass left nothing
            return kNone;
        }
        const std::int32_t exact = BySize(size);
        if (exact >= 0) {
            return list[static_cast<std::size_t>(exact)].dwOffset;
        }
        const tagFILEHOLE& largest = list.back();
        return largest.lSize >= Add32(footPrint, size) ? largest.dwOffset : kNone;
    }

    std::uint32_t GetTruncateOffset(std::uint32_t length)
    {
        Optimize();
        Order(YXHOLESORT_OFFSET);
        if (list.empty() || EndOf(list.back()) != length) {
            return kNone;
        }
        return list.back().dwOffset;
    }

    void SortHoles(unsigned short wanted) { Order(wanted); }

    bool UnlockHole(std::uint32_t offset)
    {
        const std::int32_t i = ByOffset(offset | kLock);
        if (i < 0) {
            return false;
        }
        list[static_cast<std::size_t>(i)].dwOffset &= ~kLock;
        key = YXHOLESORT_NONE;
        optimized = false;
        return true;
    }

    // Every hole that has bit 31 loses it, wherever it stands.
    bool UnlockAllHoles()
    {
        Order(YXHOLESORT_OFFSET);
        bool any = false;
        for (tagFILEHOLE& h : list) {
            any = any || (h.dwOffset & kLock) != 0;
            h.dwOffset &= ~kLock;
        }
        if (any) {
            key = YXHOLESORT_NONE;
            optimized = false;
        }
        return any;
    }

private:
    int Compare(const tagFILEHOLE& a, const tagFILEHOLE& b) const
    {
        if (key == YXHOLESORT_SIZE) {
            return a.lSize < b.lSize ? -1 : a.lSize > b.lSize ? 1 : 0;
        }
        if (key == YXHOLESORT_SIZE_DESC) {
            return a.lSize > b.lSize ? -1 : a.lSize < b.lSize ? 1 : 0;
        }
        return a.dwOffset < b.dwOffset ? -1 : a.dwOffset > b.dwOffset ? 1 : 0;
    }

    std::int32_t Partition(std::int32_t first, std::int32_t last)
    {
        const std::int32_t mid = (first + last) / 2;
        const tagFILEHOLE pivot = list[static_cast<std::size_t>(mid)];
        std::swap(list[static_cast<std::size_t>(mid)], list[static_cast<std::size_t>(first)]);
        std::int32_t i = first - 1;
        std::int32_t j = last + 1;
        for (;;) {
            do {
                --j;
            } while (Compare(list[static_cast<std::size_t>(j)], pivot) > 0);
            do {
                ++i;
            } while (Compare(list[static_cast<std::size_t>(i)], pivot) < 0);
            if (i >= j) {
                return j;
            }
            std::swap(list[static_cast<std::size_t>(i)], list[static_cast<std::size_t>(j)]);
        }
    }

    void QuickSort(std::int32_t first, std::int32_t last)
    {
        while (first < last) {
            const std::int32_t p = Partition(first, last);
            QuickSort(first, p);
            first = p + 1;
        }
    }

    void Order(unsigned short wanted)
    {
        if (key == wanted) {
            return;
        }
        key = wanted;
        if (list.size() > 1) {
            QuickSort(0, Count() - 1);
        }
    }

    // The binary search: equality only, the first equal record that the probes meet.
    template <class KeyOf, class Value>
    std::int32_t Search(KeyOf keyOf, Value wanted) const
    {
        if (list.empty()) {
            return -1;
        }
        std::int32_t lo = 0;
        std::int32_t hi = Count() - 1;
        std::int32_t mid = hi / 2;
        for (;;) {
            const Value k = keyOf(list[static_cast<std::size_t>(mid)]);
            if (k == wanted) {
                return mid;
            }
            if (hi - lo < 2) {
                break;
            }
            if (k > wanted) {
                hi = mid;
                mid = (mid + lo) / 2;
            } else {
                lo = mid;
                mid = (mid + hi) / 2;
            }
        }
        return keyOf(list[static_cast<std::size_t>(hi)]) == wanted ? hi : -1;
    }

    std::int32_t ByOffset(std::uint32_t offset)
    {
        Order(YXHOLESORT_OFFSET);
        return Search([](const tagFILEHOLE& h) { return h.dwOffset; }, offset);
    }

    std::int32_t BySize(std::int32_t size)
    {
        Order(YXHOLESORT_SIZE);
        return Search([](const tagFILEHOLE& h) { return h.lSize; }, size);
    }

    // Blocks go while 200 or more entries stand free; an empty list releases everything.
    void Shrink()
    {
        if (list.empty()) {
            ClearHoleList();
            return;
        }
        while (freeEntries / kBlock != 0) {
            freeEntries -= kBlock;
        }
    }

    // The last record takes the place of the one that goes.
    void RemoveWhole(std::int32_t i)
    {
        sum -= static_cast<std::uint32_t>(list[static_cast<std::size_t>(i)].lSize);
        list[static_cast<std::size_t>(i)] = list.back();
        list.pop_back();
        ++freeEntries;
        if (list.empty() || freeEntries >= kBlock) {
            Shrink();
        }
    }

    // The merge pass: in offset order each chain of touching unlocked holes collapses into its
    // first hole; the walk ends at the first locked hole.
    void Optimize()
    {
        if (optimized) {
            return;
        }
        Order(YXHOLESORT_OFFSET);
        bool merged = false;
        tagFILEHOLE* target = nullptr;
        for (tagFILEHOLE& h : list) {
            if ((h.dwOffset & kLock) != 0) {
                break;
            }
            if (target != nullptr && EndOf(*target) == h.dwOffset) {
                target->lSize = Add32(target->lSize, h.lSize);
                h.lSize = 0;
                merged = true;
            } else {
                target = &h;
            }
        }
        if (merged) {
            RemoveEmptyHoles();
        }
        optimized = true;
    }

    // In descending size order the holes of size 0 at the end go.
    void RemoveEmptyHoles()
    {
        Order(YXHOLESORT_SIZE_DESC);
        std::int32_t empty = 0;
        while (empty < Count() && list[list.size() - 1 - static_cast<std::size_t>(empty)].lSize == 0) {
            ++empty;
        }
        if (empty == 0) {
            return;
        }
        list.resize(list.size() - static_cast<std::size_t>(empty));
        freeEntries += empty;
        if (freeEntries >= kBlock || list.empty()) {
            Shrink();
        }
    }
};

// Reads the state of a real efficient manager.
class EfficientView : public YXEfficientHoleManager {
public:
    std::vector<tagFILEHOLE> Holes() const
    {
        std::vector<tagFILEHOLE> out;
        for (std::int32_t i = 0; i < m_lNumberOfHoles; ++i) {
            out.push_back(m_ppBlocks[i / kBlock][i % kBlock]);
        }
        return out;
    }
    // The record at a list index; null for -1.
    const tagFILEHOLE* At(std::int32_t i) const { return i < 0 ? nullptr : &m_ppBlocks[i / kBlock][i % kBlock]; }
    // The list index of a record handed out; -1 for null or a record outside the list.
    std::int32_t IndexOf(const tagFILEHOLE* record) const
    {
        for (std::int32_t i = 0; record != nullptr && i < m_lNumberOfHoles; ++i) {
            if (At(i) == record) {
                return i;
            }
        }
        return -1;
    }
    std::int32_t TableSize() const { return m_lBlockTableSize; }
    std::int32_t BlocksHeld() const { return m_lBlockTableSize - m_wFreeTableEntries; }
    std::int32_t FreeEntries() const { return m_lFreeEntries; }
    unsigned short SortKey() const { return m_wSortKey; }
    bool Optimized() const { return m_bOptimized; }

    // Every invariant that holds after a public call; empty when all hold, else what broke.
    std::string Invariants() const
    {
        Problems error;
        const std::int32_t blocks = BlocksHeld();
        for (std::int32_t i = 0; i < m_lBlockTableSize; ++i) {
            if ((m_ppBlocks[i] != nullptr) != (i < blocks)) {
                error << "block table entry " << i << " out of place; ";
            }
        }
        if (m_lFreeEntries != kBlock * blocks - m_lNumberOfHoles || m_lFreeEntries >= kBlock) {
            error << "free entries " << m_lFreeEntries << " for " << blocks << " blocks; ";
        }
        if (m_lNumberOfHoles == 0 && (m_ppBlocks != nullptr || m_lBlockTableSize != 0)) {
            error << "memory held by an empty list; ";
        }
        if (m_ppBlocks != nullptr && (m_lBlockTableSize % kStep != 0 || m_lBlockTableSize <= blocks)) {
            error << "table of " << m_lBlockTableSize << " entries for " << blocks << " blocks; ";
        }
        const std::vector<tagFILEHOLE> holes = Holes();
        std::uint32_t sum = 0;
        for (std::size_t i = 0; i < holes.size(); ++i) {
            sum += static_cast<std::uint32_t>(holes[i].lSize);
            const tagFILEHOLE& a = i > 0 ? holes[i - 1] : holes[i];
            const tagFILEHOLE& b = holes[i];
            if ((m_wSortKey == YXHOLESORT_SIZE && a.lSize > b.lSize) ||
                (m_wSortKey == YXHOLESORT_SIZE_DESC && a.lSize < b.lSize)) {
                error << "out of the order of key " << m_wSortKey << " at " << i << "; ";
            }
        }
        if (sum != m_dwHolesSize) {
            error << "sum " << m_dwHolesSize << " for holes of " << sum << "; ";
        }
        return error.str();
    }

    // The model's list, counters, memory and (while holes are held) lazy state.
    std::string Against(const EfficientModel& model) const
    {
        Problems error;
        const std::vector<tagFILEHOLE> holes = Holes();
        if (holes.size() != model.list.size() || !std::equal(holes.begin(), holes.end(), model.list.begin(), Same)) {
            error << "list " << Text(holes) << " for " << Text(model.list) << "; ";
        }
        if (m_dwHolesSize != model.sum || m_lFreeEntries != model.freeEntries || m_lBlockTableSize != model.tableSize ||
            m_lFootPrint != model.footPrint) {
            error << "sum " << m_dwHolesSize << "/" << model.sum << ", free " << m_lFreeEntries << "/"
                  << model.freeEntries << ", table " << m_lBlockTableSize << "/" << model.tableSize << ", foot print "
                  << m_lFootPrint << "/" << model.footPrint << "; ";
        }
        if (!holes.empty() && (m_wSortKey != model.key || m_bOptimized != model.optimized)) {
            error << "key " << m_wSortKey << "/" << model.key << ", optimized " << m_bOptimized << "/"
                  << model.optimized << "; ";
        }
        return error.str();
    }
};

// YXPriorityQueue on one vector: cell 0 is the sentinel. A cell's handle is a number that names
// one of the caller's long variables (-1: none); the model keeps its own copy of those variables.
class QueueModel {
public:
    struct Cell {
        std::int32_t value;
        int handle;
        std::uint32_t data;
    };
    std::int32_t increment;
    std::int32_t capacity = 0;
    bool hasArray = false;
    // The array: cell 0 the sentinel, cells 1 to size in the heap, and cells beyond the size as
    // the last removals left them (the walks may still read and write them).
    std::vector<Cell> cells{Cell{0, -1, 0}};
    std::int32_t size = 0;
    std::vector<long> handles; // the caller's variables, by number

    explicit QueueModel(std::int32_t inc = 100) : increment(inc) { Grow(inc); }

    std::int32_t Size() const { return size; }

    bool AddValue(std::int32_t value, std::uint32_t data, int handle)
    {
        if (Size() >= capacity) {
            if (capacity == 0x7FFFFFFF || !Grow(increment)) {
                return false;
            }
        }
        if (Size() >= capacity) {
            return false;
        }
        ++size;
        At(size) = {value, handle, data};
        Up(size);
        return true;
    }

    bool ReadHead(std::int32_t& value, std::uint32_t& data) const
    {
        if (Size() == 0) {
            return false;
        }
        value = cells[1].value;
        data = cells[1].data;
        return true;
    }

    bool RemoveHead(std::int32_t& value, std::uint32_t& data)
    {
        if (!ReadHead(value, data)) {
            return false;
        }
        cells[1] = cells[static_cast<std::size_t>(size)];
        --size;
        Down(1);
        return true;
    }

    bool RemoveCell(std::int32_t cell)
    {
        if (cell > Size()) {
            return false;
        }
        Set(cell, cells[static_cast<std::size_t>(size)]);
        --size;
        Down(cell);
        Up(cell);
        return true;
    }

    bool RemoveAddHead(std::int32_t& value, std::uint32_t& data, std::int32_t newValue, std::uint32_t newData,
                       int handle)
    {
        if (!ReadHead(value, data)) {
            return false;
        }
        cells[1] = {newValue, handle, newData};
        Down(1);
        return true;
    }

    void ChangeValue(std::int32_t cell, std::int32_t value)
    {
        const std::int32_t old = cells[static_cast<std::size_t>(cell)].value;
        cells[static_cast<std::size_t>(cell)].value = value;
        if (value > old) {
            Down(cell);
        } else {
            Up(cell);
        }
    }

    void ReInit()
    {
        size = 0;
        capacity = 0;
        hasArray = false;
    }

private:
    // How much room the array gets is the queue's own affair; the capacity rises by the
    // increment. A negative increment gets no array.
    bool Grow(std::int32_t inc)
    {
        if (inc < 0) {
            return false;
        }
        hasArray = true;
        capacity += inc;
        return true;
    }

    Cell& At(std::int32_t k)
    {
        if (cells.size() <= static_cast<std::size_t>(k)) {
            cells.resize(static_cast<std::size_t>(k) + 1, Cell{0, -1, 0});
        }
        return cells[static_cast<std::size_t>(k)];
    }

    void Set(std::int32_t k, Cell cell) // by value: the array may grow under a reference
    {
        At(k) = cell;
        if (cell.handle >= 0) {
            handles[static_cast<std::size_t>(cell.handle)] = k;
        }
    }

    void Up(std::int32_t k)
    {
        const Cell saved = At(k);
        cells[0].value = INT32_MIN;
        std::int32_t p = k / 2;
        while (cells[static_cast<std::size_t>(p)].value > saved.value) {
            Set(k, cells[static_cast<std::size_t>(p)]);
            k = p;
            p = k / 2;
        }
        Set(k, saved);
    }

    void Down(std::int32_t k)
    {
        const Cell saved = At(k);
        const std::int32_t half = size / 2;
        while (k <= half) {
            std::int32_t c = 2 * k;
            if (c < size && cells[static_cast<std::size_t>(c) + 1].value <= cells[static_cast<std::size_t>(c)].value) {
                ++c;
            }
            if (saved.value <= cells[static_cast<std::size_t>(c)].value) {
                break;
            }
            Set(k, cells[static_cast<std::size_t>(c)]);
            k = c;
        }
        Set(k, saved);
    }
};

// The caller's handle variables for a real queue and its model side by side: each is a long that
// stays put to the end, named by its number in the model.
class Handles {
public:
    explicit Handles(QueueModel& model) : m_model(model) {}

    // A new variable's number, or -1 (no handle) when none is wanted.
    int New(bool wanted)
    {
        if (!wanted) {
            return -1;
        }
        m_variables.push_back(std::make_unique<long>(-1));
        m_pointers.push_back(m_variables.back().get());
        m_model.handles.push_back(-1);
        return static_cast<int>(m_pointers.size()) - 1;
    }
    long* Pointer(int handle) const { return handle >= 0 ? m_pointers[static_cast<std::size_t>(handle)] : nullptr; }
    const std::vector<long*>& All() const { return m_pointers; }

private:
    QueueModel& m_model;
    std::vector<std::unique_ptr<long>> m_variables;
    std::vector<long*> m_pointers;
};

// Reads the state of any real queue.
class QueueView : public YXPriorityQueue {
public:
    using YXPriorityQueue::YXPriorityQueue;

    // The member pointers are taken through this class, so they read any queue.
    static std::int32_t Size(const YXPriorityQueue& q) { return q.*(&QueueView::m_lSize); }
    static const tagPQCELL& Cell(const YXPriorityQueue& q, std::int32_t i) { return (q.*(&QueueView::m_pCells))[i]; }

    // Heap order, handles equal to indices, the last-cell pointer; empty when all hold.
    static std::string Invariants(const YXPriorityQueue& q)
    {
        Problems error;
        const std::int32_t size = q.*(&QueueView::m_lSize);
        const tagPQCELL* cells = q.*(&QueueView::m_pCells);
        if (size != 0 && q.*(&QueueView::m_pLast) != cells + size) {
            error << "last cell pointer; ";
        }
        if (size > q.*(&QueueView::m_lCapacity) ||
            (cells != nullptr && q.*(&QueueView::m_llAllocated) < q.*(&QueueView::m_lCapacity) + 1)) {
            error << "size " << size << ", capacity " << q.*(&QueueView::m_lCapacity) << ", room for "
                  << q.*(&QueueView::m_llAllocated) << "; ";
        }
        for (std::int32_t i = 1; i <= size; ++i) {
            if (i > 1 && cells[i].lValue < cells[i / 2].lValue) {
                error << "heap order at cell " << i << "; ";
            }
            if (cells[i].plIndex != nullptr && *cells[i].plIndex != i) {
                error << "handle of cell " << i << " holds " << *cells[i].plIndex << "; ";
            }
        }
        return error.str();
    }

    // Every cell in place, and the array's sizes, against the model. `handles` are the caller's
    // variables by number, as the model names them.
    static std::string Against(const YXPriorityQueue& q, const QueueModel& model, const std::vector<long*>& handles)
    {
        Problems error;
        const std::int32_t size = q.*(&QueueView::m_lSize);
        const tagPQCELL* cells = q.*(&QueueView::m_pCells);
        if (size != model.Size() || q.*(&QueueView::m_lCapacity) != model.capacity ||
            (cells != nullptr) != model.hasArray) {
            error << "size " << size << "/" << model.Size() << ", capacity " << q.*(&QueueView::m_lCapacity) << "/"
                  << model.capacity << ", array " << (cells != nullptr) << "/" << model.hasArray << "; ";
            return error.str();
        }
        for (std::int32_t i = 1; i <= size; ++i) {
            const QueueModel::Cell& m = model.cells[static_cast<std::size_t>(i)];
            const long* handle = m.handle >= 0 ? handles[static_cast<std::size_t>(m.handle)] : nullptr;
            if (cells[i].lValue != m.value || cells[i].dwData != m.data || cells[i].plIndex != handle) {
                error << "cell " << i << " (" << cells[i].lValue << "," << cells[i].dwData << ") for (" << m.value
                      << "," << m.data << "); ";
            }
        }
        for (std::size_t h = 0; h < handles.size() && h < model.handles.size(); ++h) {
            if (*handles[h] != model.handles[h]) {
                error << "handle " << h << " holds " << *handles[h] << " for " << model.handles[h] << "; ";
            }
        }
        return error.str();
    }
};

// YXSpeedHoleManager over the queue model: value -size, data offset, no handle. The record that
// RemoveHole returns is one for all speed managers of the process.
class SpeedModel {
public:
    bool hasQueue = false;
    QueueModel queue;
    std::int32_t count = 0;
    std::uint32_t sum = 0;
    std::int32_t footPrint = 0;
    static tagFILEHOLE& Removed()
    {
        static tagFILEHOLE record{};
        return record;
    }

    void AddHole(std::uint32_t offset, std::int32_t size)
    {
        if (!hasQueue) {
            queue = QueueModel(100);
            hasQueue = true;
        }
        queue.AddValue(Neg32(size), offset, -1);
        ++count;
        sum += static_cast<std::uint32_t>(size);
    }

    std::uint32_t GetBestHole(std::int32_t size) const
    {
        std::int32_t value = 0;
        std::uint32_t offset = 0;
        if (!hasQueue || !queue.ReadHead(value, offset)) {
            return kNone;
        }
        const std::int32_t head = Neg32(value);
        return head == size || head >= Add32(footPrint, size) ? offset : kNone;
    }

    // Whether the real manager returns the shared record (else null); the record's content
    // changes even when the removal is refused.
    bool RemoveHole(std::uint32_t offset, std::int32_t size)
    {
        std::int32_t value = 0;
        std::uint32_t head = 0;
        if (!hasQueue || !queue.ReadHead(value, head)) {
            return false;
        }
        tagFILEHOLE& record = Removed();
        record = {head, Neg32(value)};
        if (offset != head) {
            return false;
        }
        sum -= static_cast<std::uint32_t>(size);
        if (size == record.lSize) {
            queue.RemoveHead(value, head);
            --count;
            return false;
        }
        record.dwOffset += static_cast<std::uint32_t>(size);
        record.lSize = Add32(record.lSize, Neg32(size));
        queue.RemoveAddHead(value, head, Neg32(record.lSize), record.dwOffset, -1);
        return true;
    }

    bool ClearHoleList()
    {
        hasQueue = false;
        queue = QueueModel(100);
        count = 0;
        sum = 0;
        return true;
    }
};

// Reads the state of a real speed manager.
class SpeedView : public YXSpeedHoleManager {
public:
    std::string Against(const SpeedModel& model) const
    {
        Problems error;
        if (m_lNumberOfHoles != model.count || m_dwHolesSize != model.sum || m_lFootPrint != model.footPrint ||
            (m_pQueue != nullptr) != model.hasQueue) {
            error << "count " << m_lNumberOfHoles << "/" << model.count << ", sum " << m_dwHolesSize << "/" << model.sum
                  << ", queue " << (m_pQueue != nullptr) << "/" << model.hasQueue << "; ";
            return error.str();
        }
        if (m_pQueue == nullptr) {
            return std::string();
        }
        return QueueView::Invariants(*m_pQueue) + QueueView::Against(*m_pQueue, model.queue, {});
    }
};

} // namespace holes_model

#if defined(__clang__)
#pragma clang attribute pop
#endif

#endif
