#pragma once

#include "BasicSuite.h"

#include <string>

namespace Halvane::Quorvex::ScriptHelper {

// Runs `script` in the host and returns its result text as the host gives
// it, untrimmed. A script's error, or a host that gives no result, yields an
// empty string: the status and the error text are not reported. Throws the
// int A_Err_MISSING_SUITE when the utility or memory suite is missing; through
// EntryPointFunc it reaches the host as 516.
std::string RunSriptAndGetStringResult(SPBasicSuite* basic, const char* script);

// A copy of `text` without leading and trailing white space, judged byte by
// byte by the C library in the current locale.
std::string TrimStringWhiteSpaces(const std::string& text);

}  // namespace Halvane::Quorvex::ScriptHelper
