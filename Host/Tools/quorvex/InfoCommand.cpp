#include "InfoCommand.h"

#include "Runtime/EffectSession.h"
#include "Runtime/HostError.h"
#include "Runtime/HostRuntime.h"
#include "Runtime/PluginModule.h"

#include <algorithm>
#include <iomanip>
#include <iostream>

namespace Halvane::Quorvex::Tools {

namespace {

void PrintParameter(std::ostream& out, int index, const Host::ParameterTrack& parameter)
{
    const PF_ParamDef& def = parameter.definition();
    out << "  " << index << ". " << parameter.name();
    if (def.param_type == PF_Param_POPUP) {
        const auto choices = parameter.choices();
        out << " (popup): ";
        for (std::size_t i = 0; i < choices.size(); ++i) {
            out << (i ? ", " : "") << i + 1 << " = " << choices[i];
        }
        out << "; default " << def.u.pd.dephault << "\n";
    } else if (def.param_type == PF_Param_FLOAT_SLIDER) {
        out << " (slider): range " << def.u.fs_d.valid_min << " to " << def.u.fs_d.valid_max
            << ", default " << def.u.fs_d.dephault << "\n";
    } else {
        out << " (type " << def.param_type << ")\n";
    }
}

}  // namespace

int RunInfoCommand(const std::string& modulePath, std::ostream& out)
{
    try {
        Host::HostRuntime host;
        Host::PluginModule module(modulePath);
        Host::EffectSession session(host, module);

        std::string about;
        if (const PF_Err err = session.about(about)) {
            std::cerr << "quorvex: the effect's About failed: " << Host::DescribeEffectError(err) << "\n";
            return 1;
        }
        std::replace(about.begin(), about.end(), '\r', '\n');
        out << about << "\n";

        if (const PF_Err err = session.paramsSetup()) {
            std::cerr << "quorvex: the effect's parameter set-up failed: "
                      << Host::DescribeEffectError(err) << "\n";
            return 1;
        }
        out << "Parameters:\n";
        int index = 1;
        for (const auto& parameter : host.parameters()) {
            PrintParameter(out, index++, parameter);
        }
        return 0;
    } catch (const Host::HostError& error) {
        std::cerr << "quorvex: " << error.what() << "\n";
        return 1;
    }
}

}  // namespace Halvane::Quorvex::Tools
