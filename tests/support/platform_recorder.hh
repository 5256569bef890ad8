// A platform that remembers what the library asked of it, and answers as a test wants.
#ifndef CMPNT_TESTS_PLATFORM_RECORDER_HH
#define CMPNT_TESTS_PLATFORM_RECORDER_HH

#include <functional>
#include <string>
#include <vector>

#include "platform/platform.h"

struct SyslogCall {
    bool card;  // through printk_syslog_lc
    int32_t priority;
    std::string tag;
    std::string module;
    int32_t count;       // of printk_syslog_ext
    std::string format;  // as the library handed it over
    std::string text;    // formatted
};

struct MomCall {
    std::string operation;  // "subscribe", "hgetall" or "set"
    uint32_t store;
    int32_t number;
    std::string message_name;  // of the key's or message's descriptor
    vx_mom_callback callback;
    const ProtobufCMessage *message;  // its address; what it holds may be gone
    size_t packed_size;
    void *reserved;  // null where there is none
    void *context;
};

struct TimerCall {
    void *master;
    uintptr_t first, third, second;  // in the order of the platform's arguments
};

struct SignatureQuestion {
    std::string data_file, signature_file, public_key_file;
};

struct DigestQuestion {
    std::string directory, file_name, digest;
    uint32_t length;
};

// A change of the dynamic whitelist that the library asked for.
struct WhitelistChange {
    bool published;  // through the data store, else by a call
    std::string file_path, client_name;
    int32_t status;

    bool operator==(const WhitelistChange &other) const {
        return published == other.published && file_path == other.file_path &&
               client_name == other.client_name && status == other.status;
    }
};

struct PlatformRecorder {
    std::vector<SyslogCall> syslog;
    std::string cli;  // all that was printed to the operator
    std::vector<MomCall> mom;
    std::vector<TimerCall> timers;
    std::vector<std::vector<uintptr_t>> switch_questions;
    std::vector<SignatureQuestion> signature_questions;
    std::vector<DigestQuestion> digest_questions;
    std::vector<WhitelistChange> whitelist_changes;

    // Answers.
    time_t clock = 0;  // 0: the machine's own
    int32_t subscribe_result = 0;
    int32_t hgetall_result = 0;
    void *timer_result = nullptr;
    int32_t switch_result = 0;
    int32_t signature_result = 1;  // good
    int32_t digest_result = 0;     // equal
    int32_t set_result = 0;
    int32_t whitelist_result = 0;
    // Where set, these answer instead of the two results.
    std::function<int32_t(const SignatureQuestion &)> signature_answer;
    std::function<int32_t(const DigestQuestion &)> digest_answer;
    // What the verification service does when it is asked for a change.
    std::function<void(const WhitelistChange &)> on_whitelist_change;
    // Called by the log printers, for what a platform might do inside them.
    void (*on_syslog)() = nullptr;
    // Called by the clock, with the library's lock held.
    void (*on_clock)() = nullptr;
};

extern PlatformRecorder platform;

#endif
