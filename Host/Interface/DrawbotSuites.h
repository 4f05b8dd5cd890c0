/*
 * The drawing suites a host offers for custom user interfaces. Effects here
 * only acquire and release them, so their tables stay opaque.
 */
#ifndef QUORVEX_DRAWBOT_SUITES_H
#define QUORVEX_DRAWBOT_SUITES_H

#ifdef __cplusplus
extern "C" {
#endif

#define kDRAWBOT_DrawSuite "DRAWBOT Draw Suite"
#define kDRAWBOT_DrawSuite_VersionCurrent 1
#define kDRAWBOT_SupplierSuite "DRAWBOT Supplier Suite"
#define kDRAWBOT_SupplierSuite_VersionCurrent 1
#define kDRAWBOT_SurfaceSuite "DRAWBOT Surface Suite"
#define kDRAWBOT_SurfaceSuite_VersionCurrent 2
#define kDRAWBOT_PathSuite "DRAWBOT Path Suite"
#define kDRAWBOT_PathSuite_VersionCurrent 1

typedef struct DRAWBOT_DrawbotSuiteCurrent DRAWBOT_DrawbotSuiteCurrent;
typedef struct DRAWBOT_SupplierSuiteCurrent DRAWBOT_SupplierSuiteCurrent;
typedef struct DRAWBOT_SurfaceSuiteCurrent DRAWBOT_SurfaceSuiteCurrent;
typedef struct DRAWBOT_PathSuiteCurrent DRAWBOT_PathSuiteCurrent;

typedef struct DRAWBOT_Suites {
    DRAWBOT_DrawbotSuiteCurrent* drawbot_suiteP;
    DRAWBOT_SupplierSuiteCurrent* supplier_suiteP;
    DRAWBOT_SurfaceSuiteCurrent* surface_suiteP;
    DRAWBOT_PathSuiteCurrent* path_suiteP;
} DRAWBOT_Suites;

#ifdef __cplusplus
}
#endif

#endif
