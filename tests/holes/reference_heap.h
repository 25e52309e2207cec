// The priority queue worked by its published walks on a plain vector of cells 1 to n. It writes
// no handle: model tests compare the queue's cells with it, place by place, and the handles with
// the places.
#ifndef YXTOOLS_TESTS_HOLES_REFERENCE_HEAP_H
#define YXTOOLS_TESTS_HOLES_REFERENCE_HEAP_H

#include <cstddef>
#include <vector>

#include "holes_test_util.h"

class ReferenceHeap {
public:
    std::vector<tagPQCELL> cells = std::vector<tagPQCELL>(1); // cell 0 is never used

    std::size_t Size() const { return cells.size() - 1; }
    void Add(const tagPQCELL& cell)
    {
        cells.push_back(cell);
        Up(Size());
    }
    tagPQCELL RemoveHead()
    {
        const tagPQCELL head = cells[1];
        cells[1] = cells.back();
        cells.pop_back();
        if (Size() > 0) {
            Down(1);
        }
        return head;
    }
    tagPQCELL RemoveAddHead(const tagPQCELL& cell)
    {
        const tagPQCELL head = cells[1];
        cells[1] = cell;
        Down(1);
        return head;
    }
    void RemoveCell(std::size_t k)
    {
        cells[k] = cells.back();
        cells.pop_back();
        if (k <= Size()) {
            Down(k);
            Up(k);
        }
    }
    void Change(std::size_t k, std::int32_t value)
    {
        const std::int32_t old = cells[k].lValue;
        cells[k].lValue = value;
        if (value > old) {
            Down(k);
        } else {
            Up(k);
        }
    }

private:
    void Up(std::size_t k)
    {
        const tagPQCELL cell = cells[k];
        while (k > 1 && cells[k / 2].lValue > cell.lValue) {
            cells[k] = cells[k / 2];
            k /= 2;
        }
        cells[k] = cell;
    }
    void Down(std::size_t k)
    {
        const tagPQCELL cell = cells[k];
        const std::size_t n = Size();
        while (k <= n / 2) {
            std::size_t c = 2 * k;
            if (c < n && cells[c + 1].lValue <= cells[c].lValue) {
                ++c; // a tie goes to the right child
            }
            if (cell.lValue <= cells[c].lValue) {
                break; // a child of equal value stays where it is
            }
            cells[k] = cells[c];
            k = c;
        }
        cells[k] = cell;
    }
};

inline bool operator==(const tagPQCELL& a, const tagPQCELL& b)
{
    return a.lValue == b.lValue && a.dwData == b.dwData && a.plIndex == b.plIndex;
}

inline std::ostream& operator<<(std::ostream& out, const tagPQCELL& c)
{
    return out << "(" << c.lValue << ", " << c.dwData << ")";
}

#endif
