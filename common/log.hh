// The logging statement, one per message site:
//
//     CMPNT_LOG(log_error, "open flock fail, error(%s).\n", strerror(errno));
//
// The message goes to the system log behind "[function:line]" when all bits of the channel's mask are
// set in the debug level, and always, without that prefix, to the trace file. The arguments are
// evaluated once for each road, so they have no side effects; errno is what it was in both and
// afterwards.
#ifndef CMPNT_COMMON_LOG_HH
#define CMPNT_COMMON_LOG_HH

#include <errno.h>

#include "libcmpnt_db.h"
#include "platform/platform.h"

struct LogChannel {
    const char *tag;
    const char *module;
    uint32_t mask;
    const char *kind;  // of the trace line
};

inline constexpr LogChannel log_trace = {"CMPNT_TRACE", "COMMON", 0x1, "trace"};
inline constexpr LogChannel log_error = {"CMPNT_ERROR", "COMMON", 0x3, "error"};
inline constexpr LogChannel log_major = {"CMPNT_MAJOR", "COMMON", 0x4, "major"};
inline constexpr LogChannel log_client_trace = {"CLIENT_TRACE", "CLIENT", 0x5, "trace"};
inline constexpr LogChannel log_client_error = {"CLIENT_ERROR", "CLIENT", 0x7, "error"};
inline constexpr LogChannel log_server_trace = {"SERVER_TRACE", "SERVER", 0x9, "trace"};
inline constexpr LogChannel log_server_error = {"SERVER_ERROR", "SERVER", 0xB, "error"};
inline constexpr LogChannel log_begin_trace = {"BEGIN_TRACE", "BEGIN", 0x1, "trace"};
inline constexpr LogChannel log_begin_error = {"BEGIN_ERROR", "BEGIN", 0x3, "error"};

// Display channels are printed whatever the level, and never traced.
inline constexpr LogChannel show_added_files = {"SHOW_ADD", "INFO", 0, nullptr};
inline constexpr LogChannel show_history = {"CMPNT_HISTORY", "INFO", 0, nullptr};

// Severity lives in the tag: the priority is informational for every channel.
inline constexpr int32_t syslog_priority = 6;

inline bool log_is_on(const LogChannel &channel) {
    const uint32_t level = __atomic_load_n(&g_cmpnt_dbg_level, __ATOMIC_RELAXED);
    return (level & channel.mask) == channel.mask;
}

// The role is read anew for each message: it may change between two of one function.
inline bool log_runs_on_card() {
    return __atomic_load_n(&g_dev_info.role, __ATOMIC_RELAXED) == CMPNT_ROLE_CARD;
}

#define CMPNT_SYSLOG(channel, format, ...)                                                         \
    do {                                                                                           \
        if (log_runs_on_card()) {                                                                  \
            printk_syslog_lc(syslog_priority, (channel).tag, (channel).module, format,             \
                             ##__VA_ARGS__);                                                       \
        } else {                                                                                   \
            printk_syslog_ext(syslog_priority, (channel).tag, (channel).module, 1, format,         \
                              ##__VA_ARGS__);                                                      \
        }                                                                                          \
    } while (0)

// For a message that bears another function's name. The trace writer keeps errno by itself.
#define CMPNT_LOG_AS(channel, function, format, ...)                                               \
    do {                                                                                           \
        if (__builtin_expect(log_is_on(channel), 0)) {                                             \
            const int cmpnt_saved_errno_ = errno;                                                  \
            CMPNT_SYSLOG(channel, "[%s:%d]" format, function, __LINE__, ##__VA_ARGS__);            \
            errno = cmpnt_saved_errno_;                                                            \
        }                                                                                          \
        cmpnt_write_debug_log((channel).kind, function, __LINE__, format, ##__VA_ARGS__);          \
    } while (0)

#define CMPNT_LOG(channel, format, ...) CMPNT_LOG_AS(channel, __func__, format, ##__VA_ARGS__)

// Display text stands as it is, without the "[function:line]" of a message.
#define CMPNT_SHOW(channel, format, ...)                                                           \
    do {                                                                                           \
        const int cmpnt_saved_errno_ = errno;                                                      \
        CMPNT_SYSLOG(channel, format, ##__VA_ARGS__);                                              \
        errno = cmpnt_saved_errno_;                                                                \
    } while (0)

#endif
