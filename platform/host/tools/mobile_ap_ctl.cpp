// Makes things happen at the host platform that on a module come from outside: reports, devices, servers of the
// network. For development only. A further subcommand is one add_... function, called from main.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <string>
#include <vector>

#include "alg.h"
#include "indications.h"
#include "signals.h"
#include "state_file.h"
#include "state_place.h"
#include "store.h"

namespace {

using mobile_ap::Store;

// Runs work as one transaction on the state that MOBILE_AP_STATE names.
void change_state(const std::function<void(Store&)>& work)
{
    const mobile_ap::SignalsHeld held;
    const mobile_ap::StatePlace place = mobile_ap::find_state_place();
    Store db;
    const std::string problem = place.problem.empty() ? mobile_ap::open_state(db, place.path) : place.problem;
    if (!problem.empty()) {
        std::fprintf(stderr, "mobile-AP state %s: %s\n", place.path.c_str(), problem.c_str());
        std::exit(1);
    }
    try {
        mobile_ap::Transaction transaction(db, mobile_ap::Access::kWrite);
        work(db);
        transaction.commit();
    } catch (const mobile_ap::Ending& refusal) {
        std::fprintf(stderr, "refused with error %d\n", static_cast<int>(refusal.word));
        std::exit(1);
    } catch (const mobile_ap::DatabaseError& error) {
        std::fprintf(stderr, "mobile-AP state %s: %s\n", db.path().c_str(), error.reason.c_str());
        std::exit(1);
    }
}

void add_report(CLI::App& app)
{
    static uint32_t kind = 0;
    CLI::App* command = app.add_subcommand("report", "Send a large status report to every open session");
    command->add_option("kind", kind, "First word of the report; callers are told of 0 and 1")->required();
    command->callback([] {
        static qcmap_msgr_status_report_ind_msg_v01 report;
        report.kind = kind;
        for (size_t i = 0; i < sizeof report.report; ++i)
            report.report[i] = static_cast<uint8_t>(i % 251);
        change_state([](Store& db) { mobile_ap::indicate(db, QCMAP_MSGR_STATUS_REPORT_IND_V01, report); });
    });
}

void add_device(CLI::App& app)
{
    CLI::App* device = app.add_subcommand("device", "Devices on the LAN");
    device->require_subcommand(1);

    static std::string mac, ipv4, host_name;
    static std::vector<std::string> ipv6;
    static uint32_t type = 4;
    static int64_t rx_bytes = 0, tx_bytes = 0;
    CLI::App* add = device->add_subcommand("add", "Put a device on the LAN, or change the one with this MAC address");
    add->add_option("mac", mac, "MAC address")->required();
    add->add_option("ipv4", ipv4, "IPv4 address")->required();
    add->add_option("name", host_name, "Host name, at most 100 bytes")->required();
    add->add_option("--ipv6", ipv6, "IPv6 addresses, at most 6");
    add->add_option("--type", type, "Device type: 3 USB, 4 Ethernet, 8 WLAN, 16 second Ethernet");
    add->add_option("--rx", rx_bytes, "Bytes received from it");
    add->add_option("--tx", tx_bytes, "Bytes sent to it");
    add->callback([] {
        change_state([](Store& db) {
            db.run("DELETE FROM connected_device WHERE mac = ?", mac);
            db.run("INSERT INTO connected_device VALUES (?, ?, ?, ?, ?, ?)", mac, type, ipv4, host_name, rx_bytes,
                   tx_bytes);
            for (const std::string& address : ipv6)
                db.run("INSERT INTO connected_device_ipv6 VALUES (?, ?)", mac, address);
        });
    });

    CLI::App* clear = device->add_subcommand("clear", "Take all devices off the LAN");
    clear->callback([] { change_state([](Store& db) { db.run("DELETE FROM connected_device"); }); });
}

void add_sip(CLI::App& app)
{
    static int bridge = 0;
    static uint32_t family = 4;
    static std::string address;
    static std::string fqdn;
    CLI::App* command = app.add_subcommand("sip", "SIP servers that the network assigns to a LAN bridge");
    command->require_subcommand(1);
    CLI::App* add = command->add_subcommand("add", "Assign one more server");
    add->add_option("--bridge", bridge, "LAN id")->capture_default_str();
    add->add_option("--family", family, "4 or 6")->capture_default_str();
    CLI::Option_group* name = add->add_option_group("server", "How it is named");
    name->add_option("--address", address, "By its address");
    name->add_option("--fqdn", fqdn, "By its name");
    name->require_option(1);
    add->callback(
        [] { change_state([](Store& db) { mobile_ap::add_network_sip_server(db, bridge, family, address, fqdn); }); });
    CLI::App* clear = command->add_subcommand("clear", "Take all servers of a bridge away");
    clear->add_option("--bridge", bridge, "LAN id")->capture_default_str();
    clear->callback([] { change_state([](Store& db) { mobile_ap::clear_network_sip_servers(db, bridge); }); });
}

}  // namespace

int main(int argc, char** argv)
try {
    CLI::App app("What happens around the host platform, on demand");
    app.require_subcommand(1);
    add_report(app);
    add_sip(app);
    add_device(app);
    CLI11_PARSE(app, argc, argv);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
