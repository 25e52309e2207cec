#include <unordered_map>
#include <utility>

#include "platform/posix/sync/kernel_objects.h"

namespace yx::platform::sync {
namespace {

// One handle: a token that refers to its object. Duplicates are tokens of their own.
struct HandleEntry {
    std::shared_ptr<KernelObject> object;
};

std::mutex g_mutex;
std::unordered_map<const void*, std::unique_ptr<HandleEntry>> g_handles;

} // namespace

std::shared_ptr<KernelObject> Lookup(HANDLE handle)
{
    {
        const std::lock_guard<std::mutex> guard(g_mutex);
        const auto it = g_handles.find(handle);
        if (it != g_handles.end()) {
            return it->second->object;
        }
    }
    SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
}

HANDLE AddHandle(std::shared_ptr<KernelObject> object)
{
    auto entry = std::make_unique<HandleEntry>();
    entry->object = std::move(object);
    HANDLE handle = entry.get();
    const std::lock_guard<std::mutex> guard(g_mutex);
    g_handles.emplace(handle, std::move(entry));
    return handle;
}

bool CloseKernelHandle(HANDLE handle)
{
    std::unique_ptr<HandleEntry> entry;
    {
        const std::lock_guard<std::mutex> guard(g_mutex);
        const auto it = g_handles.find(handle);
        if (it == g_handles.end()) {
            return false;
        }
        entry = std::move(it->second);
        g_handles.erase(it);
    }
    // The object may go with its last handle: outside the table's lock.
    entry.reset();
    return true;
}

std::size_t LiveHandles()
{
    const std::lock_guard<std::mutex> guard(g_mutex);
    return g_handles.size();
}

} // namespace yx::platform::sync

using yx::platform::sync::Lookup;

DWORD WaitForSingleObject(HANDLE hHandle, DWORD dwMilliseconds)
{
    return yx::platform::sync::Uncancellable([&]() -> DWORD {
        const auto object = Lookup(hHandle);
        return object == nullptr ? WAIT_FAILED : object->Wait(dwMilliseconds);
    });
}

HANDLE GetCurrentProcess()
{
    return reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(-1)); // NOLINT(performance-no-int-to-ptr)
}

BOOL DuplicateHandle(HANDLE hSourceProcessHandle, HANDLE hSourceHandle, HANDLE hTargetProcessHandle,
                     LPHANDLE lpTargetHandle, DWORD dwDesiredAccess, BOOL bInheritHandle, DWORD dwOptions)
{
    return yx::platform::sync::Uncancellable([&]() -> BOOL {
        if (hSourceProcessHandle != GetCurrentProcess() || hTargetProcessHandle != GetCurrentProcess()) {
            SetLastError(ERROR_INVALID_HANDLE);
            return FALSE;
        }
        auto object = Lookup(hSourceHandle);
        if (object == nullptr) {
            return FALSE;
        }
        if ((dwOptions & DUPLICATE_CLOSE_SOURCE) != 0) {
            yx::platform::sync::CloseKernelHandle(hSourceHandle);
        }
        if (lpTargetHandle == nullptr) {
            return TRUE;
        }
        *lpTargetHandle = yx::platform::sync::AddHandle(std::move(object));
        return TRUE;
    });
}
