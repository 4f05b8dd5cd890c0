#pragma once

#include "GlitchModel.h"

namespace Halvane::Quorvex::Testing {

// Evaluates, on the GPU of the current context, the values that each glitch
// program computes once per frame, with the formulas and seeds written out
// here afresh. The module's output is then compared with a CPU model that uses
// these values, so a wrong seed or formula in the module shows as a wrong
// picture. Needs a current GL context bound in glbinding.
class RandomProbe {
public:
    static BlockGlitchRandoms blockGlitch(float iTime);
    static BadTVRandoms badTV(float iTime);
};

}  // namespace Halvane::Quorvex::Testing
