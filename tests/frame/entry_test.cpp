#include <gtest/gtest.h>

#include <yxtools/yxtools.h>

#include "frame/lifecycle.h"

namespace {

TEST(EntryProcedure, RunsTheSequencesForTheProcessAndSucceedsForEveryReason)
{
#if defined(_WIN32)
    // The count of a default log that held one entry before the call: thread events change nothing,
    // process detach releases the log and process attach makes a new one.
    const DWORD reasons[] = {DLL_THREAD_ATTACH, DLL_THREAD_DETACH, DLL_PROCESS_DETACH, DLL_PROCESS_ATTACH};
    const unsigned long entriesAfter[] = {1, 1, 0, 0};
    for (int i = 0; i < 4; ++i) {
        YXErrorsLog_Clear(nullptr);
        YXErrorsLog_Add("entry", "test", 0, nullptr);
        EXPECT_EQ(DllMain(nullptr, reasons[i], nullptr), TRUE) << "reason " << reasons[i];
        EXPECT_EQ(YXErrorsLog_GetCount(nullptr), entriesAfter[i]) << "reason " << reasons[i];
    }
#else
    GTEST_SKIP() << "no entry procedure on POSIX: the shared object's load and unload hooks run the sequences";
#endif
}

} // namespace
