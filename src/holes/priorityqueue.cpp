// The priority queue and the speed manager, its one user inside the library. They share one unit
// so that the manager's calls into the queue (one or two per operation) are inlined rather than
// made through the exported entry points.
#include <cstdint>
#include <cstdlib>
#include <new>

#include "holes/holes_internal.h"
#include "yxtools/holes.h"

using yxholes::kNoOffset;

namespace {

constexpr std::int32_t kMaxCapacity = 0x7FFFFFFF;
constexpr std::int32_t kSentinel = INT32_MIN; // the smallest value: stops a walk at the head

// Copies a cell into cell k and, when it has a handle, stores k through it.
inline void Place(tagPQCELL* cells, std::uint32_t k, const tagPQCELL& cell)
{
    cells[k] = cell;
    // The walks copy only cells 1 to the size, all written; the analyzer cannot follow the
    // indices through a reallocated array. NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult)
    if (cell.plIndex != nullptr) {
        *cell.plIndex = static_cast<long>(k);
    }
}

// The walk towards the head, for a cell that is to go at index k: each parent of a larger value
// comes down one level, and the cell goes where the walk stops. Cell 0 holds the smallest value,
// which stops the walk at the head without a test of the index.
inline void SiftUp(tagPQCELL* cells, std::uint32_t k, const tagPQCELL cell)
{
    cells[0].lValue = kSentinel;
    std::uint32_t parent = k / 2;
    while (cells[parent].lValue > cell.lValue) {
        Place(cells, k, cells[parent]);
        k = parent;
        parent = k / 2;
    }
    Place(cells, k, cell);
}

// The walk away from the head, for a cell that is to go at index k of a heap of `size` cells: the
// smaller child, the right one on a tie, comes up one level while it is below the cell's value.
// The loop runs while both children exist; a lone left child can only be met at the end. (A choice
// of child without a branch was measured: faster on heaps past the first-level cache, slower on
// small ones, where the predictor runs ahead of the loads.)
inline void SiftDown(tagPQCELL* cells, std::uint32_t size, std::uint32_t k, const tagPQCELL cell)
{
    const std::int32_t value = cell.lValue;
    std::uint32_t child = 2 * k;
    while (child < size) {
        if (cells[child + 1].lValue <= cells[child].lValue) {
            ++child;
        }
        if (value <= cells[child].lValue) {
            Place(cells, k, cell);
            return;
        }
        Place(cells, k, cells[child]);
        k = child;
        child = 2 * k;
    }
    if (child == size && value > cells[child].lValue) {
        Place(cells, k, cells[child]);
        k = child;
    }
    Place(cells, k, cell);
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
    Place(m_pCells, static_cast<std::uint32_t>(lCell), cell);
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
    SiftUp(m_pCells, static_cast<std::uint32_t>(lCell), m_pCells[lCell]);
}

void YXPriorityQueue::DownHeap(std::int32_t lCell)
{
    SiftDown(m_pCells, static_cast<std::uint32_t>(m_lSize), static_cast<std::uint32_t>(lCell), m_pCells[lCell]);
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
    // The new cell walks up from the end; where it stops is where it is written.
    SiftUp(m_pCells, static_cast<std::uint32_t>(m_lSize),
           tagPQCELL{static_cast<std::int32_t>(lValue), plIndex, static_cast<std::uint32_t>(dwData)});
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
    const tagPQCELL last = *m_pLast;
    DecrementSize();
    SiftDown(m_pCells, static_cast<std::uint32_t>(m_lSize), 1, last);
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

// --- the speed manager ------------------------------------------------------------------------

namespace {

constexpr long kQueueIncrement = 100;

// The one record that RemoveHole of every speed manager works in and returns.
tagFILEHOLE s_RemovedHole;

// A hole is a cell whose value is its negated size, so that the largest hole is the head.
long CellValue(std::int32_t lSize)
{
    return yxholes::Sub32(0, lSize);
}

} // namespace

YXSpeedHoleManager::YXSpeedHoleManager() : m_lNumberOfHoles(0), m_dwHolesSize(0), m_pQueue(nullptr) {}

YXSpeedHoleManager::YXSpeedHoleManager(const YXSpeedHoleManager& other) = default;
YXSpeedHoleManager& YXSpeedHoleManager::operator=(const YXSpeedHoleManager& other) = default;

YXSpeedHoleManager::~YXSpeedHoleManager()
{
    YXSpeedHoleManager::ClearHoleList();
}

long YXSpeedHoleManager::GetNumberOfHoles() const
{
    return m_lNumberOfHoles;
}

unsigned long YXSpeedHoleManager::GetHolesSize() const
{
    return m_dwHolesSize;
}

bool YXSpeedHoleManager::AddHole(unsigned long dwOffset, long lSize)
{
    if (m_pQueue == nullptr) {
        m_pQueue = new (std::nothrow) YXPriorityQueue(kQueueIncrement);
        if (m_pQueue == nullptr) {
            return false;
        }
    }
    const auto size = static_cast<std::int32_t>(lSize);
    if (!m_pQueue->AddValue(CellValue(size), static_cast<std::uint32_t>(dwOffset), nullptr)) {
        return false;
    }
    ++m_lNumberOfHoles;
    m_dwHolesSize += static_cast<std::uint32_t>(size);
    return true;
}

tagFILEHOLE* YXSpeedHoleManager::RemoveHole(unsigned long dwOffset, long lSize)
{
    long value = 0;
    unsigned long data = 0;
    if (m_pQueue == nullptr || m_pQueue->ReadHead(value, data) == 0) {
        return nullptr;
    }
    s_RemovedHole.dwOffset = static_cast<std::uint32_t>(data);
    s_RemovedHole.lSize = yxholes::Sub32(0, static_cast<std::int32_t>(value));
    // Only the head, the hole that GetBestHole gives, can be removed.
    if (static_cast<std::uint32_t>(dwOffset) != s_RemovedHole.dwOffset) {
        return nullptr;
    }
    const auto size = static_cast<std::int32_t>(lSize);
    m_dwHolesSize -= static_cast<std::uint32_t>(size);
    if (size == s_RemovedHole.lSize) {
        m_pQueue->RemoveHead(value, data);
        --m_lNumberOfHoles;
        return nullptr;
    }
    s_RemovedHole.dwOffset = yxholes::EndOf(s_RemovedHole.dwOffset, size);
    s_RemovedHole.lSize = yxholes::Sub32(s_RemovedHole.lSize, size);
    m_pQueue->RemoveAddHead(value, data, CellValue(s_RemovedHole.lSize), s_RemovedHole.dwOffset, nullptr);
    return &s_RemovedHole;
}

bool YXSpeedHoleManager::ClearHoleList()
{
    delete m_pQueue;
    m_pQueue = nullptr;
    m_lNumberOfHoles = 0;
    m_dwHolesSize = 0;
    return true;
}

bool YXSpeedHoleManager::IsHole(unsigned long /*dwOffset*/)
{
    return false;
}

unsigned long YXSpeedHoleManager::GetBestHole(long lSize)
{
    long value = 0;
    unsigned long data = 0;
    if (m_pQueue == nullptr || m_pQueue->ReadHead(value, data) == 0) {
        return kNoOffset;
    }
    // Only the head is looked at: an exact fit is found only when it is the largest hole.
    const std::int32_t headSize = yxholes::Sub32(0, static_cast<std::int32_t>(value));
    const auto size = static_cast<std::int32_t>(lSize);
    if (headSize == size || yxholes::LeavesFootPrint(headSize, size, m_lFootPrint)) {
        return data;
    }
    return kNoOffset;
}

unsigned long YXSpeedHoleManager::GetTruncateOffset(unsigned long /*dwFileLength*/)
{
    return kNoOffset;
}
