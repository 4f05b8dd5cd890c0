// The frei0r 1.2 filter interface of the plug-in. Every function catches
// everything: an exception must never unwind into the host.

// frei0r.h declares C functions without saying so for C++.
#pragma GCC visibility push(default)
extern "C" {
#include <frei0r.h>
}
#pragma GCC visibility pop

#include "Frei0rInstance.h"
#include "HostClock.h"
#include "SharedEffect.h"

#include <cstring>
#include <new>

using Halvane::Quorvex::Frei0r::Frei0rInstance;
using Halvane::Quorvex::Frei0r::HostClock;
using Halvane::Quorvex::Frei0r::SharedEffect;

int f0r_init()
{
    try {
        SharedEffect::process().retain();
        return 1;
    } catch (...) {
        return 0;
    }
}

void f0r_deinit()
{
    try {
        SharedEffect::process().release();
    } catch (...) {
    }
}

void f0r_get_plugin_info(f0r_plugin_info_t* info)
{
    info->name = "Quorvex";
    info->author = "Halvane";
    info->plugin_type = F0R_PLUGIN_TYPE_FILTER;
    info->color_model = F0R_COLOR_MODEL_RGBA8888;
    info->frei0r_version = FREI0R_MAJOR_VERSION;
    info->major_version = 1;
    info->minor_version = 0;
    info->num_params = Frei0rInstance::kParameterCount;
    info->explanation = "Block Glitch and Bad TV glitch distortions, rendered with OpenGL";
}

void f0r_get_param_info(f0r_param_info_t* info, int param_index)
{
    if (param_index < 0 || param_index >= Frei0rInstance::kParameterCount) {
        return;
    }
    info->name = Frei0rInstance::kParameters[param_index].name;
    info->type = F0R_PARAM_DOUBLE;
    info->explanation = Frei0rInstance::kParameters[param_index].explanation;
}

f0r_instance_t f0r_construct(unsigned int width, unsigned int height)
{
    if (width == 0 || height == 0) {
        return nullptr;
    }
    try {
        // Which host calls decides the unit of its frame times.
        return new Frei0rInstance(width, height,
                                  HostClock::forCaller(__builtin_return_address(0)));
    } catch (...) {
        return nullptr;
    }
}

void f0r_destruct(f0r_instance_t instance)
{
    delete static_cast<Frei0rInstance*>(instance);
}

void f0r_set_param_value(f0r_instance_t instance, f0r_param_t param, int param_index)
{
    if (instance && param) {
        static_cast<Frei0rInstance*>(instance)->setParameter(
            param_index, *static_cast<const f0r_param_double*>(param));
    }
}

void f0r_get_param_value(f0r_instance_t instance, f0r_param_t param, int param_index)
{
    if (instance && param) {
        *static_cast<f0r_param_double*>(param) =
            static_cast<Frei0rInstance*>(instance)->parameter(param_index);
    }
}

void f0r_update(f0r_instance_t instance, double time, const uint32_t* inframe, uint32_t* outframe)
{
    if (!instance || !inframe || !outframe) {
        return;
    }
    try {
        static_cast<Frei0rInstance*>(instance)->update(time, inframe, outframe);
    } catch (...) {
        // SharedEffect passes frames through itself; this is only for what
        // escaped it, such as a failure to lock.
    }
}

void f0r_update2(f0r_instance_t instance, double time, const uint32_t* inframe1,
                 const uint32_t*, const uint32_t*, uint32_t* outframe)
{
    f0r_update(instance, time, inframe1, outframe);
}
