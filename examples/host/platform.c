/* The platform's twelve functions for a host that has no such platform: what they must do is said in
 * <cmpnt_db/platform.h>. On the device leave this file out, the platform's own libraries have them.
 */
#include <cmpnt_db/platform.h>
#include <stdarg.h>
#include <stdio.h>

/* ---- printers ---- */

static int32_t print(FILE *stream, const char *format, va_list arguments) {
    return vfprintf(stream, format, arguments) < 0 ? -1 : 0;
}

int32_t printk_syslog_lc(int32_t priority, const char *tag, const char *module, const char *format,
                         ...) {
    va_list arguments;
    int32_t result;
    (void)priority, (void)tag, (void)module;
    va_start(arguments, format);
    result = print(stderr, format, arguments);
    va_end(arguments);
    return result;
}

int32_t printk_syslog_ext(int32_t priority, const char *tag, const char *module, int32_t count,
                          const char *format, ...) {
    va_list arguments;
    int32_t result;
    (void)priority, (void)tag, (void)module, (void)count;
    va_start(arguments, format);
    result = print(stderr, format, arguments);
    va_end(arguments);
    return result;
}

int32_t cli_printf(const char *format, ...) {
    va_list arguments;
    int32_t result;
    va_start(arguments, format);
    result = print(stdout, format, arguments);
    va_end(arguments);
    return result;
}

/* ---- clock and timers ---- */

time_t vx_time_get(int32_t clock) {
    (void)clock;
    return time(NULL);
}

/* No event thread to run a timer. */
void *vx_thread_add_timer(void *master, uintptr_t first, uintptr_t third, uintptr_t second) {
    (void)master, (void)first, (void)third, (void)second;
    return NULL;
}

/* ---- management data store: there is none, and whoever asks is told ---- */

int32_t vx_mom_subscribe(uint32_t store, int32_t count, const ProtobufCMessage *key, void *reserved,
                         vx_mom_callback callback, void *context) {
    (void)store, (void)count, (void)key, (void)reserved, (void)callback, (void)context;
    return -1;
}

int32_t vx_mom_hgetall(uint32_t store, int32_t count, const ProtobufCMessage *key,
                       vx_mom_callback callback, void *context) {
    (void)store, (void)count, (void)key, (void)callback, (void)context;
    return -1;
}

int32_t vx_mom_set(uint32_t store, int32_t operation, const ProtobufCMessage *message,
                   void *reserved, void *context) {
    (void)store, (void)operation, (void)message, (void)reserved, (void)context;
    return -1;
}

/* ---- verification: switched off, and nothing passes should it be asked all the same ---- */

int32_t safe_verify_switch_status(uintptr_t first, uintptr_t second, uintptr_t third,
                                  uintptr_t fourth) {
    (void)first, (void)second, (void)third, (void)fourth;
    return 0;
}

int32_t safe_verify_file_signature_with_id(const char *data_file, const char *signature_file,
                                           const char *public_key_file) {
    (void)data_file, (void)signature_file, (void)public_key_file;
    return 0; /* does not hold */
}

int32_t do_verify_signature(const char *directory, const char *file_name, const char *digest,
                            uint32_t digest_length) {
    (void)directory, (void)file_name, (void)digest, (void)digest_length;
    return -1; /* differs */
}

int32_t safe_verify_whitelist_update(const char *file_path, const char *client_name,
                                     int32_t change_status) {
    (void)file_path, (void)client_name, (void)change_status;
    return -1;
}
