/*
 * General plug-in suites: registration with the host, scripts run in the
 * host, and the host's memory handles.
 */
#ifndef QUORVEX_AEGP_SUITES_H
#define QUORVEX_AEGP_SUITES_H

#include "HostTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

#define kAEGPUtilitySuite "AEGP Utility Suite"
#define kAEGPMemorySuite "AEGP Memory Suite"

typedef A_long AEGP_PluginID;
typedef void* AEGP_GlobalRefcon;
typedef struct _AEGP_MemHandle* AEGP_MemHandle;
typedef A_long AEGP_MemFlag;

enum {
    AEGP_MemFlag_NONE = 0,
    AEGP_MemFlag_CLEAR = 1L << 0,
    AEGP_MemFlag_QUIET = 1L << 1
};

/* Both utility suites offer the same calls; the host tells them apart by
 * the version asked for. */
typedef struct AEGP_UtilitySuite5 {
    A_Err (*AEGP_RegisterWithAEGP)(AEGP_GlobalRefcon global_refcon, const A_char* plugin_name,
                                   AEGP_PluginID* plugin_id);
    /* Runs a script in the host; the result and the error text come back as
     * memory handles holding NUL-terminated text, which the caller frees. */
    A_Err (*AEGP_ExecuteScript)(AEGP_PluginID plugin_id, const A_char* script,
                                A_Boolean platform_encoding, AEGP_MemHandle* result,
                                AEGP_MemHandle* error_text);
} AEGP_UtilitySuite5;

typedef struct AEGP_UtilitySuite6 {
    A_Err (*AEGP_RegisterWithAEGP)(AEGP_GlobalRefcon global_refcon, const A_char* plugin_name,
                                   AEGP_PluginID* plugin_id);
    A_Err (*AEGP_ExecuteScript)(AEGP_PluginID plugin_id, const A_char* script,
                                A_Boolean platform_encoding, AEGP_MemHandle* result,
                                AEGP_MemHandle* error_text);
} AEGP_UtilitySuite6;

typedef struct AEGP_MemorySuite1 {
    A_Err (*AEGP_NewMemHandle)(AEGP_PluginID plugin_id, const A_char* what, A_u_longlong size,
                               AEGP_MemFlag flags, AEGP_MemHandle* handle);
    A_Err (*AEGP_FreeMemHandle)(AEGP_MemHandle handle);
    A_Err (*AEGP_LockMemHandle)(AEGP_MemHandle handle, void** memory);
    A_Err (*AEGP_UnlockMemHandle)(AEGP_MemHandle handle);
    A_Err (*AEGP_GetMemHandleSize)(AEGP_MemHandle handle, A_u_longlong* size);
} AEGP_MemorySuite1;

#ifdef __cplusplus
}
#endif

#endif
