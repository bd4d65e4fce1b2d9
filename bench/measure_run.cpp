// measure-run [--stdout FILE] -- COMMAND [ARG...]
//
// Runs COMMAND and prints one line of JSON: its wall time, its peak resident
// size and its exit code. The peak is the child's own rusage from wait4. A
// child's peak counts the memory of the process it was forked from until it
// executes the command, so a measurement must come from a small process like
// this one, never from a large interpreter.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

namespace {

int usage() {
    std::fprintf(stderr, "usage: measure-run [--stdout FILE] -- COMMAND [ARG...]\n");
    return 2;
}

double now() {
    timespec t{};
    clock_gettime(CLOCK_MONOTONIC, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

}  // namespace

int main(int argc, char** argv) {
    const char* output = nullptr;
    int i = 1;
    if (i + 1 < argc && std::strcmp(argv[i], "--stdout") == 0) {
        output = argv[i + 1];
        i += 2;
    }
    if (i >= argc || std::strcmp(argv[i], "--") != 0 || i + 1 >= argc) return usage();
    char** command = argv + i + 1;

    int outFd = -1;
    if (output != nullptr) {
        outFd = ::open(output, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (outFd < 0) {
            std::perror(output);
            return 2;
        }
    }
    double start = now();
    pid_t child = ::fork();
    if (child < 0) {
        std::perror("fork");
        return 2;
    }
    if (child == 0) {
        if (outFd >= 0 && ::dup2(outFd, STDOUT_FILENO) < 0) _exit(127);
        ::execvp(command[0], command);
        std::perror(command[0]);
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    if (::wait4(child, &status, 0, &usage) < 0) {
        std::perror("wait4");
        return 2;
    }
    double seconds = now() - start;
    int code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    std::printf("{\"seconds\": %.9f, \"maxrssKiB\": %ld, \"exit\": %d}\n", seconds, usage.ru_maxrss,
                code);
    return 0;
}
