// A gateway's platform as the unit tests need it. See the header.
#include "tests/support/platform.h"

#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <system_error>

#include "config/log.h"
#include "config/store.h"

static const char CALLS_FILE[] = "/tmp/fake_tools.calls";
static const char CAPTURED_OUT[] = "/tmp/captured.out";
static const char CAPTURED_ERR[] = "/tmp/captured.err";

// A test that cannot set its platform up must not go on and pass.
[[noreturn]] static void give_up(const char *what, const std::string &path) {
    fprintf(stderr, "test platform: cannot %s %s: %s\n", what, path.c_str(), strerror(errno));
    abort();
}

static void remove_whatever(const std::string &path) {
    std::error_code error;
    std::filesystem::remove_all(path, error);
    if (error) {
        give_up("remove", path);
    }
}

void reset_platform() {
    for (const char *path :
         {STORE_FILE, STORE_LOCK_FILE, DEBUG_SWITCH_FILE, FAKE_TOOLS, CALLS_FILE, CAPTURED_OUT, CAPTURED_ERR}) {
        remove_whatever(path);
    }
    if (mkdir(FAKE_TOOLS, 0755) != 0) {
        give_up("make", FAKE_TOOLS);
    }
    std::string path = std::string(FAKE_TOOLS) + ":/usr/bin:/bin";
    setenv("PATH", path.c_str(), 1);
}

void write_file(const std::string &path, const std::string &content) {
    FILE *file = fopen(path.c_str(), "we");
    if (!file || fwrite(content.data(), 1, content.size(), file) != content.size() || fclose(file) != 0) {
        give_up("write", path);
    }
}

std::string read_file(const std::string &path) {
    std::string content;
    FILE *file = fopen(path.c_str(), "re");
    if (!file) {
        return content;
    }
    char block[4096];
    for (size_t length; (length = fread(block, 1, sizeof(block), file)) > 0;) {
        content.append(block, length);
    }
    fclose(file);
    return content;
}

void write_store(const std::vector<std::string> &lines) {
    std::string content = "CFG\n";
    for (const std::string &line : lines) {
        content += line + "\n";
    }
    content.append(4, '\0');
    write_file(STORE_FILE, content);
}

static std::string answer_path(const std::string &tool, const std::string &suffix) {
    return std::string(FAKE_TOOLS) + "/" + tool + ".answer" + suffix;
}

void install_tool(const std::string &name, const std::string &prints, int exit_status) {
    std::string path = std::string(FAKE_TOOLS) + "/" + name;
    std::string answer = answer_path(name, "");
    write_file(answer, prints);
    write_file(path,
               "#!/bin/sh\n"
               "printf '%s\\n' \"" +
                   name + " $*\" >>" + CALLS_FILE +
                   "\n"
                   "answer=" +
                   answer +
                   "\n"
                   "if [ $# -gt 0 ] && [ -f \"$answer.$1\" ]; then answer=$answer.$1; fi\n"
                   "cat \"$answer\"\n"
                   "exit " +
                   std::to_string(exit_status) + "\n");
    if (chmod(path.c_str(), 0755) != 0) {
        give_up("make executable", path);
    }
}

void set_tool_answer(const std::string &name, const std::string &first_argument, const std::string &prints) {
    write_file(answer_path(name, "." + first_argument), prints);
}

std::vector<std::string> tool_calls() {
    std::vector<std::string> calls;
    std::string content = read_file(CALLS_FILE);
    size_t begin = 0;
    for (size_t end; (end = content.find('\n', begin)) != std::string::npos; begin = end + 1) {
        calls.push_back(content.substr(begin, end - begin));
    }
    return calls;
}

void set_debug(bool on) {
    if (on) {
        write_file(DEBUG_SWITCH_FILE, "");
    } else {
        remove_whatever(DEBUG_SWITCH_FILE);
    }
}

static rlimit descriptor_limit;

size_t open_descriptors() {
    size_t count = 0;
    DIR *directory = opendir("/proc/self/fd");
    while (readdir(directory)) {
        count++;
    }
    closedir(directory);
    return count;
}

void begin_descriptor_shortage() {
    int lowest_free = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0);
    if (lowest_free < 0 || getrlimit(RLIMIT_NOFILE, &descriptor_limit) != 0) {
        give_up("count", "descriptors");
    }
    close(lowest_free);
    rlimit shortage = descriptor_limit;
    shortage.rlim_cur = static_cast<rlim_t>(lowest_free);
    if (setrlimit(RLIMIT_NOFILE, &shortage) != 0) {
        give_up("limit", "descriptors");
    }
}

void end_descriptor_shortage() {
    if (setrlimit(RLIMIT_NOFILE, &descriptor_limit) != 0) {
        give_up("free", "descriptors");
    }
}

// One of the two standard streams while it is captured.
struct redirection {
    FILE *stream;
    const char *path;
    int kept;
};

static redirection out_redirection = {stdout, CAPTURED_OUT, -1};
static redirection err_redirection = {stderr, CAPTURED_ERR, -1};

static void begin_redirection(redirection *stream) {
    fflush(stream->stream);
    stream->kept = fcntl(fileno(stream->stream), F_DUPFD_CLOEXEC, 3);
    int file = open(stream->path, O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0644);
    if (stream->kept < 0 || file < 0 || dup2(file, fileno(stream->stream)) < 0) {
        give_up("capture into", stream->path);
    }
    close(file);
}

static std::string end_redirection(redirection *stream) {
    fflush(stream->stream);
    dup2(stream->kept, fileno(stream->stream));
    close(stream->kept);
    return read_file(stream->path);
}

void begin_capture() {
    begin_redirection(&out_redirection);
    begin_redirection(&err_redirection);
}

printed_text end_capture() {
    printed_text printed;
    printed.out = end_redirection(&out_redirection);
    printed.err = end_redirection(&err_redirection);
    return printed;
}
