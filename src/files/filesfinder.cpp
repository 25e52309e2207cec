// YXFilesFinder: the entries of one folder that match a pattern.
//
// A search handle has one owner. A copy or an assignment takes the folder and the pattern but
// not the source's running search: the copy starts a search of its own at its first
// GetNextFile, and an assignment closes the search the target was running. So each search is
// closed once, by the object that started it, and no copy can end another's search.
#include <yxtools/files.h>
#include <yxtools/path.h>

#include "platform/win32.h"

namespace {

// No search has been started; INVALID_HANDLE_VALUE is never kept.
void* const kNotStarted = reinterpret_cast<void*>(static_cast<std::intptr_t>(-2)); // NOLINT(performance-no-int-to-ptr)

} // namespace

YXFilesFinder::YXFilesFinder(const _SS<char>& folder, const _SS<char>& pattern)
    : m_hFind(kNotStarted), m_strPattern(pattern), m_strFolder(folder)
{}

YXFilesFinder::YXFilesFinder(const YXFilesFinder& other)
    : m_hFind(kNotStarted), m_strPattern(other.m_strPattern), m_strFolder(other.m_strFolder)
{}

YXFilesFinder& YXFilesFinder::operator=(const YXFilesFinder& other)
{
    if (this != &other) {
        if (m_hFind != kNotStarted) {
            FindClose(m_hFind);
            m_hFind = kNotStarted;
        }
        m_strPattern = other.m_strPattern;
        m_strFolder = other.m_strFolder;
    }
    return *this;
}

YXFilesFinder::~YXFilesFinder()
{
    if (m_hFind != kNotStarted) {
        FindClose(m_hFind);
    }
}

bool YXFilesFinder::GetNextFile(_SS<char>& file)
{
    WIN32_FIND_DATAA data;
    if (m_hFind == kNotStarted) {
        const _SS<char> search = m_strFolder + m_strPattern;
        HANDLE find = FindFirstFileA(search.c_str(), &data);
        if (find == INVALID_HANDLE_VALUE) {
            return false;
        }
        m_hFind = find;
    } else if (FindNextFileA(m_hFind, &data) == FALSE) {
        return false;
    }
    const _SS<char> name(data.cFileName);
    YXPath::Make(file, nullptr, &m_strFolder, &name, nullptr);
    return true;
}
