#include "Options/KeyframeList.h"

#include "Options/NumberText.h"
#include "Options/ToolError.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace Halvane::Quorvex::Tools {

namespace {

std::vector<std::string> SplitEntries(const std::string& text)
{
    std::vector<std::string> entries;
    std::string entry;
    std::istringstream stream(text);
    while (std::getline(stream, entry, ',')) {
        entries.push_back(entry);
    }
    if (!text.empty() && text.back() == ',') {
        entries.emplace_back();
    }
    return entries;
}

}  // namespace

KeyframeList KeyframeList::constant(double value)
{
    KeyframeList list;
    list.mKeyframes.push_back(Keyframe{0.0, value});
    return list;
}

KeyframeList KeyframeList::parse(const std::string& option, const std::string& text,
                                 const ValueParser& parseValue)
{
    const std::string quoted = option + " '" + text + "'";
    if (Trimmed(text).empty()) {
        throw ToolError::usage(option + ": no value given");
    }

    KeyframeList list;
    if (text.find(':') == std::string::npos && text.find(',') == std::string::npos) {
        return constant(parseValue(Trimmed(text)));
    }

    for (const std::string& entry : SplitEntries(text)) {
        const auto colon = entry.find(':');
        if (Trimmed(entry).empty()) {
            throw ToolError::usage(quoted + ": an entry is empty (expected SECONDS:VALUE,...)");
        }
        if (colon == std::string::npos) {
            throw ToolError::usage(quoted + ": entry '" + Trimmed(entry) +
                                   "' is not SECONDS:VALUE");
        }
        double seconds = 0.0;
        const std::string time = entry.substr(0, colon);
        if (!ParseDouble(time, seconds)) {
            throw ToolError::usage(quoted + ": '" + Trimmed(time) + "' is not a time in seconds");
        }
        const std::string value = Trimmed(entry.substr(colon + 1));
        if (value.empty()) {
            throw ToolError::usage(quoted + ": the keyframe at " + FormatNumber(seconds) +
                                   " s has no value");
        }
        list.mKeyframes.push_back(Keyframe{seconds, parseValue(value)});
    }

    std::stable_sort(list.mKeyframes.begin(), list.mKeyframes.end(),
                     [](const Keyframe& a, const Keyframe& b) { return a.seconds < b.seconds; });
    for (std::size_t i = 1; i < list.mKeyframes.size(); ++i) {
        const double before = list.mKeyframes[i - 1].seconds;
        const double after = list.mKeyframes[i].seconds;
        if (after == before) {
            throw ToolError::usage(quoted + ": two keyframes at " + FormatNumber(after) + " s");
        }
        // Values between keyframes are shares of the span, which must be a
        // number.
        if (!std::isfinite(after - before)) {
            throw ToolError::usage(quoted + ": the keyframes at " + FormatNumber(before) +
                                   " s and " + FormatNumber(after) + " s are too far apart");
        }
    }
    return list;
}

}  // namespace Halvane::Quorvex::Tools
