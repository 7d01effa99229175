#include "soak/server.h"

#include <ctype.h>
#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "simulator/paths.h"

// What the gateway calls the server, whatever the program's file is called.
constexpr const char SERVER_NAME[] = "vlk_rpc_wlan_config_server";

// A line of /proc/PID/stat: "10 (name) S 6 ...".
struct process_row {
    pid_t id;
    pid_t parent;
    char state;
    std::string name;
};

std::string read_whole_file(const std::string &path) {
    std::string text;
    char block[65536];
    int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return text;
    for (ssize_t length; (length = read(file, block, sizeof block)) > 0;)
        text.append(block, static_cast<size_t>(length));
    close(file);
    return text;
}

static bool read_row(const char *id, process_row *row) {
    std::string line = read_whole_file(std::string("/proc/") + id + "/stat");
    size_t begin = line.find('(');
    size_t end = line.rfind(')');
    if (begin == std::string::npos || end == std::string::npos || end + 4 > line.size())
        return false;
    *row = {atoi(id), atoi(line.c_str() + end + 4), line[end + 2], line.substr(begin + 1, end - begin - 1)};
    return true;
}

static std::vector<process_row> all_processes() {
    std::vector<process_row> rows;
    DIR *directory = opendir("/proc");
    while (const dirent *entry = directory ? readdir(directory) : nullptr) {
        process_row row;
        if (isdigit(static_cast<unsigned char>(entry->d_name[0])) && read_row(entry->d_name, &row))
            rows.push_back(row);
    }
    if (directory)
        closedir(directory);
    return rows;
}

static bool is_called_server(pid_t process) {
    std::string line = read_whole_file("/proc/" + std::to_string(process) + "/cmdline");
    return line.substr(0, line.find('\0')) == SERVER_NAME;
}

pid_t find_supervisor() {
    for (const process_row &row : all_processes())
        if (row.parent == 1 && is_called_server(row.id))
            return row.id;
    return 0;
}

pid_t find_child(pid_t supervisor) {
    for (const process_row &row : all_processes())
        if (row.parent == supervisor && row.state != 'Z')
            return row.id;
    return 0;
}

static int entries_of(const std::string &path) {
    int count = 0;
    DIR *directory = opendir(path.c_str());
    while (const dirent *entry = directory ? readdir(directory) : nullptr)
        count += entry->d_name[0] != '.';
    if (directory)
        closedir(directory);
    return count;
}

process_size size_of_process(pid_t process) {
    std::string folder = "/proc/" + std::to_string(process);
    std::string status = read_whole_file(folder + "/status");
    size_t resident = status.find("VmRSS:");
    return {entries_of(folder + "/fd"), entries_of(folder + "/task"),
            resident == std::string::npos ? 0 : atol(status.c_str() + resident + strlen("VmRSS:"))};
}

std::vector<std::string> descendants_of(pid_t process) {
    std::vector<process_row> rows = all_processes();
    std::vector<pid_t> known = {process};
    std::vector<std::string> names;
    // A process may stand in front of its parent in the list, but every look finds one more at least.
    for (size_t i = 0; i < known.size(); i++)
        for (const process_row &row : rows)
            if (row.parent == known[i]) {
                known.push_back(row.id);
                names.push_back(row.name + (row.state == 'Z' ? " (zombie)" : ""));
            }
    return names;
}

std::vector<std::string> zombies() {
    std::vector<std::string> names;
    for (const process_row &row : all_processes())
        if (row.state == 'Z')
            names.push_back(row.name);
    return names;
}

std::vector<pid_t> processes_of(const std::string &name) {
    std::vector<pid_t> ids;
    for (const process_row &row : all_processes())
        if (row.name == name && row.state != 'Z')
            ids.push_back(row.id);
    return ids;
}

double processor_seconds(pid_t process) {
    std::string line = read_whole_file("/proc/" + std::to_string(process) + "/stat");
    size_t end = line.rfind(')');
    long ticks[4] = {};
    if (end == std::string::npos ||
        sscanf(line.c_str() + end, ") %*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %ld %ld %ld %ld", &ticks[0],
               &ticks[1], &ticks[2], &ticks[3]) != 4)
        return 0;
    return static_cast<double>(ticks[0] + ticks[1] + ticks[2] + ticks[3]) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

bool is_sanitized(pid_t process) {
    std::string maps = read_whole_file("/proc/" + std::to_string(process) + "/maps");
    return maps.find("libasan") != std::string::npos || maps.find("libtsan") != std::string::npos;
}

size_t log_length() {
    struct stat status = {};
    return stat(GATEWAY_SERVER_LOG, &status) == 0 ? static_cast<size_t>(status.st_size) : 0;
}

std::string log_since(size_t length) {
    std::string text;
    char block[65536];
    int file = open(GATEWAY_SERVER_LOG, O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return text;
    off_t place = static_cast<off_t>(length);
    for (ssize_t got; (got = pread(file, block, sizeof block, place)) > 0; place += got)
        text.append(block, static_cast<size_t>(got));
    close(file);
    return text;
}
