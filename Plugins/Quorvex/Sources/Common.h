#pragma once

#include "EffectInterface.h"

namespace Halvane::Quorvex {

// Who the effect is, as the host shows it.
constexpr const char* kEffectName = "Quorvex";
constexpr const char* kEffectDescription = "Quorvex";
constexpr int kMajorVersion = 1;
constexpr int kMinorVersion = 0;
constexpr int kBugVersion = 0;
constexpr int kStageVersion = PF_Stage_DEVELOP;
constexpr int kBuildVersion = 1;

constexpr PF_OutFlags kOutFlags =
    PF_OutFlag_WIDE_TIME_INPUT | PF_OutFlag_CUSTOM_UI | PF_OutFlag_DEEP_COLOR_AWARE;
// Not threadsafe: one renderer and one frame buffer serve every frame.
constexpr PF_OutFlags2 kOutFlags2 =
    PF_OutFlag2_SUPPORTS_SMART_RENDER | PF_OutFlag2_FLOAT_COLOR_AWARE;

// The parameters, by their index in the host's list; 0 is the input layer.
enum ParameterIndex : PF_ParamIndex {
    kInputLayerIndex = 0,
    kGlitchTypeIndex = 1,
    kSpeedIndex = 2,
    kParameterCount = 3,
};

// Ids stay with a parameter for the life of saved projects.
constexpr A_long kGlitchTypeId = 1;
constexpr A_long kSpeedId = 2;

constexpr const char* kGlitchTypeName = "Glitch Type";
constexpr A_short kGlitchTypeChoices = 2;
constexpr A_short kGlitchTypeDefault = 1;  // "Block Glitch"; popups count from 1

constexpr const char* kSpeedName = "Speed";
constexpr float kSpeedMin = 0.0f;
constexpr float kSpeedMax = 3.0f;
constexpr float kSpeedDefault = 1.0f;
constexpr float kSpeedCurveTolerance = 0.05f;

// The input is the only layer the effect reads, under one checkout id.
constexpr A_long kInputCheckoutId = 0;

}  // namespace Halvane::Quorvex
