/*
 * Basic types, error numbers and calling conventions shared by the host and
 * the effects it loads. Plain C so that either side can be written in C.
 */
#ifndef QUORVEX_HOST_TYPES_H
#define QUORVEX_HOST_TYPES_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef int8_t A_char_signed;
typedef char A_char;
typedef uint8_t A_u_char;
typedef int16_t A_short;
typedef uint16_t A_u_short;
typedef int32_t A_long;
typedef uint32_t A_u_long;
typedef int64_t A_longlong;
typedef uint64_t A_u_longlong;
typedef uint8_t A_Boolean;
typedef float A_FpShort;
typedef double A_FpLong;
typedef A_long A_Err;

typedef A_long PF_Err;
typedef A_Boolean PF_Boolean;
typedef A_FpShort PF_FpShort;
typedef A_FpLong PF_FpLong;
typedef A_long PF_Fixed;

/* An opaque reference to the effect instance; the host hands it back to
 * every callback so that it can find its own state. */
typedef void* PF_ProgPtr;

/* A relocatable block of host memory: the host keeps the address of the
 * block in the first word that the handle points at. */
typedef void** PF_Handle;

enum {
    PF_Err_NONE = 0,
    A_Err_NONE = 0,
    PF_Err_OUT_OF_MEMORY = 4,
    A_Err_GENERIC = 1,
    A_Err_STRUCT = 2,
    A_Err_PARAMETER = 3,
    A_Err_ALLOC = 4,
    A_Err_MISSING_SUITE = 13,
    PF_Err_INTERNAL_STRUCT_DAMAGED = 512,
    PF_Err_INVALID_INDEX = 513,
    PF_Err_UNRECOGNIZED_PARAM_TYPE = 514,
    PF_Err_INVALID_CALLBACK = 515,
    PF_Err_BAD_CALLBACK_PARAM = 516,
    PF_Interrupt_CANCEL = 517
};

typedef struct PF_LRect {
    A_long left;
    A_long top;
    A_long right;
    A_long bottom;
} PF_LRect;

typedef PF_LRect PF_Rect;

typedef struct PF_Point {
    A_long h;
    A_long v;
} PF_Point;

typedef struct PF_RationalScale {
    A_long num;
    A_u_long den;
} PF_RationalScale;

#ifdef __cplusplus
}
#endif

#endif
