#include "common/log.hh"
#include "tests/support/device_test.hh"

class Level : public DeviceTest {
protected:
    // The tags that reach the system log at a level when every channel speaks once.
    std::vector<std::string> heard_at(uint32_t level) {
        g_cmpnt_dbg_level = level;
        platform.syslog.clear();
        CMPNT_LOG(log_trace, "x\n");
        CMPNT_LOG(log_error, "x\n");
        CMPNT_LOG(log_major, "x\n");
        CMPNT_LOG(log_client_trace, "x\n");
        CMPNT_LOG(log_client_error, "x\n");
        CMPNT_LOG(log_server_trace, "x\n");
        CMPNT_LOG(log_server_error, "x\n");
        CMPNT_LOG(log_begin_trace, "x\n");
        CMPNT_LOG(log_begin_error, "x\n");
        std::vector<std::string> tags;
        for (const SyslogCall &call : platform.syslog) {
            tags.push_back(call.tag + "/" + call.module);
        }
        return tags;
    }
};

TEST_F(Level, StartsSilent) {
    using Tags = std::vector<std::string>;
    EXPECT_EQ(heard_at(0), Tags());
    EXPECT_EQ(trace_lines().size(), 9u);
}

TEST_F(Level, LetsAChannelThroughWhenAllBitsOfItsMaskAreSet) {
    using Tags = std::vector<std::string>;
    EXPECT_EQ(heard_at(0x1), (Tags{"CMPNT_TRACE/COMMON", "BEGIN_TRACE/BEGIN"}));
    EXPECT_EQ(heard_at(0x2), Tags()) << "every error channel also needs bit 0";
    EXPECT_EQ(heard_at(0x3), (Tags{"CMPNT_TRACE/COMMON", "CMPNT_ERROR/COMMON", "BEGIN_TRACE/BEGIN",
                                   "BEGIN_ERROR/BEGIN"}));
    EXPECT_EQ(heard_at(0x4), (Tags{"CMPNT_MAJOR/COMMON"}));
    EXPECT_EQ(heard_at(0x5), (Tags{"CMPNT_TRACE/COMMON", "CMPNT_MAJOR/COMMON",
                                   "CLIENT_TRACE/CLIENT", "BEGIN_TRACE/BEGIN"}));
    EXPECT_EQ(heard_at(0x6), (Tags{"CMPNT_MAJOR/COMMON"}));
    EXPECT_EQ(heard_at(0x7), (Tags{"CMPNT_TRACE/COMMON", "CMPNT_ERROR/COMMON", "CMPNT_MAJOR/COMMON",
                                   "CLIENT_TRACE/CLIENT", "CLIENT_ERROR/CLIENT",
                                   "BEGIN_TRACE/BEGIN", "BEGIN_ERROR/BEGIN"}));
    EXPECT_EQ(heard_at(0x8), Tags());
    EXPECT_EQ(heard_at(0x9),
              (Tags{"CMPNT_TRACE/COMMON", "SERVER_TRACE/SERVER", "BEGIN_TRACE/BEGIN"}));
    EXPECT_EQ(heard_at(0xA), Tags());
    EXPECT_EQ(heard_at(0xB),
              (Tags{"CMPNT_TRACE/COMMON", "CMPNT_ERROR/COMMON", "SERVER_TRACE/SERVER",
                    "SERVER_ERROR/SERVER", "BEGIN_TRACE/BEGIN", "BEGIN_ERROR/BEGIN"}));
    EXPECT_EQ(heard_at(0xF).size(), 9u);
}

TEST_F(Level, IsTracedWhenItIsSet) {
    EXPECT_EQ(cmpnt_set_level(0), 0);
    EXPECT_EQ(traced("trace", "cmpnt_set_level", "set cmpnt debug level(0)\n"), 1);
    EXPECT_TRUE(platform.syslog.empty());
}

TEST_F(Level, IsAnnouncedByTheNewLevel) {
    g_cmpnt_dbg_level = 0;
    EXPECT_EQ(cmpnt_set_level(0xFFFFFFFF), 0);
    EXPECT_EQ(g_cmpnt_dbg_level, 0xFFFFFFFF);
    EXPECT_TRUE(logged("CMPNT_TRACE", "cmpnt_set_level", "set cmpnt debug level(-1)\n"));
}

TEST_F(Level, GoesToTheCardPrinterOnACardAlone) {
    for (int32_t role : {0, 1, 2, 3, 4}) {
        g_dev_info.role = role;
        platform.syslog.clear();
        CMPNT_LOG(log_error, "param %d\n", 7);
        ASSERT_EQ(platform.syslog.size(), 1u);
        const SyslogCall &call = platform.syslog[0];
        EXPECT_EQ(call.card, role == 3);
        EXPECT_EQ(call.priority, 6);
        EXPECT_EQ(call.format, "[%s:%d]param %d\n");
        if (!call.card) {
            EXPECT_EQ(call.count, 1);
        }
    }
}

TEST_F(Level, MessagesKeepErrnoOnBothRoads) {
    errno = EACCES;
    CMPNT_LOG(log_error, "error(%d)\n", errno);
    EXPECT_EQ(errno, EACCES);
    EXPECT_TRUE(logged("CMPNT_ERROR", "TestBody", "error(" + std::to_string(EACCES) + ")\n"));
}

TEST_F(Level, DisplayTextIsPrintedAtAnyLevelAndNeverTraced) {
    g_cmpnt_dbg_level = 0;
    CMPNT_SHOW(show_added_files, "Show all add files:\n");
    CMPNT_SHOW(show_history, "%-16s\n", "Time");
    ASSERT_EQ(platform.syslog.size(), 2u);
    EXPECT_EQ(platform.syslog[0].tag + platform.syslog[0].module, "SHOW_ADDINFO");
    EXPECT_EQ(platform.syslog[0].text, "Show all add files:\n");
    EXPECT_EQ(platform.syslog[1].tag + platform.syslog[1].module, "CMPNT_HISTORYINFO");
    EXPECT_EQ(platform.syslog[1].text, "Time            \n");
    EXPECT_FALSE(exists(trace_path()));
}
