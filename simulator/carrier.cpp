#include "simulator/carrier.h"

#include <arpa/inet.h>
#include <stdio.h>
#include <string.h>

#include "simulator/paths.h"

int carrier_write(const char *root, const carrier *self) {
    char path[PATH_MAX + sizeof GATEWAY_CARRIER];
    snprintf(path, sizeof path, "%s%s", root, GATEWAY_CARRIER);
    FILE *file = fopen(path, "we");
    if (file == nullptr)
        return -1;
    if (self == nullptr) {
        fputs("namespaces\n", file);
        return fclose(file);
    }
    in_addr network = {htonl(self->network)};
    fprintf(file, "proot %s %u %s\n", inet_ntoa(network), self->port_shift, self->root);
    return fclose(file);
}

bool carrier_read(carrier *self) {
    char network[INET_ADDRSTRLEN] = "";
    in_addr address = {};
    int root = 0;
    char line[PATH_MAX + 64] = "";
    FILE *file = fopen(GATEWAY_CARRIER, "re");
    if (file == nullptr)
        return false;
    bool read = fgets(line, sizeof line, file) != nullptr;
    fclose(file);
    line[strcspn(line, "\n")] = '\0';
    if (!read || sscanf(line, "proot %15s %hu %n", network, &self->port_shift, &root) != 2 || root == 0 ||
        inet_pton(AF_INET, network, &address) != 1)
        return false;
    self->network = ntohl(address.s_addr);
    snprintf(self->root, sizeof self->root, "%s", line + root);
    return true;
}
