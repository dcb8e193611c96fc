// What the tests of the host platform share: a fresh state folder for each test, and processes of their own.
#ifndef HOST_FIXTURE_H
#define HOST_FIXTURE_H

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "qcmap_client.h"

// A session as the client interface opens it, without indications of interest.
class OpenClient : public QCMAP_Client {
public:
    explicit OpenClient(client_status_ind_t callback = nullptr, void* user = nullptr)
        : QCMAP_Client(callback, QCMAP_MSGR_ARCH_TYPE_LOCAL_V01, user)
    {
        qmi_error_type_v01 err = QMI_ERR_INTERNAL_V01;
        open = IsReady() && EnableMobileAP_Ext(&err, 65535);
    }
    bool open = false;
};

class HostTest : public testing::Test {
protected:
    void SetUp() override
    {
        std::string name = (std::filesystem::temp_directory_path() / "mobile_ap_test.XXXXXX").string();
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        folder = name;
        setenv("MOBILE_AP_STATE", folder.c_str(), 1);
        for (const char* variable : {"MOBILE_AP_FAULTS", "MOBILE_AP_JUDGE", "MOBILE_AP_LOG", "MOBILE_AP_LOG_LEVEL"})
            unsetenv(variable);
        err = QMI_ERR_NONE_V01;
    }
    void TearDown() override
    {
        unsetenv("MOBILE_AP_FAULTS");
        unsetenv("MOBILE_AP_JUDGE");
        std::filesystem::remove_all(folder);
    }

    // Names that begin with this, in the state folder.
    int files_beginning(const std::string& start) const
    {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            if (entry.path().filename().string().rfind(start, 0) == 0) ++count;
        return count;
    }

    std::string folder;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
};

// Runs work in a child process, which ends with its result.
inline pid_t start_child(const std::function<int()>& work)
{
    const pid_t child = fork();
    if (child == 0) _exit(work());
    return child;
}

// Its exit status, or 1000 + the signal that ended it.
inline int wait_child(pid_t child)
{
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

// What work writes to standard error.
inline std::string stderr_of(const std::function<void()>& work)
{
    testing::internal::CaptureStderr();
    work();
    return testing::internal::GetCapturedStderr();
}

#endif
