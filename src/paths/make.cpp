#include <yxtools/path.h>

// Assembly knows one separator, `\`, and compares bytes one by one: a double-byte character whose
// trail byte is 0x5C ends a path as a `\` does.

void YXPath::Append(_SS<char>& path, const _SS<char>* pAddition, bool bTrailing)
{
    _SS<char> addition;
    if (pAddition != nullptr) {
        addition = *pAddition;
    } else if (bTrailing) {
        addition = "\\";
    }
    if (!path.empty() && !addition.empty()) {
        const bool pathEnds = path.back() == '\\';
        const bool additionBegins = addition.front() == '\\';
        if (pathEnds && additionBegins) {
            path.pop_back();
        } else if (!pathEnds && !additionBegins) {
            path.push_back('\\');
        }
    }
    if (bTrailing && (addition.empty() || addition.back() != '\\')) {
        addition.push_back('\\');
    }
    path.append(addition);
}

bool YXPath::Make(_SS<char>& output, const _SS<char>* pDrive, const _SS<char>* pDirectory, const _SS<char>* pName,
                  const _SS<char>* pExtension)
{
    // The pointers decide, not the texts: an empty drive or directory still asks for a `\`. The
    // path is built apart and then takes the output's place, so that an input may be the output.
    const bool trailing = pDrive != nullptr || pDirectory != nullptr;
    _SS<char> made;
    if (pDrive != nullptr) {
        made = *pDrive;
    }
    Append(made, pDirectory, trailing);
    if (pName != nullptr) {
        made.append(*pName);
    }
    if (pExtension != nullptr) {
        // An empty extension has its terminator for a first byte, so it adds a lone dot.
        if (pExtension->empty() || pExtension->front() != '.') {
            made.push_back('.');
        }
        made.append(*pExtension);
    }
    output.swap(made);
    return !output.empty();
}
