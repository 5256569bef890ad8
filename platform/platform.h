/* The device platform's functions, as the library calls them. The library only imports them: on a
 * device the platform's own libraries define them, elsewhere the reference platform beside this file
 * or a host's own.
 *
 * Arguments that may carry a pointer or a handle are pointer-wide; the rest are 32-bit words, as on
 * the device. None of these functions may call back into the database or the lists of the library:
 * several are called while the database lock is held.
 */
#ifndef CMPNT_PLATFORM_H
#define CMPNT_PLATFORM_H

#include <protobuf-c/protobuf-c.h>
#include <stdint.h>
#include <time.h>

#if defined(__GNUC__)
#define VX_PRINTF(text, first) __attribute__((format(printf, text, first)))
#else
#define VX_PRINTF(text, first)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The system-log printers: the first on cards, the second everywhere else. priority is always 6;
 * tag and module name the channel; count is always 1. */
int32_t printk_syslog_lc(int32_t priority, const char *tag, const char *module, const char *format,
                         ...) VX_PRINTF(4, 5);
int32_t printk_syslog_ext(int32_t priority, const char *tag, const char *module, int32_t count,
                          const char *format, ...) VX_PRINTF(5, 6);

/* Seconds since the epoch on clock 2, the wall clock; negative when the clock cannot be read. time_t
 * has the width of a long, on the device as well. */
time_t vx_time_get(int32_t clock);

/* What the management data store hands to a callback. */
typedef struct vx_mom_record {
    int32_t command; /* what `result` is, see below */
    void *result;
    int32_t status; /* 0: good */
} vx_mom_record;

enum {
    VX_MOM_VALUE = 1,           /* result is the message */
    VX_MOM_WRAPPED_VALUE_4 = 4, /* result is a vx_mom_wrapped_value */
    VX_MOM_WRAPPED_VALUE_6 = 6,
    VX_MOM_WRAPPED_VALUE_8 = 8,
    VX_MOM_VALUE_24 = 24,  /* result is the message */
    VX_MOM_SUBSCRIBED = 29 /* the subscription was accepted; no result */
};

/* On the device: six words, the message first and the status last. */
typedef struct vx_mom_wrapped_value {
    void *message;
    int32_t words[4];
    int32_t status; /* 0: good */
} vx_mom_wrapped_value;

/* Returns 0 when the record was handled. Runs on the platform's notification thread. */
typedef int32_t (*vx_mom_callback)(void *context, vx_mom_record *record);

/* Subscribes to, and reads all values of, the records that have the key's descriptor; the key stays
 * valid for ever. 0 for success. */
int32_t vx_mom_subscribe(uint32_t store, int32_t count, const ProtobufCMessage *key, void *reserved,
                         vx_mom_callback callback, void *context);
int32_t vx_mom_hgetall(uint32_t store, int32_t count, const ProtobufCMessage *key,
                       vx_mom_callback callback, void *context);

/* Writes a message into the data store, operation 3. 0 for success. */
int32_t vx_mom_set(uint32_t store, int32_t operation, const ProtobufCMessage *message,
                   void *reserved, void *context);

/* Adds a timer to the host's event thread; null on failure. */
void *vx_thread_add_timer(void *master, uintptr_t first, uintptr_t third, uintptr_t second);

/* Prints to the operator's command-line session. */
int32_t cli_printf(const char *format, ...) VX_PRINTF(1, 2);

/* Non-zero when the SM2 signature in one file holds over another, with the public key in a third. */
int32_t safe_verify_file_signature_with_id(const char *data_file, const char *signature_file,
                                           const char *public_key_file);

/* 0 when the file's SM3 digest equals the hexadecimal text of that length. */
int32_t do_verify_signature(const char *directory, const char *file_name, const char *digest,
                            uint32_t digest_length);

/* Changes the dynamic whitelist; -1 on failure. */
int32_t safe_verify_whitelist_update(const char *file_path, const char *client_name,
                                     int32_t change_status);

/* Non-zero when verification is switched on. What the four values mean is the platform's. */
int32_t safe_verify_switch_status(uintptr_t first, uintptr_t second, uintptr_t third,
                                  uintptr_t fourth);

#ifdef __cplusplus
}
#endif

#endif
