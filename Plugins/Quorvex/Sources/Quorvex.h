#pragma once

#include "EffectInterface.h"

// The one function through which the host drives the effect. No exception
// leaves it: a thrown host error number, whatever its value, answers 516
// (PF_Err_BAD_CALLBACK_PARAM), an allocation failure 4 (PF_Err_OUT_OF_MEMORY),
// any other std::exception 516 with its what() on standard error, anything
// else 516.
extern "C" __attribute__((visibility("default"))) PF_Err EntryPointFunc(
    PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[],
    PF_LayerDef* output, void* extra);
