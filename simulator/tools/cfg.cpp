// cfg: the tool that keeps the driver's store.
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "simulator/paths.h"
#include "simulator/store.h"
#include "simulator/tools/tools.h"

static int complain(const char *what) {
    fprintf(stderr, "cfg: %s: %s\n", what, strerror(errno));
    return 1;
}

static bool is_key(const char *text, size_t length) {
    return length > 0 && memchr(text, '=', length) == nullptr && memchr(text, '\n', length) == nullptr;
}

// cfg -a KEY=VALUE
static int add(store_text *store, const char *assignment) {
    size_t key_length = strcspn(assignment, "=");
    if (assignment[key_length] == '\0' || !is_key(assignment, key_length)) {
        fprintf(stderr, "cfg: \"%s\" is no KEY=VALUE\n", assignment);
        return 1;
    }
    if (strchr(assignment, '\n') != nullptr) {
        // It would end the line and begin another setting.
        fprintf(stderr, "cfg: a value cannot hold a line break\n");
        return 1;
    }
    char *key = strndup(assignment, key_length);
    int failed = key == nullptr ? -1 : store_set(store, key, assignment + key_length + 1);
    free(key);
    if (failed != 0 || store_save(APCFG_STORE, store) != 0)
        return complain(APCFG_STORE);
    return 0;
}

// cfg -r KEY; that the key is not there is no error.
static int remove_key(store_text *store, const char *key) {
    if (!is_key(key, strlen(key))) {
        fprintf(stderr, "cfg: \"%s\" is no key\n", key);
        return 1;
    }
    if (store_remove(store, key) && store_save(APCFG_STORE, store) != 0)
        return complain(APCFG_STORE);
    return 0;
}

// cfg -v KEY; status 1 and no output when the key is not there.
static int print_value(const store_text *store, const char *key) {
    size_t length;
    const char *value = store_find(store, key, &length);
    if (value == nullptr)
        return 1;
    printf("%.*s\n", (int)length, value);
    return 0;
}

// cfg -c
static int settle(store_text *store) {
    store_settle(store);
    return store_save(APCFG_STORE, store) == 0 ? 0 : complain(APCFG_STORE);
}

static int act(store_text *store, const char *option, const char *operand) {
    switch (option[1]) {
        case 'a':
            return add(store, operand);
        case 'r':
            return remove_key(store, operand);
        case 'v':
            return print_value(store, operand);
        case 'c':
            return settle(store);
        default:
            fwrite(store->text, 1, store->length, stdout);
            return 0;
    }
}

// The option's number of operands, -1 when it is no option.
static int operands(const char *option) {
    if (strlen(option) != 2 || option[0] != '-')
        return -1;
    if (strchr("arv", option[1]) != nullptr)
        return 1;
    return strchr("sc", option[1]) != nullptr ? 0 : -1;
}

int tool_cfg(int argument_count, char *const *arguments) {
    if (argument_count < 1 || operands(arguments[0]) != argument_count - 1)
        return tool_usage("cfg");
    int lock = store_lock(APCFG_LOCK);
    if (lock < 0)
        return complain(APCFG_LOCK);
    store_text store;
    int status = store_load(APCFG_STORE, &store) == 0 ? act(&store, arguments[0], arguments[1]) : complain(APCFG_STORE);
    store_free(&store);
    close(lock);
    return status;
}
