// Shell commands and MAC addresses as text.
#include "ds_utils.h"

#include <errno.h>
#include <spawn.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

int digit(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

int run_shell(char* command)
{
    char shell[] = "sh";
    char option[] = "-c";
    char end_of_options[] = "--";
    char* const arguments[] = {shell, option, end_of_options, command, nullptr};
    pid_t child = -1;
    if (posix_spawn(&child, "/bin/sh", nullptr, nullptr, arguments, environ) != 0) return -1;
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) return -1;
    }
    if (WIFEXITED(status)) return WEXITSTATUS(status);
    return 128 + WTERMSIG(status);  // as a shell tells it
}

}  // namespace

extern "C" int ds_system_call(const char* command, unsigned int command_len)
{
    if (command == nullptr) return -1;
    char* text = strndup(command, command_len);  // the caller's text need not be terminated
    if (text == nullptr) return -1;
    const int status = run_shell(text);
    free(text);
    return status;
}

extern "C" bool ds_mac_addr_pton(const char* text, uint8_t* mac)
{
    if (text == nullptr || mac == nullptr || strnlen(text, 18) != 17) return false;
    uint8_t bytes[6];
    for (size_t i = 0; i < 6; ++i) {
        const int high = digit(text[3 * i]);
        const int low = digit(text[3 * i + 1]);
        if (high < 0 || low < 0 || (i < 5 && text[3 * i + 2] != ':')) return false;
        bytes[i] = static_cast<uint8_t>(high * 16 + low);
    }
    memcpy(mac, bytes, sizeof bytes);
    return true;
}

extern "C" void ds_mac_addr_ntop(const uint8_t* mac, char* text)
{
    constexpr char kDigits[] = "0123456789abcdef";
    for (size_t i = 0; i < 6; ++i) {
        text[3 * i] = kDigits[mac[i] >> 4];
        text[3 * i + 1] = kDigits[mac[i] & 15];
        text[3 * i + 2] = i < 5 ? ':' : '\0';
    }
}
