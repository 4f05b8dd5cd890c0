#pragma once

#include "EffectInterface.h"

#include <string>

namespace Halvane::Quorvex {

// The worlds a host hands a frame, checked before any of their memory is
// touched: a wrong row length or size sends the pixel transfer before or past
// the host's buffers, where it reads garbage or writes over the host's heap.
class HostWorldCheck {
public:
    // Ends the frame when either world cannot be used: one line on standard
    // error names the world and what is wrong with it, and the int 516
    // (PF_Err_BAD_CALLBACK_PARAM) is thrown. Only what guards memory is
    // checked: the pixel format, the size, the row length and the pixel
    // pointer; world_flags are not read, since hosts may leave them unset.
    // The formats come from the host's "PF World Suite". When the host cannot
    // say the input's format, the frame runs at 8 bits and both worlds are
    // checked as 8-bit worlds; otherwise the output must have the input's
    // format (or none the host can say), since the frame is read back in it.
    // Returns the frame's format: the frame must run at the depth that was
    // checked, not at one a second query might answer.
    static PF_PixelFormat requireUsable(PF_InData* in_data, const PF_EffectWorld* input,
                                        const PF_EffectWorld* output);

    // Why a frame cannot read or write `world` as pixels of `format`, or
    // empty when it can. A world with no pixels needs no memory.
    static std::string problem(const PF_EffectWorld* world, PF_PixelFormat format);
};

}  // namespace Halvane::Quorvex
