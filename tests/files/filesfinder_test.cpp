#include <gtest/gtest.h>

#include <set>
#include <string>

#include <yxtools/files.h>

#include "support/scratch.h"

namespace {

std::set<std::string> All(YXFilesFinder& finder)
{
    std::set<std::string> found;
    _SS<char> file;
    while (finder.GetNextFile(file)) {
        found.insert(file);
    }
    return found;
}

TEST(FilesFinder, SearchStringAndResultFromFolderAndPattern)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    folder.Write("a.txt", "");
    folder.Write("b.doc", "");
    folder.Write("../rootx.txt", ""); // beside the folder
    std::string bare = folder.Root();
    bare.pop_back(); // the folder without its closing `\`
    const struct {
        std::string folder;
        std::string pattern;
        std::set<std::string> found;
    } cases[] = {
        {folder.Root(), "*.txt", {folder["a.txt"]}},
        {bare, "\\*.txt", {folder["a.txt"]}},
        {bare, "*.txt", {bare + "\\rootx.txt"}}, // searches "<folder>*.txt", beside the folder
        {folder.Root(), "*", {folder["."], folder[".."], folder["a.txt"], folder["b.doc"]}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.folder + " + " + c.pattern);
        YXFilesFinder finder(c.folder, c.pattern);
        EXPECT_EQ(All(finder), c.found);
        _SS<char> file("kept");
        EXPECT_FALSE(finder.GetNextFile(file)); // the end stays the end, and the string is left alone
        EXPECT_EQ(file, "kept");
    }
}

TEST(FilesFinder, AMissingFolderIsTriedAgainAtEachCall)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    YXFilesFinder finder(folder["later\\"], "*.txt");
    _SS<char> file;
    EXPECT_FALSE(finder.GetNextFile(file));
    EXPECT_FALSE(finder.GetNextFile(file));
    scratch::fs::create_directory(folder.Native("later"));
    folder.Write("later/a.txt", "");
    EXPECT_TRUE(finder.GetNextFile(file));
    EXPECT_EQ(file, folder["later\\a.txt"]);
}

// A search handle has one owner: a copy or an assignment starts a search of its own.
TEST(FilesFinder, CopiesStartTheirOwnSearch)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    folder.Write("a.txt", "");
    folder.Write("b.txt", "");
    YXFilesFinder finder(folder.Root(), "*.txt");
    YXFilesFinder before(finder); // made before the first call: a separate finder
    _SS<char> first;
    ASSERT_TRUE(finder.GetNextFile(first));
    {
        YXFilesFinder during(finder); // made while the search runs: starts from the beginning
        EXPECT_EQ(All(during).size(), 2u);
    }
    _SS<char> second;
    ASSERT_TRUE(finder.GetNextFile(second)); // the source's search goes on
    EXPECT_NE(first, second);
    EXPECT_EQ(All(before).size(), 2u);
    YXFilesFinder assigned(folder.Root(), "a*");
    ASSERT_TRUE(assigned.GetNextFile(first));
    assigned = finder; // closes its own search, takes the folder and pattern
    EXPECT_EQ(All(assigned).size(), 2u);
}

} // namespace

namespace {

// The finder meets folders and names as Windows does: without case, a folder name with a trailing
// dot, a pattern whose `?` takes one character.
TEST(FilesFinder, FoldersAndPatternsMatchWithoutCase)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    scratch::fs::create_directory(folder.Native("Data"));
    folder.Write("Data/held.txt", "");
    folder.Write("Data/hold.log", "");
    const std::string upper = folder["DATA\\"];
    const struct {
        std::string folder;
        std::string pattern;
        std::set<std::string> found;
    } cases[] = {
        {upper, "HELD.*", {upper + "held.txt"}},
        {folder["data.\\"], "h?l?.*", {folder["data.\\held.txt"], folder["data.\\hold.log"]}},
        {folder["data\\..\\DATA\\"], "*.LOG", {folder["data\\..\\DATA\\hold.log"]}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.folder + " + " + c.pattern);
        YXFilesFinder finder(c.folder, c.pattern);
        EXPECT_EQ(All(finder), c.found);
    }
}

} // namespace
