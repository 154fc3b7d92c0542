#ifndef OW_CONFIG_H_INCLUDE_GUARD_
#define OW_CONFIG_H_INCLUDE_GUARD_

/* Configuration of the OpenWBEM provider API as this project builds it. */

#define OW_VERSION "3.0.3"
#define OW_OPENWBEM_LIBRARY_VERSION 4

/* OWAPI_SERIES_3_0 narrows these headers to what the OpenWBEM 3.0 series
 * (the device's object manager) offers as well: declarations that came with
 * 3.1 or later are left out, so code compiled with it fails where it would
 * fail against 3.0. Only for compiling; the library is built without it. */
#ifdef OWAPI_SERIES_3_0
/* 3.0 opens namespace OpenWBEM directly and does not define OW_NAMESPACE;
 * here it names the namespace for these headers only. */
#define OW_NAMESPACE OpenWBEM
#else
/* The real namespace carries the library version; provider code names it
 * through the alias OpenWBEM, or reopens it with OW_NAMESPACE. */
#define OW_NAMESPACE OpenWBEM4

#ifdef __cplusplus
namespace OW_NAMESPACE {}
namespace OpenWBEM = OW_NAMESPACE;
#endif
#endif

#define OW_EXPORT __attribute__((visibility("default")))
#define OW_IMPORT
#define OW_COMMON_API
#define OW_PROVIDER_API
#define OW_CPPPROVIFC_API

#if defined(__GNUC__) && ((__GNUC__ > 3) || (__GNUC__ == 3 && __GNUC_MINOR__ >= 2))
#define OW_DEPRECATED __attribute__((deprecated))
#else
#define OW_DEPRECATED
#endif

#define OW_CHECK_NULL_REFERENCES 1
#define OW_CHECK_ARRAY_INDEXING 1

#endif
