// The GRE functions as an application has them: the built libraries, the real file, the real shell.
#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <zr_nexa_client_api.h>

#include <cstring>
#include <thread>
#include <vector>

#include "private_ipacm.h"

namespace {

using ipacm::content_of;
using ipacm::kConfigFile;
using ipacm::kTemporaryFile;
using ipacm::write_file;

const std::string kOff =
    "<?xml version=\"1.0\"?>\n<system>\n\t<IPACM>\n\t\t<GREFlag>\n\t\t\t<GREEnabled>0</GREEnabled>\n\t\t</GREFlag>\n"
    "\t\t<Kept>yes</Kept>\n\t</IPACM>\n</system>\n";
const std::string kOn =
    "<?xml version=\"1.0\"?>\n<system>\n\t<IPACM>\n\t\t<GREFlag>\n\t\t\t<GREEnabled>1</GREEnabled>\n"
    "\t\t\t<GREServer>10.0.0.1</GREServer>\n\t\t\t<GREServerSubnet>255.255.255.0</GREServerSubnet>\n\t\t</GREFlag>\n"
    "\t\t<Kept>yes</Kept>\n\t</IPACM>\n</system>\n";

zr_nexa_wan_gre_ipacfg_t on_record()
{
    zr_nexa_wan_gre_ipacfg_t cfg = {};
    cfg.gre_enabled = 1;
    cfg.num_of_server_addrs = 1;
    cfg.server_ipv4_addr[0] = htonl(0x0A000001);
    cfg.num_of_subnet_masks = 1;
    cfg.subnet_mask[0] = htonl(0xFFFFFF00);
    return cfg;
}

bool is_loaded(const char* library)
{
    return content_of("/proc/self/maps").find(library) != std::string::npos;
}

class GreFileTest : public ipacm::Folders {
protected:
    void SetUp() override
    {
        Folders::SetUp();
        if (!mounted) return;
        // A stand-in for the module's fsync, which writes down what it was asked.
        std::filesystem::create_directory("/run/bin");
        write_file("/run/bin/fsync", "#!/bin/sh\necho \"$@\" $(cat \"$2\" | wc -c) >>/run/fsync.log\n");
        chmod("/run/bin/fsync", 0755);
        setenv("PATH", "/run/bin:/usr/bin:/bin", 1);
        write_file(kConfigFile, kOff);
    }
};

TEST_F(GreFileTest, TheFileWorkIsLoadedOnFirstUse)
{
    EXPECT_FALSE(is_loaded("libzr_nexa_ipacm_cfg"));
    EXPECT_FALSE(is_loaded("libpugixml"));
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(nullptr), 4);
    EXPECT_FALSE(is_loaded("libzr_nexa_ipacm_cfg"));
    zr_nexa_wan_gre_ipacfg_t cfg;
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(&cfg), 0);
    EXPECT_TRUE(is_loaded("libzr_nexa_ipacm_cfg"));
    EXPECT_TRUE(is_loaded("libpugixml"));
}

TEST_F(GreFileTest, ThreadsMayComeFirstTogether)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            zr_nexa_wan_gre_ipacfg_t cfg;
            std::memset(&cfg, 0xA5, sizeof(cfg));
            EXPECT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(&cfg), 0);
            EXPECT_EQ(cfg.gre_enabled, 0);
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
}

TEST_F(GreFileTest, WhatIsSetIsReadBack)
{
    const auto cfg = on_record();
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
    EXPECT_EQ(content_of(kConfigFile), kOn);
    EXPECT_FALSE(std::filesystem::exists(kTemporaryFile));
    const std::string size = std::to_string(kOn.size());
    EXPECT_EQ(content_of("/run/fsync.log"),
              "-d /var/run/data/zr_IPACM_cfg.tmp " + size + "\n-d /etc/data/ipa/IPACM_cfg.xml " + size + "\n");

    zr_nexa_wan_gre_ipacfg_t read;
    std::memset(&read, 0xA5, sizeof(read));
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(&read), 0);
    EXPECT_EQ(std::memcmp(&read, &cfg, sizeof(read)), 0);

    const zr_nexa_wan_gre_ipacfg_t off = {};
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&off), 0);
    EXPECT_EQ(content_of(kConfigFile), kOff);
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(&read), 0);
    EXPECT_EQ(std::memcmp(&read, &off, sizeof(read)), 0);
}

TEST_F(GreFileTest, TheFileIsCopiedOverAndKeepsItsIdentity)
{
    chmod(kConfigFile, 0640);
    struct stat before {};
    struct stat after {};
    ASSERT_EQ(stat(kConfigFile, &before), 0);
    const auto cfg = on_record();
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
    ASSERT_EQ(stat(kConfigFile, &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode, before.st_mode);
}

TEST_F(GreFileTest, WithoutTheCommandsFolderTheWriteStillHappens)
{
    std::filesystem::remove_all("/run/bin");
    const auto cfg = on_record();
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
    EXPECT_EQ(content_of(kConfigFile), kOn);
}

TEST_F(GreFileTest, NothingIsLostWhenTheTemporaryFolderIsMissing)
{
    std::filesystem::remove("/run/data");
    const auto cfg = on_record();
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
    EXPECT_EQ(content_of(kConfigFile), kOff);
}

TEST_F(GreFileTest, NothingIsLostWhenTheTemporaryFolderIsReadOnly)
{
    make_read_only("/run");
    const auto cfg = on_record();
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
    EXPECT_EQ(content_of(kConfigFile), kOff);
}

TEST_F(GreFileTest, NothingIsLostWhenTheFileIsReadOnly)
{
    make_read_only("/etc");
    const auto cfg = on_record();
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
    EXPECT_EQ(content_of(kConfigFile), kOff);
    EXPECT_FALSE(std::filesystem::exists(kTemporaryFile));
}

TEST_F(GreFileTest, ReadingNeedsNoWritableFolder)
{
    write_file(kConfigFile, kOn);
    make_read_only("/etc");
    make_read_only("/run");
    zr_nexa_wan_gre_ipacfg_t cfg;
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(&cfg), 0);
    EXPECT_EQ(cfg.gre_enabled, 1);
    EXPECT_EQ(cfg.server_ipv4_addr[0], htonl(0x0A000001));
}

}  // namespace
