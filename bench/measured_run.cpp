// Runs a program on standard input, discards its output, and prints the elapsed seconds, the
// seconds of processor time, the peak of resident memory in bytes and the exit status.
//
//     measured_run PROGRAM < scene.wrl
//
// run.py does not do this itself: after fork(), the peak of the child includes the memory of the
// parent, and the Python interpreter needs more memory than the measured programs.

#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

/// Replaces the process by the program; returns only if that fails.
void become(char** arguments) {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere >= 0 && dup2(nowhere, STDOUT_FILENO) >= 0) {
        execv(arguments[0], arguments);
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        (void)std::fputs("usage: measured_run PROGRAM < scene.wrl\n", stderr);
        return 2;
    }
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        become(argv + 1);
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) != child) {
        (void)std::fputs("measured_run: cannot run the program\n", stderr);
        return 1;
    }
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - begin;
    (void)std::printf("%.6f %.6f %ld %d\n", wall.count(),
                      seconds(usage.ru_utime) + seconds(usage.ru_stime), usage.ru_maxrss * 1024,
                      WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status));
    return 0;
}
