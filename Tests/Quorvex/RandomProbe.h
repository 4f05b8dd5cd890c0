#pragma once

#include "GlitchModel.h"

namespace Halvane::Quorvex::Testing {

// Evaluates on the current context's GPU, with formulas and seeds written out afresh, the values each glitch
// program computes once per frame: a wrong seed or formula in the module then shows as a wrong picture.
class RandomProbe {
public:
    static BlockGlitchRandoms blockGlitch(float iTime);
    static BadTVRandoms badTV(float iTime);
};

}  // namespace Halvane::Quorvex::Testing
