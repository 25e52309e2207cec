#include "run_command.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <system_error>

#if defined(_WIN32)
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace cli_test {

namespace {

namespace fs = std::filesystem;

std::string ReadAll(const fs::path& path)
{
    std::ifstream in(path, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (kWindows) {
        std::string lines;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            if (!(bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n')) {
                lines += bytes[i];
            }
        }
        return lines;
    }
    return bytes;
}

// Files for the child's standard streams, removed afterwards.
class Streams {
public:
    explicit Streams(const std::string& input)
    {
        static std::atomic<int> s_count{0};
        m_folder = fs::temp_directory_path() /
                   ("yxtools-cli-" + std::to_string(std::random_device{}()) + "-" + std::to_string(++s_count));
        fs::create_directories(m_folder);
        std::ofstream(In(), std::ios::binary) << input;
    }
    ~Streams()
    {
        std::error_code error;
        fs::remove_all(m_folder, error);
    }
    Streams(const Streams&) = delete;
    Streams& operator=(const Streams&) = delete;

    fs::path In() const { return m_folder / "in"; }
    fs::path Out() const { return m_folder / "out"; }
    fs::path Err() const { return m_folder / "err"; }

private:
    fs::path m_folder;
};

#if defined(_WIN32)

fs::path Command()
{
    char self[MAX_PATH * 4];
    const DWORD length = GetModuleFileNameA(nullptr, self, sizeof(self));
    return fs::path(std::string(self, length)).parent_path() / "yxtools.exe";
}

// One argument as the C runtime splits a command line: quoted when it holds a blank or a quote or is
// empty, backslashes doubled before a quote.
std::string Quote(const std::string& arg)
{
    if (!arg.empty() && arg.find_first_of(" \t\"") == std::string::npos) {
        return arg;
    }
    std::string quoted = "\"";
    std::size_t backslashes = 0;
    for (const char c : arg) {
        if (c == '\\') {
            ++backslashes;
            continue;
        }
        quoted.append(c == '"' ? backslashes * 2 + 1 : backslashes, '\\');
        backslashes = 0;
        quoted += c;
    }
    quoted.append(backslashes * 2, '\\');
    return quoted + "\"";
}

HANDLE Inheritable(const fs::path& path, bool write)
{
    SECURITY_ATTRIBUTES security{sizeof(security), nullptr, TRUE};
    return CreateFileA(path.string().c_str(), write ? GENERIC_WRITE : GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                       &security, write ? CREATE_ALWAYS : OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
}

std::wstring Wide(const std::string& utf8)
{
    std::wstring wide(utf8.size() + 1, L'\0');
    const int count = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), &wide[0],
                                          static_cast<int>(wide.size()));
    wide.resize(static_cast<std::size_t>(count > 0 ? count : 0));
    return wide;
}

// The child gets its command line and environment in Unicode, as a shell gives them, and its C runtime
// makes the ANSI arguments of them: what a Windows program is given.
int Start(const std::vector<std::string>& args, const Environment& env, const Streams& streams)
{
    std::string line = Quote(Command().string());
    for (const std::string& arg : args) {
        line += " " + Quote(arg);
    }
    std::wstring wideLine = Wide(line);
    // The environment block: this process's variables, those of `env` replacing them.
    std::map<std::wstring, std::wstring> variables;
    wchar_t* block = GetEnvironmentStringsW();
    for (const wchar_t* p = block; *p != L'\0'; p += std::wcslen(p) + 1) {
        const std::wstring entry(p);
        const std::size_t equals = entry.find(L'=', 1);
        if (equals != std::wstring::npos) {
            variables[entry.substr(0, equals)] = entry.substr(equals + 1);
        }
    }
    FreeEnvironmentStringsW(block);
    for (const auto& [name, value] : env) {
        variables[Wide(name)] = Wide(value);
    }
    std::wstring environment;
    for (const auto& [name, value] : variables) {
        environment += name + L"=" + value;
        environment += L'\0';
    }
    environment += L'\0';

    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = Inheritable(streams.In(), false);
    startup.hStdOutput = Inheritable(streams.Out(), true);
    startup.hStdError = Inheritable(streams.Err(), true);
    PROCESS_INFORMATION process{};
    const BOOL started = CreateProcessW(nullptr, &wideLine[0], nullptr, nullptr, TRUE, CREATE_UNICODE_ENVIRONMENT,
                                        &environment[0], nullptr, &startup, &process);
    CloseHandle(startup.hStdInput);
    CloseHandle(startup.hStdOutput);
    CloseHandle(startup.hStdError);
    if (!started) {
        throw std::runtime_error("cannot start " + line);
    }
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD status = 0;
    GetExitCodeProcess(process.hProcess, &status);
    CloseHandle(process.hProcess);
    CloseHandle(process.hThread);
    return static_cast<int>(status);
}

#else

fs::path Command()
{
    return fs::read_symlink("/proc/self/exe").parent_path() / "yxtools";
}

int Start(const std::vector<std::string>& args, const Environment& env, const Streams& streams)
{
    const std::string command = Command().string();
    std::vector<char*> argv{const_cast<char*>(command.c_str())};
    for (const std::string& arg : args) {
        argv.push_back(const_cast<char*>(arg.c_str()));
    }
    argv.push_back(nullptr);
    const pid_t child = fork();
    if (child < 0) {
        throw std::runtime_error("cannot fork");
    }
    if (child == 0) {
        const int in = open(streams.In().c_str(), O_RDONLY);
        const int out = open(streams.Out().c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        const int err = open(streams.Err().c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (in < 0 || out < 0 || err < 0 || dup2(in, 0) < 0 || dup2(out, 1) < 0 || dup2(err, 2) < 0) {
            _exit(127);
        }
        for (const auto& [name, value] : env) {
            setenv(name.c_str(), value.c_str(), 1);
        }
        execv(command.c_str(), argv.data());
        _exit(127);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

#endif

} // namespace

nlohmann::ordered_json Outcome::Json() const
{
    return nlohmann::ordered_json::parse(out);
}

Outcome Run(const std::vector<std::string>& args, const Environment& env, const std::string& input)
{
    const Streams streams(input);
    Outcome outcome;
    outcome.status = Start(args, env, streams);
    outcome.out = ReadAll(streams.Out());
    outcome.err = ReadAll(streams.Err());
    return outcome;
}

} // namespace cli_test
