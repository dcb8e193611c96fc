// The IPA connection manager's files as a test's own: in a temporary folder, or in their places behind mounts that this
// process alone sees. The machine's own stay as they are.
#ifndef PRIVATE_IPACM_H
#define PRIVATE_IPACM_H

#include <gtest/gtest.h>
#include <sched.h>
#include <stdlib.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "ipacm_cfg.h"

namespace ipacm {

inline std::string content_of(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    std::stringstream content;
    content << stream.rdbuf();
    return content.str();
}

// A new file each time: some file systems wait for the disk when an old one is written over.
inline void write_file(const std::string& file, const std::string& content)
{
    std::filesystem::remove(file);
    std::ofstream stream(file, std::ios::binary);
    stream << content;
}

// The file appears whole, in one step.
inline void put_in_place(const std::string& file, const std::string& content)
{
    write_file(file + ".new", content);
    std::filesystem::rename(file + ".new", file);
}

// Where both files may be put; neither is there yet.
struct TemporaryFiles {
    TemporaryFiles()
    {
        EXPECT_NE(mkdtemp(folder.data()), nullptr);
        config = folder + "/IPACM_cfg.xml";
        temporary_folder = folder + "/run";
        temporary = temporary_folder + "/zr_IPACM_cfg.tmp";
        std::filesystem::create_directory(temporary_folder);
    }
    ~TemporaryFiles()
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    TemporaryFiles(const TemporaryFiles&) = delete;
    TemporaryFiles& operator=(const TemporaryFiles&) = delete;

    operator zr_nexa::IpacmFiles() const
    {
        return {config.c_str(), temporary.c_str()};
    }

    std::string folder = (std::filesystem::temp_directory_path() / "zr_nexa_test.XXXXXX").string();
    std::string config;
    std::string temporary_folder;
    std::string temporary;
};

inline constexpr const char* kConfigFile = "/etc/data/ipa/IPACM_cfg.xml";
inline constexpr const char* kTemporaryFile = "/var/run/data/zr_IPACM_cfg.tmp";

// The files' own folders, empty, on file systems of their own, so that they can be made read-only.
class PrivateMounts {
public:
    PrivateMounts() = default;
    ~PrivateMounts()
    {
        if (!mounted_) return;
        EXPECT_EQ(umount("/run"), 0);
        EXPECT_EQ(umount("/etc"), 0);
    }
    PrivateMounts(const PrivateMounts&) = delete;
    PrivateMounts& operator=(const PrivateMounts&) = delete;

    // False where they are not allowed.
    bool enter()
    {
        static const bool is_private = leave_the_machines();
        if (!is_private) return false;
        EXPECT_EQ(mount("none", "/etc", "tmpfs", 0, nullptr), 0);
        EXPECT_EQ(mount("none", "/run", "tmpfs", 0, nullptr), 0);
        EXPECT_TRUE(std::filesystem::equivalent("/var/run", "/run"));
        std::filesystem::create_directories("/etc/data/ipa");
        std::filesystem::create_directories("/run/data");
        mounted_ = true;
        return true;
    }
    static void make_read_only(const char* mount_point)
    {
        ASSERT_EQ(mount(nullptr, mount_point, nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    }

private:
    static bool leave_the_machines()
    {
        const std::string user = std::to_string(getuid());
        if (unshare(CLONE_NEWNS) != 0) {
            if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
            std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
        }
        return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    }
    bool mounted_ = false;
};

}  // namespace ipacm

#endif
