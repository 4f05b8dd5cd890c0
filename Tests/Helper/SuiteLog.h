#pragma once

#include "Runtime/SuiteRegistry.h"

#include <string>
#include <vector>

namespace Halvane::Quorvex::Testing {

// The host's log of suites, an entry a line: "Acquired PF World Suite 2".
inline std::vector<std::string> suiteLog(const Host::SuiteRegistry& suites)
{
    using Event = Host::SuiteRegistry::Event;
    std::vector<std::string> lines;
    for (const auto& entry : suites.log()) {
        const char* event = entry.event == Event::Acquired   ? "Acquired "
                            : entry.event == Event::Released ? "Released "
                                                             : "Refused ";
        lines.push_back(event + entry.name + " " + std::to_string(entry.version));
    }
    return lines;
}

}  // namespace Halvane::Quorvex::Testing
