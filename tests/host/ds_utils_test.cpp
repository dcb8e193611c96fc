#include "ds_utils.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <string.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

int run(const std::string& command)
{
    return ds_system_call(command.data(), static_cast<unsigned int>(command.size()));
}

TEST(SystemCall, ReturnsTheStatus)
{
    EXPECT_EQ(run("true"), 0);
    EXPECT_EQ(run("exit 7"), 7);
    EXPECT_EQ(run("exit 255"), 255);
    EXPECT_EQ(run("/no/such/program 2>/dev/null"), 127);
    EXPECT_EQ(run("kill -9 $$"), 137);
    EXPECT_EQ(run("-x 2>/dev/null"), 127);
    EXPECT_EQ(ds_system_call(nullptr, 0), -1);
}

TEST(SystemCall, TakesCommandLenBytes)
{
    const char text[] = "exit 34";
    EXPECT_EQ(ds_system_call(text, 7), 34);
    EXPECT_EQ(ds_system_call(text, 6), 3);
    EXPECT_EQ(ds_system_call(text, 0), 0);
    EXPECT_EQ(ds_system_call(text, 4096), 34) << "ends at the text's end";
}

TEST(SystemCall, IsAShellLine)
{
    std::string name = (std::filesystem::temp_directory_path() / "ds_utils_test.XXXXXX").string();
    const int fd = mkstemp(name.data());
    ASSERT_GE(fd, 0);
    close(fd);
    EXPECT_EQ(run("printf %s 'a b' | tr ' ' - > " + name), 0);
    std::ifstream file(name);
    std::string content;
    std::getline(file, content);
    EXPECT_EQ(content, "a-b");
    unlink(name.c_str());
}

TEST(MacAddress, ReadsEitherCase)
{
    uint8_t mac[6] = {};
    const uint8_t wanted[6] = {0xaa, 0xbb, 0x0c, 0x00, 0xff, 0x19};
    EXPECT_TRUE(ds_mac_addr_pton("aA:bB:0c:00:fF:19", mac));
    EXPECT_EQ(memcmp(mac, wanted, 6), 0);
}

TEST(MacAddress, RefusesAnyOtherTextAndWritesNothing)
{
    for (const char* text :
         {"", "aa:bb:cc:dd:ee:f", "aa:bb:cc:dd:ee:fff", "aa-bb-cc-dd-ee-ff", "aabb:cc:dd:ee:ff:", "ga:bb:cc:dd:ee:ff",
          "aa:bb:cc:dd:ee:fg", "aa:bb:cc:dd:ee: f", "a:abb:cc:dd:ee:ff", "aa:bb:cc:dd:ee+ff", "aa:bb:cc:dd:ee:ff:"}) {
        uint8_t mac[6] = {1, 2, 3, 4, 5, 6};
        const uint8_t before[6] = {1, 2, 3, 4, 5, 6};
        EXPECT_FALSE(ds_mac_addr_pton(text, mac)) << text;
        EXPECT_EQ(memcmp(mac, before, 6), 0) << text;
    }
    uint8_t mac[6];
    EXPECT_FALSE(ds_mac_addr_pton(nullptr, mac));
}

TEST(MacAddress, WritesLowerCase)
{
    const uint8_t mac[6] = {0xAA, 0x0b, 0xCC, 0x00, 0xff, 0x90};
    char text[19];
    memset(text, 'x', sizeof text);
    ds_mac_addr_ntop(mac, text);
    EXPECT_STREQ(text, "aa:0b:cc:00:ff:90");
    EXPECT_EQ(text[18], 'x');
}

}  // namespace
