// An example host: includes the umbrella header, uses the default error log and the registries.
#include <cstdio>

#include <yxtools/yxtools.h>

int main()
{
    YXErrorsLog_Add("host", "first", 1, nullptr);
    YXErrorsLog_Add("host", "second", 2, nullptr);
    _SS<char> text;
    text.Format("%lu entries, version %s", YXErrorsLog_GetCount(nullptr), YXTOOLS_VERSION_STRING);
    const bool ok = YXErrorsLog_GetCount(nullptr) == 2 && YXNameProvider_GetProviderByID("none") == nullptr;
    std::printf("host: %s (%s)\n", ok ? "ok" : "FAILED", text.c_str());
    return ok ? 0 : 1;
}
