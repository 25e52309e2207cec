// The registry of the POSIX stand-in, over SQLite (see registry_posix.h).
//
// Layout (user_version 1): table keys (id, parent, name) with the three hives as rows 1 to 3 under
// parent 0, and table vals (id, key, name, type, data). Names use SQLite's NOCASE collation, which
// folds the ASCII letters. Ids are never reused (AUTOINCREMENT), so that a handle to a deleted key
// cannot reach a later key that took its place.
//
// Each process keeps one connection to the database of the current prefix, behind one lock, and
// every change is a single statement or one explicit transaction. The journal is a WAL with
// synchronous=NORMAL: a change whose call returned survives the end of its process, however
// abrupt; only a crash of the whole system may take back the last changes, never the database.
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <string>
#include <unordered_set>
#include <vector>

#include "platform/posix/prefix.h"
#include "platform/win32.h"

namespace {

constexpr int kLayoutVersion = 1;
// How long a writer waits for another writer before it gives up with ERROR_BUSY.
constexpr int kBusyTimeoutMs = 3000;
constexpr std::size_t kMaxKeyName = 255;
constexpr std::size_t kMaxSubKeyCharacters = 260;
constexpr std::size_t kMaxValueName = 16383;

struct Key {
    std::string dbPath;
    sqlite3_int64 id;
    REGSAM access;
};

// The process's connection, to the database of one path.
struct Connection {
    std::string path;
    sqlite3* db = nullptr;
    pid_t pid = 0;
    bool ready = false; // the layout is in place
    ~Connection() { Close(); }
    void Close()
    {
        if (db != nullptr) {
            sqlite3_close_v2(db);
        }
        db = nullptr;
        path.clear();
        ready = false;
    }
};
// The stand-in's state. It is made at its first use, which may come from another static object's
// constructor (the trace manager reads the registry at load), and so lives until after that
// object's destruction.
struct State {
    std::mutex lock;
    std::unordered_set<Key*> keys;
    Connection connection;
};
State& TheState()
{
    static State state;
    return state;
}

std::string DatabasePath()
{
    return yxposix::Prefix() + "/registry.db";
}

LONG ErrorOf(int rc, bool writing)
{
    switch (rc & 0xFF) {
    case SQLITE_OK:
    case SQLITE_DONE:
    case SQLITE_ROW:
        return ERROR_SUCCESS;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return ERROR_BUSY;
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
        return ERROR_BADDB;
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_AUTH:
        return ERROR_ACCESS_DENIED;
    case SQLITE_FULL:
        return ERROR_DISK_FULL;
    case SQLITE_NOMEM:
        return ERROR_NOT_ENOUGH_MEMORY;
    default:
        return writing ? ERROR_CANTWRITE : ERROR_CANTREAD;
    }
}

// One prepared statement, finalised when it goes.
class Statement {
public:
    Statement(sqlite3* db, const char* sql) { m_rc = sqlite3_prepare_v2(db, sql, -1, &m_stmt, nullptr); }
    ~Statement() { sqlite3_finalize(m_stmt); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    Statement& Bind(int index, sqlite3_int64 value)
    {
        Keep(sqlite3_bind_int64(m_stmt, index, value));
        return *this;
    }
    Statement& Bind(int index, const std::string& text)
    {
        Keep(sqlite3_bind_text(m_stmt, index, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT));
        return *this;
    }
    Statement& BindBlob(int index, const void* data, DWORD size)
    {
        Keep(size == 0 ? sqlite3_bind_zeroblob(m_stmt, index, 0)
                       : sqlite3_bind_blob(m_stmt, index, data, static_cast<int>(size), SQLITE_TRANSIENT));
        return *this;
    }
    // SQLITE_ROW, SQLITE_DONE or the error.
    int Step()
    {
        if (m_rc != SQLITE_OK) {
            return m_rc;
        }
        return sqlite3_step(m_stmt);
    }
    sqlite3_stmt* operator*() const { return m_stmt; }

private:
    void Keep(int rc)
    {
        if (m_rc == SQLITE_OK) {
            m_rc = rc;
        }
    }
    sqlite3_stmt* m_stmt = nullptr;
    int m_rc;
};

int Exec(sqlite3* db, const char* sql)
{
    return sqlite3_exec(db, sql, nullptr, nullptr, nullptr);
}

// Reads user_version: 0 for a new, empty database.
int LayoutVersion(sqlite3* db, int* version)
{
    Statement query(db, "PRAGMA user_version");
    const int rc = query.Step();
    if (rc == SQLITE_ROW) {
        *version = sqlite3_column_int(*query, 0);
        return SQLITE_OK;
    }
    return rc;
}

int CreateLayout(sqlite3* db)
{
    // The journal mode stays with the file; changing it needs the database to itself, so the
    // busy handler waits for that like for any writer.
    int rc = Exec(db, "PRAGMA journal_mode=WAL");
    if (rc != SQLITE_OK) {
        return rc;
    }
    rc = Exec(db, "BEGIN IMMEDIATE");
    if (rc != SQLITE_OK) {
        return rc;
    }
    int version = 0;
    rc = LayoutVersion(db, &version);
    if (rc == SQLITE_OK && version == 0) {
        rc = Exec(db, "CREATE TABLE keys(id INTEGER PRIMARY KEY AUTOINCREMENT, parent INTEGER NOT NULL,"
                      " name TEXT NOT NULL COLLATE NOCASE, UNIQUE(parent, name));"
                      "CREATE TABLE vals(id INTEGER PRIMARY KEY AUTOINCREMENT, key INTEGER NOT NULL,"
                      " name TEXT NOT NULL COLLATE NOCASE, type INTEGER NOT NULL, data BLOB NOT NULL,"
                      " UNIQUE(key, name));"
                      "INSERT INTO keys(id, parent, name) VALUES (1, 0, 'HKEY_CURRENT_USER'),"
                      " (2, 0, 'HKEY_LOCAL_MACHINE'), (3, 0, 'HKEY_USERS');"
                      "PRAGMA user_version=1");
    }
    if (rc == SQLITE_OK) {
        rc = Exec(db, "COMMIT");
    }
    if (rc != SQLITE_OK) {
        Exec(db, "ROLLBACK");
    }
    return rc;
}

bool MakeFolders(const std::string& folder)
{
    std::string path;
    std::size_t at = 0;
    while (at != std::string::npos) {
        at = folder.find('/', at + 1);
        path = folder.substr(0, at);
        if (!path.empty() && mkdir(path.c_str(), 0777) != 0 && errno != EEXIST) {
            return false;
        }
    }
    return true;
}

// The connection to the database at `path`, with its layout, or null and the error. Without
// `create` a missing database (or one without its layout yet) gives ERROR_FILE_NOT_FOUND and
// nothing is made, so that reading never leaves a file behind.
sqlite3* Connect(const std::string& path, bool create, LONG* error)
{
    Connection& c = TheState().connection;
    if (c.db != nullptr && c.pid != getpid()) {
        // A child of fork must not use its parent's connection, nor close it.
        c.db = nullptr;
        c.Close();
    }
    if (c.db != nullptr && c.path != path) {
        c.Close();
    }
    if (c.db == nullptr) {
        struct stat st {};
        if (stat(path.c_str(), &st) != 0) {
            if (!create) {
                *error = ERROR_FILE_NOT_FOUND;
                return nullptr;
            }
            if (!MakeFolders(path.substr(0, path.rfind('/')))) {
                *error =
                    errno == EACCES || errno == EROFS || errno == EPERM ? ERROR_ACCESS_DENIED : ERROR_PATH_NOT_FOUND;
                return nullptr;
            }
        }
        const int flags = SQLITE_OPEN_READWRITE | (create ? SQLITE_OPEN_CREATE : 0) | SQLITE_OPEN_FULLMUTEX;
        sqlite3* db = nullptr;
        const int rc = sqlite3_open_v2(path.c_str(), &db, flags, nullptr);
        if (rc != SQLITE_OK) {
            sqlite3_close_v2(db);
            *error =
                rc == SQLITE_CANTOPEN ? (create ? ERROR_ACCESS_DENIED : ERROR_FILE_NOT_FOUND) : ErrorOf(rc, create);
            return nullptr;
        }
        sqlite3_busy_timeout(db, kBusyTimeoutMs);
        c.db = db;
        c.path = path;
        c.pid = getpid();
        c.ready = false;
    }
    if (!c.ready) {
        int version = 0;
        int rc = LayoutVersion(c.db, &version);
        if (rc == SQLITE_OK && version == 0 && create) {
            rc = CreateLayout(c.db);
            version = kLayoutVersion;
        }
        if (rc != SQLITE_OK) {
            *error = ErrorOf(rc, create);
            c.Close();
            return nullptr;
        }
        if (version == 0) {
            *error = ERROR_FILE_NOT_FOUND;
            return nullptr;
        }
        if (version != kLayoutVersion) {
            // A database of another layout is left as it is.
            *error = ERROR_BADDB;
            c.Close();
            return nullptr;
        }
        Exec(c.db, "PRAGMA synchronous=NORMAL");
        c.ready = true;
    }
    return c.db;
}

bool IsPredefined(HKEY key)
{
    const auto value = reinterpret_cast<std::uintptr_t>(key);
    return value >= 0x80000001U && value <= 0x80000003U;
}

// The database and key a handle stands for; false for a handle that is no open key.
bool Resolve(HKEY hKey, std::string* dbPath, sqlite3_int64* id, REGSAM* access)
{
    if (IsPredefined(hKey)) {
        *dbPath = DatabasePath();
        *id = static_cast<sqlite3_int64>(reinterpret_cast<std::uintptr_t>(hKey) - 0x80000000U);
        *access = KEY_ALL_ACCESS;
        return true;
    }
    auto* key = reinterpret_cast<Key*>(hKey);
    if (TheState().keys.count(key) == 0) {
        return false;
    }
    *dbPath = key->dbPath;
    *id = key->id;
    *access = key->access;
    return true;
}

bool KeyExists(sqlite3* db, sqlite3_int64 id, LONG* error)
{
    Statement query(db, "SELECT 1 FROM keys WHERE id = ?1");
    const int rc = query.Bind(1, id).Step();
    if (rc == SQLITE_ROW) {
        return true;
    }
    *error = rc == SQLITE_DONE ? ERROR_KEY_DELETED : ErrorOf(rc, false);
    return false;
}

// The names of a subkey path; a `\` at the front is refused, empty names are skipped.
LONG SplitSubKey(LPCSTR subKey, std::vector<std::string>* names)
{
    if (subKey == nullptr) {
        return ERROR_SUCCESS;
    }
    // The ANSI calls convert the subkey into a buffer of 260 characters (and a zero).
    std::size_t characters = 0;
    for (const char* p = subKey; *p != '\0'; ++p, ++characters) {
        if (IsDBCSLeadByte(static_cast<BYTE>(*p)) != FALSE && p[1] != '\0') {
            ++p;
        }
    }
    if (characters > kMaxSubKeyCharacters) {
        return ERROR_MORE_DATA;
    }
    if (subKey[0] == '\\') {
        return ERROR_BAD_PATHNAME;
    }
    const char* start = subKey;
    for (const char* p = subKey;; ++p) {
        if (*p == '\\' || *p == '\0') {
            const auto length = static_cast<std::size_t>(p - start);
            if (length > kMaxKeyName) {
                return ERROR_INVALID_PARAMETER;
            }
            if (length > 0) {
                names->emplace_back(start, length);
            }
            if (*p == '\0') {
                return ERROR_SUCCESS;
            }
            start = p + 1;
        }
    }
}

HKEY NewHandle(const std::string& dbPath, sqlite3_int64 id, REGSAM access)
{
    auto* key = new Key{dbPath, id, access};
    TheState().keys.insert(key);
    return reinterpret_cast<HKEY>(key);
}

// Walks (and with `create` makes) the keys of `names` below `start`.
LONG Walk(sqlite3* db, sqlite3_int64 start, const std::vector<std::string>& names, bool create, sqlite3_int64* id,
          bool* created)
{
    sqlite3_int64 current = start;
    for (const std::string& name : names) {
        Statement find(db, "SELECT id FROM keys WHERE parent = ?1 AND name = ?2");
        int rc = find.Bind(1, current).Bind(2, name).Step();
        if (rc == SQLITE_ROW) {
            current = sqlite3_column_int64(*find, 0);
            continue;
        }
        if (rc != SQLITE_DONE) {
            return ErrorOf(rc, create);
        }
        if (!create) {
            return ERROR_FILE_NOT_FOUND;
        }
        Statement insert(db, "INSERT INTO keys(parent, name) VALUES (?1, ?2)");
        rc = insert.Bind(1, current).Bind(2, name).Step();
        if (rc != SQLITE_DONE) {
            return ErrorOf(rc, true);
        }
        current = sqlite3_last_insert_rowid(db);
        *created = true;
    }
    *id = current;
    return ERROR_SUCCESS;
}

LONG OpenOrCreate(HKEY hKey, LPCSTR lpSubKey, REGSAM samDesired, PHKEY phkResult, bool create, LPDWORD disposition)
{
    if (phkResult == nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    std::vector<std::string> names;
    const LONG split = SplitSubKey(lpSubKey, &names);
    std::lock_guard<std::mutex> guard(TheState().lock);
    std::string dbPath;
    sqlite3_int64 start = 0;
    REGSAM access = 0;
    if (!Resolve(hKey, &dbPath, &start, &access)) {
        return ERROR_INVALID_HANDLE;
    }
    if (split != ERROR_SUCCESS) {
        return split;
    }
    if (names.empty() && IsPredefined(hKey)) {
        // A predefined key opened anew is that key; no database is needed for it.
        *phkResult = hKey;
        if (disposition != nullptr) {
            *disposition = REG_OPENED_EXISTING_KEY;
        }
        return ERROR_SUCCESS;
    }
    LONG error = ERROR_SUCCESS;
    sqlite3* db = Connect(dbPath, create, &error);
    if (db == nullptr) {
        return error;
    }
    const bool transaction = create && !names.empty();
    if (transaction) {
        const int rc = Exec(db, "BEGIN IMMEDIATE");
        if (rc != SQLITE_OK) {
            return ErrorOf(rc, true);
        }
    }
    sqlite3_int64 id = 0;
    bool created = false;
    LONG result = KeyExists(db, start, &error) ? Walk(db, start, names, create, &id, &created) : error;
    if (transaction) {
        const int rc = Exec(db, result == ERROR_SUCCESS ? "COMMIT" : "ROLLBACK");
        if (result == ERROR_SUCCESS && rc != SQLITE_OK) {
            Exec(db, "ROLLBACK");
            result = ErrorOf(rc, true);
        }
    }
    if (result != ERROR_SUCCESS) {
        return result;
    }
    *phkResult = NewHandle(dbPath, id, samDesired);
    if (disposition != nullptr) {
        *disposition = created ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
    }
    return ERROR_SUCCESS;
}

bool IsTextType(DWORD type)
{
    return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

// Copies `size` bytes to a caller's buffer, or tells the size it needs.
LONG GiveData(const void* data, DWORD size, LPBYTE lpData, LPDWORD lpcbData)
{
    LONG result = ERROR_SUCCESS;
    if (lpData != nullptr) {
        if (*lpcbData < size) {
            result = ERROR_MORE_DATA;
        } else if (size > 0) {
            std::memcpy(lpData, data, size);
        }
    }
    if (lpcbData != nullptr) {
        *lpcbData = size;
    }
    return result;
}

// Runs `work` on the open database of a handle that holds `needed`.
template <class Work>
LONG OnKey(HKEY hKey, REGSAM needed, bool create, Work work)
{
    std::lock_guard<std::mutex> guard(TheState().lock);
    std::string dbPath;
    sqlite3_int64 id = 0;
    REGSAM access = 0;
    if (!Resolve(hKey, &dbPath, &id, &access)) {
        return ERROR_INVALID_HANDLE;
    }
    if ((access & needed) != needed) {
        return ERROR_ACCESS_DENIED;
    }
    LONG error = ERROR_SUCCESS;
    sqlite3* db = Connect(dbPath, create, &error);
    if (db == nullptr) {
        // No database yet: a hive is there and empty.
        return error == ERROR_FILE_NOT_FOUND && IsPredefined(hKey) && !create ? ERROR_FILE_NOT_FOUND : error;
    }
    return work(db, id);
}

} // namespace

LSTATUS RegOpenKeyExA(HKEY hKey, LPCSTR lpSubKey, DWORD /*ulOptions*/, REGSAM samDesired, PHKEY phkResult)
{
    return OpenOrCreate(hKey, lpSubKey, samDesired, phkResult, false, nullptr);
}

LSTATUS RegCreateKeyExA(HKEY hKey, LPCSTR lpSubKey, DWORD /*Reserved*/, LPSTR /*lpClass*/, DWORD /*dwOptions*/,
                        REGSAM samDesired, LPSECURITY_ATTRIBUTES /*lpSecurityAttributes*/, PHKEY phkResult,
                        LPDWORD lpdwDisposition)
{
    return OpenOrCreate(hKey, lpSubKey, samDesired, phkResult, true, lpdwDisposition);
}

LSTATUS RegCloseKey(HKEY hKey)
{
    if (IsPredefined(hKey)) {
        return ERROR_SUCCESS;
    }
    std::lock_guard<std::mutex> guard(TheState().lock);
    auto* key = reinterpret_cast<Key*>(hKey);
    if (TheState().keys.erase(key) == 0) {
        return ERROR_INVALID_HANDLE;
    }
    delete key;
    return ERROR_SUCCESS;
}

namespace {
std::atomic<void (*)()> g_queryHook{nullptr};
} // namespace

void yxposix::SetRegistryQueryHook(void (*hook)())
{
    g_queryHook = hook;
}

LSTATUS RegQueryValueExA(HKEY hKey, LPCSTR lpValueName, LPDWORD lpReserved, LPDWORD lpType, LPBYTE lpData,
                         LPDWORD lpcbData)
{
    if (void (*hook)() = g_queryHook.load()) {
        hook();
    }
    if (lpReserved != nullptr || (lpData != nullptr && lpcbData == nullptr)) {
        return ERROR_INVALID_PARAMETER;
    }
    const std::string name = lpValueName != nullptr ? lpValueName : "";
    return OnKey(hKey, KEY_QUERY_VALUE, false, [&](sqlite3* db, sqlite3_int64 id) -> LONG {
        LONG error = ERROR_SUCCESS;
        if (!KeyExists(db, id, &error)) {
            return error;
        }
        if (name.size() > kMaxValueName) {
            return ERROR_FILE_NOT_FOUND;
        }
        Statement query(db, "SELECT type, data FROM vals WHERE key = ?1 AND name = ?2");
        const int rc = query.Bind(1, id).Bind(2, name).Step();
        if (rc != SQLITE_ROW) {
            return rc == SQLITE_DONE ? ERROR_FILE_NOT_FOUND : ErrorOf(rc, false);
        }
        if (lpType != nullptr) {
            *lpType = static_cast<DWORD>(sqlite3_column_int64(*query, 0));
        }
        const void* data = sqlite3_column_blob(*query, 1);
        const auto size = static_cast<DWORD>(sqlite3_column_bytes(*query, 1));
        return GiveData(data, size, lpData, lpcbData);
    });
}

LSTATUS RegSetValueExA(HKEY hKey, LPCSTR lpValueName, DWORD /*Reserved*/, DWORD dwType, const BYTE* lpData,
                       DWORD cbData)
{
    const std::string name = lpValueName != nullptr ? lpValueName : "";
    if (name.size() > kMaxValueName) {
        return ERROR_INVALID_PARAMETER;
    }
    if (lpData == nullptr && cbData > 0) {
        return ERROR_NOACCESS;
    }
    std::string bytes(reinterpret_cast<const char*>(lpData), lpData != nullptr ? cbData : 0);
    if (IsTextType(dwType) && !bytes.empty() && bytes.back() != '\0') {
        bytes.push_back('\0');
    }
    return OnKey(hKey, KEY_SET_VALUE, true, [&](sqlite3* db, sqlite3_int64 id) -> LONG {
        // One statement, so one transaction; it inserts nothing when the key has gone.
        Statement upsert(db, "INSERT INTO vals(key, name, type, data) SELECT ?1, ?2, ?3, ?4"
                             " WHERE EXISTS (SELECT 1 FROM keys WHERE id = ?1)"
                             " ON CONFLICT(key, name) DO UPDATE SET type = excluded.type, data = excluded.data");
        const int rc = upsert.Bind(1, id)
                           .Bind(2, name)
                           .Bind(3, static_cast<sqlite3_int64>(dwType))
                           .BindBlob(4, bytes.data(), static_cast<DWORD>(bytes.size()))
                           .Step();
        if (rc != SQLITE_DONE) {
            return ErrorOf(rc, true);
        }
        return sqlite3_changes(db) == 0 ? ERROR_KEY_DELETED : ERROR_SUCCESS;
    });
}

LSTATUS RegDeleteValueA(HKEY hKey, LPCSTR lpValueName)
{
    const std::string name = lpValueName != nullptr ? lpValueName : "";
    return OnKey(hKey, KEY_SET_VALUE, false, [&](sqlite3* db, sqlite3_int64 id) -> LONG {
        LONG error = ERROR_SUCCESS;
        if (!KeyExists(db, id, &error)) {
            return error;
        }
        Statement erase(db, "DELETE FROM vals WHERE key = ?1 AND name = ?2");
        const int rc = erase.Bind(1, id).Bind(2, name).Step();
        if (rc != SQLITE_DONE) {
            return ErrorOf(rc, true);
        }
        return sqlite3_changes(db) == 0 ? ERROR_FILE_NOT_FOUND : ERROR_SUCCESS;
    });
}

LSTATUS RegDeleteKeyA(HKEY hKey, LPCSTR lpSubKey)
{
    std::vector<std::string> names;
    const LONG split = SplitSubKey(lpSubKey, &names);
    if (split != ERROR_SUCCESS) {
        return split;
    }
    if (names.empty()) {
        return ERROR_ACCESS_DENIED;
    }
    return OnKey(hKey, 0, false, [&](sqlite3* db, sqlite3_int64 start) -> LONG {
        if (Exec(db, "BEGIN IMMEDIATE") != SQLITE_OK) {
            return ERROR_BUSY;
        }
        sqlite3_int64 id = 0;
        bool created = false;
        LONG result = Walk(db, start, names, false, &id, &created);
        if (result == ERROR_SUCCESS) {
            Statement children(db, "SELECT 1 FROM keys WHERE parent = ?1");
            const int rc = children.Bind(1, id).Step();
            if (rc == SQLITE_ROW) {
                result = ERROR_ACCESS_DENIED;
            } else if (rc != SQLITE_DONE) {
                result = ErrorOf(rc, true);
            }
        }
        if (result == ERROR_SUCCESS) {
            Statement values(db, "DELETE FROM vals WHERE key = ?1");
            Statement key(db, "DELETE FROM keys WHERE id = ?1");
            int rc = values.Bind(1, id).Step();
            if (rc == SQLITE_DONE) {
                rc = key.Bind(1, id).Step();
            }
            result = rc == SQLITE_DONE ? ERROR_SUCCESS : ErrorOf(rc, true);
        }
        if (result != ERROR_SUCCESS || Exec(db, "COMMIT") != SQLITE_OK) {
            Exec(db, "ROLLBACK");
            return result != ERROR_SUCCESS ? result : ERROR_CANTWRITE;
        }
        return ERROR_SUCCESS;
    });
}

namespace {
// Copies a name into a buffer of *count characters, terminator included; *count becomes its
// length. ERROR_MORE_DATA when it does not fit.
LONG GiveName(const unsigned char* text, int length, LPSTR buffer, LPDWORD count)
{
    const auto size = static_cast<DWORD>(length);
    if (buffer == nullptr || count == nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    if (*count <= size) {
        return ERROR_MORE_DATA;
    }
    std::memcpy(buffer, text, size);
    buffer[size] = '\0';
    *count = size;
    return ERROR_SUCCESS;
}
} // namespace

LSTATUS RegEnumKeyExA(HKEY hKey, DWORD dwIndex, LPSTR lpName, LPDWORD lpcchName, LPDWORD /*lpReserved*/, LPSTR lpClass,
                      LPDWORD lpcchClass, FILETIME* lpftLastWriteTime)
{
    return OnKey(hKey, KEY_ENUMERATE_SUB_KEYS, false, [&](sqlite3* db, sqlite3_int64 id) -> LONG {
        Statement query(db, "SELECT name FROM keys WHERE parent = ?1 ORDER BY name LIMIT 1 OFFSET ?2");
        const int rc = query.Bind(1, id).Bind(2, static_cast<sqlite3_int64>(dwIndex)).Step();
        if (rc != SQLITE_ROW) {
            return rc == SQLITE_DONE ? ERROR_NO_MORE_ITEMS : ErrorOf(rc, false);
        }
        if (lpClass != nullptr && lpcchClass != nullptr && *lpcchClass > 0) {
            *lpClass = '\0';
            *lpcchClass = 0;
        }
        if (lpftLastWriteTime != nullptr) {
            *lpftLastWriteTime = FILETIME{};
        }
        return GiveName(sqlite3_column_text(*query, 0), sqlite3_column_bytes(*query, 0), lpName, lpcchName);
    });
}

LSTATUS RegEnumValueA(HKEY hKey, DWORD dwIndex, LPSTR lpValueName, LPDWORD lpcchValueName, LPDWORD /*lpReserved*/,
                      LPDWORD lpType, LPBYTE lpData, LPDWORD lpcbData)
{
    if (lpData != nullptr && lpcbData == nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    return OnKey(hKey, KEY_QUERY_VALUE, false, [&](sqlite3* db, sqlite3_int64 id) -> LONG {
        Statement query(db, "SELECT name, type, data FROM vals WHERE key = ?1 ORDER BY name LIMIT 1 OFFSET ?2");
        const int rc = query.Bind(1, id).Bind(2, static_cast<sqlite3_int64>(dwIndex)).Step();
        if (rc != SQLITE_ROW) {
            return rc == SQLITE_DONE ? ERROR_NO_MORE_ITEMS : ErrorOf(rc, false);
        }
        const LONG named =
            GiveName(sqlite3_column_text(*query, 0), sqlite3_column_bytes(*query, 0), lpValueName, lpcchValueName);
        if (named != ERROR_SUCCESS) {
            return named;
        }
        if (lpType != nullptr) {
            *lpType = static_cast<DWORD>(sqlite3_column_int64(*query, 1));
        }
        return GiveData(sqlite3_column_blob(*query, 2), static_cast<DWORD>(sqlite3_column_bytes(*query, 2)), lpData,
                        lpcbData);
    });
}

namespace yxposix {

RegistryDatabase InspectRegistryDatabase()
{
    RegistryDatabase report;
    report.path = DatabasePath();
    struct stat st {};
    if (stat(report.path.c_str(), &st) != 0) {
        if (errno != ENOENT && errno != ENOTDIR) {
            report.problem = std::strerror(errno);
        }
        return report;
    }
    report.exists = true;
    if (!S_ISREG(st.st_mode)) {
        report.problem = "not a file";
        return report;
    }
    report.size = static_cast<long long>(st.st_size);
    // Opened as the calls open it, but never created: SQLite's own -wal and -shm files come and
    // go with the connection.
    sqlite3* db = nullptr;
    int rc = sqlite3_open_v2(report.path.c_str(), &db, SQLITE_OPEN_READWRITE, nullptr);
    if (rc == SQLITE_OK) {
        sqlite3_busy_timeout(db, kBusyTimeoutMs);
        rc = LayoutVersion(db, &report.layout);
    }
    if (rc == SQLITE_OK) {
        Statement check(db, "PRAGMA integrity_check");
        rc = check.Step();
        if (rc == SQLITE_ROW) {
            const unsigned char* line = sqlite3_column_text(*check, 0);
            report.integrity = line != nullptr ? reinterpret_cast<const char*>(line) : "";
            rc = SQLITE_OK;
        }
    }
    if (rc != SQLITE_OK) {
        report.layout = -1;
        report.problem = db != nullptr ? sqlite3_errmsg(db) : sqlite3_errstr(rc);
    } else if (report.integrity != "ok") {
        report.problem = "integrity check: " + report.integrity;
    } else if (report.layout != 0 && report.layout != kLayoutVersion) {
        report.problem = "a database of another layout (user_version " + std::to_string(report.layout) +
                         "): reads give their defaults and writes fail";
    }
    sqlite3_close_v2(db);
    return report;
}

} // namespace yxposix
