// The IPA connection manager's folders, in mounts that this process alone sees: the machine's own stay as they are.
#ifndef PRIVATE_IPACM_H
#define PRIVATE_IPACM_H

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace ipacm {

inline constexpr const char* kConfigFile = "/etc/data/ipa/IPACM_cfg.xml";
inline constexpr const char* kTemporaryFile = "/var/run/data/zr_IPACM_cfg.tmp";

inline std::string content_of(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    std::stringstream content;
    content << stream.rdbuf();
    return content.str();
}

inline void write_file(const std::string& file, const std::string& content)
{
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream << content;
}

// The file appears whole, in one step.
inline void put_in_place(const std::string& content)
{
    const std::string beside = std::string(kConfigFile) + ".new";
    write_file(beside, content);
    std::filesystem::rename(beside, kConfigFile);
}

inline bool enter_private_mounts()
{
    const std::string user = std::to_string(getuid());
    if (unshare(CLONE_NEWNS) != 0) {
        if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
        write_file("/proc/self/uid_map", "0 " + user + " 1");
    }
    return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

// Empty folders of one test, which are on file systems of their own, so that they can be made read-only.
class Folders : public testing::Test {
protected:
    void SetUp() override
    {
        static const bool is_private = enter_private_mounts();
        if (!is_private) GTEST_SKIP() << "this machine does not allow private mounts";
        ASSERT_EQ(mount("none", "/etc", "tmpfs", 0, nullptr), 0);
        ASSERT_EQ(mount("none", "/run", "tmpfs", 0, nullptr), 0);
        ASSERT_TRUE(std::filesystem::equivalent("/var/run", "/run"));
        std::filesystem::create_directories("/etc/data/ipa");
        std::filesystem::create_directories("/run/data");
        mounted = true;
    }
    void TearDown() override
    {
        if (!mounted) return;
        EXPECT_EQ(umount("/run"), 0);
        EXPECT_EQ(umount("/etc"), 0);
    }
    static void make_read_only(const char* mount_point)
    {
        ASSERT_EQ(mount(nullptr, mount_point, nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    }
    bool mounted = false;
};

}  // namespace ipacm

#endif
