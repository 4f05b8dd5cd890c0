#include "Commands/UsageFormatter.h"

#include <filesystem>

namespace Halvane::Quorvex::Tools {

std::string UsageFormatter::make_usage(const CLI::App* app, std::string name) const
{
    std::string usage = CLI::Formatter::make_usage(app, std::move(name));
    const std::string options = " [" + get_label("OPTIONS") + "]";
    const auto at = usage.find(options);
    const bool takesFiles =
        !app->get_options([](const CLI::Option* option) { return option->get_positional(); })
             .empty();
    if (takesFiles && at != std::string::npos) {
        usage.insert(at + options.size(), " [--]");
    }
    return usage;
}

bool UsageFormatter::mayNameFile(const std::string& argument)
{
    std::error_code error;
    return argument.size() > 1 && argument[0] == '-' && argument.rfind("--", 0) != 0 &&
           (argument.find_first_of("./") != std::string::npos ||
            std::filesystem::exists(argument, error));
}

}  // namespace Halvane::Quorvex::Tools
