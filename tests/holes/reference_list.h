// The efficient manager's list worked by its own published steps on a plain vector: Hoare
// partitions around the middle hole, the binary search that takes the first equal hole its probes
// meet, the merge pass, removal by copying the last hole over the one that goes. Model tests
// compare the manager with it call by call: the same answers, the same holes in the same places.
#ifndef YXTOOLS_TESTS_HOLES_REFERENCE_LIST_H
#define YXTOOLS_TESTS_HOLES_REFERENCE_LIST_H

#include <cstdint>
#include <utility>
#include <vector>

#include "holes_test_util.h"

class ReferenceList {
public:
    std::vector<tagFILEHOLE> holes;
    unsigned short key = 0;
    bool optimized = false;
    std::int32_t footPrint = 0;

    void Add(std::uint32_t offset, std::int32_t size)
    {
        holes.push_back({offset, size});
        key = 0;
        optimized = false;
    }
    void Clear()
    {
        holes.clear();
        key = 0;
        optimized = false;
    }
    void Sort(unsigned short wanted)
    {
        if (key == wanted) {
            return;
        }
        key = wanted;
        if (holes.size() > 1) {
            QuickSort(0, static_cast<int>(holes.size()) - 1);
        }
    }

    // The index of the hole found, -1 for none.
    int ByOffset(std::uint32_t offset)
    {
        Sort(1);
        return Search([&](const tagFILEHOLE& h) { return h.dwOffset == offset ? 0 : h.dwOffset > offset ? 1 : -1; });
    }
    int BySize(std::int32_t size)
    {
        Sort(2);
        return Search([&](const tagFILEHOLE& h) { return h.lSize == size ? 0 : h.lSize > size ? 1 : -1; });
    }

    // The index of the record returned, -1 for null.
    int Remove(std::uint32_t offset, std::int32_t size)
    {
        int i = ByOffset(offset);
        if (i < 0 && (offset & kLock) == 0) {
            i = ByOffset(offset | kLock);
        }
        if (i < 0) {
            return -1;
        }
        tagFILEHOLE& h = holes[static_cast<std::size_t>(i)];
        if (size != 0 && size != h.lSize) {
            const bool locked = (h.dwOffset & kLock) != 0;
            h.lSize = Wrap(static_cast<std::uint32_t>(h.lSize) - static_cast<std::uint32_t>(size));
            h.dwOffset = (h.dwOffset & ~kLock) + static_cast<std::uint32_t>(size);
            if (locked) {
                key = 0;
                optimized = false;
            }
            return i;
        }
        holes[static_cast<std::size_t>(i)] = holes.back();
        holes.pop_back();
        key = 0;
        if (holes.empty()) {
            Clear();
        }
        return -1;
    }

    bool Optimize()
    {
        if (optimized) {
            return true;
        }
        Sort(1);
        bool merged = false;
        tagFILEHOLE* target = nullptr;
        for (tagFILEHOLE& h : holes) {
            if ((h.dwOffset & kLock) != 0) {
                break;
            }
            if (target != nullptr && target->dwOffset + static_cast<std::uint32_t>(target->lSize) == h.dwOffset) {
                target->lSize = Wrap(static_cast<std::uint32_t>(target->lSize) + static_cast<std::uint32_t>(h.lSize));
                h.lSize = 0;
                merged = true;
            } else {
                target = &h;
            }
        }
        if (merged) {
            Sort(3);
            while (!holes.empty() && holes.back().lSize == 0) {
                holes.pop_back();
            }
            if (holes.empty()) {
                Clear();
            }
        }
        optimized = true;
        return merged;
    }

    unsigned long Best(std::int32_t size)
    {
        if (holes.empty()) {
            return kNone;
        }
        Optimize();
        const int exact = BySize(size);
        if (exact >= 0) {
            return holes[static_cast<std::size_t>(exact)].dwOffset;
        }
        if (holes.empty()) {
            return kNone;
        }
        const tagFILEHOLE& largest = holes.back();
        const std::int32_t needed = Wrap(static_cast<std::uint32_t>(footPrint) + static_cast<std::uint32_t>(size));
        return largest.lSize >= needed ? largest.dwOffset : kNone;
    }
    unsigned long Truncate(std::uint32_t length)
    {
        Optimize();
        Sort(1);
        if (holes.empty() || holes.back().dwOffset + static_cast<std::uint32_t>(holes.back().lSize) != length) {
            return kNone;
        }
        return holes.back().dwOffset;
    }
    bool IsHole(std::uint32_t offset) { return ByOffset(offset) >= 0 || ByOffset(offset | kLock) >= 0; }
    bool Unlock(std::uint32_t offset)
    {
        const int i = ByOffset(offset | kLock);
        if (i < 0) {
            return false;
        }
        holes[static_cast<std::size_t>(i)].dwOffset &= ~kLock;
        key = 0;
        optimized = false;
        return true;
    }
    bool UnlockAll()
    {
        Sort(1);
        bool any = false;
        for (tagFILEHOLE& h : holes) {
            any = any || (h.dwOffset & kLock) != 0;
            h.dwOffset &= ~kLock;
        }
        if (any) {
            key = 0;
            optimized = false;
        }
        return any;
    }

private:
    static std::int32_t Wrap(std::uint32_t value) { return static_cast<std::int32_t>(value); }

    // Below 0, 0 or above 0 as a orders before, with or after b under the current key.
    int Compare(const tagFILEHOLE& a, const tagFILEHOLE& b) const
    {
        if (key == 2 || key == 3) {
            const int ascending = a.lSize < b.lSize ? -1 : a.lSize > b.lSize ? 1 : 0;
            return key == 2 ? ascending : -ascending;
        }
        return a.dwOffset < b.dwOffset ? -1 : a.dwOffset > b.dwOffset ? 1 : 0;
    }
    int Partition(int first, int last)
    {
        const int mid = (first + last) / 2;
        const tagFILEHOLE pivot = holes[static_cast<std::size_t>(mid)];
        std::swap(holes[static_cast<std::size_t>(mid)], holes[static_cast<std::size_t>(first)]);
        int i = first - 1;
        int j = last + 1;
        for (;;) {
            do {
                --j;
            } while (Compare(holes[static_cast<std::size_t>(j)], pivot) > 0);
            do {
                ++i;
            } while (Compare(holes[static_cast<std::size_t>(i)], pivot) < 0);
            if (i >= j) {
                return j;
            }
            std::swap(holes[static_cast<std::size_t>(i)], holes[static_cast<std::size_t>(j)]);
        }
    }
    void QuickSort(int first, int last)
    {
        while (first < last) {
            const int p = Partition(first, last);
            QuickSort(first, p);
            first = p + 1;
        }
    }
    // order(hole) is 0 for a hole with the key wanted, above 0 when its key is above it.
    template <class Order>
    int Search(Order order) const
    {
        if (holes.empty()) {
            return -1;
        }
        int lo = 0;
        int hi = static_cast<int>(holes.size()) - 1;
        int mid = hi / 2;
        for (;;) {
            const int c = order(holes[static_cast<std::size_t>(mid)]);
            if (c == 0) {
                return mid;
            }
            if (hi - lo < 2) {
                break;
            }
            if (c > 0) {
                hi = mid;
                mid = (mid + lo) / 2;
            } else {
                lo = mid;
                mid = (mid + hi) / 2;
            }
        }
        return order(holes[static_cast<std::size_t>(hi)]) == 0 ? hi : -1;
    }
};

#endif
