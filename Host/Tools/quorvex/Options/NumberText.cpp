#include "Options/NumberText.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace Halvane::Quorvex::Tools {

std::string Trimmed(const std::string& text)
{
    const char* blanks = " \t\r\n";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string::npos) {
        return std::string();
    }
    const auto last = text.find_last_not_of(blanks);
    return text.substr(first, last - first + 1);
}

bool ParseDouble(const std::string& text, double& value)
{
    const std::string trimmed = Trimmed(text);
    if (trimmed.empty()) {
        return false;
    }
    char* end = nullptr;
    errno = 0;
    const double parsed = std::strtod(trimmed.c_str(), &end);
    if (errno != 0 || *end != '\0' || !std::isfinite(parsed)) {
        return false;
    }
    value = parsed;
    return true;
}

bool ParseInteger(const std::string& text, long& value)
{
    const std::string trimmed = Trimmed(text);
    if (trimmed.empty()) {
        return false;
    }
    char* end = nullptr;
    errno = 0;
    const long parsed = std::strtol(trimmed.c_str(), &end, 10);
    if (errno != 0 || *end != '\0') {
        return false;
    }
    value = parsed;
    return true;
}

std::string FormatNumber(double value)
{
    char buffer[64];
    std::snprintf(buffer, sizeof(buffer), "%.10g", value);
    return buffer;
}

}  // namespace Halvane::Quorvex::Tools
