#include <new>

#include "holes/holes_internal.h"
#include "yxtools/holes.h"

using yxholes::kNoOffset;

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
