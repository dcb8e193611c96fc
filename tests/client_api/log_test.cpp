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
    EXPECT_TRANSCRIPT("info  TestBody: priority 6",
                      "error zr_nexa_other: priority 3");
}

TEST_F(LogTest, WritesTheRecordsThatFunctionsShare)
{
    static constexpr zr_nexa::Record<> bare = ZR_LOG_ERROR_RECORD("no values");
    static constexpr zr_nexa::Record<uint32_t, qmi_error_type_v01> two = ZR_LOG_INFO_RECORD("handle %d, error 0x%x");
    bare.write("zr_nexa_one");
    two.write("zr_nexa_other", 7, QMI_ERR_EMPTY_LIST_V01);
    EXPECT_TRANSCRIPT("error zr_nexa_one: no values",
                      "info  zr_nexa_other: handle 7, error 0x32");
}

// What a shared record's format is held to when it is compiled.
using zr_nexa::shows;
static_assert(shows<>("[%s]%s(): no values"));
static_assert(shows<uint32_t, const char*, uint8_t>("[%s]%s(): %d of %s: 0x%x"));
static_assert(!shows<>("[%s]: no function"));
static_assert(!shows<>("[%s]%s(): a value %d"));
static_assert(!shows<uint32_t>("[%s]%s(): no value"));
static_assert(!shows<uint32_t>("[%s]%s(): two values %d %d"));
static_assert(!shows<uint32_t, uint32_t>("[%s]%s(): one value %d"));
static_assert(!shows<uint32_t>("[%s]%s(): a text %s"));
static_assert(!shows<const char*>("[%s]%s(): a word %d"));
static_assert(!shows<uint32_t>("[%s]%s(): a long word %lu"));
static_assert(!shows<uint32_t>("[%s]%s(): cut short %"));

}  // namespace
