// The tables of every area, in the order in which they are made.
//
// An area's source defines `extern const char* const k<Area>Schema`: statements that make its tables and fill them with
// the factory rows. Every statement may run on a database where all of it is there already.
#ifndef MOBILE_AP_SCHEMAS_H
#define MOBILE_AP_SCHEMAS_H

namespace mobile_ap {

extern const char* const kServiceSchema;
extern const char* const kEventsSchema;
extern const char* const kNetworkSchema;

// The service's own tables, which a factory restore leaves alone.
inline constexpr const char* const* kServiceSchemas[] = {&kServiceSchema, &kEventsSchema, &kNetworkSchema};

extern const char* const kGeneralSchema;
extern const char* const kLanAddressingSchema;
extern const char* const kWanProfileSchema;
extern const char* const kWanCallSchema;
extern const char* const kWanMpdnMappingSchema;
extern const char* const kNatSchema;
extern const char* const kVpnPassthroughSchema;
extern const char* const kAlgSchema;
extern const char* const kLanServicesSchema;
extern const char* const kLanVlanSchema;
extern const char* const kLanPassthroughSchema;
extern const char* const kFirewallSchema;
extern const char* const kUpnpSchema;

inline constexpr const char* const* kAreaSchemas[] = {
    &kGeneralSchema,        &kLanAddressingSchema, &kWanProfileSchema,     &kWanCallSchema,
    &kWanMpdnMappingSchema, &kNatSchema,           &kVpnPassthroughSchema, &kAlgSchema,
    &kLanServicesSchema,    &kLanVlanSchema,       &kLanPassthroughSchema, &kFirewallSchema,
    &kUpnpSchema,
};

}  // namespace mobile_ap

#endif
