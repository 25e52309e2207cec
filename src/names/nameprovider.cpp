#include <map>
#include <new>

#include "names/nameprovider_internal.h"
#include "yxtools/nameprovider.h"

YXNameProviderByID::~YXNameProviderByID() = default;
YXNameProviderByString::~YXNameProviderByString() = default;

namespace {

// A registry: keys compare byte by byte, case-sensitively. It owns its key copies and never
// calls or deletes a provider.
template <class Provider>
class YXNameProviderMap {
public:
    YXNameProviderMap() = default;
    YXNameProviderMap(const YXNameProviderMap&) = delete;
    YXNameProviderMap& operator=(const YXNameProviderMap&) = delete;
    virtual ~YXNameProviderMap() = default;

    bool Register(const _SS<char>& name, Provider* pProvider)
    {
        m_Providers.erase(name);
        m_Providers.emplace(name, pProvider);
        return true;
    }

    Provider* Get(const _SS<char>& name) const
    {
        const auto it = m_Providers.find(name);
        return it == m_Providers.end() ? nullptr : it->second;
    }

private:
    std::map<_SS<char>, Provider*> m_Providers;
};

class YXNameProviderMapByString final : public YXNameProviderMap<YXNameProviderByString> {};
class YXNameProviderMapByID final : public YXNameProviderMap<YXNameProviderByID> {};

YXNameProviderMapByString* g_pByString = nullptr;
YXNameProviderMapByID* g_pByID = nullptr;

template <class Map>
void Release(Map*& pMap)
{
    delete pMap;
    pMap = nullptr;
}

// Outside the registries' lifetime (after YXTools_Close, or after a failed allocation at
// initialisation) the first call that needs one creates it empty; the next closing sequence
// releases it. Registrations made then work, and lookups answer as in an empty registry.
template <class Map>
Map& Ensure(Map*& pMap)
{
    if (pMap == nullptr) {
        pMap = new Map;
    }
    return *pMap;
}

} // namespace

void YXNameProvider_InitRegistries(bool bCreate)
{
    Release(g_pByString);
    Release(g_pByID);
    if (bCreate) {
        g_pByString = new (std::nothrow) YXNameProviderMapByString;
        g_pByID = new (std::nothrow) YXNameProviderMapByID;
    }
}

bool YXNameProvider_RegisterProviderByString(const _SS<char>& name, YXNameProviderByString* pProvider)
{
    return Ensure(g_pByString).Register(name, pProvider);
}

YXNameProviderByString* YXNameProvider_GetProviderByString(const _SS<char>& name)
{
    return Ensure(g_pByString).Get(name);
}

bool YXNameProvider_RegisterProviderByID(const _SS<char>& name, YXNameProviderByID* pProvider)
{
    return Ensure(g_pByID).Register(name, pProvider);
}

YXNameProviderByID* YXNameProvider_GetProviderByID(const _SS<char>& name)
{
    return Ensure(g_pByID).Get(name);
}
