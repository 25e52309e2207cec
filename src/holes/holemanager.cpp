#include <new>

#include "yxtools/holes.h"

YXHoleManager::YXHoleManager() : m_lFootPrint(0) {}

YXHoleManager::YXHoleManager(const YXHoleManager& other) = default;
YXHoleManager& YXHoleManager::operator=(const YXHoleManager& other) = default;
YXHoleManager::~YXHoleManager() = default;

void YXHoleManager::SetHoleFootPrint(long lFootPrint)
{
    m_lFootPrint = static_cast<std::int32_t>(lFootPrint);
}

long YXHoleManager::GetHoleFootPrint() const
{
    return m_lFootPrint;
}

YXHoleManager* CreateHoleManager(unsigned short wType)
{
    switch (wType) {
    case YXHOLEMANAGER_SPEED:
        return new (std::nothrow) YXSpeedHoleManager;
    case YXHOLEMANAGER_EFFICIENT:
        return new (std::nothrow) YXEfficientHoleManager;
    default:
        return nullptr;
    }
}

bool DestroyHoleManager(YXHoleManager** ppManager)
{
    delete *ppManager;
    *ppManager = nullptr;
    return false;
}
