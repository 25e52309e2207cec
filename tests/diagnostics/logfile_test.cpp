#include <gtest/gtest.h>

#include <memory>

#include <yxtools/logfile.h>

namespace {

// A host's log file, as a host would derive one.
class MemoryLogFile : public YXLogFile {
public:
    explicit MemoryLogFile(bool* destroyed) : m_destroyed(destroyed) {}
    ~MemoryLogFile() override { *m_destroyed = true; }
    bool Open(const _SS<char>& path) override
    {
        m_path = path;
        return m_open = true;
    }
    void Close() override { m_open = false; }
    bool IsOpen() const override { return m_open; }
    bool Write(const _SS<char>& text) override
    {
        m_text += text;
        return m_open;
    }
    bool WriteLine(const _SS<char>& text) override { return Write(text) && Write("\n"); }
    bool Flush() override { return m_open; }
    bool Clear() override
    {
        m_text.clear();
        return m_open;
    }
    const _SS<char>& GetPath() const override { return m_path; }
    long GetSize() const override { return m_open ? static_cast<long>(m_text.size()) : -1; }

private:
    bool* m_destroyed;
    bool m_open = false;
    _SS<char> m_path;
    _SS<char> m_text;
};

TEST(LogFile, DerivedObjectsWorkThroughTheInterfaceAndDieThroughIt)
{
    bool destroyed = false;
    std::unique_ptr<YXLogFile> log = std::make_unique<MemoryLogFile>(&destroyed);
    EXPECT_TRUE(log->Open("trace.txt"));
    EXPECT_TRUE(log->WriteLine("abc"));
    EXPECT_EQ(log->GetSize(), 4);
    EXPECT_EQ(log->GetPath(), "trace.txt");
    log.reset();
    EXPECT_TRUE(destroyed); // the destructor is virtual
}

} // namespace
