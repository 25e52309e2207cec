// A registry of a test's own.
//
// On POSIX the test gets its own prefix, a temporary folder (YXTOOLS_PREFIX), and so its own
// registry database, which goes with the folder. On Windows the registry is the one of the Wine
// prefix of the test run: each sandbox works in sections below a tag of its own and deletes them,
// under every root, when it goes.
#ifndef YXTOOLS_TESTS_SUPPORT_REGISTRY_SANDBOX_H
#define YXTOOLS_TESTS_SUPPORT_REGISTRY_SANDBOX_H

#include <atomic>
#include <filesystem>
#include <random>
#include <string>
#include <system_error>

#include "support/child.h"

#if defined(_WIN32)
#include <windows.h>
#endif

namespace regtest {

namespace fs = std::filesystem;

constexpr char kRoot[] = "Software\\Ombrel\\VELT QUARRO\\";

class Sandbox {
public:
    Sandbox()
    {
        static std::atomic<int> s_count{0};
        m_tag = "yxt" + std::to_string(std::random_device{}()) + "-" + std::to_string(++s_count);
#if !defined(_WIN32)
        m_base = fs::temp_directory_path() / ("yxtools-registry-" + m_tag);
        fs::create_directories(m_base);
        // The prefix itself is left to the first write to make.
        child::SetEnv("YXTOOLS_PREFIX", (m_base / "prefix").string());
#endif
    }
    ~Sandbox()
    {
#if defined(_WIN32)
        RegDeleteTreeA(HKEY_CURRENT_USER, ContractKey().c_str());
        for (const std::string& key : {std::string(kRoot) + m_tag, std::string(kRoot) + "Trace"}) {
            RegDeleteTreeA(HKEY_CURRENT_USER, key.c_str());
            RegDeleteTreeA(HKEY_LOCAL_MACHINE, key.c_str());
            RegDeleteTreeA(HKEY_USERS, (".DEFAULT\\" + key).c_str());
        }
#else
        std::error_code error;
        fs::permissions(m_base, fs::perms::owner_all, fs::perm_options::add, error);
        fs::remove_all(m_base, error);
#endif
    }
    Sandbox(const Sandbox&) = delete;
    Sandbox& operator=(const Sandbox&) = delete;

    // A section of this sandbox.
    std::string Section(const std::string& name) const
    {
        return m_tag + "\\" + name;
    }
    // Its key below the root of a hive.
    std::string KeyOf(const std::string& name) const
    {
        return std::string(kRoot) + Section(name);
    }

    // A key of this sandbox outside the product's, for the registry calls themselves.
    std::string ContractKey() const
    {
        return "Software\\YXToolsContract\\" + m_tag;
    }

#if !defined(_WIN32)
    fs::path Base() const
    {
        return m_base;
    }
    fs::path Prefix() const
    {
        return m_base / "prefix";
    }
    fs::path Database() const
    {
        return Prefix() / "registry.db";
    }
#endif

private:
    std::string m_tag;
#if !defined(_WIN32)
    fs::path m_base;
#endif
};

} // namespace regtest

#endif
