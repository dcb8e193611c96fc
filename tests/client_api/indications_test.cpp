#include <cstdarg>
#include <map>
#include <optional>

#include "api_test.h"
#include "session.h"

namespace {

using testing::IsEmpty;

struct Event {
    uint32_t id;
    std::vector<unsigned char> data;
    std::optional<uint32_t> fourth;
};
std::vector<Event> events;

void note_event(uint32_t event_id, uint32_t length, const void* data, ...)
{
    const auto* const bytes = static_cast<const unsigned char*>(data);
    Event event{event_id, {bytes, bytes + length}, std::nullopt};
    // The one event that has a fourth value.
    if (event_id == 35 && length == 92 && bytes[0] == 11) {
        va_list values;
        va_start(values, data);
        event.fourth = va_arg(values, uint32_t);
        va_end(values);
    }
    events.push_back(event);
    scripted::platform().note_call("note_event(" + std::to_string(event_id) + " " + std::to_string(length) + ")");
}

constexpr uint32_t kMobileAp = 0x51;  // the double's
const std::string kWire = "\x01\x7f\xff";
void* const kUser = reinterpret_cast<void*>(0x1230);

std::string logged(const std::string& text)
{
    return "info  zr_nexa_inds_cb: " + text;
}
// The line that every indication is logged with, and the request to the decoder that follows it.
std::string arrival(uint32_t msg_id)
{
    return logged("zr_nexa_inds_cb: user_handle 0x1230 msg_id " + std::to_string(msg_id) + " ind_buf_len 3.");
}
std::string decoding(uint32_t msg_id, uint32_t size)
{
    return "call  qmi_client_message_decode(user_handle=4656 type=2 msg_id=" + std::to_string(msg_id) +
           " wire=017fff record_len=" + std::to_string(size) + ")";
}

// Event data by offset; what is not put is 0.
class Bytes {
public:
    explicit Bytes(size_t size) : bytes_(size, '\0') {}
    Bytes& word(size_t offset, uint32_t value)
    {
        bytes_.replace(offset, sizeof(value), reinterpret_cast<const char*>(&value), sizeof(value));
        return *this;
    }
    Bytes& put(size_t offset, const std::string& value)
    {
        bytes_.replace(offset, value.size(), value);
        return *this;
    }
    operator std::vector<unsigned char>() const
    {
        return {bytes_.begin(), bytes_.end()};
    }

private:
    std::string bytes_;
};

class IndicationsTest : public ClosedApiTest {
protected:
    IndicationsTest()
    {
        EXPECT_EQ(zr_nexa_client_init(note_event), 0u);
        platform.forget();
        events.clear();
    }

