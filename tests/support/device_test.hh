// The fixture of every test: an empty device root, a recording platform, all log channels on.
#ifndef CMPNT_TESTS_DEVICE_TEST_HH
#define CMPNT_TESTS_DEVICE_TEST_HH

#include <gtest/gtest.h>

#include "libcmpnt_db.h"
#include "tests/support/fault.hh"
#include "tests/support/files.hh"
#include "tests/support/platform_recorder.hh"
#include "tests/support/trace.hh"

// Each test starts with
//   empty /var, /data, /tmp and /opt;
//   the debug level 0xF, so that every message is seen on both roads (set g_cmpnt_dbg_level to 0
//   where output is to be redirected while a command runs);
//   TMPDIR unset, the role unknown, all lists empty, no faults.
class DeviceTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
};

#endif
