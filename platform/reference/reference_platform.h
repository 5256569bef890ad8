/* The reference platform: the device platform's functions for machines that are not the device, for
 * demos and trials. Link its objects beside the library; these calls set it up.
 */
#ifndef CMPNT_REFERENCE_PLATFORM_H
#define CMPNT_REFERENCE_PLATFORM_H

#include <stdio.h>

#include "platform/platform.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Where the operator's session and the system log are printed; the streams stay the caller's. They
 * start as standard output and standard error. */
void reference_platform_set_terminal(FILE *stream);
void reference_platform_set_system_log(FILE *stream);

/* Puts a copy of the message into the data store, over an older one with the same descriptor, and
 * hands it to the subscribers. Returns 0. */
int32_t reference_platform_publish(const ProtobufCMessage *message);

#ifdef __cplusplus
}
#endif

#endif
