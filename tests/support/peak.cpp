// peak FILE PROGRAM ARGUMENTS... - runs a program and writes into FILE the most memory that it had at a time, in
// kilobytes. A process begins with the peak of the one that starts it, so what starts it here is small.
#include <cstdio>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

int main(int count, char **arguments)
{
    if (count < 3)
        return 2;
    const pid_t child = fork();
    if (child == 0) {
        execvp(arguments[2], arguments + 2);
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) != child)
        return 126;
    FILE *file = std::fopen(arguments[1], "w");
    if (file == nullptr || std::fprintf(file, "%ld", usage.ru_maxrss) < 0 || std::fclose(file) != 0)
        return 125;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 124;
}
