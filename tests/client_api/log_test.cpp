// <syslog.h> first, as a source may have it: its names and the log's do not meet.
#include <syslog.h>

#include "log.h"

#include "api_test.h"

namespace {

constexpr auto kLogSource = zr_nexa::LogSource::kSession;

using LogTest = ClosedApiTest;

TEST_F(LogTest, WritesBesideTheSystemLog)
{
    ZR_LOG_INFO("priority %d", LOG_INFO);
    ZR_LOG_ERROR_AS("zr_nexa_other", "priority %d", LOG_ERR);
    ASSERT_EQ(platform.log.size(), 2u);
    EXPECT_EQ(shown(platform.log[0].level, platform.log[0].function, platform.log[0].text),
              "info TestBody: priority 6");
    EXPECT_EQ(shown(platform.log[1].level, platform.log[1].function, platform.log[1].text),
              "error zr_nexa_other: priority 3");
}

}  // namespace