    // An indication that the decoder reads as record.
    template <typename Record>
    void deliver(uint32_t msg_id, const Record& record)
    {
        platform.on("qmi_client_message_decode").gives("record", record);
        arrive(msg_id);
    }
    void arrive(uint32_t msg_id)
    {
        std::string wire = kWire;
        zr_nexa_inds_cb(kUser, msg_id, wire.data(), static_cast<unsigned int>(wire.size()), nullptr);
    }
    // One indication: arrival, decoding, the lines behind them, and then the one event or none.
    void expect_indication(uint32_t msg_id, uint32_t size, std::vector<std::string> lines,
                           const std::vector<Event>& expected)
    {
        for (const Event& event : expected) {
            lines.push_back("call  note_event(" + std::to_string(event.id) + " " + std::to_string(event.data.size()) +
                            ")");
        }
        EXPECT_TRANSCRIPT(arrival(msg_id), decoding(msg_id, size), lines);
        ASSERT_EQ(events.size(), expected.size());
        for (size_t i = 0; i < events.size(); ++i) {
            EXPECT_EQ(events[i].id, expected[i].id);
            EXPECT_EQ(events[i].data, expected[i].data);
            EXPECT_EQ(events[i].fourth, expected[i].fourth);
        }
        events.clear();
    }
};

template <typename Record>
Record call_record(uint32_t status)
{
    Record record = {};
    record.call.mobile_ap_handle = kMobileAp;
    record.call.conn_status = status;
    record.call.call_end_type = 6;
    record.call.call_end_code = 1030;
    record.call.profile_handle_valid = 1;
    record.call.profile_handle = 7;
    record.call.subs_id_valid = 1;
    record.call.subs_id = 2;
    return record;
}

std::string status_line(const std::string& text)
{
    return logged("zr_nexa_inds_cb: WWANProfile=7 (Subs_Id=2) " + text + " (CallendType=6 CallendCode=1030)");
}

// The lines of a call that is connected.
std::vector<std::string> connected(const std::string& text, const std::vector<std::string>& values)
{
    static const char* const names[] = {
        "Interface Name                 : ", "Public IPv4 Address            : ", "Primary DNS IPv4 Address       : ",
        "Seccondary DNS IPv4 Address    : ", "Public IPv6 Address            : ", "Primary DNS IPv6 Address       : ",
        "Seccondary DNS IPv6 Address    : "};
    std::vector<std::string> lines = {status_line(text)};
    for (size_t i = 0; i < values.size(); ++i) {
        lines.push_back(logged(names[i] + values[i]));
    }
    return lines;
}

Bytes call_event(uint32_t status)
{
    return Bytes(92).word(0, status).word(4, 6).word(8, 1030).word(28, 7);
}

// Every status there is, and values around and far from them.
std::vector<uint32_t> all_statuses()
{
    std::vector<uint32_t> statuses;
    for (uint32_t status = 0; status <= 20; ++status) {
        statuses.push_back(status);
    }
    for (const uint32_t status : {255u, 256u + 3, 65536u + 9, 0x80000003u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        statuses.push_back(status);
    }
    return statuses;
}

TEST_F(IndicationsTest, IsTheCallbackGivenToThePlatform)
{
    EXPECT_EQ(platform.indication_cb, &zr_nexa_inds_cb);
}

TEST_F(IndicationsTest, BringUpByStatus)
{
    const std::map<uint32_t, std::string> texts = {{3, "IPV4 WWAN Connected"},
                                                   {9, "IPV6 WWAN Connected"},
                                                   {2, "IPV4 WWAN Connecting Failed"},
                                                   {8, "IPV6 WWAN Connecting Failed"}};
    for (const uint32_t status : all_statuses()) {
        SCOPED_TRACE(status);
        auto record = call_record<qcmap_msgr_bring_up_wwan_ind_msg_v01>(status);
        std::memcpy(record.iface_name, "wwan0", 6);
        std::memcpy(&record.v4_addr, "\x0a\x01\x02\x03", 4);
        std::memcpy(&record.v4_pri_dns_addr, "\x08\x08\x04\x04", 4);
        std::memcpy(&record.v4_sec_dns_addr, "\xff\xfe\x00\x01", 4);
        std::memcpy(record.v6_addr, "\x20\x01\x0d\xb8\0\0\0\0\0\0\0\0\0\0\0\x10", 16);
        std::memcpy(record.v6_pri_dns_addr, "\x20\x01\x0d\xb8\0\x01\0\x02\0\x03\0\x04\0\x05\0\x06", 16);
        std::memcpy(record.v6_sec_dns_addr, "\0\0\0\0\0\0\0\0\0\0\xff\xff\xc0\0\x02\x01", 16);
        deliver(34, record);
        if (status == 3 || status == 9) {
            const auto event = call_event(status)
                                   .put(12, "wwan0")
                                   .put(32, "\x0a\x01\x02\x03")
                                   .put(36, "\x08\x08\x04\x04")
                                   .put(40, std::string("\xff\xfe\x00\x01", 4))
                                   .put(44, std::string("\x20\x01\x0d\xb8\0\0\0\0\0\0\0\0\0\0\0\x10", 16))
                                   .put(60, std::string("\x20\x01\x0d\xb8\0\x01\0\x02\0\x03\0\x04\0\x05\0\x06", 16))
                                   .put(76, std::string("\0\0\0\0\0\0\0\0\0\0\xff\xff\xc0\0\x02\x01", 16));
            expect_indication(34, 136,
                              connected(texts.at(status), {"wwan0", "10.1.2.3", "8.8.4.4", "255.254.0.1",
                                                           "2001:db8::10", "2001:db8:1:2:3:4:5:6", "::ffff:192.0.2.1"}),
                              {{34, event, std::nullopt}});
        } else if (texts.count(status) == 1) {
            // No addresses with a call that failed, whatever the record holds.
            expect_indication(34, 136, {status_line(texts.at(status))}, {{34, call_event(status), std::nullopt}});
        } else {
            expect_indication(34, 136, {}, {});
        }
    }
}

TEST_F(IndicationsTest, AddressesAtTheirLongestAndAtZero)
{
    auto record = call_record<qcmap_msgr_bring_up_wwan_ind_msg_v01>(3);
    std::memset(&record.v4_addr, 0xFF, 4);
    std::memset(record.v6_addr, 0xFE, 16);
    deliver(34, record);
    expect_indication(34, 136,
                      connected("IPV4 WWAN Connected", {"", "255.255.255.255", "0.0.0.0", "0.0.0.0",
                                                        "fefe:fefe:fefe:fefe:fefe:fefe:fefe:fefe", "::", "::"}),
                      {{34, call_event(3).put(32, std::string(4, '\xFF')).put(44, std::string(16, '\xFE')), {}}});
}

TEST_F(IndicationsTest, AnInterfaceNameThatFillsItsFieldEndsThere)
{
    auto record = call_record<qcmap_msgr_bring_up_wwan_ind_msg_v01>(9);
    std::memcpy(record.iface_name, "abcdefghijklmnop", 16);
    std::memset(&record.v4_addr, 'Z', 4);  // stands right behind it
    deliver(34, record);
    expect_indication(
        34, 136,
        connected("IPV6 WWAN Connected", {"abcdefghijklmnop", "90.90.90.90", "0.0.0.0", "0.0.0.0", "::", "::", "::"}),
        {{34, call_event(9).put(12, "abcdefghijklmnop").put(32, "ZZZZ"), std::nullopt}});
}

TEST_F(IndicationsTest, TearDownByStatus)
{
    const std::map<uint32_t, std::string> texts = {{6, "IPV4 WWAN Disconnected"},
                                                   {5, "IPV4 WWAN Disconnecting Failed"},
                                                   {12, "IPV6 WWAN Disconnected"},
                                                   {11, "IPV6 WWAN Disconnecting Failed"}};
    for (const uint32_t status : all_statuses()) {
        SCOPED_TRACE(status);
        deliver(35, call_record<qcmap_msgr_tear_down_wwan_ind_msg_v01>(status));
        if (texts.count(status) == 1) {
            const auto fourth = status == 11 ? std::optional<uint32_t>(684) : std::nullopt;
            expect_indication(35, 36, {status_line(texts.at(status))}, {{35, call_event(status), fourth}});
        } else {
            expect_indication(35, 36, {}, {});
        }
    }
}

TEST_F(IndicationsTest, StatusByStatus)
{
    const std::map<uint32_t, std::string> texts = {
        {1, "IPv4 WWAN Connecting"},    {2, "IPv4 WWAN Connecting Fail"},    {3, "IPv4 WWAN Connected"},
        {4, "IPv4 WWAN Disonnecting"},  {5, "IPv4 WWAN Disonnecting Fail"},  {6, "IPv4 WWAN Disonnected"},
        {7, "IPv6 WWAN Connecting"},    {8, "IPv6 WWAN Connecting Fail"},    {9, "IPv6 WWAN Connected"},
        {10, "IPv6 WWAN Disonnecting"}, {11, "IPv6 WWAN Disonnecting Fail"}, {12, "IPv6 WWAN Disonnected"},
    };
    for (const uint32_t status : all_statuses()) {
        SCOPED_TRACE(status);
        deliver(36, call_record<qcmap_msgr_wwan_status_ind_msg_v01>(status));
        if (texts.count(status) == 1) {
            expect_indication(36, 444, {status_line(texts.at(status))}, {{37, call_event(status), std::nullopt}});
        } else {
            expect_indication(36, 444, {}, {});
        }
    }
}

// One of each kind, with a call part of the test's choice.
struct CallKind {
    uint32_t msg_id;
    uint32_t size;
    uint32_t event_id;
    uint32_t status;
    const char* text;
};
constexpr CallKind kKinds[] = {{34, 136, 34, 2, "IPV4 WWAN Connecting Failed"},
                               {35, 36, 35, 6, "IPV4 WWAN Disconnected"},
                               {36, 444, 37, 4, "IPv4 WWAN Disonnecting"}};

class CallPartTest : public IndicationsTest {
protected:
    void deliver_call(const CallKind& kind, const qcmap_wwan_call_ind& call)
    {
        std::vector<unsigned char> record(kind.size);
        std::memcpy(record.data(), &call, sizeof(call));
        platform.on("qmi_client_message_decode").gives_array("record", record.data(), record.size());
        arrive(kind.msg_id);
    }
};

TEST_F(CallPartTest, ProfileAndSubscriptionAreTakenOnlyWithAFlagOfOne)
{
    for (const CallKind& kind : kKinds) {
        for (const int profile_flag : {0, 1, 2, 128, 255}) {
            for (const int subs_flag : {0, 1, 2, 128, 255}) {
                SCOPED_TRACE(testing::Message() << kind.msg_id << " " << profile_flag << " " << subs_flag);
                qcmap_wwan_call_ind call = {};
                call.mobile_ap_handle = kMobileAp;
                call.conn_status = kind.status;
                call.profile_handle_valid = static_cast<uint8_t>(profile_flag);
                call.subs_id_valid = static_cast<uint8_t>(subs_flag);
                call.profile_handle = 50;
                call.subs_id = 3;
                deliver_call(kind, call);
                const std::string line =
                    logged(std::string("zr_nexa_inds_cb: WWANProfile=") + (profile_flag == 1 ? "50" : "65535") +
                           " (Subs_Id=" + (subs_flag == 1 ? "3" : "2147483647") + ") " + kind.text +
                           " (CallendType=0 CallendCode=0)");
                const auto event = Bytes(92).word(0, kind.status).word(28, profile_flag == 1 ? 50 : 65535);
                expect_indication(kind.msg_id, kind.size, {line}, {{kind.event_id, event, std::nullopt}});
            }
        }
    }
}

TEST_F(CallPartTest, CallEndValuesAreTakenAsTheyAre)
{
    for (const CallKind& kind : kKinds) {
        qcmap_wwan_call_ind call = {};
        call.mobile_ap_handle = kMobileAp;
        call.conn_status = kind.status;
        call.call_end_type = 0xFFFFFFFF;
        call.call_end_code = 0x80000000;
        call.profile_handle_valid = 1;
        call.profile_handle = 0xFFFFFFFE;
        call.subs_id_valid = 1;
        deliver_call(kind, call);
        const std::string line = logged(std::string("zr_nexa_inds_cb: WWANProfile=-2 (Subs_Id=0) ") + kind.text +
                                        " (CallendType=-1 CallendCode=-2147483648)");
        const auto event = Bytes(92).word(0, kind.status).word(4, 0xFFFFFFFF).word(8, 0x80000000).word(28, 0xFFFFFFFE);
        expect_indication(kind.msg_id, kind.size, {line}, {{kind.event_id, event, std::nullopt}});
    }
}

TEST_F(CallPartTest, AnotherMobileApsEventsAreDroppedSilently)
{
    for (const CallKind& kind : kKinds) {
        for (const uint32_t handle : {0u, 0x50u, 0x52u, 0x151u, 0x51000000u, 0xFFFFFFFFu}) {
            qcmap_wwan_call_ind call = {};
            call.mobile_ap_handle = handle;
            call.conn_status = kind.status;
            deliver_call(kind, call);
            expect_indication(kind.msg_id, kind.size, {}, {});
        }
    }
}

TEST_F(CallPartTest, WhatTheDecoderLeavesIsZero)
{
    for (const CallKind& kind : kKinds) {
        const uint32_t given[2] = {kMobileAp, kind.msg_id == 34 ? 3 : kind.status};
        platform.on("qmi_client_message_decode").gives_array("record", given, 2);
        arrive(kind.msg_id);
        ASSERT_EQ(events.size(), 1u);
        EXPECT_EQ(events[0].data, std::vector<unsigned char>(Bytes(92).word(0, given[1]).word(28, 65535)));
        events.clear();
        platform.forget();
    }
}

TEST_F(IndicationsTest, AFailedDecodingIsLoggedAndDropped)
{
    const std::map<uint32_t, uint32_t> sizes = {{34, 136}, {35, 36}, {36, 444}, {169, 10888}};
    for (const auto& [msg_id, size] : sizes) {
        for (const int err : {-1, -3, -16, -17, -18, 1, 684}) {
            // What looks like an indication of the session's own is not read.
            const uint32_t given[2] = {kMobileAp, 3};
            platform.on("qmi_client_message_decode").fails(static_cast<uint32_t>(err)).gives_array("record", given, 2);
            arrive(msg_id);
            expect_indication(
                msg_id, size,
                {"error zr_nexa_inds_cb: zr_nexa_inds_cb: qmi_client_message_decode error " + std::to_string(err)}, {});
        }
    }
}

TEST_F(IndicationsTest, ReportsOfKindZeroAndOneAreHandedOnWhole)
{
    for (const uint32_t kind : {0u, 1u, 2u, 3u, 0x80000000u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(kind);
        qcmap_msgr_status_report_ind_msg_v01 record = {};
        record.kind = kind;
        for (size_t i = 0; i < sizeof(record.report); ++i) {
            record.report[i] = static_cast<uint8_t>(i * 7 + 1);
        }
        deliver(169, record);
        if (kind < 2) {
            const auto* const bytes = reinterpret_cast<const unsigned char*>(&record);
            expect_indication(169, 10888, {}, {{169, {bytes, bytes + 10888}, std::nullopt}});
        } else {
            expect_indication(169, 10888, {}, {});
        }
    }
}

TEST_F(IndicationsTest, WhatTheDecoderLeavesOfAReportIsZero)
{
    const uint32_t kind = 1;
    platform.on("qmi_client_message_decode").gives("record", kind);
    arrive(169);
    expect_indication(169, 10888, {}, {{169, Bytes(10888).word(0, 1), std::nullopt}});
}

TEST_F(IndicationsTest, OtherMessagesAreLoggedAndIgnored)
{
    for (const uint32_t msg_id : {0u, 1u, 33u, 37u, 168u, 170u, 34u + 256, 36u + 65536}) {
        arrive(msg_id);
        EXPECT_TRANSCRIPT(arrival(msg_id));
        EXPECT_THAT(events, IsEmpty());
    }
    arrive(0xFFFFFFFF);
    EXPECT_TRANSCRIPT("info  zr_nexa_inds_cb: zr_nexa_inds_cb: user_handle 0x1230 msg_id -1 ind_buf_len 3.");
}

TEST_F(IndicationsTest, AnEmptyBufferIsTheDecodersToRefuse)
{
    platform.on("qmi_client_message_decode").fails(static_cast<uint32_t>(-17));
    zr_nexa_inds_cb(kUser, 36, nullptr, 0, nullptr);
    EXPECT_TRANSCRIPT("info  zr_nexa_inds_cb: zr_nexa_inds_cb: user_handle 0x1230 msg_id 36 ind_buf_len 0.",
                      "call  qmi_client_message_decode(user_handle=4656 type=2 msg_id=36 wire= record_len=444)",
                      "error zr_nexa_inds_cb: zr_nexa_inds_cb: qmi_client_message_decode error -17");
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(IndicationsTest, WithoutASessionNothingIsDecoded)
{
    ASSERT_EQ(zr_nexa_client_uninit(), 0u);
    platform.forget();
    for (const uint32_t msg_id : {34u, 35u, 36u, 169u, 1u}) {
        arrive(msg_id);
        EXPECT_TRANSCRIPT("error zr_nexa_inds_cb: qcmap client not Initialize!");
        EXPECT_THAT(events, IsEmpty());
    }
}

TEST_F(IndicationsTest, ASessionWithoutACallbackLogsAllTheSame)
{
    ASSERT_EQ(zr_nexa_client_uninit(), 0u);
    ASSERT_EQ(zr_nexa_client_init(nullptr), 0u);
    platform.forget();
    deliver(36, call_record<qcmap_msgr_wwan_status_ind_msg_v01>(1));
    expect_indication(36, 444, {status_line("IPv4 WWAN Connecting")}, {});
}

TEST_F(IndicationsTest, TheSessionsOwnHandleIsTheObjects)
{
    zr_nexa::client->mobile_ap_handle = 0x12345678;
    deliver(36, call_record<qcmap_msgr_wwan_status_ind_msg_v01>(1));  // addressed to 0x51
    expect_indication(36, 444, {}, {});
    auto record = call_record<qcmap_msgr_wwan_status_ind_msg_v01>(1);
    record.call.mobile_ap_handle = 0x12345678;
    deliver(36, record);
    expect_indication(36, 444, {status_line("IPv4 WWAN Connecting")}, {{37, call_event(1), std::nullopt}});
}

TEST_F(IndicationsTest, RecordsReadAsDocumented)
{
    auto record = call_record<qcmap_msgr_bring_up_wwan_ind_msg_v01>(3);
    std::memcpy(record.iface_name, "wwan1", 6);
    std::memcpy(&record.v4_sec_dns_addr, "\x01\x02\x03\x04", 4);
    std::memset(record.v6_sec_dns_addr, 0x77, 16);
    deliver(34, record);
    ASSERT_EQ(events.size(), 1u);
    zr_nexa_ind_call_event_t event;
    ASSERT_EQ(events[0].data.size(), sizeof(event));
    std::memcpy(&event, events[0].data.data(), sizeof(event));
    EXPECT_EQ(event.status, static_cast<uint32_t>(ZR_NEXA_IND_V4_CONNECTED));
    EXPECT_EQ(event.call_end_type, 6u);
    EXPECT_EQ(event.call_end_code, 1030u);
    EXPECT_STREQ(event.iface_name, "wwan1");
    EXPECT_EQ(event.wwan_handle, 7u);
    EXPECT_EQ(std::memcmp(&event.v4_sec_dns_addr, "\x01\x02\x03\x04", 4), 0);
    EXPECT_THAT(event.v6_sec_dns_addr, testing::Each(0x77));
}

}  // namespace
