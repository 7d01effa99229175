// softblock: the daemon that keeps stations away, as far as the server and others see it.
//
// It stays in the foreground, takes its numbers from the driver's store when it starts and when it is told of a
// restart, follows messages, and keeps a black list over its end. It keeps nobody away.
#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include "simulator/daemons/daemon.h"
#include "simulator/daemons/requests.h"
#include "simulator/daemons/soft_block.h"
#include "simulator/paths.h"
#include "simulator/tools/tools.h"

struct softblock {
    soft_block state;
    int socket;
};

static void complain(const char *path) {
    fprintf(stderr, "softblock: %s: %s\n", path, strerror(errno));
}

static void describe(const soft_block *state) {
    if (soft_block_describe(state, GATEWAY_SOFTBLOCK) != 0)
        complain(GATEWAY_SOFTBLOCK);
}

static void save(const black_list *list) {
    if (black_list_save(list, SOFTBLOCK_BLACK_LIST) != 0)
        complain(SOFTBLOCK_BLACK_LIST);
}

static void begin(soft_block *state) {
    soft_block_configure(state, APCFG_STORE);
    black_list_load(&state->list, SOFTBLOCK_BLACK_LIST);
    describe(state);
}

static void serve(void *softblock_self, int) {
    softblock *self = (softblock *)softblock_self;
    request received;
    if (!request_receive(self->socket, "softblock", sizeof self->state.list, &received))
        return;
    switch (soft_block_take(&self->state, received.text, (int32_t)time(nullptr))) {
        case SOFT_BLOCK_NOTHING:
            return;
        case SOFT_BLOCK_ASKED:
            request_answer(self->socket, &received, &self->state.list, sizeof self->state.list);
            return;
        case SOFT_BLOCK_RESTART:
            soft_block_configure(&self->state, APCFG_STORE);
            break;
        case SOFT_BLOCK_LIST_CHANGED:
            save(&self->state.list);
            break;
        case SOFT_BLOCK_TUNED:
            break;
    }
    describe(&self->state);
}

int tool_softblock(int argument_count, char *const *) {
    softblock self = {};
    if (argument_count > 0)
        return tool_usage("softblock");
    daemon_cut_ties();
    setsid();
    self.socket = daemon_listen(SOFTBLOCK_SOCKET);
    if (self.socket < 0) {
        complain(SOFTBLOCK_SOCKET);
        return 1;
    }
    begin(&self.state);
    daemon_serve(&self.socket, 1, serve, &self);
    // What it knew goes with it, but for the black list.
    unlink(GATEWAY_SOFTBLOCK);
    unlink(SOFTBLOCK_SOCKET);
    return 0;
}
