// GRE settings in real files, through the real shell: the file work in a temporary folder, then the functions of the
// built library in the places of the module's files.
#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <zr_nexa_client_api.h>

#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

#include "private_ipacm.h"

namespace {

using ipacm::content_of;
using ipacm::write_file;
using zr_nexa::get_set_ipacm_cfg;

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

// A stand-in for the module's fsync, which writes down what it was asked.
void install_fsync(const std::string& folder)
{
    const std::string bin = folder + "/bin";
    std::filesystem::create_directory(bin);
    write_file(bin + "/fsync", "#!/bin/sh\necho \"$@\" $(cat \"$2\" | wc -c) >>" + folder + "/fsync.log\n");
    chmod((bin + "/fsync").c_str(), 0755);
    setenv("PATH", (bin + ":/usr/bin:/bin").c_str(), 1);
}

// What it has written of one save.
std::string flushed(const std::string& config, const std::string& temporary, size_t size)
{
    return "-d " + temporary + " " + std::to_string(size) + "\n-d " + config + " " + std::to_string(size) + "\n";
}

class IpacmFileTest : public testing::Test {
protected:
    ipacm::TemporaryFiles files;

    IpacmFileTest()
    {
        install_fsync(files.folder);
        write_file(files.config, kOff);
    }
    int32_t set(zr_nexa_wan_gre_ipacfg_t cfg)
    {
        return get_set_ipacm_cfg(files, 1, &cfg);
    }
    int32_t get(zr_nexa_wan_gre_ipacfg_t* cfg)
    {
        return get_set_ipacm_cfg(files, 0, cfg);
    }
};

TEST_F(IpacmFileTest, ThreadsMayReadTogether)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([this] {
            zr_nexa_wan_gre_ipacfg_t cfg;
            std::memset(&cfg, 0xA5, sizeof(cfg));
            EXPECT_EQ(get(&cfg), 0);
            EXPECT_EQ(cfg.gre_enabled, 0);
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
}

TEST_F(IpacmFileTest, WhatIsSetIsReadBack)
{
    const auto cfg = on_record();
    EXPECT_EQ(set(cfg), 0);
    EXPECT_EQ(content_of(files.config), kOn);
    EXPECT_FALSE(std::filesystem::exists(files.temporary));
    EXPECT_EQ(content_of(files.folder + "/fsync.log"), flushed(files.config, files.temporary, kOn.size()));

    zr_nexa_wan_gre_ipacfg_t read;
    std::memset(&read, 0xA5, sizeof(read));
    EXPECT_EQ(get(&read), 0);
    EXPECT_EQ(std::memcmp(&read, &cfg, sizeof(read)), 0);

    const zr_nexa_wan_gre_ipacfg_t off = {};
    EXPECT_EQ(set(off), 0);
    EXPECT_EQ(content_of(files.config), kOff);
    EXPECT_EQ(get(&read), 0);
    EXPECT_EQ(std::memcmp(&read, &off, sizeof(read)), 0);
}

TEST_F(IpacmFileTest, TheFileIsCopiedOverAndKeepsItsIdentity)
{
    chmod(files.config.c_str(), 0640);
    struct stat before {};
    struct stat after {};
    ASSERT_EQ(stat(files.config.c_str(), &before), 0);
    EXPECT_EQ(set(on_record()), 0);
    ASSERT_EQ(stat(files.config.c_str(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode, before.st_mode);
}

TEST_F(IpacmFileTest, WithoutTheCommandsFolderTheWriteStillHappens)
{
    std::filesystem::remove_all(files.folder + "/bin");
    EXPECT_EQ(set(on_record()), 0);
    EXPECT_EQ(content_of(files.config), kOn);
}

TEST_F(IpacmFileTest, NothingIsLostWhenTheTemporaryFolderIsMissing)
{
    std::filesystem::remove(files.temporary_folder);
    EXPECT_EQ(set(on_record()), 0);
    EXPECT_EQ(content_of(files.config), kOff);
}

// The library's functions. Their folders are mounts, which can be made read-only.
class GreFileTest : public testing::Test {
protected:
    ipacm::PrivateMounts mounts;

    void SetUp() override
    {
        if (!mounts.enter()) GTEST_SKIP() << "private mounts are not allowed here";
        install_fsync("/run");
        write_file(ipacm::kConfigFile, kOff);
    }
};

TEST_F(GreFileTest, WhatIsSetIsReadBack)
{
    const auto cfg = on_record();
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
    EXPECT_EQ(content_of(ipacm::kConfigFile), kOn);
    EXPECT_FALSE(std::filesystem::exists(ipacm::kTemporaryFile));
    EXPECT_EQ(content_of("/run/fsync.log"),
              flushed("/etc/data/ipa/IPACM_cfg.xml", "/var/run/data/zr_IPACM_cfg.tmp", kOn.size()));

    zr_nexa_wan_gre_ipacfg_t read;
    std::memset(&read, 0xA5, sizeof(read));
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(&read), 0);
    EXPECT_EQ(std::memcmp(&read, &cfg, sizeof(read)), 0);
}

TEST_F(GreFileTest, NothingIsLostWhenTheTemporaryFolderIsReadOnly)
{
    mounts.make_read_only("/run");
    const auto cfg = on_record();
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
    EXPECT_EQ(content_of(ipacm::kConfigFile), kOff);
}

TEST_F(GreFileTest, NothingIsLostWhenTheFileIsReadOnly)
{
    mounts.make_read_only("/etc");
    const auto cfg = on_record();
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
    EXPECT_EQ(content_of(ipacm::kConfigFile), kOff);
    EXPECT_FALSE(std::filesystem::exists(ipacm::kTemporaryFile));
}

// The results of saving are ignored: what fits is copied over the file.
TEST_F(GreFileTest, AFullTemporaryFolderCutsTheFileAndReadingWaitsUntilItIsPutBack)
{
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const std::string size = "size=" + std::to_string(page);
    const std::string front = "<?xml version=\"1.0\"?>\n<system>" + std::string(2 * page, 'x');
    write_file(ipacm::kConfigFile, front + "<IPACM><GREFlag/></IPACM></system>");
    const auto cfg = on_record();
    ASSERT_EQ(mount("none", "/run/data", "tmpfs", 0, size.c_str()), 0);
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
    EXPECT_EQ(umount("/run/data"), 0);
    EXPECT_EQ(content_of(ipacm::kConfigFile), front.substr(0, page));

    std::atomic<bool> has_read = false;
    zr_nexa_wan_gre_ipacfg_t read = {};
    std::thread reader([&] {
        EXPECT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(&read), 0);
        has_read = true;
    });
    usleep(120000);
    EXPECT_FALSE(has_read);
    ipacm::put_in_place(ipacm::kConfigFile, kOn);
    reader.join();
    EXPECT_EQ(read.gre_enabled, 1);
    EXPECT_EQ(read.server_ipv4_addr[0], htonl(0x0A000001));
}

TEST_F(GreFileTest, ReadingNeedsNoWritableFolder)
{
    write_file(ipacm::kConfigFile, kOn);
    mounts.make_read_only("/etc");
    mounts.make_read_only("/run");
    zr_nexa_wan_gre_ipacfg_t cfg;
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(&cfg), 0);
    EXPECT_EQ(cfg.gre_enabled, 1);
    EXPECT_EQ(cfg.server_ipv4_addr[0], htonl(0x0A000001));
}

}  // namespace
