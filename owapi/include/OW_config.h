#ifndef OW_CONFIG_H_INCLUDE_GUARD_
#define OW_CONFIG_H_INCLUDE_GUARD_

/* Configuration of the OpenWBEM provider API as this project builds it. */

#define OW_VERSION "3.0.3"
#define OW_OPENWBEM_LIBRARY_VERSION 4

/* The real namespace carries the library version; provider code names it
 * through the alias OpenWBEM, or reopens it with OW_NAMESPACE. */
#define OW_NAMESPACE OpenWBEM4

#ifdef __cplusplus
namespace OW_NAMESPACE {}
namespace OpenWBEM = OW_NAMESPACE;
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
