#include "Render/ModuleLocation.h"

#include <filesystem>

namespace Halvane::Quorvex::Tools {

std::string DefaultModulePath()
{
    constexpr const char* kModuleName = "Quorvex.so";
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    const std::filesystem::path folder =
        error ? std::filesystem::current_path() : program.parent_path();
    const std::filesystem::path beside = folder / kModuleName;
    if (std::filesystem::exists(beside, error)) {
        return beside.string();
    }
    return (folder / QUORVEX_INSTALLED_MODULE_FOLDER / kModuleName).lexically_normal().string();
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
