// The words of provocations: what makes no sense, and what devices, servers and reports become.
#include "provocations.h"

#include <memory>

#include "provoked.h"

namespace {

class ProvocationsHostTest : public ProvokedTest {
protected:
    static std::string problem(const std::string& line)
    {
        try {
            mobile_ap::parse_provocation(words_of(line));
        } catch (const mobile_ap::ProvocationError& error) {
            return error.reason;
        }
        return "";
    }
    // "mac type ipv4 name rx tx ipv6..." of each, in order.
    std::vector<std::string> devices(QCMAP_Client& client)
    {
        const auto list = std::make_unique<qcmap_connected_devices>();
        unsigned int count = 0;
        EXPECT_TRUE(client.GetConnectedDevicesInfo(list.get(), &count, &err));
        std::vector<std::string> shown;
        for (unsigned int i = 0; i < count; ++i) {
            const qcmap_connected_device& device = list->device[i];
            char mac[18];
            snprintf(mac, sizeof mac, "%02x:%02x:%02x:%02x:%02x:%02x", device.mac[0], device.mac[1], device.mac[2],
                     device.mac[3], device.mac[4], device.mac[5]);
            std::string text = std::string(mac) + " " + std::to_string(device.device_type) + " " +
                               v4(device.ipv4_addr) + " " +
                               std::string(device.host_name, strnlen(device.host_name, sizeof device.host_name)) + " " +
                               std::to_string(device.rx_bytes) + " " + std::to_string(device.tx_bytes);
            for (uint32_t k = 0; k < device.ipv6_count; ++k)
                text += " " + v6(device.ipv6_addr[k]);
            shown.push_back(text);
        }
        return shown;
    }
};

TEST_F(ProvocationsHostTest, WordsThatMakeNoSense)
{
    const std::vector<std::pair<std::string, std::string>> lines = {
        {"", "A subcommand is required"},
        {"nonsense", "\"nonsense\" is no word that is known here"},
        {"Call drop 1", "\"Call\" is no word that is known here"},
        {"call", "A subcommand is required"},
        {"call dorp 1", "\"dorp\" is no word that is known here"},
        {"call drop", "profile is required"},
        {"call drop 0", "profile: Value 0 not in range 1 to 50"},
        {"call drop 51", "profile: Value 51 not in range 1 to 50"},
        {"call drop one", "profile: Value one not in range 1 to 50"},
        {"call drop 1 2", "The following argument was not expected: 2"},
        {"call drop 1 roam on", "The following arguments were not expected: on roam"},
        {"call drop 1 --family 5", "--family: 5 not in {4,6}"},
        {"call drop 1 --reason 6", "--reason: two numbers, as in 6:36, not 6"},
        {"call drop 1 --reason 6:", "--reason: two numbers, as in 6:36, not 6:"},
        {"call drop 1 --reason :6", "--reason: two numbers, as in 6:36, not :6"},
        {"call drop 1 --reason 6:3x", "--reason: two numbers, as in 6:36, not 6:3x"},
        {"call drop 1 --reason 6:3:6", "--reason: two numbers, as in 6:36, not 6:3:6"},
        {"call drop 1 --reason 1234567890:1", "--reason: two numbers, as in 6:36, not 1234567890:1"},
        {"call refuse 1 reconnect", "request: reconnect not in {connect,disconnect}"},
        {"call refuse 1 --times -1", "--times: Value -1 not in range 0 to 1000"},
        {"call refuse 1 --times 1001", "--times: Value 1001 not in range 0 to 1000"},
        {"call slow 1", "ms is required"},
        {"call slow 1 600001", "ms: Value 600001 not in range 0 to 600000"},
        {"call slow 1 -1", "ms: Value -1 not in range 0 to 600000"},
        {"service", "A subcommand is required"},
        {"service away", "seconds is required"},
        {"service away 86401", "seconds: Value 86401 not in range 0 to 86400"},
        {"service restart -1", "seconds: Value -1 not in range 0 to 86400"},
        {"roam", "state is required"},
        {"roam maybe", "state: maybe not in {on,off}"},
        {"traffic", "profile is required"},
        {"traffic 1 --down 1125899906842625", "--down: Value 1125899906842625 not in range 0 to 1125899906842624"},
        {"device join 02:00:00:00:00:0g 192.168.225.21 x",
         "mac: six pairs of hexadecimal digits with colons, not 02:00:00:00:00:0g"},
        {"device leave", "Exactly 1 option from [mac,--all] is required"},
        {"sip add", "Exactly 1 option from [--address,--fqdn] is required"},
        {"sip add --family 5 --fqdn pcscf.example", "--family: 5 not in {4,6}"},
        {"device join 02:00:00:00:00:07 192.168.225.21 x --type 5", "--type: 5 not in {3,4,8,16}"},
        {"device join 02:00:00:00:00:07 192.168.225.21 x --rx -1", "--rx: Value -1 not in range 0 to 1125899906842624"},
        {"device join 02:00:00:00:00:07 192.168.225.21 x --tx -1", "--tx: Value -1 not in range 0 to 1125899906842624"},
        {"report", "kind is required"},
        {"--help", "\"--help\" is no word that is known here"},
    };
    for (const auto& [line, reason] : lines)
        EXPECT_EQ(problem(line), reason) << line;
    for (const char* line : {"device join 02:00:00:00:00:07 192.168.225.256 x", "device join 02:00:00:00:00:07 x y",
                             "device leave 02:00:00:00:00:07 --all", "report x", "report -1", "call drop 1 --family",
                             "device join 02:00:00:00:00:07 192.168.225.21 x --ipv6 nonsense"}) {
        EXPECT_NE(problem(line), "") << line;
    }
    EXPECT_NE(problem("device join 02:00:00:00:00:07 192.168.225.21 " + std::string(101, 'x')), "");
    EXPECT_EQ(problem("device join 02:00:00:00:00:07 192.168.225.21 " + std::string(100, 'x')), "");
    const std::string six = " --ipv6 ::1 ::2 ::3 ::4 ::5 ::6";
    EXPECT_EQ(problem("device join 02:00:00:00:00:07 192.168.225.21 x" + six), "");
    EXPECT_NE(problem("device join 02:00:00:00:00:07 192.168.225.21 x" + six + " ::7"), "");
}

TEST_F(ProvocationsHostTest, DevicesJoinAndLeave)
{
    OpenClient client;
    ASSERT_TRUE(client.open);
    EXPECT_EQ(provoke("device join 02:00:00:00:00:0A 192.168.225.21 laptop --type 8 --rx 1000 --tx 2000 "
                      "--ipv6 2001:db8::1 --ipv6 2001:db8::2"),
              "");
    EXPECT_EQ(provoke("device join 02:00:00:00:00:0b 192.168.225.22 phone"), "");
    EXPECT_EQ(devices(client),
              (std::vector<std::string>{"02:00:00:00:00:0a 8 192.168.225.21 laptop 1000 2000 2001:db8::1 2001:db8::2",
                                        "02:00:00:00:00:0b 4 192.168.225.22 phone 0 0"}));
    EXPECT_EQ(provoke("device join 02:00:00:00:00:0a 192.168.225.23 notebook"), "");
    EXPECT_EQ(provoke("device leave 02:00:00:00:00:0B"), "");
    EXPECT_EQ(devices(client), (std::vector<std::string>{"02:00:00:00:00:0a 4 192.168.225.23 notebook 0 0"}));
    EXPECT_EQ(provoke("device leave 02:00:00:00:00:0b"), "refused 25");
    EXPECT_EQ(provoke("device leave --all"), "");
    EXPECT_EQ(provoke("device leave --all"), "");
    EXPECT_TRUE(devices(client).empty());
}

TEST_F(ProvocationsHostTest, DevicesComeAtTheirTime)
{
    OpenClient client;
    schedule({{1000, "device join 02:00:00:00:00:01 192.168.225.21 a"}, {2000, "device leave --all"}});
    EXPECT_TRUE(devices(client).empty());
    let_pass(1000);
    EXPECT_EQ(devices(client).size(), 1u);
    let_pass(1000);
    EXPECT_TRUE(devices(client).empty());
}

TEST_F(ProvocationsHostTest, SipServersAreAssigned)
{
    OpenClient client;
    EXPECT_EQ(provoke("sip add --address 198.51.100.61"), "");
    EXPECT_EQ(provoke("sip add --fqdn pcscf.example"), "");
    EXPECT_EQ(provoke("sip add --family 6 --address 2001:db8::61"), "");
    const auto servers = [&] { return db.one<int>("SELECT count(*) FROM sip_server_network").value_or(-1); };
    EXPECT_EQ(servers(), 3);
    EXPECT_EQ(provoke("sip add --address 2001:db8::61"), "refused 48");
    EXPECT_EQ(provoke("sip add --bridge 9 --fqdn pcscf.example"), "refused 14");
    EXPECT_EQ(provoke("sip clear --bridge 9"), "refused 14");
    for (int i = 2; i < 25; ++i)
        EXPECT_EQ(provoke("sip add --address 198.51.100.1"), "");
    EXPECT_EQ(provoke("sip add --address 198.51.100.1"), "refused 62");
    EXPECT_EQ(provoke("sip clear"), "");
    EXPECT_EQ(servers(), 0);
}

TEST_F(ProvocationsHostTest, RefusalsArePutInWords)
{
    const std::vector<std::pair<int, std::string>> texts = {
        {9, "no such profile"},          {14, "no such LAN bridge"}, {25, "no such device"},      {26, "no such call"},
        {48, "a value is out of range"}, {62, "the list is full"},   {3, "refused with error 3"},
    };
    for (const auto& [word, text] : texts)
        EXPECT_EQ(mobile_ap::refusal_text(static_cast<qmi_error_type_v01>(word)), text);
}

}  // namespace
