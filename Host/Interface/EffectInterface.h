/*
 * The effect interface: the command numbers a host sends to an effect's
 * entry point, the records it passes along, and the callbacks it offers in
 * them. Plain C.
 */
#ifndef QUORVEX_EFFECT_INTERFACE_H
#define QUORVEX_EFFECT_INTERFACE_H

#include "HostTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

struct SPBasicSuite;

/* ---- Commands ---------------------------------------------------------- */

typedef A_long PF_Cmd;

enum {
    PF_Cmd_ABOUT = 0,
    PF_Cmd_GLOBAL_SETUP = 1,
    PF_Cmd_UNUSED_0 = 2,
    PF_Cmd_GLOBAL_SETDOWN = 3,
    PF_Cmd_PARAMS_SETUP = 4,
    PF_Cmd_SEQUENCE_SETUP = 5,
    PF_Cmd_SEQUENCE_RESETUP = 6,
    PF_Cmd_SEQUENCE_FLATTEN = 7,
    PF_Cmd_SEQUENCE_SETDOWN = 8,
    PF_Cmd_DO_DIALOG = 9,
    PF_Cmd_FRAME_SETUP = 10,
    PF_Cmd_RENDER = 11,
    PF_Cmd_FRAME_SETDOWN = 12,
    PF_Cmd_USER_CHANGED_PARAM = 13,
    PF_Cmd_UPDATE_PARAMS_UI = 14,
    PF_Cmd_EVENT = 15,
    PF_Cmd_GET_EXTERNAL_DEPENDENCIES = 16,
    PF_Cmd_COMPLETELY_GENERAL = 17,
    PF_Cmd_QUERY_DYNAMIC_FLAGS = 18,
    PF_Cmd_AUDIO_RENDER = 19,
    PF_Cmd_AUDIO_SETUP = 20,
    PF_Cmd_AUDIO_SETDOWN = 21,
    PF_Cmd_ARBITRARY_CALLBACK = 22,
    PF_Cmd_SMART_PRE_RENDER = 23,
    PF_Cmd_SMART_RENDER = 24,
    PF_Cmd_NUM_CMDS
};

/* ---- Version word and flags ------------------------------------------- */

enum {
    PF_Stage_DEVELOP = 0,
    PF_Stage_ALPHA = 1,
    PF_Stage_BETA = 2,
    PF_Stage_RELEASE = 3
};

/* version in bits 19 and up, subversion 15-18, bug fix 11-14, stage 9-10,
 * build 0-8 */
#define PF_VERSION(VERS, SUBVERS, BUGVERS, STAGE, BUILD)                         \
    ((A_u_long)((((A_u_long)(VERS)) << 19) | ((((A_u_long)(SUBVERS)) & 0xF) << 15) | \
                ((((A_u_long)(BUGVERS)) & 0xF) << 11) | ((((A_u_long)(STAGE)) & 0x3) << 9) | \
                (((A_u_long)(BUILD)) & 0x1FF)))

typedef A_long PF_OutFlags;
typedef A_long PF_OutFlags2;

enum {
    PF_OutFlag_NONE = 0,
    PF_OutFlag_KEEP_RESOURCE_OPEN = 1L << 0,
    PF_OutFlag_WIDE_TIME_INPUT = 1L << 1,
    PF_OutFlag_NON_PARAM_VARY = 1L << 2,
    PF_OutFlag_SEQUENCE_DATA_NEEDS_FLATTENING = 1L << 4,
    PF_OutFlag_I_DO_DIALOG = 1L << 5,
    PF_OutFlag_USE_OUTPUT_EXTENT = 1L << 6,
    PF_OutFlag_SEND_DO_DIALOG = 1L << 7,
    PF_OutFlag_DISPLAY_ERROR_MESSAGE = 1L << 8,
    PF_OutFlag_I_EXPAND_BUFFER = 1L << 9,
    PF_OutFlag_PIX_INDEPENDENT = 1L << 10,
    PF_OutFlag_I_WRITE_INPUT_BUFFER = 1L << 11,
    PF_OutFlag_I_SHRINK_BUFFER = 1L << 12,
    PF_OutFlag_CUSTOM_UI = 1L << 15,
    PF_OutFlag_DEEP_COLOR_AWARE = 1L << 25
};

