#include "client/diff.h"

#include <stdlib.h>

#include "client/render.h"
#include "client/session.h"
#include "client/settings_commands.h"
#include "client/settings_document.h"

void free_comparison(comparison *compared) {
    free_changes(&compared->changes);
    free_value(compared->now);
    free_value(compared->then);
    free_value(compared->document);
}

static client_exit_status load_document(client_session *session, const char *path, comparison *compared) {
    client_exit_status status = read_document(session, path, &compared->document);
    if (status != EXIT_STATUS_SUCCESS)
        return status;
    char problem[PROBLEM_SIZE];
    compared->then = checked_settings(compared->document, problem);
    if (compared->then)
        return EXIT_STATUS_SUCCESS;
    snprintf(session->problem, sizeof session->problem, "%.160s: %.340s", document_name(path), problem);
    return EXIT_STATUS_USAGE;
}

client_exit_status compare(client_session *session, const char *path, bool everything, comparison *compared) {
    client_exit_status status = load_document(session, path, compared);
    if (status == EXIT_STATUS_SUCCESS)
        status = read_settings(session, everything ? nullptr : compared->then, nullptr, nullptr, &compared->now);
    if (status == EXIT_STATUS_SUCCESS)
        compared->changes = find_changes(compared->now, compared->then);
    return status == EXIT_STATUS_SUCCESS && !check_sizes(session, &compared->changes) ? EXIT_STATUS_USAGE : status;
}

// --- showing changes ---

static bool is_compound(const value *shown) {
    return shown->kind == value_kind::LIST || shown->kind == value_kind::OBJECT;
}

// Lists and objects are shown to people as the document has them.
static void add_compound_text(value *to, const char *name, const value *shown) {
    char *text = nullptr;
    size_t size;
    FILE *memory = open_memstream(&text, &size);
    if (!memory)
        return;
    render_json(memory, shown);
    if (fclose(memory) == 0)
        add_text(to, name, text, size - 1)->readers = audience::PEOPLE;
    free(text);
}

static void add_side(value *to, const char *name, const setting_change *change, const value *shown) {
    if (!shown) {
        add_nothing(to, name);
    } else if (change->setting->keeping & SECRET) {
        add_string(to, name, "(secret)");
    } else if (is_compound(shown)) {
        add_copy(to, name, shown)->readers = audience::PROGRAMS;
        add_compound_text(to, name, shown);
    } else {
        add_copy(to, name, shown);
    }
}

value *add_change(value *list, const setting_change *change) {
    value *entry = add_object(list, nullptr);
    char where[WHERE_SIZE];
    name_place(change->setting, change->place, change->element, where);
    add_string(entry, "where", where);
    add_string(entry, "setting", change->setting->name);
    add_side(entry, "now", change, change->now);
    add_side(entry, "then", change, change->then);
    return entry;
}

client_exit_status run_diff(client_session *session, const command_line *line) {
    comparison compared = {};
    client_exit_status status = compare(session, line->words[0], false, &compared);
    if (status == EXIT_STATUS_SUCCESS) {
        value *result = new_object();
        value *list = add_list(result, "changes");
        for (size_t i = 0; i < compared.changes.count; i++)
            if (compared.changes.changes[i].expected)
                add_change(list, &compared.changes.changes[i]);
        status = show(session, result);
    } else {
        status = complain_of_call(session, status);
    }
    free_comparison(&compared);
    return status;
}
