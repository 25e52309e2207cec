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
    std::string bare = folder.Root();
    bare.pop_back(); // the folder without its closing `\`
    const std::string whole = folder["a.txt"];
    const struct {
        std::string folder;
        std::string pattern;
        std::set<std::string> found;
    } cases[] = {
        {folder.Root(), "*.txt", {whole}},
        {bare, "\\*.txt", {whole}},
        {bare, "*.txt", {}}, // searches "<folder>*.txt", beside the folder
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.folder + " + " + c.pattern);
        YXFilesFinder finder(c.folder, c.pattern);
        EXPECT_EQ(All(finder), c.found);
    }
    // Without a separator the search names the folder's sibling, and the result still gets one.
    folder.Write("rootx.txt", "");
    scratch::fs::rename(folder.Native("rootx.txt"), folder.Native("..") / "rootx.txt");
    YXFilesFinder sibling(bare, "x.txt");
    _SS<char> file;
    ASSERT_TRUE(sibling.GetNextFile(file));
    EXPECT_EQ(file, bare + "\\rootx.txt");
}

TEST(FilesFinder, EveryEntryComesBackAndTheEndKeepsTheLastOne)
{
    const scratch::Folder folder;
    const scratch::DescriptorGuard guard;
    folder.Write("a.txt", "");
    scratch::fs::create_directory(folder.Native("sub"));
    YXFilesFinder finder(folder.Root(), "*");
    EXPECT_EQ(All(finder), (std::set<std::string>{folder["."], folder[".."], folder["a.txt"], folder["sub"]}));
    _SS<char> file("kept");
    EXPECT_FALSE(finder.GetNextFile(file));
    EXPECT_EQ(file, "kept");
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
    EXPECT_FALSE(finder.GetNextFile(second));
    EXPECT_EQ(All(before).size(), 2u);
    YXFilesFinder assigned(folder.Root(), "a*");
    ASSERT_TRUE(assigned.GetNextFile(first));
    assigned = finder; // closes its own search, takes the folder and pattern
    EXPECT_EQ(All(assigned).size(), 2u);
}

} // namespace
