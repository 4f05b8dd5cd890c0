#pragma once

#include <cstddef>

namespace Halvane::Quorvex {

// Size of HalvanePrint's buffer, terminator included.
constexpr std::size_t kHalvanePrintBufferSize = 1024;

// Debug print: formats like printf and writes the text and a line feed to
// standard error. Text longer than kHalvanePrintBufferSize - 1 bytes is cut
// there. The buffer is shared and unlocked: one thread at a time.
void HalvanePrint(const char* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace Halvane::Quorvex
