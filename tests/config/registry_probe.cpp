// A second process for the registry tests, a host like any other.
//   registry_probe write SECTION COUNT TAG   writes TAG0 .. TAG<COUNT-1> as longs under the current
//                                           user; exit 0 when every write returned true
//   registry_probe report SECTION COUNT TAG  the same, printing each number whose write returned
//                                           true as soon as it did
//   registry_probe lock DATABASE MS          (POSIX) holds the registry database's write lock for MS
//                                           milliseconds, after printing "locked"
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include <yxtools/registry.h>

#if !defined(_WIN32)
#include <sqlite3.h>
#endif

int main(int argc, char** argv)
{
    const std::string mode = argc > 1 ? argv[1] : "";
    if (argc == 5 && (mode == "write" || mode == "report")) {
        const long count = std::atol(argv[3]);
        int failures = 0;
        for (long i = 0; i < count; ++i) {
            if (YXRegistry::WriteLongParam(argv[2], std::string(argv[4]) + std::to_string(i), i,
                                           YXRegistry::CurrentUser)) {
                if (mode == "report") {
                    std::printf("%ld\n", i);
                    std::fflush(stdout);
                }
            } else {
                ++failures;
            }
        }
        return failures == 0 ? 0 : 1;
    }
#if !defined(_WIN32)
    if (argc == 4 && mode == "lock") {
        sqlite3* db = nullptr;
        if (sqlite3_open(argv[2], &db) != SQLITE_OK ||
            sqlite3_exec(db, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr) != SQLITE_OK) {
            return 1;
        }
        std::printf("locked\n");
        std::fflush(stdout);
        std::this_thread::sleep_for(std::chrono::milliseconds(std::atol(argv[3])));
        sqlite3_close(db);
        return 0;
    }
#endif
    return 2;
}
