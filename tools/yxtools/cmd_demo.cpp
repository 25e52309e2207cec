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
    g_steps->push_back({{"step", what}});
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

// The road of a host's file whose blocks a hole manager places: the manager keeps numbers, the
// host moves the bytes. Three blocks are written, the middle one freed and its hole reused by a
// smaller block, the last one freed so that the file can be cut at the first free byte.
bool HoleRoad()
{
    std::error_code error;
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path(error) / ("yxtools-demo-holes-" + std::to_string(std::rand()));
    std::filesystem::create_directories(folder, error);
    const std::string path = (folder / "host.dat").string();
    YXHoleManager* manager = CreateHoleManager(YXHOLEMANAGER_EFFICIENT);
    YXBinaryFile file;
    file.Create(path.c_str(), YXFILE_READ | YXFILE_WRITE, false);
    Step("   CreateHoleManager(efficient); the host file " + path + " is created empty.");
    const auto place = [&](const std::string& bytes) {
        const long size = static_cast<long>(bytes.size());
        unsigned long offset = manager->GetBestHole(size);
        if (offset == YXHOLE_NONE) {
            offset = file.GetLength();
            Step("   GetBestHole(" + std::to_string(size) + ") = 0xFFFFFFFF: extend the file at " +
                 std::to_string(offset));
        } else {
            Step("   GetBestHole(" + std::to_string(size) + ") = " + std::to_string(offset) + ": write there");
        }
        file.SeekFromBegin(static_cast<std::int64_t>(offset));
        file.Write(bytes.data(), size);
        manager->RemoveHole(offset, size);
        return offset;
    };
    place("AAAAAAAA");
    const unsigned long middle = place("BBBBBBBB");
    const unsigned long last = place("CCCCCCCC");
    Step("   AddHole(" + std::to_string(middle) + ", 8): the middle block is freed.");
    manager->AddHole(middle, 8);
    place("DDDD");
    Step("   AddHole(" + std::to_string(last) + ", 8): the last block is freed.");
    manager->AddHole(last, 8);
    const unsigned long cut = manager->GetTruncateOffset(file.GetLength());
    if (cut != YXHOLE_NONE) {
        Step("   GetTruncateOffset(" + std::to_string(file.GetLength()) + ") = " + std::to_string(cut) +
             ": move there, Truncate, RemoveHole.");
        const unsigned long length = file.GetLength();
        file.SeekFromBegin(static_cast<std::int64_t>(cut));
        file.Truncate();
        manager->RemoveHole(cut, static_cast<long>(length - cut));
    }
    file.Close();
    DestroyHoleManager(&manager);
    std::string bytes(64, '\0');
    YXBinaryFile check(path.c_str(), YXFILE_READ);
    bytes.resize(static_cast<std::size_t>(check.Read(&bytes[0], 64)));
    check.Close();
    // The rest of the middle block's hole joined the freed last block, so the cut falls at 12.
    const bool right = bytes == "AAAAAAAADDDD";
    Step("   The file holds \"" + bytes + "\" (" + std::to_string(bytes.size()) +
         " bytes): " + (right ? "as placed." : "NOT as placed."));
    std::filesystem::remove_all(folder, error);
    return right;
}

int RunDemo(cli::Context& context)
{
    g_context = &context;
    g_steps = &(context.result["steps"] = cli::Json::array());

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

    Step("6. A host file whose blocks a hole manager places.");
    const bool placed = HoleRoad();

    Step("7. The process ends: the unload hook runs the closing sequence.");
    return placed ? 0 : 1;
}

} // namespace

namespace cli {

void AddDemoCommand(CLI::App& app, Context& context)
{
    CLI::App* command = app.add_subcommand("demo", "a walk through the library, step by step");
    context.SetAction(command, [&context] { return RunDemo(context); });
}

} // namespace cli

namespace {
const cli::Registration registration("demo", cli::AddDemoCommand);
}
