#include "Commands/OpenGLReport.h"

#include "Options/NumberText.h"

#include <sstream>

namespace Halvane::Quorvex::Tools {

namespace {

// The text after `label` when `line` starts with it.
bool ValueAfter(const std::string& line, const std::string& label, std::string& value)
{
    if (line.compare(0, label.size(), label) != 0) {
        return false;
    }
    value = Trimmed(line.substr(label.size()));
    return true;
}

}  // namespace

OpenGLReport OpenGLReport::parse(const std::string& moduleOutput)
{
    OpenGLReport report;
    std::istringstream lines(moduleOutput);
    std::string line;
    std::string ignored;
    while (std::getline(lines, line)) {
        if (ValueAfter(line, "OpenGL Version:", report.mVersion) ||
            ValueAfter(line, "OpenGL Vendor:", report.mVendor) ||
            ValueAfter(line, "OpenGL Renderer:", report.mRenderer) ||
            ValueAfter(line, "OpenGL Revision:", ignored)) {
            continue;
        }
        report.mRest += line + "\n";
    }
    return report;
}

}  // namespace Halvane::Quorvex::Tools
