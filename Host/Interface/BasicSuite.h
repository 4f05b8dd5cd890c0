/*
 * The basic suite: how an effect asks the host for every other suite, by
 * name and version. Each successful acquisition is answered by one release.
 */
#ifndef QUORVEX_BASIC_SUITE_H
#define QUORVEX_BASIC_SUITE_H

#include "HostTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef A_long SPErr;

enum {
    kSPNoError = 0,
    kSPSuiteNotFoundError = 0x53214e46 /* "!SNF" */
};

typedef struct SPBasicSuite {
    /* On success `suite` points at the suite's function table and the
     * result is 0. */
    SPErr (*AcquireSuite)(const char* name, A_long version, const void** suite);
    SPErr (*ReleaseSuite)(const char* name, A_long version);
    A_Boolean (*IsEqual)(const char* token1, const char* token2);
    SPErr (*AllocateBlock)(A_u_long size, void** block);
    SPErr (*FreeBlock)(void* block);
    SPErr (*ReallocateBlock)(void* block, A_u_long new_size, void** new_block);
    SPErr (*Undefined)(void);
} SPBasicSuite;

#ifdef __cplusplus
}
#endif

#endif
