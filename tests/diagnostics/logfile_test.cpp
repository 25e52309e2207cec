#include <gtest/gtest.h>

#include <memory>

#include <yxtools/logfile.h>

namespace {

// A host's log file, derived across the library's boundary.
class HostLogFile : public YXLogFile {
public:
    explicit HostLogFile(bool* destroyed) : m_destroyed(destroyed) {}
    ~HostLogFile() override { *m_destroyed = true; }
    bool Open(const _SS<char>& path) override { return !(m_path = path).empty(); }
    void Close() override {}
    bool IsOpen() const override { return !m_path.empty(); }
    bool Write(const _SS<char>& /*text*/) override { return true; }
    bool WriteLine(const _SS<char>& /*text*/) override { return true; }
    bool Flush() override { return true; }
    bool Clear() override { return true; }
    const _SS<char>& GetPath() const override { return m_path; }
    long GetSize() const override { return 0; }

private:
    bool* m_destroyed;
    _SS<char> m_path;
};

TEST(LogFile, DerivedObjectsWorkThroughTheInterfaceAndDieThroughIt)
{
    bool destroyed = false;
    std::unique_ptr<YXLogFile> log = std::make_unique<HostLogFile>(&destroyed);
    EXPECT_TRUE(log->Open("trace.txt"));
    EXPECT_EQ(log->GetPath(), "trace.txt");
    log.reset();
    EXPECT_TRUE(destroyed); // the destructor is virtual
}

} // namespace
