// Programs of this build, as processes: each by itself, or through the emulator of a cross build.
#ifndef PROGRAM_H
#define PROGRAM_H

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <sstream>
#include <string>
#include <vector>

// ZR_NEXA_EMULATOR is what stands before a program, words with blanks between them; empty in a build for this machine.
inline constexpr bool kEmulated = sizeof(ZR_NEXA_EMULATOR) > 1;

// What starts a program: the first word is looked for along PATH. The loader's variables among those of its environment
// would be the emulator's own; they become words of it.
inline std::vector<std::string> program_words(const std::string& program, const std::vector<std::string>& words,
                                              std::vector<std::string>* variables = nullptr)
{
    std::vector<std::string> all;
    std::istringstream emulator(ZR_NEXA_EMULATOR);
    for (std::string word; emulator >> word;)
        all.push_back(word);
    if (kEmulated && variables != nullptr) {
        std::vector<std::string> others;
        for (const std::string& variable : *variables) {
            if (variable.rfind("LD_", 0) == 0) {
                all.insert(all.end(), {"-E", variable});
            } else {
                others.push_back(variable);
            }
        }
        *variables = others;
    }
    all.push_back(program);
    all.insert(all.end(), words.begin(), words.end());
    return all;
}

// As execve() takes them; they point into texts.
inline std::vector<char*> pointers(const std::vector<std::string>& texts)
{
    std::vector<char*> all;
    for (const auto& text : texts)
        all.push_back(const_cast<char*>(text.c_str()));
    all.push_back(nullptr);
    return all;
}

// Exit status of an ended child, or 1000 + the signal that ended it.
inline int exit_status(pid_t child)
{
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

// Runs a program in this environment to its end.
inline int run_program(const std::string& program, const std::vector<std::string>& words)
{
    const std::vector<std::string> all = program_words(program, words);
    const std::vector<char*> argv = pointers(all);
    const pid_t child = fork();
    if (child == 0) {
        execvp(argv[0], argv.data());
        _exit(127);
    }
    return exit_status(child);
}

#endif
