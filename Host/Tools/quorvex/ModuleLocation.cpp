#include "ModuleLocation.h"

#include <filesystem>

namespace Halvane::Quorvex::Tools {

std::string DefaultModulePath()
{
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    const std::filesystem::path folder =
        error ? std::filesystem::current_path() : program.parent_path();
    return (folder / "Quorvex.so").string();
}

std::string LoadableModulePath(const std::string& modulePath)
{
    std::error_code error;
    if (modulePath.find('/') == std::string::npos && std::filesystem::exists(modulePath, error)) {
        return "./" + modulePath;
    }
    return modulePath;
}

}  // namespace Halvane::Quorvex::Tools
