// Every public function stands in the sweep: clean, without a session, and with each platform call failing in turn.
#include <set>

#include "api_test.h"
#include "fault_sweep.h"

namespace {

class SweepTest : public ApiTest {
protected:
    std::vector<std::string> methods_called() const
    {
        std::vector<std::string> methods;
        for (const auto& line : platform.journal) {
            methods.push_back(line.substr(0, line.find('(')));
        }
        return methods;
    }
    // A fresh start for the next run of a row.
    void prepare(const SweepRow& row)
    {
        platform.reset();
        if (row.prepare) row.prepare(platform);
    }
};

TEST_F(SweepTest, CleanRunsMakeTheCallsOfTheirRow)
{
    for (const SweepRow& row : all_sweep_rows()) {
        SCOPED_TRACE(row.function);
        prepare(row);
        EXPECT_EQ(row.call(), row.clean_result);
        std::vector<std::string> expected;
        for (const auto& step : row.steps) {
            expected.emplace_back(step.method);
        }
        EXPECT_THAT(methods_called(), testing::ElementsAreArray(expected));
        for (const auto& line : platform.log) {
            EXPECT_EQ(line.function, row.function) << line.text;
        }
        EXPECT_THAT(platform.complaints, testing::IsEmpty());
    }
    platform.reset();
}

TEST_F(SweepTest, EveryFailurePointGivesItsTagAndStops)
{
    for (const SweepRow& row : all_sweep_rows()) {
        for (size_t at = 0; at < row.steps.size(); ++at) {
            if (row.steps[at].on_failure == OnFailure::kGoesOn) continue;
            int call_number = 0;
            for (size_t i = 0; i <= at; ++i) {
                if (std::string(row.steps[i].method) == row.steps[at].method) ++call_number;
            }
            for (const uint32_t err : kErrorWords) {
                SCOPED_TRACE(std::string(row.function) + " " + row.steps[at].method + " error " + std::to_string(err));
                prepare(row);
                platform.on(row.steps[at].method, call_number).fails(err);
                EXPECT_EQ(row.call(), err | (0x1000u * row.steps[at].step));
                EXPECT_EQ(platform.journal.size(), at + 1) << "calls were made behind the failure";
                if (row.outputs_untouched) {
                    EXPECT_TRUE(row.outputs_untouched());
                }
                EXPECT_THAT(platform.complaints, testing::IsEmpty());
                const std::string fault = std::string(row.steps[at].method) + "#" + std::to_string(call_number);
                EXPECT_THAT(platform.unused_answers(), testing::Not(testing::Contains(fault)))
                    << "the fault never fired";
            }
        }
    }
    platform.reset();
}

TEST_F(SweepTest, TheErrorWordOfASuccessfulLastCallIsReturned)
{
    for (const SweepRow& row : all_sweep_rows()) {
        if (row.steps.empty() || row.clean_result != 0) continue;
        SCOPED_TRACE(row.function);
        const std::string last = row.steps.back().method;
        int call_number = 0;
        for (const auto& step : row.steps) {
            if (step.method == last) ++call_number;
        }
        prepare(row);
        // A copy of what the row's own preparation says about the method, with an error word beside it.
        scripted::Answer& answer = platform.on(last, call_number);
        answer = platform.on(last);
        answer.succeeds(0x123);
        const uint32_t result = row.call();
        EXPECT_EQ(result, 0x123 | (0x1000u * row.bare_word_step));
    }
    platform.reset();
}

TEST_F(SweepTest, WithoutASessionNothingIsTouched)
{
    ASSERT_EQ(zr_nexa_client_uninit(), 0u);
    for (const SweepRow& row : all_sweep_rows()) {
        if (!row.needs_session) continue;
        SCOPED_TRACE(row.function);
        platform.reset();
        EXPECT_EQ(row.call(), 13u);
        expect_row(row.function, {}, {info("entry"), error("assertion (QcMapClient != NULL) failed!")});
        if (row.outputs_untouched) {
            EXPECT_TRUE(row.outputs_untouched());
        }
    }
}

// With zeros and null pointers for arguments.
template <typename... Arguments>
uint32_t call_with_nothing(uint32_t (*function)(Arguments...))
{
    return function(Arguments{}...);
}

struct Function {
    const char* name;
    uint32_t (*call)();
};

#define FUNCTION(function)                                    \
    {                                                         \
#function, [] { return call_with_nothing(function); } \
    }

const Function kFunctionsOfASession[] = {
    FUNCTION(zr_nexa_alg_enable_type_set_v1),
    FUNCTION(zr_nexa_alg_sip_server_info_set_v1),
    FUNCTION(zr_nexa_alg_sip_server_info_get_v1),
    FUNCTION(zr_nexa_firewall_entry_add_v1),
    FUNCTION(zr_nexa_firewall_entry_get_v1),
    FUNCTION(zr_nexa_firewall_entry_del_v1),
    FUNCTION(zr_nexa_firewall_config_set_v1),
    FUNCTION(zr_nexa_firewall_config_get_v1),
    FUNCTION(zr_nexa_firewall_hwfiltering_state_set_v1),
    FUNCTION(zr_nexa_firewall_hwfiltering_state_get_v1),
    FUNCTION(zr_nexa_general_restore_nexa_v1),
    FUNCTION(zr_nexa_general_sfe_set_v1),
    FUNCTION(zr_nexa_general_sfe_get_v1),
    FUNCTION(zr_nexa_lan_gwurl_set_v1),
    FUNCTION(zr_nexa_lan_gwurl_get_v1),
    FUNCTION(zr_nexa_lan_dhcp_srvctl_set_v1),
    FUNCTION(zr_nexa_lan_dhcp_srvctl_get_v1),
    FUNCTION(zr_nexa_lan_dhcp_set_v1),
    FUNCTION(zr_nexa_lan_dhcp_get_v1),
    FUNCTION(zr_nexa_lan_dhcp_default_action_get_v1),
    FUNCTION(zr_nexa_lan_dhcp_default_action_set_v1),
    FUNCTION(zr_nexa_lan_ipv4v6_set_v1),
    FUNCTION(zr_nexa_lan_ipv4v6_get_v1),
    FUNCTION(zr_nexa_lan_ipptnat_set_v1),
    FUNCTION(zr_nexa_lan_ipptnat_get_v1),
    FUNCTION(zr_nexa_lan_ipptnatpdn_set_v1),
    FUNCTION(zr_nexa_lan_ipptnatpdn_get_v1),
    FUNCTION(zr_nexa_lan_ippt_set_v1),
    FUNCTION(zr_nexa_lan_ippt_get_v1),
    FUNCTION(zr_nexa_lan_ipptgwfilter_add_v1),
    FUNCTION(zr_nexa_lan_ipptgwfilter_get_v1),
    FUNCTION(zr_nexa_lan_ipptgwfilter_del_v1),
    FUNCTION(zr_nexa_lan_swpathfilter_add_v1),
    FUNCTION(zr_nexa_lan_swpathfilter_del_v1),
    FUNCTION(zr_nexa_lan_swpathfilter_get_v1),
    FUNCTION(zr_nexa_lan_dhcp_reserv_record_add_v1),
    FUNCTION(zr_nexa_lan_dhcp_reserv_record_get_v1),
    FUNCTION(zr_nexa_lan_dhcp_reserv_record_edit_v1),
    FUNCTION(zr_nexa_lan_dhcp_reserv_record_del_v1),
    FUNCTION(zr_nexa_lan_packetstats_set_v1),
    FUNCTION(zr_nexa_lan_packetstats_get_v1),
    FUNCTION(zr_nexa_lan_packetstats_reset_v1),
    FUNCTION(zr_nexa_lan_connected_device_info_get_v1),
    FUNCTION(zr_nexa_lan_unmanaged_l2tp_state_set_v1),
    FUNCTION(zr_nexa_lan_l2tp_get_v1),
    FUNCTION(zr_nexa_lan_l2tp_set_v1),
    FUNCTION(zr_nexa_lan_l2tp_delete_v1),
    FUNCTION(zr_nexa_lan_vlan_add_v1),
    FUNCTION(zr_nexa_lan_vlan_get_v1),
    FUNCTION(zr_nexa_lan_vlan_del_v1),
    FUNCTION(zr_nexa_nat_type_set_v1),
    FUNCTION(zr_nexa_nat_type_get_v1),
    FUNCTION(zr_nexa_nat_ipv4dmz_set_v1),
    FUNCTION(zr_nexa_nat_ipv4dmz_get_v1),
    FUNCTION(zr_nexa_nat_ipv4portmapping_add_v1),
    FUNCTION(zr_nexa_nat_ipv4portmapping_del_v1),
    FUNCTION(zr_nexa_nat_ipv4portmapping_get_v1),
    FUNCTION(zr_nexa_nat_routingbh_set_v1),
    FUNCTION(zr_nexa_nat_routingbh_get_v1),
    FUNCTION(zr_nexa_media_upnp_set_v1),
    FUNCTION(zr_nexa_media_upnp_get_v1),
    FUNCTION(zr_nexa_media_upnp_notify_interval_set_v1),
    FUNCTION(zr_nexa_media_upnp_notify_interval_get_v1),
    FUNCTION(zr_nexa_media_upnp_pinhole_state_set_v1),
    FUNCTION(zr_nexa_media_upnp_pinhole_state_get_v1),
    FUNCTION(zr_nexa_nat_pptpvpnpassthrough_ipv4_set_v1),
    FUNCTION(zr_nexa_nat_pptpvpnpassthrough_ipv4_get_v1),
    FUNCTION(zr_nexa_nat_pptpvpnpassthrough_ipv6_set_v1),
    FUNCTION(zr_nexa_nat_pptpvpnpassthrough_ipv6_get_v1),
    FUNCTION(zr_nexa_nat_ipsecvpnpassthrough_ipv4_set_v1),
    FUNCTION(zr_nexa_nat_ipsecvpnpassthrough_ipv4_get_v1),
    FUNCTION(zr_nexa_nat_ipsecvpnpassthrough_ipv6_set_v1),
    FUNCTION(zr_nexa_nat_ipsecvpnpassthrough_ipv6_get_v1),
    FUNCTION(zr_nexa_nat_l2tpvpnpassthrough_ipv4_set_v1),
    FUNCTION(zr_nexa_nat_l2tpvpnpassthrough_ipv4_get_v1),
    FUNCTION(zr_nexa_nat_l2tpvpnpassthrough_ipv6_set_v1),
    FUNCTION(zr_nexa_nat_l2tpvpnpassthrough_ipv6_get_v1),
    FUNCTION(zr_nexa_wan_status_get_v1),
    FUNCTION(zr_nexa_wan_connect_v4_set_v1),
    FUNCTION(zr_nexa_wan_connect_v6_set_v1),
    FUNCTION(zr_nexa_wan_reconnect_set_v1),
    FUNCTION(zr_nexa_wan_reconnect_get_v1),
    FUNCTION(zr_nexa_wan_autoconnect_set_v1),
    FUNCTION(zr_nexa_wan_autoconnect_get_v1),
    FUNCTION(zr_nexa_wan_roaming_set_v1),
    FUNCTION(zr_nexa_wan_roaming_get_v1),
    FUNCTION(zr_nexa_wan_info_get_v1),
    FUNCTION(zr_nexa_wan_statistics_get_v1),
    FUNCTION(zr_nexa_wan_statistics_reset_v1),
    FUNCTION(zr_nexa_wan_mpdnmapping_add_v1),
    FUNCTION(zr_nexa_wan_mpdnmapping_get_v1),
    FUNCTION(zr_nexa_wan_mpdnmapping_del_v1),
    FUNCTION(zr_nexa_wan_wwanconfig_add_v1),
    FUNCTION(zr_nexa_wan_wwanconfig_add_v2),
    FUNCTION(zr_nexa_wan_wwanconfig_set_v1),
    FUNCTION(zr_nexa_wan_wwanconfig_set_v2),
    FUNCTION(zr_nexa_wan_wwanconfig_default_set_v1),
    FUNCTION(zr_nexa_wan_wwanconfig_get_v1),
    FUNCTION(zr_nexa_wan_wwanconfig_get_v2),
    FUNCTION(zr_nexa_wan_wwanconfig_del_v1),
    FUNCTION(zr_nexa_wan_apwwan_set_v1),
    FUNCTION(zr_nexa_wan_apwwan_get_v1),
};

TEST_F(SweepTest, TheSessionIsLookedAtBeforeAnyPointer)
{
    ASSERT_EQ(zr_nexa_client_uninit(), 0u);
    std::set<std::string> tried;
    for (const Function& function : kFunctionsOfASession) {
        SCOPED_TRACE(function.name);
        platform.reset();
        EXPECT_EQ(function.call(), 13u);
        expect_row(function.name, {}, {info("entry"), error("assertion (QcMapClient != NULL) failed!")});
        tried.insert(function.name);
    }
    std::set<std::string> swept;
    for (const SweepRow& row : all_sweep_rows()) {
        if (row.needs_session) swept.insert(row.function);
    }
    EXPECT_EQ(tried, swept);
}

TEST_F(SweepTest, NoFunctionStandsTwice)
{
    std::set<std::string> seen;
    for (const SweepRow& row : all_sweep_rows()) {
        EXPECT_TRUE(seen.insert(row.function).second) << row.function;
    }
}

}  // namespace