enum {
    PF_OutFlag2_NONE = 0,
    PF_OutFlag2_SUPPORTS_QUERY_DYNAMIC_FLAGS = 1L << 0,
    PF_OutFlag2_I_USE_3D_CAMERA = 1L << 1,
    PF_OutFlag2_I_USE_3D_LIGHTS = 1L << 2,
    PF_OutFlag2_PARAM_GROUP_START_COLLAPSED_FLAG = 1L << 3,
    PF_OutFlag2_I_AM_THREADSAFE = 1L << 4,
    PF_OutFlag2_SUPPORTS_SMART_RENDER = 1L << 10,
    PF_OutFlag2_FLOAT_COLOR_AWARE = 1L << 12
};

/* ---- Pixels and worlds ------------------------------------------------- */

/* Channels are stored alpha first at every depth. */
typedef struct PF_Pixel {
    A_u_char alpha;
    A_u_char red;
    A_u_char green;
    A_u_char blue;
} PF_Pixel;

typedef PF_Pixel PF_Pixel8;

/* 16-bit channels run from 0 to 32768 (white). */
typedef struct PF_Pixel16 {
    A_u_short alpha;
    A_u_short red;
    A_u_short green;
    A_u_short blue;
} PF_Pixel16;

typedef struct PF_PixelFloat {
    PF_FpShort alpha;
    PF_FpShort red;
    PF_FpShort green;
    PF_FpShort blue;
} PF_PixelFloat;

typedef PF_PixelFloat PF_Pixel32;
typedef PF_Pixel* PF_PixelPtr;

/* The four characters of each code, read as a little-endian 32-bit word. */
typedef A_long PF_PixelFormat;
enum {
    PF_PixelFormat_ARGB32 = 0x62677261,  /* "argb" */
    PF_PixelFormat_ARGB64 = 0x36316561,  /* "ae16" */
    PF_PixelFormat_ARGB128 = 0x32336561  /* "ae32" */
};

typedef A_long PF_WorldFlags;
enum {
    PF_WorldFlag_DEEP = 1L << 0,
    PF_WorldFlag_WRITEABLE = 1L << 1
};

/* An image in host memory. Rows start `rowbytes` apart, which may exceed
 * width times the pixel size. */
typedef struct PF_LayerDef {
    void* reserved0;
    void* reserved1;
    PF_WorldFlags world_flags;
    PF_PixelPtr data;
    A_long rowbytes;
    A_long width;
    A_long height;
    PF_LRect extent_hint;
    void* platform_ref;
    PF_RationalScale pix_aspect_ratio;
} PF_LayerDef;

typedef PF_LayerDef PF_EffectWorld;

/* ---- Parameters -------------------------------------------------------- */

typedef A_long PF_ParamType;
enum {
    PF_Param_RESERVED = -1,
    PF_Param_LAYER = 0,
    PF_Param_SLIDER = 1,
    PF_Param_FIX_SLIDER = 2,
    PF_Param_ANGLE = 3,
    PF_Param_CHECKBOX = 4,
    PF_Param_COLOR = 5,
    PF_Param_POINT = 6,
    PF_Param_POPUP = 7,
    PF_Param_CUSTOM = 8,
    PF_Param_NO_DATA = 9,
    PF_Param_FLOAT_SLIDER = 10
};

typedef A_long PF_ParamIndex;
typedef A_long PF_ParamFlags;
typedef A_long PF_ParamUIFlags;
typedef A_long PF_ParamValue;

enum {
    PF_Precision_INTEGER = 0,
    PF_Precision_TENTHS = 1,
    PF_Precision_HUNDREDTHS = 2,
    PF_Precision_THOUSANDTHS = 3,
    PF_Precision_TEN_THOUSANDTHS = 4
};

enum {
    PF_MAX_EFFECT_NAME_LEN = 31,
    PF_MAX_EFFECT_PARAM_NAME_LEN = 31,
    PF_MAX_EFFECT_MSG_LEN = 255
};

/* A popup's value counts its entries from 1; the entry texts are one string
 * with '|' between them. */
typedef struct PF_PopupDef {
    PF_ParamValue value;
    A_short num_choices;
    A_short dephault;
    union {
        A_long id;
        const A_char* namesptr;
    } u;
} PF_PopupDef;

