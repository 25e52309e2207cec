// The live handles of one kind of object, so that a stale or foreign handle is refused with
// ERROR_INVALID_HANDLE rather than trusted. A handle is the object's address.
#ifndef YXTOOLS_PLATFORM_POSIX_HANDLE_TABLE_H
#define YXTOOLS_PLATFORM_POSIX_HANDLE_TABLE_H

#include <mutex>
#include <unordered_set>

namespace yx::platform {

template <class Object>
class HandleTable {
public:
    // Takes ownership of a new object and gives its handle.
    void* Add(Object* object)
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_live.insert(object);
        return object;
    }

    // The object of a live handle, or null.
    Object* Find(const void* handle) const
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        const auto it = m_live.find(static_cast<const Object*>(handle));
        return it == m_live.end() ? nullptr : const_cast<Object*>(*it);
    }

    // Ends a handle and hands its object back to the caller to release, or null when the handle
    // is not live.
    Object* Take(const void* handle)
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        const auto it = m_live.find(static_cast<const Object*>(handle));
        if (it == m_live.end()) {
            return nullptr;
        }
        auto* object = const_cast<Object*>(*it);
        m_live.erase(it);
        return object;
    }

private:
    mutable std::mutex m_mutex;
    std::unordered_set<const Object*> m_live;
};

} // namespace yx::platform

#endif
