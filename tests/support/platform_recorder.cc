#include "tests/support/platform_recorder.hh"

#include <errno.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include "p_utils.pb-c.h"

// A test that links objects of the reference platform gets the functions of those.
#pragma weak printk_syslog_lc
#pragma weak printk_syslog_ext
#pragma weak vx_time_get
#pragma weak vx_mom_subscribe
#pragma weak vx_mom_hgetall
#pragma weak vx_mom_set
#pragma weak vx_thread_add_timer
#pragma weak cli_printf
#pragma weak safe_verify_file_signature_with_id
#pragma weak do_verify_signature
#pragma weak safe_verify_whitelist_update
#pragma weak safe_verify_switch_status

PlatformRecorder platform;

namespace {

std::string format_text(const char *format, va_list arguments) {
    va_list copy;
    va_copy(copy, arguments);
    const int length = vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    std::string text(static_cast<size_t>(length < 0 ? 0 : length) + 1, '\0');
    vsnprintf(&text[0], text.size(), format, arguments);
    text.pop_back();
    return text;
}

int32_t record_syslog(SyslogCall call, va_list arguments) {
    call.text = format_text(call.format.c_str(), arguments);
    platform.syslog.push_back(call);
    if (platform.on_syslog != nullptr) {
        platform.on_syslog();
    }
    errno = ENXIO;  // a printer is free to change it
    return 0;
}

void record_mom(const char *operation, uint32_t store, int32_t number,
                const ProtobufCMessage *message, vx_mom_callback callback, void *reserved,
                void *context) {
    platform.mom.push_back({operation, store, number, message->descriptor->name, callback, message,
                            protobuf_c_message_get_packed_size(message), reserved, context});
}

void record_whitelist_change(const WhitelistChange &change) {
    platform.whitelist_changes.push_back(change);
    if (platform.on_whitelist_change) {
        platform.on_whitelist_change(change);
    }
    errno = ENOTTY;  // a service is free to change it
}

// Read from the packed message, as the verification service does.
void record_published_change(const ProtobufCMessage *message) {
    std::vector<uint8_t> packed(protobuf_c_message_get_packed_size(message));
    protobuf_c_message_pack(message, packed.data());
    PUtils__SvWhitelistInfo *info =
        p_utils__sv_whitelist_info__unpack(nullptr, packed.size(), packed.data());
    if (info == nullptr) {
        return;
    }
    int32_t type = 0;  // any number, not only those of the enumeration
    static_assert(sizeof(type) == sizeof(info->type));
    memcpy(&type, &info->type, sizeof(type));
    const WhitelistChange change = {true, info->file_path, info->client_name, type};
    p_utils__sv_whitelist_info__free_unpacked(info, nullptr);
    record_whitelist_change(change);
}

}  // namespace

int32_t printk_syslog_lc(int32_t priority, const char *tag, const char *module, const char *format,
                         ...) {
    va_list arguments;
    va_start(arguments, format);
    const int32_t result =
        record_syslog({true, priority, tag, module, 0, format, std::string()}, arguments);
    va_end(arguments);
    return result;
}

int32_t printk_syslog_ext(int32_t priority, const char *tag, const char *module, int32_t count,
                          const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int32_t result =
        record_syslog({false, priority, tag, module, count, format, std::string()}, arguments);
    va_end(arguments);
    return result;
}

time_t vx_time_get(int32_t clock) {
    if (clock != 2) {
        return -1;
    }
    if (platform.on_clock != nullptr) {
        platform.on_clock();
    }
    const time_t now = platform.clock != 0 ? platform.clock : time(nullptr);
    errno = EDOM;  // a clock is free to change it
    return now;
}

int32_t vx_mom_subscribe(uint32_t store, int32_t count, const ProtobufCMessage *key, void *reserved,
                         vx_mom_callback callback, void *context) {
    record_mom("subscribe", store, count, key, callback, reserved, context);
    return platform.subscribe_result;
}

int32_t vx_mom_hgetall(uint32_t store, int32_t count, const ProtobufCMessage *key,
                       vx_mom_callback callback, void *context) {
    record_mom("hgetall", store, count, key, callback, nullptr, context);
    return platform.hgetall_result;
}

int32_t vx_mom_set(uint32_t store, int32_t operation, const ProtobufCMessage *message,
                   void *reserved, void *context) {
    record_mom("set", store, operation, message, nullptr, reserved, context);
    if (message->descriptor == &p_utils__sv_whitelist_info__descriptor) {
        record_published_change(message);
    }
    return platform.set_result;
}

void *vx_thread_add_timer(void *master, uintptr_t first, uintptr_t third, uintptr_t second) {
    platform.timers.push_back({master, first, third, second});
    return platform.timer_result;
}

int32_t cli_printf(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    platform.cli += format_text(format, arguments);
    va_end(arguments);
    return 0;
}

int32_t safe_verify_file_signature_with_id(const char *data_file, const char *signature_file,
                                           const char *public_key_file) {
    const SignatureQuestion question = {data_file, signature_file, public_key_file};
    platform.signature_questions.push_back(question);
    errno = ENOTTY;  // a verifier is free to change it
    return platform.signature_answer ? platform.signature_answer(question)
                                     : platform.signature_result;
}

int32_t do_verify_signature(const char *directory, const char *file_name, const char *digest,
                            uint32_t length) {
    const DigestQuestion question = {directory, file_name, digest, length};
    platform.digest_questions.push_back(question);
    errno = ENOTTY;
    return platform.digest_answer ? platform.digest_answer(question) : platform.digest_result;
}

int32_t safe_verify_whitelist_update(const char *file_path, const char *client_name,
                                     int32_t change_status) {
    record_whitelist_change({false, file_path, client_name, change_status});
    return platform.whitelist_result;
}

int32_t safe_verify_switch_status(uintptr_t first, uintptr_t second, uintptr_t third,
                                  uintptr_t fourth) {
    platform.switch_questions.push_back({first, second, third, fourth});
    return platform.switch_result;
}
