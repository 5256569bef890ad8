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

/* The verification service. Verification is on while the file
 * "/var/cache/opkg/.cmpnt_safe_verify_config" exists, whatever is asked about. */

/* The identifier that signers put under their SM2 signatures, up to 8190 bytes, copied; null for the
 * one it starts as, "1234567812345678". Set it before the first verification. */
void reference_platform_set_signer_id(const char *id);

/* What do_verify_signature answers besides 0. A digest is 64 hexadecimal digits of either case. Only
 * regular files, and links to them, count as readable; a null directory is an empty one. */
enum {
    REFERENCE_PLATFORM_DIGEST_DIFFERS = 1,
    REFERENCE_PLATFORM_FILE_UNREADABLE = 2,
    REFERENCE_PLATFORM_DIGEST_MALFORMED = 3
};

/* What the change status of safe_verify_whitelist_update means here, and the type of the data store's
 * record "p_utils.sv_whitelist_info", which is applied as soon as it is published. The library sends 2
 * to add and 3 to delete; all but these three are refused.
 *
 * An entry is a path with its client: adding it again changes nothing, deleting takes away this
 * client's only, and none to delete is no failure. Refused (-1) are paths that are not absolute,
 * paths and clients with "," or a newline, empty clients, and lines that the list's readers would cut
 * (above 1023 bytes). A publisher does not learn that its record was refused: the system log does. */
enum {
    REFERENCE_PLATFORM_WHITELIST_ADD = 0,
    REFERENCE_PLATFORM_WHITELIST_ADD_CHANGED = 2,
    REFERENCE_PLATFORM_WHITELIST_DELETE = 3
};

#ifdef __cplusplus
}
#endif

#endif
