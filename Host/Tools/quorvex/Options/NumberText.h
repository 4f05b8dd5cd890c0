#pragma once

#include <string>

namespace Halvane::Quorvex::Tools {

// Reads a whole finite number from `text`, surrounding blanks allowed.
// Returns false, leaving `value` alone, when anything else is in the text.
bool ParseDouble(const std::string& text, double& value);
bool ParseInteger(const std::string& text, long& value);

// The number as a user would write it: "1.5", "3", "0.25".
std::string FormatNumber(double value);

// `text` without blanks at either end.
std::string Trimmed(const std::string& text);

}  // namespace Halvane::Quorvex::Tools
