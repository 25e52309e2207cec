// What every fuzz target shares: a reader that decodes the input into values, and the check that
// stops the run on a broken invariant.
#ifndef YXTOOLS_FUZZ_SUPPORT_H
#define YXTOOLS_FUZZ_SUPPORT_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

// The entry point libFuzzer calls, and the corpus replay in the test builds.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// Stops the run with the condition's text: libFuzzer keeps the input as a finding.
#define FUZZ_CHECK(condition)                                                                                          \
    do {                                                                                                               \
        if (!(condition)) {                                                                                            \
            std::fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #condition);                         \
            std::abort();                                                                                              \
        }                                                                                                              \
    } while (false)

// Reads values from the front of the input. Past its end every value is 0 and Done() is true, so
// a target decodes operations until Done() and never reads outside the input.
class FuzzInput {
public:
    FuzzInput(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}

    bool Done() const { return m_pos >= m_size; }
    std::size_t Left() const { return m_size - m_pos; }

    std::uint8_t Byte() { return m_pos < m_size ? m_data[m_pos++] : 0; }

    // Little-endian values of 16 and 32 bits.
    std::uint16_t U16() { return static_cast<std::uint16_t>(Byte() | (Byte() << 8)); }
    std::uint32_t U32() { return static_cast<std::uint32_t>(U16()) | (static_cast<std::uint32_t>(U16()) << 16); }

    // A value below n (n > 0) from one byte, or two when n is above 256.
    unsigned Below(unsigned n) { return (n <= 256 ? Byte() : U16()) % n; }

    // A byte string: a length byte, then that many bytes (fewer at the input's end). NULs included.
    std::string Bytes(std::size_t most = 255)
    {
        std::size_t n = Byte();
        n = n < most ? n : most;
        n = n < Left() ? n : Left();
        std::string out(reinterpret_cast<const char*>(m_data + m_pos), n);
        m_pos += n;
        return out;
    }

    // Everything that is left.
    std::string Rest()
    {
        std::string out(reinterpret_cast<const char*>(m_data + m_pos), Left());
        m_pos = m_size;
        return out;
    }

private:
    const std::uint8_t* m_data;
    std::size_t m_size;
    std::size_t m_pos = 0;
};

#endif
