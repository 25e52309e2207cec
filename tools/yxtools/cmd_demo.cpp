// yxtools demo: a walk through the library as a host uses it, printing each step.
#include <yxtools/yxtools.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "cli.h"

namespace {

cli::Context* g_context = nullptr;
cli::Json* g_steps = nullptr;

void Step(const std::string& what)
{
    g_steps->Push(cli::Json::Object()).Set("step", what);
    g_context->Line("%s", what.c_str());
}

void OnChange(YXErrorsLogManager& manager)
{
    const YXErrorLogEntry* newest = manager.GetLast();
    std::string text = "    change procedure: " + std::to_string(manager.GetCount()) + " entries";
    if (newest != nullptr) {
        text += ", newest \"" + newest->GetDescription() + "\"";
    }
    Step(text);
}

class DemoProvider : public YXNameProviderByString {
public:
    bool GetName(const _SS<char>& key, _SS<char>& name) override
    {
        name = "name of " + key;
        return true;
    }
    bool HasName(const _SS<char>& /*key*/) override { return true; }
};

// The road of a probe: File_IsOpenable on a file that does not exist yet, with the create bit.
void ProbeRoad()
{
    std::error_code error;
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path(error) / ("yxtools-demo-" + std::to_string(std::rand()));
    std::filesystem::create_directories(folder, error);
    const std::string path = (folder / "new.dat").string();
    Step("   File_IsOpenable(\"" + path + "\", 0x43): GetFileAttributesA finds nothing, Open without 0x40");
    Step("   fails with reason 1, and 0x40 sends the probe to the parent folder.");
    unsigned short reason = 99;
    const bool openable = File_IsOpenable(path.c_str(), YXFILE_READ | YXFILE_WRITE | YXFILE_CREATE, &reason);
    Step(std::string("   answer: ") + (openable ? "true" : "false") + ", reason " + std::to_string(reason) +
         "; the file " + (File_Exist(path.c_str()) ? "exists (wrong!)" : "still does not exist") + ".");
    std::filesystem::remove_all(folder, error);
}

int RunDemo(cli::Context& context, const cli::Args& /*args*/)
{
    g_context = &context;
    g_steps = &context.result.Child("steps", cli::Json::Array());

    Step("1. The library is loaded: its load hook ran the initialisation sequence.");
    Step("   Default error log: " + std::to_string(YXErrorsLog_GetCount(nullptr)) + " entries, maximum 5.");

    Step("2. Fill the default log past its maximum, with a change procedure set.");
    YXErrorsLog_SetOnChangeProc(OnChange, nullptr);
    for (int i = 1; i <= 7; ++i) {
        const std::string description = "error " + std::to_string(i);
        Step("  add \"demo\" \"" + description + "\"");
        YXErrorsLog_Add("demo", description.c_str(), static_cast<unsigned long>(i), nullptr);
    }
    Step("  add \"demo\" \"error 7\" again: " +
         std::string(YXErrorsLog_Add("demo", "error 7", 0, nullptr) ? "added" : "dropped as a repetition"));
    _SS<char> source;
    _SS<char> description;
    unsigned long flags = 0;
    for (unsigned long i = 0; YXErrorsLog_GetItemAt(i, source, description, &flags, nullptr); ++i) {
        Step("   [" + std::to_string(i) + "] " + description + " (flags " + std::to_string(flags) + ")");
    }

    Step("3. Publish a name provider under \"demo.names\" and find it again.");
    DemoProvider provider;
    YXNameProvider_RegisterProviderByString("demo.names", &provider);
    _SS<char> name;
    YXNameProviderByString* found = YXNameProvider_GetProviderByString("demo.names");
    if (found != nullptr && found->GetName("42", name)) {
        Step("   found it: it answers \"" + name + "\"");
    }

    Step("4. YXTools_Close, then YXTools_Init: the process-wide objects start afresh.");
    YXTools_Close();
    YXTools_Init();
    Step("   Default error log: " + std::to_string(YXErrorsLog_GetCount(nullptr)) + " entries; provider " +
         (YXNameProvider_GetProviderByString("demo.names") == nullptr ? "gone" : "still there") + ".");

    Step("5. Probe a file that does not exist yet, asking whether it could be created.");
    ProbeRoad();

    Step("6. The process ends: the unload hook runs the closing sequence.");
    return 0;
}

const cli::Registration registration({"demo", "demo", "a walk through the library, step by step", RunDemo});

} // namespace
