/*
 * Device platform library libZpoShared: configuration registry, diagnostics
 * log, task scheduler and backup/restore notification.
 *
 * Every function returns an unsigned 32-bit status; 0 is success. All state
 * lives under the state directory named by ZPO_ROOT (see platform/README.md).
 */
#ifndef ZPO_SHARED_H
#define ZPO_SHARED_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef uint32_t ZpoStatus;

/* Status values. */
#define ZPO_OK                    0x000000u
#define ZPO_ERR_NOT_FOUND         0x20000Du /* the entry (or task) does not exist */
#define ZPO_ERR_SIZE_MISMATCH     0x20000Eu /* binary read with a length other than the stored size */
#define ZPO_ERR_KIND_MISMATCH     0x20000Fu /* the entry holds another kind of value */
#define ZPO_ERR_BUFFER_TOO_SMALL  0x200010u /* string and its NUL do not fit the buffer */
#define ZPO_ERR_STORAGE           0x200011u /* the database could not be opened, read or written */
#define ZPO_ERR_INVALID_ARGUMENT  0x200012u /* null pointer, empty name, zero length */
#define ZPO_ERR_NOT_REGISTERED    0x200013u /* diagnostics handle unknown or deregistered */
#define ZPO_ERR_IO                0x200014u /* log file or notification socket error */

/* ---- Configuration registry ------------------------------------------- */

/* Reads exactly `length` bytes of a binary entry into `buffer`. */
ZpoStatus ZpoGetRegEntryBinary(const char* component, const char* section, const char* key,
                               void* buffer, uint32_t length);
/* Creates or replaces a binary entry of `length` bytes. */
ZpoStatus ZpoSetRegEntryBinary(const char* component, const char* section, const char* key,
                               const void* buffer, uint32_t length);
/* Reads a string entry with its terminating NUL into `buffer` of `size` bytes. */
ZpoStatus ZpoGetRegEntryString(const char* component, const char* section, const char* key,
                               char* buffer, uint32_t size);
/* Creates or replaces a string entry from a NUL-terminated text (bytes kept as given). */
ZpoStatus ZpoSetRegEntryString(const char* component, const char* section, const char* key,
                               const char* text);
/* Reads an int entry. */
ZpoStatus ZpoGetRegEntryInt(const char* component, const char* section, const char* key,
                            uint32_t* value);
/* Creates or replaces an int entry. */
ZpoStatus ZpoSetRegEntryInt(const char* component, const char* section, const char* key,
                            uint32_t value);

/* ---- Diagnostics log --------------------------------------------------- */

/* Registers a module; entries for it go to $ZPO_ROOT/log/<logFileName>. */
ZpoStatus ZpoDiagRegisterModule(const char* moduleFileName, const char* component,
                                const char* moduleName, const char* logFileName,
                                uint32_t* handle);
/* Appends one line: time, module name, category, level, identifier, text. */
ZpoStatus ZpoDiagAddLogEntry(uint32_t handle, int category, int level, int identifier,
                             const char* text);
ZpoStatus ZpoDiagDeregisterModule(uint32_t handle);

/* ---- Task scheduler ---------------------------------------------------- */

/* Value of a numeric schedule field meaning "any". */
#define ZPO_SCHED_ANY 1024

/* Record handed to ZpoSetScheduledTask (266 bytes). */
typedef struct ZpoScheduledTask {
  char path[256];      /* program, NUL-terminated */
  uint16_t minute;
  uint16_t hour;
  uint16_t dayOfMonth; /* 1-31 or ZPO_SCHED_ANY */
  uint16_t dayOfWeek;  /* 1-7 or ZPO_SCHED_ANY */
  uint16_t month;      /* 1-12 or ZPO_SCHED_ANY */
} ZpoScheduledTask;

/* Record handed to ZpoDeleteScheduledTaskEx: the first 322 bytes of a list entry. */
typedef struct ZpoScheduledTaskInfo {
  char path[256];
  uint16_t minute;
  uint16_t hour;
  char dayOfMonth[30]; /* "*" for any, else the decimal number */
  char dayOfWeek[30];
  uint16_t month;
} ZpoScheduledTaskInfo;

#pragma pack(push, 4)
/* Entry of the list returned by ZpoGetScheduledTaskList: `next` at offset 324,
 * so 328 bytes with 32-bit pointers, 332 with 64-bit ones. */
typedef struct ZpoScheduledTaskList {
  ZpoScheduledTaskInfo info;
  uint16_t padding;
  struct ZpoScheduledTaskList* next;
} ZpoScheduledTaskList;
#pragma pack(pop)

/* Creates a task. The three numbers are accepted and not interpreted. */
ZpoStatus ZpoSetScheduledTask(ZpoScheduledTask task, uint32_t a, uint32_t b, uint32_t c);
/* Stores in *head a list of the tasks running `path` (NULL when there are none). */
ZpoStatus ZpoGetScheduledTaskList(const char* path, ZpoScheduledTaskList** head, uint32_t a);
/* Deletes the task whose path, time, days and month match; ZPO_ERR_NOT_FOUND otherwise. */
ZpoStatus ZpoDeleteScheduledTaskEx(ZpoScheduledTaskInfo task, uint32_t a, uint32_t b, uint32_t c);
/* Frees a list returned by ZpoGetScheduledTaskList. */
ZpoStatus ZpoDeallocateScheduledTaskList(ZpoScheduledTaskList* head);

/* ---- Backup/restore notification -------------------------------------- */

/* Event value handed to callbacks after `zpo reg restore`. */
#define ZPO_EVENT_RESTORE 2

typedef void (*ZpoBackupRestoreCallback)(unsigned long event);

/* Registers `callback` of this process under `name`. `value` is the mask of
 * events wanted (ZPO_EVENT_RESTORE). Callbacks run on a platform thread. */
ZpoStatus ZpoNotifyRegBackupAndRestore(const char* name, ZpoBackupRestoreCallback callback,
                                       unsigned long value);

/* ---- Development extension (not on the device) ------------------------- */

/* Closes this process's registry connection and forgets registrations, so the
 * next call starts afresh on the then-current ZPO_ROOT. For tests. */
void ZpoDevReset(void);

#ifdef __cplusplus
}
#endif

#endif /* ZPO_SHARED_H */
