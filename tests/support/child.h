// Programs that a test starts beside itself, and the environment they inherit; the same on both
// builds.
#ifndef YXTOOLS_TESTS_SUPPORT_CHILD_H
#define YXTOOLS_TESTS_SUPPORT_CHILD_H

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#if defined(_WIN32)
#include <process.h>
#include <windows.h>
#else
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace child {

// The path of a program built beside the running test program.
inline std::string Beside(const std::string& name)
{
#if defined(_WIN32)
    char self[MAX_PATH];
    GetModuleFileNameA(nullptr, self, MAX_PATH);
    return (std::filesystem::path(self).parent_path() / (name + ".exe")).string();
#else
    return (std::filesystem::read_symlink("/proc/self/exe").parent_path() / name).string();
#endif
}

inline void SetEnv(const char* name, const std::string& value)
{
#if defined(_WIN32)
    _putenv_s(name, value.c_str());
#else
    setenv(name, value.c_str(), 1);
#endif
}

inline void UnsetEnv(const char* name)
{
#if defined(_WIN32)
    _putenv_s(name, "");
#else
    unsetenv(name);
#endif
}

#if defined(_WIN32)
using Process = intptr_t;
#else
using Process = pid_t;
#endif

// Starts the program without waiting for it; -1 when it could not start.
inline Process Start(const std::string& program, const std::vector<std::string>& args)
{
#if defined(_WIN32)
    std::vector<std::string> quoted;
    quoted.push_back("\"" + program + "\"");
    for (const std::string& arg : args) {
        quoted.push_back("\"" + arg + "\"");
    }
    std::vector<const char*> argv;
    for (const std::string& arg : quoted) {
        argv.push_back(arg.c_str());
    }
    argv.push_back(nullptr);
    return _spawnv(_P_NOWAIT, program.c_str(), argv.data());
#else
    const pid_t pid = fork();
    if (pid == 0) {
        std::vector<char*> argv;
        argv.push_back(const_cast<char*>(program.c_str()));
        for (const std::string& arg : args) {
            argv.push_back(const_cast<char*>(arg.c_str()));
        }
        argv.push_back(nullptr);
        execv(program.c_str(), argv.data());
        _exit(127);
    }
    return pid;
#endif
}

// Waits for a started program and gives its exit code (-1 when it did not end normally).
inline int Wait(Process process)
{
#if defined(_WIN32)
    int status = -1;
    return _cwait(&status, process, 0) == -1 ? -1 : status;
#else
    int status = 0;
    if (process < 0 || waitpid(process, &status, 0) != process) {
        return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
}

// Runs the program with the arguments and this process's environment, and gives its exit code.
inline int Run(const std::string& program, const std::vector<std::string>& args)
{
    return Wait(Start(program, args));
}

} // namespace child

#endif
