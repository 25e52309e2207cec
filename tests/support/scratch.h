// A scratch folder for tests that touch files, the same on both builds.
//
// On POSIX it also makes the test's own prefix: YXTOOLS_PREFIX points into the folder, and the
// drive T: of that prefix is the folder, whose subfolder "root" the tests work in, so that paths
// are written in Windows form ("T:\root\name") as a Windows host writes them. On Windows the
// folder's own path is used.
#ifndef YXTOOLS_TESTS_SUPPORT_SCRATCH_H
#define YXTOOLS_TESTS_SUPPORT_SCRATCH_H

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <system_error>

#if defined(_WIN32)
#include <windows.h>
#endif

namespace scratch {

namespace fs = std::filesystem;

class Folder {
public:
    Folder()
    {
        static std::atomic<int> s_count{0};
        m_base = fs::temp_directory_path() /
                 ("yxtools-test-" + std::to_string(std::random_device{}()) + "-" + std::to_string(++s_count));
        fs::create_directories(m_base / "root");
#if defined(_WIN32)
        m_root = (m_base / "root").string() + "\\";
#else
        const fs::path prefix = m_base / "prefix";
        fs::create_directories(prefix / "dosdevices");
        fs::create_directory_symlink(m_base, prefix / "dosdevices" / "t:");
        setenv("YXTOOLS_PREFIX", prefix.c_str(), 1);
        m_root = "T:\\root\\";
#endif
    }
    ~Folder()
    {
        // Read-only entries must be made writable again before they can go.
        std::error_code error;
        for (auto it = fs::recursive_directory_iterator(m_base, error);
             !error && it != fs::recursive_directory_iterator(); it.increment(error)) {
            fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, error);
        }
        fs::remove_all(m_base, error);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    // The folder in the form the library is given, closed by a `\`: "T:\root\" on POSIX.
    const std::string& Root() const
    {
        return m_root;
    }
    std::string operator[](const std::string& name) const
    {
        return m_root + name;
    }
    // The same place for the standard library.
    fs::path Native(const std::string& name = std::string()) const
    {
        return m_base / "root" / name;
    }

    void Write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(Native(name), std::ios::binary | std::ios::trunc) << bytes;
    }
    std::string Read(const std::string& name) const
    {
        std::ifstream in(Native(name), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    bool Exists(const std::string& name) const
    {
        return fs::exists(Native(name));
    }
    void MakeReadOnly(const std::string& name) const
    {
        fs::permissions(Native(name), fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                        fs::perm_options::remove);
    }

private:
    fs::path m_base;
    std::string m_root;
};

// Whether the platform keeps the read-only rules of Windows, for files or for folders. The
// stand-in keeps both, also for root. Wine run as root lets root write to read-only files, since
// it asks only the POSIX permissions; and Wine keeps no read-only attribute on folders.
inline bool ReadOnlyHolds([[maybe_unused]] const Folder& folder, [[maybe_unused]] bool onFolder)
{
#if defined(_WIN32)
    const std::string name = "readonly-probe";
    onFolder ? void(fs::create_directory(folder.Native(name))) : folder.Write(name, "x");
    folder.MakeReadOnly(name);
    const DWORD attributes = GetFileAttributesA(folder[name].c_str());
    const bool holds = onFolder ? attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0
                                : !std::ofstream(folder.Native(name), std::ios::app).is_open();
    fs::permissions(folder.Native(name), fs::perms::owner_write, fs::perm_options::add);
    fs::remove(folder.Native(name));
    return holds;
#else
    return true;
#endif
}

// Checks at the end of a test that it left no descriptor of this process open (on POSIX, where
// they can be counted).
class DescriptorGuard {
public:
    DescriptorGuard() : m_before(Count()) {}
    ~DescriptorGuard() { EXPECT_EQ(Count(), m_before) << "a call left a descriptor open"; }
    DescriptorGuard(const DescriptorGuard&) = delete;
    DescriptorGuard& operator=(const DescriptorGuard&) = delete;

private:
    static long Count()
    {
        long count = 0;
#if !defined(_WIN32)
        for (auto it = fs::directory_iterator("/proc/self/fd"); it != fs::directory_iterator(); ++it) {
            ++count;
        }
#endif
        return count;
    }
    long m_before;
};

} // namespace scratch

#define YX_SKIP_WITHOUT_READONLY(folder)                                                                               \
    if (!scratch::ReadOnlyHolds(folder, false))                                                                        \
    GTEST_SKIP() << "this platform lets root write to read-only files (Wine run as root)"

#define YX_SKIP_WITHOUT_READONLY_FOLDERS(folder)                                                                       \
    if (!scratch::ReadOnlyHolds(folder, true))                                                                         \
    GTEST_SKIP() << "this platform keeps no read-only attribute on folders (Wine)"

#endif
