#include "client/export.h"

#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include "client/help.h"
#include "client/render.h"
#include "client/replace_file.h"
#include "client/settings_commands.h"
#include "client/settings_document.h"

const option_row export_options[2] = {
    {"file", "FILE", "write the document there, readable for its owner only", word_kind::FILE_NAME, '\0'},
    {"without-secrets", nullptr, "leave out keys, passphrases and PINs; `apply` then leaves them as they are",
     word_kind::NONE, '\0'},
};

// --- what the gateway does not tell ---

// The places at which the getter of a setting failed.
struct unread_row {
    bool places[PLACES_MAX];
    bool any;
};

struct unread_settings {
    unread_row *rows;  // one for each of setting_rows
};

static void note_unread(void *context, const setting_row *setting, int place) {
    unread_row *row = &static_cast<unread_settings *>(context)->rows[setting - setting_rows];
    row->places[place] = true;
    row->any = true;
}

// "vap 2-8, 10"
static void print_places(FILE *out, const setting_row *setting, const unread_row *row) {
    place_range places = places_of(setting->scope);
    const char *before = "";
    char where[WHERE_SIZE];
    name_place(setting, places.first, 0, where);
    fprintf(out, "%.*s", static_cast<int>(strcspn(where, " ")), where);
    for (int place = places.first; place <= places.last && places.first < places.last; place++) {
        if (!row->places[place])
            continue;
        int last = place;
        while (last < places.last && row->places[last + 1])
            last++;
        fprintf(out, "%s %d", before, place);
        if (last > place)
            fprintf(out, "-%d", last);
        place = last;
        before = ",";
    }
}

static void name_unread(client_session *session, const unread_settings *unread) {
    for (size_t i = 0; i < setting_row_count; i++) {
        if (!unread->rows[i].any || session->settings.format == output_format::JSON)
            continue;
        fprintf(session->errors, "%s is left out: its getter fails for ", setting_rows[i].name);
        print_places(session->errors, &setting_rows[i], &unread->rows[i]);
        putc('\n', session->errors);
    }
    fflush(session->errors);
}

// The same for programs.
static void add_unread(value *to, const unread_settings *unread) {
    value *list = add_list(to, "left_out");
    for (size_t i = 0; i < setting_row_count; i++) {
        place_range places = places_of(setting_rows[i].scope);
        for (int place = places.first; place <= places.last; place++) {
            if (!unread->rows[i].places[place])
                continue;
            value *entry = add_object(list, nullptr);
            char where[WHERE_SIZE];
            name_place(&setting_rows[i], place, WHOLE_SETTING, where);
            add_string(entry, "where", where);
            add_string(entry, "setting", setting_rows[i].name);
        }
    }
}

// --- the document ---

// Takes the secrets out of a tree of settings.
static void drop_secrets(value *object, const char *section) {
    value *before = nullptr;
    for (value *member = object->first; member;) {
        value *next = member->next;
        const setting_row *setting = find_setting(section, member->name);
        if (setting && setting->keeping & SECRET) {
            *(before ? &before->next : &object->first) = next;
            object->last = object->last == member ? before : object->last;
            free_value(member);
        } else {
            before = member;
        }
        member = next;
    }
}

static void drop_all_secrets(value *settings) {
    for (value *section = settings->first; section; section = section->next) {
        drop_secrets(section, section->name);
        for (value *place = section->first; place; place = place->next)
            if (place->kind == value_kind::OBJECT)
                drop_secrets(place, section->name);
    }
}

value *new_document(value *settings) {
    char now[sizeof "2000-01-01T00:00:00Z"] = "";
    time_t seconds = time(nullptr);
    tm parts;
    if (gmtime_r(&seconds, &parts))
        strftime(now, sizeof now, "%Y-%m-%dT%H:%M:%SZ", &parts);
    value *document = new_object();
    add_number(document, "schema", DOCUMENT_SCHEMA);
    add_string(document, "program", PROGRAM_NAME);
    add_string(document, "exported", now);
    for (value *section = settings->first; section;) {
        value *next = section->next;
        section->next = nullptr;
        char *name = section->name;
        section->name = nullptr;
        add_value(document, name, section);
        free(name);
        section = next;
    }
    settings->first = settings->last = nullptr;
    free_value(settings);
    return document;
}

// --- the file ---

static bool write_file(const char *path, const value *document) {
    replaced_file file;
    if (!begin_replacing(&file, path, PRIVATE))
        return false;
    render_json_document(file.stream, document);
    return end_replacing(&file);
}

static size_t count_settings(const value *settings) {
    size_t count = 0;
    for (const setting_row *row = setting_rows; row < setting_rows + setting_row_count; row++) {
        place_range places = places_of(row->scope);
        for (int place = places.first; place <= places.last; place++)
            count += find_setting_value(settings, row, place) != nullptr;
    }
    return count;
}

static client_exit_status show_file(client_session *session, const char *path, const value *document,
                                    const unread_settings *unread) {
    if (!write_file(path, document))
        return complain(session, EXIT_STATUS_LOCAL, "cannot write %.256s: %s", path, strerror(errno));
    value *result = new_object();
    add_string(result, "file", path);
    add_unsigned(result, "settings", count_settings(document));
    if (session->settings.format == output_format::JSON)
        add_unread(result, unread);
    return show(session, result);
}

// In an answer the document is on one line, and what is left out stands beside it.
static client_exit_status show_document(client_session *session, const value *document, const unread_settings *unread) {
    if (session->settings.format != output_format::JSON) {
        render_json_document(session->out, document);
        return EXIT_STATUS_SUCCESS;
    }
    value *answer = new_answer(session);
    add_copy(answer, "result", document);
    add_unread(answer, unread);
    render_json(session->out, answer);
    free_value(answer);
    return EXIT_STATUS_SUCCESS;
}

client_exit_status run_export(client_session *session, const command_line *line) {
    unread_settings unread = {static_cast<unread_row *>(calloc(setting_row_count, sizeof(unread_row)))};
    if (!unread.rows)
        return complain(session, EXIT_STATUS_LOCAL, "out of memory");
    value *settings;
    client_exit_status status = read_settings(session, nullptr, note_unread, &unread, &settings);
    if (status == EXIT_STATUS_SUCCESS) {
        if (option_value(line, "without-secrets"))
            drop_all_secrets(settings);
        value *document = new_document(settings);
        const char *path = option_value(line, "file");
        status = path ? show_file(session, path, document, &unread) : show_document(session, document, &unread);
        if (status == EXIT_STATUS_SUCCESS)
            name_unread(session, &unread);
        free_value(document);
    } else {
        free_value(settings);
        status = complain_of_call(session, status);
    }
    free(unread.rows);
    return status;
}
