// The registry calls, as Windows (here Wine) answers them: the stand-in must answer alike.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/win32.h"
#include "support/registry_sandbox.h"

namespace {

class RegistryCalls : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, m_sandbox.ContractKey().c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                                  nullptr, &m_base, nullptr),
                  ERROR_SUCCESS);
    }
    void TearDown() override { RegCloseKey(m_base); }

    LONG Create(const std::string& subKey, HKEY* key = nullptr)
    {
        HKEY local = nullptr;
        const LONG result =
            RegCreateKeyExA(m_base, subKey.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &local, nullptr);
        if (result == ERROR_SUCCESS) {
            key != nullptr ? void(*key = local) : void(RegCloseKey(local));
        }
        return result;
    }
    LONG Open(const std::string& subKey, REGSAM access = KEY_ALL_ACCESS, HKEY* key = nullptr)
    {
        HKEY local = nullptr;
        const LONG result = RegOpenKeyExA(m_base, subKey.c_str(), 0, access, &local);
        if (result == ERROR_SUCCESS) {
            key != nullptr ? void(*key = local) : void(RegCloseKey(local));
        }
        return result;
    }
    LONG Set(HKEY key, const char* name, const std::string& bytes, DWORD type = REG_SZ)
    {
        return RegSetValueExA(key, name, 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                              static_cast<DWORD>(bytes.size()));
    }
    DWORD SizeOf(HKEY key, const char* name)
    {
        DWORD size = 0xDEAD;
        EXPECT_EQ(RegQueryValueExA(key, name, nullptr, nullptr, nullptr, &size), ERROR_SUCCESS) << name;
        return size;
    }

    regtest::Sandbox m_sandbox;
    HKEY m_base = nullptr;
};

TEST_F(RegistryCalls, SubkeyPaths)
{
    ASSERT_EQ(Create("a\\b"), ERROR_SUCCESS);
    const struct {
        const char* subKey;
        LONG open;
    } rows[] = {
        {"a\\b", ERROR_SUCCESS},
        {"A\\B", ERROR_SUCCESS},
        {"a\\b\\", ERROR_SUCCESS},
        {"a\\\\b", ERROR_SUCCESS},
        {"a\\b\\\\", ERROR_SUCCESS},
        {"", ERROR_SUCCESS},
        {"\\a", ERROR_BAD_PATHNAME},
        {"\\", ERROR_BAD_PATHNAME},
        {"zz", ERROR_FILE_NOT_FOUND},
        {"zz\\", ERROR_FILE_NOT_FOUND},
        {"a\\zz\\b", ERROR_FILE_NOT_FOUND},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Open(row.subKey), row.open) << row.subKey;
    }
    EXPECT_EQ(Create("\\a"), static_cast<LONG>(ERROR_BAD_PATHNAME));
    // A subkey of up to 260 characters converts; one longer does not.
    const std::string name255(255, 'k');
    EXPECT_EQ(Create(name255), ERROR_SUCCESS);
    EXPECT_EQ(Open(std::string(4, 'p') + "\\" + name255), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Create(std::string(4, 'p') + "\\" + name255), ERROR_SUCCESS);
    EXPECT_EQ(Create(std::string(5, 'p') + "\\" + name255), static_cast<LONG>(ERROR_MORE_DATA));
    EXPECT_EQ(Open(std::string(5, 'p') + "\\" + name255), static_cast<LONG>(ERROR_MORE_DATA));

    // A create that finds the key opens it, and says so.
    HKEY key = nullptr;
    DWORD disposition = 0;
    ASSERT_EQ(RegCreateKeyExA(m_base, "new", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, &disposition), 0);
    EXPECT_EQ(disposition, REG_CREATED_NEW_KEY);
    RegCloseKey(key);
    ASSERT_EQ(RegCreateKeyExA(m_base, "NEW", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, &disposition), 0);
    EXPECT_EQ(disposition, REG_OPENED_EXISTING_KEY);
    RegCloseKey(key);

    // A predefined key opened anew is that key.
    ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "", 0, KEY_ALL_ACCESS, &key), ERROR_SUCCESS);
    EXPECT_EQ(key, HKEY_CURRENT_USER);
    EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), ERROR_SUCCESS);
}

