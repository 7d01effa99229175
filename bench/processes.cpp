#include "bench/processes.h"

#include <dirent.h>
#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

pid_t start(const std::vector<std::string> &command, const char *output) {
    pid_t pid = fork();
    if (pid != 0)
        return pid;
    setpgid(0, 0);
    int null = open("/dev/null", O_RDWR);
    dup2(null, STDIN_FILENO);
    dup2(open(output, O_WRONLY | O_CREAT | O_TRUNC, 0644), STDOUT_FILENO);
    dup2(null, STDERR_FILENO);
    std::vector<char *> pointers;
    for (const std::string &word : command)
        pointers.push_back(const_cast<char *>(word.c_str()));
    pointers.push_back(nullptr);
    close_range(STDERR_FILENO + 1, ~0U, 0);
    execvp(pointers[0], pointers.data());
    _exit(127);
}

void end(pid_t pid) {
    if (pid <= 0)
        return;
    kill(-pid, SIGKILL);
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
}

void pin(pid_t pid, int processor) {
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(processor, &set);
    sched_setaffinity(pid, sizeof set, &set);
}

static std::string file_text(const std::string &path) {
    std::string text;
    FILE *file = fopen(path.c_str(), "r");
    if (!file)
        return text;
    char buffer[4096];
    for (size_t length; (length = fread(buffer, 1, sizeof buffer, file)) > 0;)
        text.append(buffer, length);
    fclose(file);
    return text;
}

static std::string of_process(pid_t pid, const char *file) {
    return file_text("/proc/" + std::to_string(pid) + "/" + file);
}

pid_t only_child_of(pid_t pid) {
    return atoi(of_process(pid, ("task/" + std::to_string(pid) + "/children").c_str()).c_str());
}

// The first number is the time on a processor, in nanoseconds.
double processor_seconds(pid_t pid) {
    return atof(of_process(pid, "schedstat").c_str()) / 1e9;
}

long resident_kilobytes(pid_t pid) {
    std::string status = of_process(pid, "status");
    size_t place = status.find("VmRSS:");
    return place == std::string::npos ? 0 : atol(status.c_str() + place + strlen("VmRSS:"));
}

int open_files(pid_t pid) {
    DIR *folder = opendir(("/proc/" + std::to_string(pid) + "/fd").c_str());
    if (!folder)
        return 0;
    int count = 0;
    while (const dirent *entry = readdir(folder))
        count += entry->d_name[0] != '.';
    closedir(folder);
    return count;
}

std::string output_of(const std::string &shell_command) {
    std::string text;
    FILE *pipe = popen(shell_command.c_str(), "r");
    char buffer[4096];
    for (size_t length; (length = fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        text.append(buffer, length);
    pclose(pipe);
    return text;
}
