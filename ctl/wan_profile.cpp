// WWAN profiles: what they dial with, and the roles that they have.
#include "wan_profile.h"

#include <zr_nexa/wan_profile.h>

#include <algorithm>
#include <cstring>

namespace ctl {
namespace {

static_assert(kProfilesMax == ZR_NEXA_WAN_PROFILES_MAX);

constexpr char kOther[] = "other";  // read only
constexpr char kNone[] = "none";    // read only
constexpr uint8_t kNoTechnology = 0xff;

const Words kTechnologies = {{ZR_NEXA_WAN_TECH_ANY, "any"},
                             {ZR_NEXA_WAN_TECH_UMTS, "umts"},
                             {ZR_NEXA_WAN_TECH_CDMA, "cdma"},
                             {kNoTechnology, kOther}};
const Words kFamilies = {{ZR_NEXA_IP_V4, "ipv4"}, {ZR_NEXA_IP_V6, "ipv6"}, {ZR_NEXA_IP_V4V6, "ipv4v6"}, {0, kOther}};

bool has_other(const Value& dial)
{
    return dial.child("technology").text() == kOther || dial.child("family").text() == kOther;
}

Result refused_other(const char* function)
{
    return {0, function, "a technology or family that has no word can be read only"};
}

zr_nexa_wan_wwanconfig_t record_of(const Value& dial)
{
    zr_nexa_wan_wwanconfig_t record = {};
    record.tech_pref = static_cast<uint8_t>(code_of(kTechnologies, dial.child("technology").text()));
    record.ip_family = static_cast<int32_t>(code_of(kFamilies, dial.child("family").text()));
    record.apn_id = static_cast<uint8_t>(dial.child("apn_index").number());
    const std::string name = unescaped(dial.child("apn_name").text());
    std::memcpy(record.apn_name, name.data(), std::min(name.size(), sizeof record.apn_name));
    return record;
}

Value dial_of(const zr_nexa_wan_wwanconfig_t& record)
{
    Value dial;
    dial.map()["technology"] = word_of(kTechnologies, record.tech_pref);
    dial.map()["apn_index"] = record.apn_id;
    dial.map()["family"] = word_of(kFamilies, static_cast<uint32_t>(record.ip_family));
    dial.map()["apn_name"] = escaped(record.apn_name, sizeof record.apn_name);
    return dial;
}

Row dial_row()
{
    Row row = {Scope::kProfile,
               Shape::kWhole,
               Phase::kProfiles,
               "dial",
               {or_else({"technology", word(all_words(kTechnologies)),
                         "radio technology to dial with; other is one without a word and can be read only", "any"},
                        "any"),
                needed({"apn_index", number(ZR_NEXA_WAN_APN_ID_MIN, ZR_NEXA_WAN_APN_ID_MAX),
                        "index of the modem's APN profile", "1"}),
                or_else({"family", word(all_words(kFamilies)),
                         "IP families of the call; other is one without a word and can be read only", "ipv4v6"},
                        "ipv4v6"),
                or_else({"apn_name", text(0, ZR_NEXA_WAN_APN_NAME_SIZE),
                         "APN name in place of the one in the modem's profile; empty: none"},
                        "")},
               {"zr_nexa_wan_wwanconfig_add_v2", "zr_nexa_wan_wwanconfig_set_v1", "zr_nexa_wan_wwanconfig_set_v2",
                "zr_nexa_wan_wwanconfig_get_v2", "zr_nexa_wan_wwanconfig_del_v1"}};
    row.about = "what the profile dials with";
    row.is_scope = true;
    row.read_all = [](std::map<uint32_t, Value>* out) {
        Value profiles;
        uint32_t default_handle = 0;
        Result result = read_profiles(&profiles, &default_handle);
        for (const auto& [handle, profile] : profiles.map())
            (*out)[static_cast<uint32_t>(std::stoul(handle))] = profile.child("dial");
        return result;
    };
    row.write = change_dial;
    row.interrupts = [](const std::string& name, const Value&, const Value&) {
        return name + ": its call keeps the old values or is ended";
    };
    row.not_undone = [](const Value&, const Value& present) {
        return has_other(present) ? "a technology or family that has no word can be read only" : std::string();
    };
    row.note = "a second APN index and a call bring-up mode that other programs gave it are lost";
    return row;
}

Type role_type()
{
    Type type = plain(Type::Kind::kProfile);
    type.words = {kNone};
    return type;
}

std::string role_of(uint32_t handle)
{
    return handle == 0 ? kNone : std::to_string(handle);
}

std::string not_taken_back(const Value& wanted, const Value& present)
{
    for (const auto& [key, role] : present.map())
        if (role.text() == kNone) return key + " cannot be taken from a profile, only given to another";
    for (const auto& [key, role] : wanted.map())
        if (present.map().count(key) == 0) return key + " was given to a profile that is not there";
    return {};
}

Row default_row()
{
    Row row = {Scope::kModule,
               Shape::kUnit,
               Phase::kRoles,
               "",
               {{"roles.default", role_type(), "the profile that the module uses for its own network", "1"}},
               {"zr_nexa_wan_wwanconfig_default_set_v1", "zr_nexa_wan_wwanconfig_get_v2"}};
    row.read = [](uint32_t, Value* out) {
        Value profiles;
        uint32_t handle = 0;
        Result result = read_profiles(&profiles, &handle);
        if (result.good()) out->map()["roles.default"] = role_of(handle);
        return result;
    };
    row.write = [](uint32_t, const Value& wanted, const Value&) {
        return CALL(zr_nexa_wan_wwanconfig_default_set_v1, wanted.child("roles.default").number());
    };
    row.interrupts = [](const std::string&, const Value&, const Value&) {
        return std::string("the module's own traffic may be interrupted");
    };
    row.not_undone = not_taken_back;
    return row;
}

Row access_point_row()
{
    Row row = {Scope::kModule,
               Shape::kUnit,
               Phase::kRoles,
               "",
               {{"roles.access_point", role_type(), "the profile of the module's access point", "1"},
                {"roles.dns_proxy", role_type(), "the profile of the module's DNS proxy", "1"}},
               {"zr_nexa_wan_apwwan_set_v1", "zr_nexa_wan_apwwan_get_v1"}};
    row.read = [](uint32_t, Value* out) {
        uint32_t access_point = 0;
        uint32_t dns_proxy = 0;
        Result result = CALL(zr_nexa_wan_apwwan_get_v1, &access_point, &dns_proxy);
        if (!result.good()) return result;
        out->map()["roles.access_point"] = role_of(access_point);
        out->map()["roles.dns_proxy"] = role_of(dns_proxy);
        return result;
    };
    row.write = [](uint32_t, const Value& wanted, const Value&) {
        uint32_t access_point = wanted.child("roles.access_point").number();
        uint32_t dns_proxy = wanted.child("roles.dns_proxy").number();
        // One that nobody can say stays what it is.
        if (wanted.map().size() < 2) {
            uint32_t had = 0;
            const bool has_proxy = wanted.map().count("roles.dns_proxy") != 0;
            Result result =
                CALL(zr_nexa_wan_apwwan_get_v1, has_proxy ? &access_point : &had, has_proxy ? &had : &dns_proxy);
            if (!result.good()) return result;
        }
        return CALL(zr_nexa_wan_apwwan_set_v1, access_point, dns_proxy);
    };
    row.interrupts = [](const std::string&, const Value&, const Value&) {
        return std::string("traffic of the access point and its DNS may be interrupted");
    };
    row.not_undone = not_taken_back;
    return row;
}

}  // namespace

Result read_profiles(Value* profiles, uint32_t* default_handle)
{
    // What the service has no code for is left alone: cleared, and no technology preset.
    zr_nexa_wan_wwanconfig_list_v2_t list = {};
    for (zr_nexa_wan_wwanconfig_t& each : list.wwanconfig)
        each.tech_pref = kNoTechnology;
    Result result = CALL(zr_nexa_wan_wwanconfig_get_v2, &list);
    if (!result.good()) return result;
    profiles->map();
    *default_handle = list.default_wwan_handle;
    for (uint32_t i = 0; i < list.wwanconfig_num; ++i)
        profiles->map()[std::to_string(list.wwan_handle[i])].map()["dial"] = dial_of(list.wwanconfig[i]);
    return result;
}

Result add_profile(const Value& dial, uint32_t* handle)
{
    if (has_other(dial)) return refused_other("zr_nexa_wan_wwanconfig_add_v2");
    return CALL(zr_nexa_wan_wwanconfig_add_v2, handle, record_of(dial));
}

// The first version leaves the bring-up mode alone, which cannot be read.
Result change_dial(uint32_t handle, const Value& wanted, const Value& present)
{
    const zr_nexa_wan_wwanconfig_t record = record_of(wanted);
    const bool as_it_was =
        wanted.child("family") == present.child("family") && wanted.child("apn_name") == present.child("apn_name");
    if (wanted.child("technology").text() != kOther && as_it_was)
        return CALL(zr_nexa_wan_wwanconfig_set_v1, handle, record.tech_pref, record.apn_id);
    if (has_other(wanted)) return refused_other("zr_nexa_wan_wwanconfig_set_v2");
    return CALL(zr_nexa_wan_wwanconfig_set_v2, handle, record);
}

Result remove_profile(uint32_t handle)
{
    return CALL(zr_nexa_wan_wwanconfig_del_v1, handle);
}

std::vector<Row> wan_profile_rows()
{
    return {dial_row(), default_row(), access_point_row()};
}

}  // namespace ctl
