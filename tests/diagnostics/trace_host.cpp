// A host that loads the library, and so its trace manager, with the registry and environment the
// test gave it, then runs a script of trace calls:
//   indent N   AddIndent(N)
//   text S     Trace("%s", S)
//   fill N     Trace of a text of N 'x' by "%s"
//   format     Trace("%d-%s|", 42, "z")
//   destroy    constructs and destroys a further manager
#include <cstdlib>
#include <string>

#include <yxtools/trace.h>

int main(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        const std::string command = argv[i];
        if (command == "destroy") {
            const YXTraceManager other;
            continue;
        }
        if (command == "format") {
            YXTraceManager::Trace("%d-%s|", 42, "z");
            continue;
        }
        if (i + 1 >= argc) {
            return 2;
        }
        const char* argument = argv[++i];
        if (command == "indent") {
            YXTraceManager::AddIndent(std::atol(argument));
        } else if (command == "text") {
            YXTraceManager::Trace("%s", argument);
        } else if (command == "fill") {
            YXTraceManager::Trace("%s", std::string(static_cast<std::size_t>(std::atol(argument)), 'x').c_str());
        } else {
            return 2;
        }
    }
    return 0;
}
