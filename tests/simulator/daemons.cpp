#include "tests/simulator/daemons.h"

#include <dirent.h>
#include <errno.h>
#include <poll.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <sstream>

static sockaddr_un address_of(const std::string &path) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    snprintf(address.sun_path, sizeof address.sun_path, "%s", path.c_str());
    return address;
}

static bool connects(int file, const std::string &path) {
    sockaddr_un address = address_of(path);
    return connect(file, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0;
}

daemon_client connect_to(const std::string &path, client_name name) {
    static int count = 0;
    daemon_client client = {socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0), ""};
    if (name == NAMED_BY_PATH)
        client.name = "/tmp/client_" + std::to_string(getpid()) + "_" + std::to_string(count++);
    sockaddr_un own = address_of(client.name);
    // With the family alone the kernel chooses a name.
    socklen_t length = name == NAMED_BY_PATH ? sizeof own : sizeof own.sun_family;
    EXPECT_TRUE(name == NAMELESS || bind(client.file, reinterpret_cast<sockaddr *>(&own), length) == 0)
        << strerror(errno);
    EXPECT_TRUE(connects(client.file, path)) << path << ": " << strerror(errno);
    return client;
}

void disconnect(const daemon_client &client) {
    close(client.file);
    if (!client.name.empty())
        unlink(client.name.c_str());
}

void send_to(const daemon_client &client, const std::string &bytes) {
    EXPECT_EQ(send(client.file, bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size())) << strerror(errno);
}

std::string answer_at(const daemon_client &client, double seconds) {
    char bytes[4096];
    pollfd waiting = {client.file, POLLIN, 0};
    if (poll(&waiting, 1, static_cast<int>(seconds * 1000)) != 1)
        return "no answer";
    ssize_t length = recv(client.file, bytes, sizeof bytes, MSG_DONTWAIT);
    return length < 0 ? strerror(errno) : std::string(bytes, static_cast<size_t>(length));
}

std::string ask(const std::string &path, const std::string &text, double seconds) {
    daemon_client client = connect_to(path);
    send_to(client, text + '\0');
    std::string answer = answer_at(client, seconds);
    disconnect(client);
    return answer;
}

void tell(const std::string &path, const std::string &text) {
    daemon_client client = connect_to(path, NAMELESS);
    send_to(client, text + '\0');
    disconnect(client);
}

int32_t number_at(const std::string &answer, size_t offset) {
    int32_t number = 0;
    EXPECT_LE(offset + sizeof number, answer.size());
    if (offset + sizeof number <= answer.size())
        memcpy(&number, answer.data() + offset, sizeof number);
    return number;
}

bool exists(const std::string &path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0;
}

bool is_served(const std::string &path) {
    int file = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    bool served = connects(file, path);
    close(file);
    return served;
}

void start_in_background(const std::string &command, const std::string &path) {
    EXPECT_EQ(run_shell(command + " >/dev/null 2>&1 &").status, 0);
    EXPECT_TRUE(eventually([&] { return is_served(path); })) << command;
}

// The state of a process of this name, 0 when it is none: "12 (hostapd) S ..."
static char state_of(const std::string &pid, const std::string &name) {
    std::string line = read_file("/proc/" + pid + "/stat");
    std::string before = pid + " (" + name + ") ";
    return line.starts_with(before) ? line[before.size()] : '\0';
}

std::string pids_of(const std::string &name) {
    std::string pids;
    DIR *processes = opendir("/proc");
    while (const dirent *entry = readdir(processes)) {
        char state = state_of(entry->d_name, name);
        // One that has ended and waits for its parent to notice does not run.
        if (state != '\0' && state != 'Z')
            pids += std::string(entry->d_name) + "\n";
    }
    closedir(processes);
    return pids;
}

void end_all(const std::string &name, int number) {
    std::istringstream pids(pids_of(name));
    for (pid_t pid; pids >> pid;)
        kill(pid, number);
    EXPECT_TRUE(eventually([&] { return pids_of(name).empty(); })) << name;
}