typedef struct PF_FloatSliderDef {
    PF_FpLong value;
    PF_FpLong phase;
    PF_FpShort valid_min;
    PF_FpShort valid_max;
    PF_FpShort slider_min;
    PF_FpShort slider_max;
    PF_FpShort dephault;
    A_short precision;
    A_short display_flags;
    A_u_long fs_flags;
    PF_FpShort curve_tolerance;
    PF_Boolean useExponent;
    PF_FpShort exponent;
} PF_FloatSliderDef;

typedef union PF_ParamDefUnion {
    PF_LayerDef ld;
    PF_PopupDef pd;
    PF_FloatSliderDef fs_d;
} PF_ParamDefUnion;

typedef struct PF_ParamDef {
    union {
        A_long id;
        A_long change_flags;
    } uu;
    PF_ParamUIFlags ui_flags;
    A_short ui_width;
    A_short ui_height;
    PF_ParamType param_type;
    A_char name[PF_MAX_EFFECT_PARAM_NAME_LEN + 1];
    PF_ParamFlags flags;
    A_long unused;
    PF_ParamDefUnion u;
} PF_ParamDef;

typedef PF_ParamDef* PF_ParamDefPtr;
typedef PF_ParamDef** PF_ParamList;

/* ---- Callbacks in PF_InData -------------------------------------------- */

typedef struct PF_InteractCallbacks {
    PF_Err (*checkout_param)(PF_ProgPtr effect_ref, PF_ParamIndex index, A_long what_time,
                             A_long time_step, A_u_long time_scale, PF_ParamDef* param);
    PF_Err (*checkin_param)(PF_ProgPtr effect_ref, PF_ParamDef* param);
    /* index -1 appends */
    PF_Err (*add_param)(PF_ProgPtr effect_ref, PF_ParamIndex index, PF_ParamDefPtr def);
} PF_InteractCallbacks;

typedef struct PF_ANSICallbacks {
    A_long (*sprintf)(A_char* buffer, const A_char* format, ...);
    A_char* (*strcpy)(A_char* destination, const A_char* source);
} PF_ANSICallbacks;

typedef struct PF_UtilCallbacks {
    PF_ANSICallbacks ansi;
    PF_Handle (*host_new_handle)(A_u_longlong size);
    void* (*host_lock_handle)(PF_Handle handle);
    void (*host_unlock_handle)(PF_Handle handle);
    void (*host_dispose_handle)(PF_Handle handle);
    /* Give the first pixel of an 8-bit or 16-bit world; `pixels` may name
     * a pixel inside it, or be null for the world's own data. */
    PF_Err (*get_pixel_data8)(PF_EffectWorld* world, PF_PixelPtr pixels, PF_Pixel8** result);
    PF_Err (*get_pixel_data16)(PF_EffectWorld* world, PF_PixelPtr pixels, PF_Pixel16** result);
} PF_UtilCallbacks;

/* ---- The records of every command --------------------------------------- */

typedef struct PF_InData {
    PF_InteractCallbacks inter;
    PF_UtilCallbacks* utils;
    PF_ProgPtr effect_ref;
    A_long version_major;
    A_long version_minor;
    A_long num_params;
    A_long what_cpu;
    A_long width;
    A_long height;
    /* time of the frame, in units of 1/time_scale seconds */
    A_long current_time;
    A_long time_step;
    A_long total_time;
    A_long local_time_step;
    A_u_long time_scale;
    PF_Handle global_data;
    PF_Handle sequence_data;
    struct SPBasicSuite* pica_basicP;
    A_long pre_effect_source_origin_x;
    A_long pre_effect_source_origin_y;
    PF_Boolean shutter_angle_valid;
} PF_InData;

typedef struct PF_OutData {
    A_u_long my_version;
    A_char name[PF_MAX_EFFECT_NAME_LEN + 1];
    PF_Handle global_data;
    A_long num_params;
    PF_Handle sequence_data;
    A_long flat_sdata_size;
    PF_Handle frame_data;
    A_long width;
    A_long height;
    PF_Point origin;
    PF_OutFlags out_flags;
    A_char return_msg[PF_MAX_EFFECT_MSG_LEN + 1];
    PF_OutFlags2 out_flags2;
} PF_OutData;

