#include "tests/support/platform_recorder.hh"

#include <errno.h>
#include <stdarg.h>
#include <stdio.h>

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
    return 0;
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

int32_t safe_verify_file_signature_with_id(const char *, const char *, const char *) { return 0; }

int32_t do_verify_signature(const char *, const char *, const char *, uint32_t) { return -1; }

int32_t safe_verify_whitelist_update(const char *, const char *, int32_t) { return -1; }

int32_t safe_verify_switch_status(uintptr_t first, uintptr_t second, uintptr_t third,
                                  uintptr_t fourth) {
    platform.switch_questions.push_back({first, second, third, fourth});
    return platform.switch_result;
}
