#include "simulator/factory_defaults.h"

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "simulator/initial_store.h"
#include "simulator/paths.h"

// Writes the lines of the store that belong to a radio, or (-1) to none.
static void write_lines(FILE *file, const scenario *scene, const store_text *store, int radio) {
    const char *end = store->text + store->length;
    const char *next;
    for (const char *line = store->text; line < end; line = next) {
        next = (const char *)memchr(line, '\n', (size_t)(end - line)) + 1;
        const char *equals = (const char *)memchr(line, '=', (size_t)(next - line));
        char key[SETTING_KEY_SIZE];
        snprintf(key, sizeof key, "%.*s", (int)(equals - line), line);
        if (initial_store_radio(scene, key) == radio)
            fwrite(line, 1, (size_t)(next - line), file);
    }
}

static void write_section(FILE *file, const scenario *scene, const store_text *store, int radio) {
    const char *tag = scene->radios[radio].five_ghz ? "50_RADIO" : "24_RADIO";
    fprintf(file, "SETTING_DELIMETER=%s_START\n", tag);
    write_lines(file, scene, store, radio);
    fprintf(file, "SETTING_DELIMETER=%s_STOP\n", tag);
}

static int put_defaults(const scenario *scene, store_text *store) {
    int failed = 0;
    for (int i = 0; i < scene->default_count; i++)
        failed |= store_set(store, scene->defaults[i].key, scene->defaults[i].value);
    return failed;
}

int factory_defaults_lay_down(const scenario *scene) {
    store_text store;
    int failed = initial_store(scene, &store) | put_defaults(scene, &store);
    FILE *file = failed == 0 ? fopen(GATEWAY_DEFAULTS, "we") : nullptr;
    if (file != nullptr) {
        write_lines(file, scene, &store, -1);
        for (int i = 0; i < SCENARIO_RADIOS; i++) {
            if (scene->radios[i].declared)
                write_section(file, scene, &store, i);
        }
    }
    store_free(&store);
    return file != nullptr && fclose(file) == 0 ? 0 : -1;
}

// Copies bytes as they stand, whatever somebody has made of them. Returns 0, or -1 with errno.
static int copy(FILE *from, const char *path) {
    FILE *to = fopen(path, "we");
    if (to == nullptr)
        return -1;
    for (int byte = getc(from); byte != EOF; byte = getc(from))
        putc(byte, to);
    return fclose(to);
}

int factory_defaults_fetch(void) {
    char beside[sizeof FACTORY_DEFAULTS + 8];
    snprintf(beside, sizeof beside, "%s.new", FACTORY_DEFAULTS);
    FILE *from = fopen(GATEWAY_DEFAULTS, "re");
    if (from == nullptr)
        return -1;
    int first = getc(from);
    int failed = -1;
    errno = ENODATA;
    if (first != EOF) {
        ungetc(first, from);
        failed = copy(from, beside);
    }
    fclose(from);
    return failed == 0 ? rename(beside, FACTORY_DEFAULTS) : -1;
}