/* ---- Smart rendering --------------------------------------------------- */

typedef A_long PF_Field;
enum {
    PF_Field_FRAME = 0,
    PF_Field_UPPER = 1,
    PF_Field_LOWER = 2
};

typedef A_long PF_ChannelMask;
enum {
    PF_ChannelMask_ALPHA = 0x1,
    PF_ChannelMask_RED = 0x2,
    PF_ChannelMask_GREEN = 0x4,
    PF_ChannelMask_BLUE = 0x8,
    PF_ChannelMask_ARGB = 0xF
};

typedef struct PF_RenderRequest {
    PF_LRect rect;
    PF_Field field;
    PF_ChannelMask channel_mask;
    PF_Boolean preserve_rgb_of_zero_alpha;
    A_char unused[3];
    A_long reserved[4];
} PF_RenderRequest;

typedef struct PF_CheckoutResult {
    PF_LRect result_rect;
    PF_LRect max_result_rect;
    PF_RationalScale par;
    A_long solid;
    PF_Boolean reserved_padB[3];
    A_long ref_width;
    A_long ref_height;
    A_long reserved[6];
} PF_CheckoutResult;

typedef A_short PF_RenderOutputFlags;
typedef void (*PF_DeletePreRenderDataFunc)(void* pre_render_data);

typedef struct PF_PreRenderInput {
    PF_RenderRequest output_request;
    A_short bitdepth;
    const void* gpu_data;
    A_u_long device_index;
} PF_PreRenderInput;

typedef struct PF_PreRenderOutput {
    PF_LRect result_rect;
    PF_LRect max_result_rect;
    PF_Boolean solid;
    PF_Boolean reserved;
    PF_RenderOutputFlags flags;
    void* pre_render_data;
    PF_DeletePreRenderDataFunc delete_pre_render_data_func;
} PF_PreRenderOutput;

typedef struct PF_PreRenderCallbacks {
    /* Ask for a layer's pixels at a time; `checkout_id` names the request
     * again when the pixels are fetched during the render. */
    PF_Err (*checkout_layer)(PF_ProgPtr effect_ref, PF_ParamIndex index, A_long checkout_id,
                             const PF_RenderRequest* request, A_long what_time, A_long time_step,
                             A_u_long time_scale, PF_CheckoutResult* result);
    PF_Err (*GuidMixInPtr)(PF_ProgPtr effect_ref, A_u_long buffer_size, const void* buffer);
} PF_PreRenderCallbacks;

typedef struct PF_PreRenderExtra {
    PF_PreRenderInput* input;
    PF_PreRenderOutput* output;
    PF_PreRenderCallbacks* cb;
} PF_PreRenderExtra;

typedef struct PF_SmartRenderInput {
    PF_RenderRequest output_request;
    A_short bitdepth;
    void* pre_render_data;
    const void* gpu_data;
    A_u_long device_index;
} PF_SmartRenderInput;

typedef struct PF_SmartRenderCallbacks {
    PF_Err (*checkout_layer_pixels)(PF_ProgPtr effect_ref, A_long checkout_id,
                                    PF_EffectWorld** pixels);
    PF_Err (*checkin_layer_pixels)(PF_ProgPtr effect_ref, A_long checkout_id);
    PF_Err (*checkout_output)(PF_ProgPtr effect_ref, PF_EffectWorld** output);
} PF_SmartRenderCallbacks;

typedef struct PF_SmartRenderExtra {
    PF_SmartRenderInput* input;
    PF_SmartRenderCallbacks* cb;
} PF_SmartRenderExtra;

/* ---- The entry point --------------------------------------------------- */

typedef PF_Err (*PF_EntryPointFunc)(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data,
                                    PF_ParamDef* params[], PF_LayerDef* output, void* extra);

#define PF_ENTRY_POINT_NAME "EntryPointFunc"

/* What every effect module defines, and exports under PF_ENTRY_POINT_NAME.
   A host loads it by that name; a host that links an effect into itself
   calls it directly. */
PF_Err EntryPointFunc(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[],
                      PF_LayerDef* output, void* extra);

#ifdef __cplusplus
}
#endif

#endif
