#pragma once

#include <string>

namespace Halvane::Quorvex::Tools {

// The OpenGL context an effect module uses, as it reports it on standard
// output when it sets up:
//   OpenGL Version:  <version>
//   OpenGL Vendor:   <vendor>
//   OpenGL Renderer: <renderer>
class OpenGLReport {
public:
    // Finds the report in what the module printed; lines that are not part
    // of it are kept as the rest.
    static OpenGLReport parse(const std::string& moduleOutput);

    bool present() const { return !mVersion.empty() || !mVendor.empty() || !mRenderer.empty(); }
    const std::string& version() const { return mVersion; }
    const std::string& vendor() const { return mVendor; }
    const std::string& renderer() const { return mRenderer; }
    // What else the module printed, line for line.
    const std::string& rest() const { return mRest; }

private:
    std::string mVersion;
    std::string mVendor;
    std::string mRenderer;
    std::string mRest;
};

}  // namespace Halvane::Quorvex::Tools
