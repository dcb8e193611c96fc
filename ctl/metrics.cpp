// The figures as text for monitoring: a form that readers of OpenMetrics and of the older text form both take.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "exit_status.h"
#include "figures.h"
#include "session.h"
#include "tell.h"
#include "verbs.h"

namespace ctl {
namespace {

using Labels = std::vector<std::pair<const char*, std::string>>;

std::string label_value(const std::string& text)
{
    std::string out;
    for (const char c : text) {
        if (c == '\\' || c == '"') out += '\\';
        out += c == '\n' ? std::string("\\n") : std::string(1, c);
    }
    return out;
}

// A figure with its samples. A counter's samples end in "_total", its name does not.
class Metric {
public:
    Metric(const char* name, const char* type, const char* help) : name_(name), is_counter_(type[0] == 'c')
    {
        text_ = "# HELP " + name_ + " " + help + "\n# TYPE " + name_ + " " + type + "\n";
    }
    void add(const Labels& labels, uint64_t value)
    {
        std::string text;
        for (const auto& [name, content] : labels)
            text += (text.empty() ? "" : ",") + std::string(name) + "=\"" + label_value(content) + "\"";
        if (!seen_.insert(text).second) return;  // no figure stands twice
        text_ += name_ + (is_counter_ ? "_total" : "") + (text.empty() ? "" : "{" + text + "}") + " " +
                 std::to_string(value) + "\n";
    }
    const std::string& text() const
    {
        return text_;
    }

private:
    std::string name_;
    bool is_counter_;
    std::string text_;
    std::set<std::string> seen_;
};

std::string text_of_profiles(const Figures& figures)
{
    Metric info("zr_nexa_profile_info", "gauge", "What a profile dials with");
    Metric connected("zr_nexa_profile_connected", "gauge", "Whether a family of a profile is connected");
    Metric mtu("zr_nexa_profile_mtu_bytes", "gauge", "MTU of a connection");
    Metric received("zr_nexa_profile_received_bytes", "counter", "Bytes received");
    Metric sent("zr_nexa_profile_sent_bytes", "counter", "Bytes sent");
    Metric received_packets("zr_nexa_profile_received_packets", "counter", "Packets received");
    Metric sent_packets("zr_nexa_profile_sent_packets", "counter", "Packets sent");
    Metric received_drops("zr_nexa_profile_received_dropped_packets", "counter", "Received packets that were dropped");
    Metric sent_drops("zr_nexa_profile_sent_dropped_packets", "counter", "Packets to be sent that were dropped");
    for (const ProfileFigures& profile : figures.profiles) {
        const std::string handle = std::to_string(profile.handle);
        info.add({{"profile", handle},
                  {"technology", profile.technology},
                  {"family", profile.family},
                  {"apn_index", std::to_string(profile.apn_index)},
                  {"apn_name", profile.apn_name}},
                 1);
        for (const bool is_v4 : {true, false}) {
            const FamilyFigures& family = is_v4 ? profile.v4 : profile.v6;
            const Labels labels = {{"profile", handle}, {"family", is_v4 ? "ipv4" : "ipv6"}};
            if (!family.state.empty()) connected.add(labels, family.is_connected() ? 1 : 0);
            if (family.is_connected() && profile.info.connected == 1)
                mtu.add(labels, is_v4 ? profile.info.v4_mtu : profile.info.v6_mtu);
            if (!family.is_counted) continue;
            received.add(labels, family.counts.bytes_rx);
            sent.add(labels, family.counts.bytes_tx);
            received_packets.add(labels, family.counts.pkts_rx);
            sent_packets.add(labels, family.counts.pkts_tx);
            received_drops.add(labels, family.counts.pkts_dropped_rx);
            sent_drops.add(labels, family.counts.pkts_dropped_tx);
        }
    }
    std::string text;
    for (const Metric* metric :
         {&info, &connected, &mtu, &received, &sent, &received_packets, &sent_packets, &received_drops, &sent_drops})
        text += metric->text();
    return text;
}

std::string text_of_lans(const Figures& figures)
{
    Metric devices("zr_nexa_lan_devices", "gauge", "Devices on a LAN");
    Metric feeds("zr_nexa_lan_profile", "gauge", "Through which profile a LAN goes out");
    for (const LanFigures& lan : figures.lans) {
        uint64_t count = 0;
        for (const DeviceFigures& device : figures.devices)
            count += device.lan == static_cast<int>(lan.id) ? 1 : 0;
        devices.add({{"lan", std::to_string(lan.id)}}, count);
        for (const uint32_t profile : lan.profiles)
            feeds.add({{"lan", std::to_string(lan.id)}, {"profile", std::to_string(profile)}}, 1);
    }
    Metric info("zr_nexa_device_info", "gauge", "A device on a LAN");
    Metric received("zr_nexa_device_received_bytes", "counter", "Bytes received from a device");
    Metric sent("zr_nexa_device_sent_bytes", "counter", "Bytes sent to a device");
    for (const DeviceFigures& device : figures.devices) {
        const std::string lan = device.lan < 0 ? "" : std::to_string(device.lan);
        info.add({{"mac", device.mac}, {"lan", lan}, {"address", device.address}, {"host_name", device.host_name}}, 1);
        received.add({{"mac", device.mac}, {"lan", lan}}, device.received_bytes);
        sent.add({{"mac", device.mac}, {"lan", lan}}, device.sent_bytes);
    }
    return devices.text() + feeds.text() + info.text() + received.text() + sent.text();
}

int metrics()
{
    Metric up("zr_nexa_up", "gauge", "Whether the mobile-AP service answers");
    const Session session;
    if (!session.problem().empty()) {
        up.add({}, 0);
        std::printf("%s# EOF\n", up.text().c_str());
        tell(session.problem());
        return kNoService;
    }
    const Figures figures = read_figures();
    up.add({}, 1);
    std::printf("%s%s%s# EOF\n", up.text().c_str(), text_of_profiles(figures).c_str(), text_of_lans(figures).c_str());
    return status_of(figures);
}

}  // namespace

void add_metrics(CLI::App& app, Work* chosen)
{
    CLI::App* const verb = app.add_subcommand("metrics", "Figures as text for monitoring (OpenMetrics)");
    verb->final_callback([=] { *chosen = metrics; });
}

}  // namespace ctl
