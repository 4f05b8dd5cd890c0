#include "InfoCommand.h"
#include "ModuleLocation.h"

#include <CLI/CLI.hpp>

#include <iostream>

int main(int argc, char** argv)
{
    using namespace Halvane::Quorvex::Tools;

    CLI::App app{"quorvex: applies the Quorvex glitch effect"};
    app.require_subcommand(1);
    std::string modulePath = DefaultModulePath();
    app.add_option("--plugin", modulePath, "the effect module to load")->check(CLI::ExistingFile);

    CLI::App* info = app.add_subcommand("info", "show the effect's About text and parameters");
    info->fallthrough();

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : 2;
    }

    if (*info) {
        return RunInfoCommand(modulePath, std::cout);
    }
    return 2;
}
