#include "tests/simulator/support.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "simulator/paths.h"

static std::vector<char *> arguments_of(const std::vector<std::string> &words) {
    std::vector<char *> arguments;
    for (const std::string &word : words)
        arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);
    return arguments;
}

// Starts a program with nothing to read. A fork would first copy what the sanitizers know of the memory, which takes
// longer than most programs do. -1 when there is no such program.
static pid_t start(const std::vector<std::string> &words, int output, int errors) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);
    std::vector<char *> arguments = arguments_of(words);
    pid_t child;
    int failed = posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return failed == 0 ? child : -1;
}

// Reads both pipes until both are closed.
static void read_pipes(int output, int errors, outcome *result) {
    pollfd pipes[] = {{output, POLLIN, 0}, {errors, POLLIN, 0}};
    std::string *texts[] = {&result->output, &result->errors};
    for (int open_pipes = 2; open_pipes > 0;) {
        poll(pipes, 2, -1);
        for (int i = 0; i < 2; i++) {
            char buffer[4096];
            if (pipes[i].revents == 0)
                continue;
            ssize_t length = read(pipes[i].fd, buffer, sizeof buffer);
            if (length > 0) {
                texts[i]->append(buffer, static_cast<size_t>(length));
            } else {
                pipes[i].fd = -1;
                open_pipes--;
            }
        }
    }
}

// Where namespaces are refused the launcher says so, in front of whatever else it has to say.
static void remove_way(std::string *text) {
    static const std::string way = "vlk_simulated_gateway: namespaces are refused here; proot carries this run";
    for (size_t at; (at = text->find(way)) != std::string::npos;)
        text->erase(at, text->find('\n', at) - at + 1);
}

outcome run(const std::vector<std::string> &words) {
    outcome result = {127, "", ""};
    int output[2], errors[2];
    if (pipe2(output, O_CLOEXEC) != 0 || pipe2(errors, O_CLOEXEC) != 0)
        return result;
    pid_t child = start(words, output[1], errors[1]);
    close(output[1]);
    close(errors[1]);
    read_pipes(output[0], errors[0], &result);
    close(output[0]);
    close(errors[0]);
    int status = 0;
    if (child > 0 && waitpid(child, &status, 0) == child)
        result.status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    remove_way(&result.errors);
    return result;
}

std::string run_on_terminal(const std::vector<std::string> &words) {
    int terminal;
    pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child < 0)
        return "there is no terminal";
    if (child == 0) {
        execvp(words[0].c_str(), arguments_of(words).data());
        _exit(127);
    }
    std::string shown;
    char buffer[512];
    for (ssize_t length; (length = read(terminal, buffer, sizeof buffer)) > 0;)
        shown.append(buffer, static_cast<size_t>(length));
    close(terminal);
    waitpid(child, nullptr, 0);
    remove_way(&shown);
    return shown;
}

outcome run_shell(const std::string &command) {
    return run({"/bin/sh", "-c", command});
}

std::string read_file(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

void write_file(const std::string &path, const std::string &text) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text;
}

size_t journal_mark() {
    return read_file(GATEWAY_JOURNAL).size();
}

std::vector<std::string> journal_since(size_t mark) {
    std::istringstream text(read_file(GATEWAY_JOURNAL).substr(mark));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    return lines;
}
