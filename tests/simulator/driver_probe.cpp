// A small program for the tests of the driver library, which is preloaded into it as into the server: it makes the
// calls that the library watches and prints what came of them.
#include <errno.h>
#include <net/if.h>
#include <pthread.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <linux/wireless.h>

static iwreq request_for(const char *interface) {
    iwreq request = {};
    snprintf(request.ifr_name, sizeof request.ifr_name, "%s", interface);
    return request;
}

static int report(int result) {
    printf("%d %s\n", result, result < 0 ? strerrorname_np(errno) : "");
    return 0;
}

// The table's count, and its entries' frequency and flags.
static int print_channels(int file, const char *interface, size_t size) {
    // As large as a request's 16-bit length can say.
    static unsigned char table[65536];
    iwreq request = request_for(interface);
    request.u.data.pointer = table;
    request.u.data.length = static_cast<uint16_t>(size);
    int result = ioctl(file, SIOCIWFIRSTPRIV + 7, &request);
    if (result < 0)
        return report(result);
    uint32_t count;
    memcpy(&count, table, sizeof count);
    printf("%d %u %u\n", result, request.u.data.length, count);
    for (uint32_t i = 0; i < count; i++) {
        uint16_t frequency;
        uint32_t flags;
        memcpy(&frequency, table + 4 + 20 * i, sizeof frequency);
        memcpy(&flags, table + 8 + 20 * i, sizeof flags);
        printf("%u 0x%08x\n", frequency, flags);
    }
    return 0;
}

static int print_essid(int file, const char *interface, size_t size) {
    char essid[256] = "";
    iwreq request = request_for(interface);
    request.u.essid.pointer = essid;
    request.u.essid.length = static_cast<uint16_t>(size);
    int result = ioctl(file, SIOCGIWESSID, &request);
    if (result < 0)
        return report(result);
    printf("%d %u %u %s\n", result, request.u.essid.length, request.u.essid.flags, essid);
    return 0;
}

// Any other request on an interface.
static int print_request(int file, const char *interface, unsigned long number) {
    iwreq request = request_for(interface);
    return report(ioctl(file, number, &request));
}

static void *popen_and_wait(void *command) {
    FILE *pipe = popen(static_cast<const char *>(command), "r");
    if (pipe == nullptr) {
        report(-1);
        return nullptr;
    }
    for (int byte = getc(pipe); byte != EOF; byte = getc(pipe))
        putchar(byte);
    printf("closed %d\n", pclose(pipe));
    return nullptr;
}

// popen in a thread with as little stack as the server's workers have.
static int popen_in_worker(char *command) {
    pthread_attr_t attributes;
    pthread_t worker;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 32768);
    if (pthread_create(&worker, &attributes, popen_and_wait, command) != 0)
        return 1;
    return pthread_join(worker, nullptr);
}

int main(int argument_count, char **arguments) {
    if (argument_count < 3)
        return 2;
    const char *what = arguments[1];
    char *operand = arguments[2];
    unsigned long number = argument_count > 3 ? strtoul(arguments[3], nullptr, 0) : 0;
    int file = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (strcmp(what, "channels") == 0)
        return print_channels(file, operand, number);
    if (strcmp(what, "essid") == 0)
        return print_essid(file, operand, number);
    if (strcmp(what, "request") == 0)
        return print_request(file, operand, number);
    if (strcmp(what, "popen") == 0)
        return popen_and_wait(operand) == nullptr ? 0 : 1;
    if (strcmp(what, "worker") == 0)
        return popen_in_worker(operand);
    if (strcmp(what, "system") == 0)
        return report(system(operand));
    return 2;
}
