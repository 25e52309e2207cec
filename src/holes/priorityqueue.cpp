#include <cstdint>
#include <cstdlib>

#include "yxtools/holes.h"

namespace {

constexpr std::int32_t kMaxCapacity = 0x7FFFFFFF;
constexpr std::int32_t kSentinel = INT32_MIN; // the smallest value: stops a walk at the head

void WriteHandle(const tagPQCELL& cell, std::int32_t lCell)
{
    if (cell.plIndex != nullptr) {
        *cell.plIndex = lCell;
    }
}

} // namespace

YXPriorityQueue::YXPriorityQueue(long lIncrement)
    : m_lIncrement(static_cast<std::int32_t>(lIncrement)), m_lCapacity(0), m_lSize(0), m_pCells(nullptr),
      m_pLast(nullptr), m_llAllocated(0)
{
    CreateIncrementArray(m_lIncrement);
}

YXPriorityQueue::YXPriorityQueue(const YXPriorityQueue& other) = default;
YXPriorityQueue& YXPriorityQueue::operator=(const YXPriorityQueue& other) = default;

YXPriorityQueue::~YXPriorityQueue()
{
    std::free(m_pCells);
}

short YXPriorityQueue::IsEmpty() const
{
    return m_lSize == 0 ? 1 : 0;
}

bool YXPriorityQueue::CreateIncrementArray(std::int32_t lIncrement)
{
    // A negative increment would shrink the capacity: such a queue gets no array at all, and
    // refuses every cell as one with an increment of 0 does.
    if (lIncrement < 0) {
        return false;
    }
    std::int64_t cells = 0;
    if (m_pCells == nullptr) {
        cells = static_cast<std::int64_t>(lIncrement) + 1;
    } else {
        // Half as large again, though the capacity rises by the increment only: later growths
        // find their room already there and leave the array as it is.
        const std::int64_t capacity = m_lCapacity;
        cells = (3 * capacity + 3) / 2;
        if (capacity + lIncrement + 1 > cells) {
            cells = capacity + lIncrement + 1;
        }
        if (capacity + lIncrement + 1 <= m_llAllocated) {
            cells = m_llAllocated;
        }
    }
    if (static_cast<std::uint64_t>(cells) > SIZE_MAX / sizeof(tagPQCELL)) {
        return false;
    }
    void* array =
        cells == m_llAllocated ? m_pCells : std::realloc(m_pCells, static_cast<std::size_t>(cells) * sizeof(tagPQCELL));
    if (array == nullptr) {
        return false;
    }
    m_llAllocated = cells;
    m_pCells = static_cast<tagPQCELL*>(array);
    // The capacity stops at the largest 32-bit count.
    const std::int64_t capacity = static_cast<std::int64_t>(m_lCapacity) + lIncrement;
    m_lCapacity = capacity > kMaxCapacity ? kMaxCapacity : static_cast<std::int32_t>(capacity);
    m_pLast = m_pCells + m_lSize;
    return true;
}

void YXPriorityQueue::SetCell(std::int32_t lCell, const tagPQCELL& cell)
{
    m_pCells[lCell] = cell;
    WriteHandle(cell, lCell);
}

void YXPriorityQueue::IncrementSize()
{
    ++m_lSize;
    ++m_pLast;
}

void YXPriorityQueue::DecrementSize()
{
    --m_lSize;
    --m_pLast;
}

void YXPriorityQueue::UpHeap(std::int32_t lCell)
{
    tagPQCELL* const cells = m_pCells;
    const tagPQCELL saved = cells[lCell];
    const std::int32_t value = saved.lValue;
    cells[0].lValue = kSentinel;
    std::int32_t k = lCell;
    std::int32_t parent = k / 2;
    while (cells[parent].lValue > value) {
        SetCell(k, cells[parent]);
        k = parent;
        parent = k / 2;
    }
    SetCell(k, saved);
}

void YXPriorityQueue::DownHeap(std::int32_t lCell)
{
    tagPQCELL* const cells = m_pCells;
    const tagPQCELL saved = cells[lCell];
    const std::int32_t value = saved.lValue;
    const std::int32_t size = m_lSize;
    const std::int32_t half = size / 2;
    std::int32_t k = lCell;
    while (k <= half) {
        std::int32_t child = 2 * k;
        // A tie between the children goes to the right one.
        if (child < size && cells[child + 1].lValue <= cells[child].lValue) {
            ++child;
        }
        if (value <= cells[child].lValue) {
            break;
        }
        SetCell(k, cells[child]);
        k = child;
    }
    SetCell(k, saved);
}

bool YXPriorityQueue::AddValue(long lValue, unsigned long dwData, long* plIndex)
{
    if (m_lSize >= m_lCapacity) {
        if (m_lCapacity >= kMaxCapacity || !CreateIncrementArray(m_lIncrement)) {
            return false;
        }
    }
    if (m_lSize >= m_lCapacity) {
        return false; // an increment of 0
    }
    IncrementSize();
    *m_pLast = tagPQCELL{static_cast<std::int32_t>(lValue), plIndex, static_cast<std::uint32_t>(dwData)};
    UpHeap(m_lSize);
    return true;
}

short YXPriorityQueue::ReadHead(long& lValue, unsigned long& dwData) const
{
    if (m_lSize == 0) {
        return 0;
    }
    lValue = m_pCells[1].lValue;
    dwData = m_pCells[1].dwData;
    return -1;
}

short YXPriorityQueue::RemoveHead(long& lValue, unsigned long& dwData)
{
    if (m_lSize == 0) {
        return -1;
    }
    lValue = m_pCells[1].lValue;
    dwData = m_pCells[1].dwData;
    // The last cell goes to the head (onto itself when it is the only one) and sinks.
    m_pCells[1] = *m_pLast;
    DecrementSize();
    DownHeap(1);
    return 0;
}

short YXPriorityQueue::RemoveCell(long lCell)
{
    if (lCell > m_lSize) {
        return -1;
    }
    const auto cell = static_cast<std::int32_t>(lCell);
    SetCell(cell, *m_pLast);
    DecrementSize();
    // The cell that moved in may belong higher or lower.
    DownHeap(cell);
    UpHeap(cell);
    return 0;
}

short YXPriorityQueue::RemoveAddHead(long& lValue, unsigned long& dwData, long lNewValue, unsigned long dwNewData,
                                     long* plNewIndex)
{
    if (m_lSize == 0) {
        return -1;
    }
    lValue = m_pCells[1].lValue;
    dwData = m_pCells[1].dwData;
    SetCell(1, tagPQCELL{static_cast<std::int32_t>(lNewValue), plNewIndex, static_cast<std::uint32_t>(dwNewData)});
    DownHeap(1);
    return 0;
}

void YXPriorityQueue::ChangeValue(long lCell, long lNewValue)
{
    const auto cell = static_cast<std::int32_t>(lCell);
    const auto value = static_cast<std::int32_t>(lNewValue);
    const std::int32_t old = m_pCells[cell].lValue;
    m_pCells[cell].lValue = value;
    if (value > old) {
        DownHeap(cell);
    } else {
        UpHeap(cell);
    }
}

void YXPriorityQueue::ReInit()
{
    std::free(m_pCells);
    m_pCells = nullptr;
    m_pLast = nullptr;
    m_llAllocated = 0;
    m_lCapacity = 0;
    m_lSize = 0;
}
