/* Runs a program with an empty environment and prints its peak memory in KiB. Small and static, so that the figure is
 * the program's and not this one's. Usage: peak_memory PROGRAM [WORD ...] */
#include <stdio.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

int main(int argc, char** argv)
{
    char* const environment[] = {NULL};
    struct rusage usage;
    int status = 0;
    if (argc < 2) return 2;
    const pid_t child = vfork();
    if (child == 0) {
        execve(argv[1], argv + 1, environment);
        _exit(127);
    }
    if (child < 0 || wait4(child, &status, 0, &usage) != child || status != 0) return 1;
    fprintf(stderr, "%ld\n", usage.ru_maxrss);
    return 0;
}
