#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace Halvane::Quorvex::Testing {

// Reads a fuzzer's bytes as a run of values. Past the end every value reads
// as zero, so that any input, the empty one included, is a whole case.
class FuzzInput {
public:
    FuzzInput(const std::uint8_t* data, std::size_t size) : mData(data), mSize(size) {}

    template <typename Value>
    Value take()
    {
        Value value{};
        const std::size_t count = mSize - mOffset < sizeof(Value) ? mSize - mOffset : sizeof(Value);
        if (count > 0) {
            std::memcpy(&value, mData + mOffset, count);
        }
        mOffset += count;
        return value;
    }

    // A value from 0 to `limit`, both included.
    unsigned upTo(unsigned limit) { return take<std::uint8_t>() % (limit + 1); }

    // The text up to the next NUL byte, or to the end.
    std::string text()
    {
        std::string value;
        while (mOffset < mSize && mData[mOffset] != 0) {
            value.push_back(static_cast<char>(mData[mOffset++]));
        }
        if (mOffset < mSize) {
            ++mOffset;
        }
        return value;
    }

private:
    const std::uint8_t* mData;
    std::size_t mSize;
    std::size_t mOffset = 0;
};

// Stops the fuzzer on a broken promise, naming it and the text it broke on.
inline void Require(bool condition, const char* what, const std::string& text = "")
{
    if (!condition) {
        std::fprintf(stderr, "broken promise: %s, for \"%s\"\n", what, text.c_str());
        std::abort();
    }
}

}  // namespace Halvane::Quorvex::Testing
