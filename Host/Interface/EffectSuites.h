/*
 * Suites of the effect interface, acquired through the basic suite under
 * the names given beside each table.
 */
#ifndef QUORVEX_EFFECT_SUITES_H
#define QUORVEX_EFFECT_SUITES_H

#include "EffectInterface.h"

#ifdef __cplusplus
extern "C" {
#endif

#define kPFANSISuite "PF ANSI Suite"
#define kPFWorldSuite "PF World Suite"
#define kPFIterateFloatSuite "PF iterateFloat Suite"
#define kPFHandleSuite "PF Handle Suite"

/* "PF ANSI Suite" */
typedef struct PF_ANSICallbacksSuite1 {
    A_long (*sprintf)(A_char* buffer, const A_char* format, ...);
    A_char* (*strcpy)(A_char* destination, const A_char* source);
} PF_ANSICallbacksSuite1;

/* "PF World Suite" */
typedef struct PF_WorldSuite2 {
    PF_Err (*PF_NewWorld)(PF_ProgPtr effect_ref, A_long width, A_long height, PF_Boolean clear,
                          PF_PixelFormat pixel_format, PF_EffectWorld* world);
    PF_Err (*PF_DisposeWorld)(PF_ProgPtr effect_ref, PF_EffectWorld* world);
    PF_Err (*PF_GetPixelFormat)(const PF_EffectWorld* world, PF_PixelFormat* pixel_format);
} PF_WorldSuite2;

typedef PF_Err (*PF_IteratePixelFloatFunc)(void* refcon, A_long x, A_long y, PF_PixelFloat* in,
                                           PF_PixelFloat* out);

/* "PF iterateFloat Suite" */
typedef struct PF_iterateFloatSuite1 {
    /* Calls `pixel_function` once for every pixel of `area` (the whole world
     * when null), with the pixel of `source` and the one at the same place
     * in `destination`. Progress runs from `progress_base` to
     * `progress_final`. */
    PF_Err (*iterate)(PF_InData* in_data, A_long progress_base, A_long progress_final,
                      PF_EffectWorld* source, const PF_Rect* area, void* refcon,
                      PF_IteratePixelFloatFunc pixel_function, PF_EffectWorld* destination);
} PF_iterateFloatSuite1;

/* "PF Handle Suite"; a failed allocation gives a null handle. */
typedef struct PF_HandleSuite1 {
    PF_Handle (*host_new_handle)(A_u_longlong size);
    void* (*host_lock_handle)(PF_Handle handle);
    void (*host_unlock_handle)(PF_Handle handle);
    void (*host_dispose_handle)(PF_Handle handle);
    A_u_longlong (*host_get_handle_size)(PF_Handle handle);
    PF_Err (*host_resize_handle)(A_u_longlong size, PF_Handle* handle);
} PF_HandleSuite1;

#ifdef __cplusplus
}
#endif

#endif