TEST_F(RegistryCalls, QueriesOfSizeAndData)
{
    // Text types get a zero when their bytes do not end in one; other types are kept as given.
    const struct {
        const char* name;
        std::string bytes;
        DWORD type;
        std::string stored;
    } rows[] = {
        {"plain", "abc", REG_SZ, std::string("abc\0", 4)},
        {"ended", std::string("ab\0", 3), REG_SZ, std::string("ab\0", 3)},
        {"two", std::string("ab\0\0", 4), REG_SZ, std::string("ab\0\0", 4)},
        {"inner", std::string("a\0b", 3), REG_SZ, std::string("a\0b\0", 4)},
        {"multi", std::string("a\0b", 3), REG_MULTI_SZ, std::string("a\0b\0", 4)},
        {"empty", "", REG_SZ, ""},
        {"binary", "\x80\x81\xff", REG_BINARY, "\x80\x81\xff"},
        {"odd", "xyz", 77, "xyz"},
        {"", "default", REG_SZ, std::string("default\0", 8)},
    };
    for (const auto& row : rows) {
        ASSERT_EQ(Set(m_base, row.name, row.bytes, row.type), ERROR_SUCCESS) << row.name;
        DWORD type = 0;
        DWORD size = 0;
        ASSERT_EQ(RegQueryValueExA(m_base, row.name, nullptr, &type, nullptr, &size), ERROR_SUCCESS) << row.name;
        EXPECT_EQ(type, row.type) << row.name;
        ASSERT_EQ(size, row.stored.size()) << row.name;
        std::string data(size + 2, 'X');
        DWORD room = size + 2;
        ASSERT_EQ(RegQueryValueExA(m_base, row.name, nullptr, &type, reinterpret_cast<BYTE*>(&data[0]), &room), 0);
        EXPECT_EQ(room, size) << row.name;
        EXPECT_EQ(data, row.stored + "XX") << row.name;
    }
    // A buffer one byte short: ERROR_MORE_DATA, the size, and the buffer untouched.
    char small[8] = "XXXXXXX";
    DWORD room = 3;
    EXPECT_EQ(RegQueryValueExA(m_base, "plain", nullptr, nullptr, reinterpret_cast<BYTE*>(small), &room),
              static_cast<LONG>(ERROR_MORE_DATA));
    EXPECT_EQ(room, 4U);
    EXPECT_STREQ(small, "XXXXXXX");
    // A null name is the default value; names compare without regard to case.
    EXPECT_EQ(SizeOf(m_base, nullptr), 8U);
    EXPECT_EQ(SizeOf(m_base, "PLAIN"), 4U);
    EXPECT_EQ(RegQueryValueExA(m_base, "Plain", nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);

    DWORD size = 0;
    DWORD reserved = 0;
    EXPECT_EQ(RegQueryValueExA(m_base, "missing", nullptr, nullptr, nullptr, &size), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegQueryValueExA(m_base, "plain", nullptr, nullptr, reinterpret_cast<BYTE*>(small), nullptr),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegQueryValueExA(m_base, "plain", &reserved, nullptr, nullptr, &size), ERROR_INVALID_PARAMETER);

    // Setting a value again keeps the case of its name and replaces type and bytes.
    ASSERT_EQ(Set(m_base, "PLAIN", std::string("\x05\0\0\0", 4), REG_DWORD), ERROR_SUCCESS);
    DWORD type = 0;
    EXPECT_EQ(RegQueryValueExA(m_base, "plain", nullptr, &type, nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(type, REG_DWORD);
    EXPECT_EQ(size, 4U);

    // Value names of up to 16383 bytes.
    const std::string longest(16383, 'v');
    const std::string tooLong(16384, 'v');
    EXPECT_EQ(Set(m_base, longest.c_str(), "x"), ERROR_SUCCESS);
    EXPECT_EQ(SizeOf(m_base, longest.c_str()), 2U);
    EXPECT_EQ(Set(m_base, tooLong.c_str(), "x"), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegQueryValueExA(m_base, tooLong.c_str(), nullptr, nullptr, nullptr, &size), ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryCalls, HandlesAccessAndDeletedKeys)
{
    HKEY readOnly = nullptr;
    HKEY writeOnly = nullptr;
    ASSERT_EQ(Create("k"), ERROR_SUCCESS);
    ASSERT_EQ(Open("k", KEY_READ, &readOnly), ERROR_SUCCESS);
    ASSERT_EQ(Open("k", KEY_SET_VALUE, &writeOnly), ERROR_SUCCESS);
    EXPECT_EQ(Set(readOnly, "v", "x"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(Set(writeOnly, "v", "x"), ERROR_SUCCESS);
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExA(writeOnly, "v", nullptr, nullptr, nullptr, &size), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegQueryValueExA(readOnly, "v", nullptr, nullptr, nullptr, &size), ERROR_SUCCESS);
    // The rights of a handle do not limit what is opened or created below it.
    HKEY below = nullptr;
    EXPECT_EQ(RegCreateKeyExA(readOnly, "sub", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &below, nullptr), 0);
    RegCloseKey(below);
    RegCloseKey(writeOnly);

    EXPECT_EQ(RegCloseKey(readOnly), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(readOnly), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegQueryValueExA(readOnly, "v", nullptr, nullptr, nullptr, &size), ERROR_INVALID_HANDLE);

    // A key with subkeys is not deleted; one without goes with its values, and its open handles
    // then answer ERROR_KEY_DELETED.
    EXPECT_EQ(RegDeleteKeyA(m_base, "k"), ERROR_ACCESS_DENIED);
    HKEY doomed = nullptr;
    ASSERT_EQ(Create("doomed", &doomed), ERROR_SUCCESS);
    ASSERT_EQ(Set(doomed, "v", "x"), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteKeyA(m_base, "doomed"), ERROR_SUCCESS);
    EXPECT_EQ(Set(doomed, "v", "y"), static_cast<LONG>(ERROR_KEY_DELETED));
    EXPECT_EQ(RegQueryValueExA(doomed, "v", nullptr, nullptr, nullptr, &size), static_cast<LONG>(ERROR_KEY_DELETED));
    RegCloseKey(doomed);
    EXPECT_EQ(Open("doomed"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegDeleteKeyA(m_base, "doomed"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegDeleteValueA(m_base, "none"), ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryCalls, EnumerationOrder)
{
    // Subkeys and values in the order of their names; a value set again keeps the case of its name.
    for (const char* name : {"b", "C", "a"}) {
        ASSERT_EQ(Create(name), ERROR_SUCCESS);
        ASSERT_EQ(Set(m_base, name, "1"), ERROR_SUCCESS);
    }
    ASSERT_EQ(Set(m_base, "B", "22"), ERROR_SUCCESS);
    std::vector<std::string> keys;
    char name[300];
    DWORD length = sizeof(name);
    for (DWORD i = 0; RegEnumKeyExA(m_base, i, name, &length, nullptr, nullptr, nullptr, nullptr) == 0; ++i) {
        keys.emplace_back(name, length);
        length = sizeof(name);
    }
    EXPECT_EQ(keys, (std::vector<std::string>{"a", "b", "C"}));
    EXPECT_EQ(RegEnumKeyExA(m_base, 3, name, &length, nullptr, nullptr, nullptr, nullptr),
              static_cast<LONG>(ERROR_NO_MORE_ITEMS));

    std::vector<std::string> values;
    BYTE data[16];
    DWORD size = sizeof(data);
    length = sizeof(name);
    for (DWORD i = 0; RegEnumValueA(m_base, i, name, &length, nullptr, nullptr, data, &size) == 0; ++i) {
        values.push_back(std::string(name, length) + "=" + std::to_string(size));
        length = sizeof(name);
        size = sizeof(data);
    }
    EXPECT_EQ(values, (std::vector<std::string>{"a=2", "b=3", "C=2"}));
}

} // namespace
