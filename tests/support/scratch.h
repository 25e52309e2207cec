// A scratch folder for tests that touch files, the same on both builds.
//
// On POSIX it also makes the test's own prefix: YXTOOLS_PREFIX points into the folder, and the
// drive T: of that prefix is the folder, whose subfolder "root" the tests work in, so that paths are written in Windows
// form
// ("T:\root\name") as a Windows host writes them. On Windows the folder's own path is used.
#ifndef YXTOOLS_TESTS_SUPPORT_SCRATCH_H
#define YXTOOLS_TESTS_SUPPORT_SCRATCH_H

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

#if defined(_WIN32)
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace scratch {

namespace fs = std::filesystem;

class Folder {
public:
    Folder()
    {
        static std::atomic<int> s_count{0};
        const std::string unique = "yxtools-test-" + std::to_string(Pid()) + "-" + std::to_string(++s_count);
        m_base = fs::temp_directory_path() / unique;
        fs::remove_all(m_base);
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
        std::error_code error;
        for (auto it = fs::recursive_directory_iterator(m_base, error);
             !error && it != fs::recursive_directory_iterator(); it.increment(error)) {
            fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, error);
        }
        fs::permissions(m_base / "root", fs::perms::owner_all, fs::perm_options::add, error);
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
        std::ofstream out(Native(name), std::ios::binary | std::ios::trunc);
        out << bytes;
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
    static long Pid()
    {
#if defined(_WIN32)
        return static_cast<long>(GetCurrentProcessId());
#else
        return static_cast<long>(getpid());
#endif
    }

    fs::path m_base;
    std::string m_root;
};

// Whether a folder keeps the read-only attribute. Wine keeps none on folders.
inline bool FolderReadOnlyIsKept(const Folder& folder)
{
#if defined(_WIN32)
    fs::create_directory(folder.Native("readonly-folder-probe"));
    folder.MakeReadOnly("readonly-folder-probe");
    const DWORD attributes = GetFileAttributesA(folder["readonly-folder-probe"].c_str());
    fs::permissions(folder.Native("readonly-folder-probe"), fs::perms::owner_write, fs::perm_options::add);
    fs::remove(folder.Native("readonly-folder-probe"));
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
#else
    return true;
#endif
}

// Open descriptors of this process; -1 where they cannot be counted.
inline long OpenDescriptors()
{
#if defined(_WIN32)
    return -1;
#else
    long count = 0;
    for (auto it = fs::directory_iterator("/proc/self/fd"); it != fs::directory_iterator(); ++it) {
        ++count;
    }
    return count;
#endif
}

// Checks at the end of a test that it left no descriptor open.
class DescriptorGuard {
public:
    DescriptorGuard() : m_before(OpenDescriptors()) {}
    ~DescriptorGuard()
    {
        if (m_before >= 0) {
            EXPECT_EQ(OpenDescriptors(), m_before) << "a call left a descriptor open";
        }
    }
    DescriptorGuard(const DescriptorGuard&) = delete;
    DescriptorGuard& operator=(const DescriptorGuard&) = delete;

private:
    long m_before;
};

// Whether the platform refuses write access to a read-only file. Windows does; Wine does not
// when it runs as root, since it asks only the POSIX permissions, which root passes.
inline bool ReadOnlyIsEnforced(const Folder& folder)
{
#if !defined(_WIN32)
    return true; // the stand-in enforces it for root too
#endif
    folder.Write("readonly-probe", "x");
    folder.MakeReadOnly("readonly-probe");
    const bool refused = !std::ofstream(folder.Native("readonly-probe"), std::ios::app).is_open();
    fs::permissions(folder.Native("readonly-probe"), fs::perms::owner_write, fs::perm_options::add);
    fs::remove(folder.Native("readonly-probe"));
    return refused;
}

} // namespace scratch

#define YX_SKIP_WITHOUT_READONLY(folder)                                                                               \
    if (!scratch::ReadOnlyIsEnforced(folder))                                                                          \
    GTEST_SKIP() << "this platform lets root write to read-only files (Wine run as root)"

#define YX_SKIP_WITHOUT_READONLY_FOLDERS(folder)                                                                       \
    if (!scratch::FolderReadOnlyIsKept(folder))                                                                        \
    GTEST_SKIP() << "this platform keeps no read-only attribute on folders (Wine)"

#endif
