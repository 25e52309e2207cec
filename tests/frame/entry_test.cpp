#include <gtest/gtest.h>

#include <yxtools/yxtools.h>

#include "frame/lifecycle.h"

namespace {

TEST(EntryProcedure, RunsTheSequencesForTheProcessAndSucceedsForEveryReason)
{
#if defined(_WIN32)
    struct Case {
        DWORD reason;
        unsigned long entriesAfter; // of one entry in the default log before the call
    };
    const Case cases[] = {
        {DLL_THREAD_ATTACH, 1},  // nothing happens
        {DLL_THREAD_DETACH, 1},  // nothing happens
        {DLL_PROCESS_DETACH, 0}, // the closing sequence released the log
        {DLL_PROCESS_ATTACH, 0}, // the initialisation sequence made a new one
    };
    for (const Case& c : cases) {
        YXErrorsLog_Clear(nullptr);
        YXErrorsLog_Add("entry", "test", 0, nullptr);
        EXPECT_EQ(DllMain(nullptr, c.reason, nullptr), TRUE) << "reason " << c.reason;
        EXPECT_EQ(YXErrorsLog_GetCount(nullptr), c.entriesAfter) << "reason " << c.reason;
    }
#else
    GTEST_SKIP() << "no entry procedure on POSIX: the shared object's load and unload hooks run the sequences";
#endif
}

} // namespace
