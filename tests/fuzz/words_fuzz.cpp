// The command's words, one a line: the dispatcher and its handlers on the scripted double. A line that begins with !
// names a platform method that fails.
#include <dispatch.h>
#include <fcntl.h>
#include <unistd.h>
#include <zr_nexa_client_api.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "fuzz.h"
#include "ipacm_cfg.h"
#include "scripted_platform.h"

// The file work, which has a target of its own.
int32_t ZR_GetSetIpacmConfigFromXML(uint32_t is_set, zr_nexa_wan_gre_ipacfg_t* cfg)
{
    fuzz::expect(cfg->num_of_server_addrs <= ZR_NEXA_GRE_SERVERS_MAX || is_set == 0);
    fuzz::expect(cfg->num_of_subnet_masks <= ZR_NEXA_GRE_SUBNETS_MAX || is_set == 0);
    if (is_set == 0) std::memset(cfg, 0, sizeof *cfg);
    return 0;
}

extern "C" int LLVMFuzzerInitialize(int* /* argc */, char*** /* argv */)
{
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    close(nowhere);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    scripted::Platform& platform = scripted::platform();
    platform.reset();
    // Each word ends where its memory ends.
    std::vector<std::unique_ptr<char[]>> words;
    std::vector<char*> argv;
    const std::string text = "zr_nexa\n" + std::string(data, data + size);
    for (size_t begin = 0; begin <= text.size();) {
        const size_t end = std::min(text.find('\n', begin), text.size());
        const std::string word = text.substr(begin, end - begin).c_str();  // as far as a word of a process can go
        begin = end + 1;
        if (word[0] == '!') {
            platform.on(word.substr(1)).fails(QMI_ERR_INTERNAL_V01);
            continue;
        }
        words.push_back(std::make_unique<char[]>(word.size() + 1));
        std::memcpy(words.back().get(), word.c_str(), word.size() + 1);
        argv.push_back(words.back().get());
    }
    if (argv.size() < 3) return -1;
    const int argc = static_cast<int>(argv.size());
    argv.push_back(nullptr);

    zr_nexa_client_init(nullptr);
    cli::zr_nexa_dispatch(argc, argv.data());
    zr_nexa_client_uninit();
    fuzz::expect(platform.objects == 0);
    fuzz::expect(platform.complaints.empty());
    return 0;
}
