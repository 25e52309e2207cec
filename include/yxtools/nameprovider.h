/// @file
/// Name provider registries: one module publishes a provider under a text key, another finds it
/// without linking to it. The library keeps the pointers only; providers stay their registrants'.
/// There are two registries, one per kind of provider; each key holds one provider. A call made
/// while the registries are absent (after YXTools_Close) creates them afresh and empty; the next
/// close releases them.
#ifndef YXTOOLS_NAMEPROVIDER_H
#define YXTOOLS_NAMEPROVIDER_H

#include "yxtools/config.h"
#include "yxtools/ss.h"

/// A provider of names asked by a numeric id. Hosts derive from it.
class YXTOOLS_API YXNameProviderByID {
public:
    YXNameProviderByID() = default;
    /// Copies nothing: the interface holds no state.
    YXNameProviderByID(const YXNameProviderByID&) = default;
    /// Copies nothing: the interface holds no state.
    YXNameProviderByID& operator=(const YXNameProviderByID&) = default;
    virtual ~YXNameProviderByID();

    /// The name of an id; false when the provider does not know it.
    virtual bool GetName(unsigned long id, _SS<char>& name) = 0;
    /// The id of a name; false when the provider does not know it.
    virtual bool GetID(const _SS<char>& name, unsigned long& id) = 0;
};

/// A provider of names asked by a text key. Hosts derive from it.
class YXTOOLS_API YXNameProviderByString {
public:
    YXNameProviderByString() = default;
    /// Copies nothing: the interface holds no state.
    YXNameProviderByString(const YXNameProviderByString&) = default;
    /// Copies nothing: the interface holds no state.
    YXNameProviderByString& operator=(const YXNameProviderByString&) = default;
    virtual ~YXNameProviderByString();

    /// The name for a key; false when the provider does not know it.
    virtual bool GetName(const _SS<char>& key, _SS<char>& name) = 0;
    /// Whether the provider knows the key.
    virtual bool HasName(const _SS<char>& key) = 0;
};

/// Stores the provider (null allowed) under the key, replacing an earlier registration; true.
YXTOOLS_PLAIN bool YXNameProvider_RegisterProviderByString(const _SS<char>& name, YXNameProviderByString* pProvider);
/// The provider under the key, null when there is none.
YXTOOLS_PLAIN YXNameProviderByString* YXNameProvider_GetProviderByString(const _SS<char>& name);
/// Stores the provider by id (null allowed) under the key, replacing an earlier registration; true.
YXTOOLS_PLAIN bool YXNameProvider_RegisterProviderByID(const _SS<char>& name, YXNameProviderByID* pProvider);
/// The provider by id under the key, null when there is none.
YXTOOLS_PLAIN YXNameProviderByID* YXNameProvider_GetProviderByID(const _SS<char>& name);

#endif
