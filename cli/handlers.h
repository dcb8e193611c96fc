// One handler per setting, named by both words. argv[1] is the category, argv[2] the setting, argv[3] the option word,
// its parameters follow.
//
// Without an option word (argc 3) a handler prints its usage text and returns 0. Words it does not accept are answered
// with invalid(). Otherwise it returns the interface's result code unchanged.
#ifndef ZR_NEXA_CLI_HANDLERS_H
#define ZR_NEXA_CLI_HANDLERS_H

namespace cli {

// general.cpp
int general_restore(int argc, char** argv);
int general_sfe(int argc, char** argv);

// lan.cpp
int lan_gwurl(int argc, char** argv);
int lan_dhcp(int argc, char** argv);
int lan_defaultdhcpenable(int argc, char** argv);
int lan_vlan(int argc, char** argv);
int lan_ipptnat(int argc, char** argv);
int lan_ipptnatpdn(int argc, char** argv);
int lan_ippt(int argc, char** argv);
int lan_ipptgwfilter(int argc, char** argv);

// wan.cpp
int wan_wwanconfig(int argc, char** argv);
int wan_apwwan(int argc, char** argv);
int wan_status(int argc, char** argv);
int wan_connect(int argc, char** argv);
int wan_reconnect(int argc, char** argv);
int wan_autoconnect(int argc, char** argv);
int wan_info(int argc, char** argv);
int wan_mpdnmapping(int argc, char** argv);
int wan_restartradvd(int argc, char** argv);

// nat.cpp
int nat_type(int argc, char** argv);
int nat_ipv4dmz(int argc, char** argv);
int nat_ipv4portmapping(int argc, char** argv);
int nat_routingbh(int argc, char** argv);

}  // namespace cli

#endif
