/*
 * Device platform library libosa: message queues.
 */
#ifndef OSA_H
#define OSA_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define OSA_OK                0u
#define OSA_ERR_NO_QUEUE      0x30001u /* no such queue, or it has gone away */
#define OSA_ERR_QUEUE_FULL    0x30002u
#define OSA_ERR_INVALID       0x30003u
#define OSA_ERR_SEND          0x30004u

/* Finds the existing queue `name` and stores its identifier in *id. Never creates one. */
uint32_t osQueueGetId(const char* name, uint32_t* id);
/* Sends `length` bytes without blocking. */
uint32_t osQueueSend(uint32_t id, const void* message, uint32_t length);

#ifdef __cplusplus
}
#endif

#endif /* OSA_H */
