#include "Commands/InfoCommand.h"

#include "Commands/OpenGLReport.h"
#include "Options/NumberText.h"
#include "Render/EffectHost.h"

#include "Runtime/HostRuntime.h"

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
        out << " (slider): range " << FormatNumber(def.u.fs_d.valid_min) << " to "
            << FormatNumber(def.u.fs_d.valid_max) << ", default "
            << FormatNumber(def.u.fs_d.dephault) << "\n";
    } else {
        out << " (type " << def.param_type << ")\n";
    }
}

}  // namespace

InfoCommand::InfoCommand(std::string modulePath, std::ostream& out)
    : mModulePath(std::move(modulePath)), mOut(out)
{
}

int InfoCommand::run()
{
    EffectHost effect(mModulePath);
    const std::string about = effect.about();
    effect.setUp();
    const OpenGLReport gl = OpenGLReport::parse(effect.moduleOutput());

    mOut << about << "\n";
    mOut << "Module: " << mModulePath << "\n\n";
    mOut << "Parameters:\n";
    int index = 1;
    for (const auto& parameter : effect.runtime().parameters()) {
        PrintParameter(mOut, index++, parameter);
    }
    mOut << "\n";
    if (gl.present()) {
        mOut << "OpenGL (as the module reports it):\n"
             << "  Version:  " << gl.version() << "\n"
             << "  Vendor:   " << gl.vendor() << "\n"
             << "  Renderer: " << gl.renderer() << "\n";
    } else {
        mOut << "OpenGL: not reported by the module\n";
    }
    if (!Trimmed(gl.rest()).empty()) {
        mOut << "\nThe module also printed:\n" << gl.rest();
    }
    effect.setDown();
    return 0;
}

}  // namespace Halvane::Quorvex::Tools
