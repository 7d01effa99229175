#include <ctype.h>
#include <errno.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "client/ask.h"
#include "client/session.h"
#include "client/setting_conversions.h"
#include "client/settings_document.h"

// --- files ---

// Reads all of a stream, one byte more than a document may have so that a longer one shows. The caller frees the text.
static char *read_stream(FILE *file, size_t *length) {
    char *text = static_cast<char *>(malloc(DOCUMENT_SIZE_MAX + 1));
    if (!text)
        end_without_memory();
    *length = fread(text, 1, DOCUMENT_SIZE_MAX + 1, file);
    if (!ferror(file))
        return text;
    free(text);
    return nullptr;
}

static bool is_standard_input(const char *path) {
    return strcmp(path, "-") == 0;
}

static char *read_file(const char *path, size_t *length) {
    FILE *file = is_standard_input(path) ? stdin : fopen(path, "re");
    if (!file)
        return nullptr;
    char *text = read_stream(file, length);
    int error = errno;
    if (file != stdin)
        fclose(file);
    errno = error;
    return text;
}

const char *document_name(const char *path) {
    return is_standard_input(path) ? "standard input" : path;
}

client_exit_status read_document(client_session *session, const char *path, value **document) {
    size_t length;
    char problem[PROBLEM_SIZE];
    *document = nullptr;
    if (is_standard_input(path) && session->input_taken) {
        snprintf(session->problem, sizeof session->problem, "standard input cannot be read: %s", session->input_taken);
        return EXIT_STATUS_USAGE;
    }
    if (!can_read_documents) {
        parse_document("", 0, session->problem);
        return EXIT_STATUS_LOCAL;
    }
    char *text = read_file(path, &length);
    if (!text) {
        snprintf(session->problem, sizeof session->problem, "cannot read %.256s: %s", document_name(path),
                 strerror(errno));
        return EXIT_STATUS_LOCAL;
    }
    if (length > DOCUMENT_SIZE_MAX)
        snprintf(problem, sizeof problem, "the document is larger than any document of settings");
    else
        *document = parse_document(text, length, problem);
    free(text);
    if (*document)
        return EXIT_STATUS_SUCCESS;
    snprintf(session->problem, sizeof session->problem, "%.200s: %.256s", document_name(path), problem);
    return EXIT_STATUS_USAGE;
}

// --- checking ---

// Where in the document the check is, and what it found.
struct document_check {
    const char *section;
    const char *place;  // "" in the gateway's section
    char *problem;
};

__attribute__((format(printf, 3, 4))) static bool refuse(const document_check *check, const char *name,
                                                         const char *format, ...) {
    char what[PROBLEM_SIZE / 2];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(what, sizeof what, format, arguments);
    va_end(arguments);
    snprintf(check->problem, PROBLEM_SIZE, "%s%s%s%s%.80s %s", check->section, *check->place ? "." : "", check->place,
             *name ? "." : "", name, what);
    return false;
}

static const char *wanted_text(argument_kind kind) {
    switch (kind) {
        case argument_kind::BOOL:
            return "true or false";
        case argument_kind::TEXT:
            return "a text without line breaks and NULs";
        case argument_kind::UINT:
        case argument_kind::USHORT:
        case argument_kind::VAP:
        case argument_kind::INT:
        case argument_kind::IGNORED:
            return accepted_text(kind);
    }
    return "";
}

static bool is_of_kind(const value *said, argument_kind kind) {
    switch (kind) {
        case argument_kind::BOOL:
            return said->kind == value_kind::BOOLEAN;
        case argument_kind::TEXT:
            return said->kind == value_kind::TEXT && is_settable_text(said);
        case argument_kind::UINT:
            return said->kind == value_kind::SIGNED && said->number >= 0 && said->number <= UINT32_MAX;
        case argument_kind::USHORT:
        case argument_kind::VAP:
        case argument_kind::INT:
        case argument_kind::IGNORED:
            return said->kind == value_kind::SIGNED && said->number >= INT32_MIN && said->number <= INT32_MAX;
    }
    return false;
}

// Takes one value over into the checked tree.
static bool take_scalar(const document_check *check, const setting_row *setting, const value *said, value *to,
                        const char *name) {
    argument_kind kind = setting_kind(setting);
    if (!is_of_kind(said, kind))
        return refuse(check, setting->name, "has to be %s", wanted_text(kind));
    value *taken = add_copy(to, name, said);
    const char *wanted = "";
    if (setting->conversion->accept && !setting->conversion->accept(taken, &wanted))
        return refuse(check, setting->name, "has to be %s", wanted);
    return true;
}

static bool take_elements(const document_check *check, const setting_row *setting, const value *said, value *to) {
    if (said->kind != value_kind::LIST || count_values(said) != SETTING_ELEMENTS)
        return refuse(check, setting->name, "has to be a list of %d, one for each %s", SETTING_ELEMENTS,
                      element_word(setting));
    value *list = add_list(to, setting->name);
    for (const value *element = said->first; element; element = element->next) {
        if (element->kind == value_kind::NOTHING)
            add_nothing(list, nullptr);
        else if (!take_scalar(check, setting, element, list, nullptr))
            return false;
    }
    return true;
}

// Several values that one call sets, in the order of its arguments.
static bool take_outputs(const document_check *check, const setting_row *setting, const value *said, value *to) {
    const procedure_row *getter = row_of(setting->getter);
    const procedure_row *setter = row_of(setting->setter);
    size_t count = getter->result.output_count;
    bool fits = said->kind == value_kind::OBJECT && count_values(said) == count;
    value *object = fits ? add_object(to, setting->name) : nullptr;
    for (size_t i = 0; fits && i < count; i++) {
        const argument_row *argument = &setter->arguments[getter->argument_count + i];
        const value *member = find_member(said, argument->name);
        fits = member && is_of_kind(member, argument->kind);
        if (fits)
            add_copy(object, argument->name, member);
    }
    return fits ||
           refuse(check, setting->name, "has to be an object with %s and %s",
                  setter->arguments[getter->argument_count].name, setter->arguments[setter->argument_count - 1].name);
}

static bool take_stations(const document_check *check, const setting_row *setting, const value *said, value *to) {
    const char *wanted = "a list";
    if (said->kind == value_kind::LIST && setting->list->accept(add_copy(to, setting->name, said), &wanted))
        return true;
    return refuse(check, setting->name, "has to be %s", wanted);
}

static bool take_setting(const document_check *check, const setting_row *setting, const value *said, value *to) {
    if (said->kind == value_kind::NOTHING)
        return true;
    if (setting->list)
        return take_stations(check, setting, said, to);
    if (has_elements(setting))
        return take_elements(check, setting, said, to);
    if (row_of(setting->getter)->result.output_count > 1)
        return take_outputs(check, setting, said, to);
    return take_scalar(check, setting, said, to, setting->name);
}

// --- texts that are no UTF-8 ---

constexpr const char HEX_ENDING[] = "_hex";

// Of "ssid_hex" the setting ssid; nullptr for every other name.
static const setting_row *find_hex_setting(const char *section, const char *name) {
    size_t length = strlen(name), ending = sizeof HEX_ENDING - 1;
    if (length <= ending || strcmp(name + length - ending, HEX_ENDING) != 0)
        return nullptr;
    char *base = strndup(name, length - ending);
    if (!base)
        end_without_memory();
    const setting_row *setting = find_setting(section, base);
    free(base);
    bool fits = setting && !setting->list && !has_elements(setting) && setting_kind(setting) == argument_kind::TEXT;
    return fits ? setting : nullptr;
}

static int hex_digit(char c) {
    static const char digits[] = "0123456789abcdef";
    const char *found = c ? strchr(digits, tolower(static_cast<unsigned char>(c))) : nullptr;
    return found ? static_cast<int>(found - digits) : -1;
}

// A text value with the bytes that `said` has in hexadecimal; nullptr when it has none. The caller frees it.
static value *from_hex(const value *said) {
    if (said->kind != value_kind::TEXT || said->length % 2 != 0)
        return nullptr;
    value *made = new_list();
    value *text = add_text(made, nullptr, said->text, said->length / 2);
    for (size_t i = 0; i < text->length; i++) {
        int high = hex_digit(said->text[2 * i]), low = hex_digit(said->text[2 * i + 1]);
        if (high < 0 || low < 0) {
            free_value(made);
            return nullptr;
        }
        text->text[i] = static_cast<char>(high << 4 | low);
    }
    return made;
}

static bool take_hex(const document_check *check, const setting_row *setting, const char *name, const value *said,
                     value *to) {
    value *bytes = from_hex(said);
    if (!bytes)
        return refuse(check, name, "has to be the bytes of a text in hexadecimal");
    bool taken = take_setting(check, setting, bytes->first, to);
    free_value(bytes);
    return taken;
}

// The text that stands beside a hexadecimal one is for people.
static bool has_hex_twin(const value *object, const setting_row *setting) {
    char twin[128];
    snprintf(twin, sizeof twin, "%s%s", setting->name, HEX_ENDING);
    const value *found = find_member(object, twin);
    return found && found->kind != value_kind::NOTHING;
}

// --- places ---

static bool is_place_of(const setting_row *setting, int place) {
    place_range places = places_of(setting->scope);
    return place >= places.first && place <= places.last;
}

static bool take_place(const document_check *check, int place, const value *object, value *to) {
    if (object->kind != value_kind::OBJECT)
        return refuse(check, "", "has to be an object");
    for (const value *said = object->first; said; said = said->next) {
        const setting_row *hex = find_hex_setting(check->section, said->name);
        const setting_row *setting = hex ? hex : find_setting(check->section, said->name);
        if (!setting || !is_place_of(setting, place))
            return refuse(check, said->name, "is no setting there");
        if (!hex && has_hex_twin(object, setting))
            continue;
        if (hex ? !take_hex(check, setting, said->name, said, to) : !take_setting(check, setting, said, to))
            return false;
    }
    return true;
}

// The number of a place by its name, -1 when it is none.
static int place_number(setting_scope scope, const char *name) {
    place_range places = places_of(scope);
    for (int place = places.first; place <= places.last; place++) {
        char number[16];
        snprintf(number, sizeof number, "%d", place);
        if (strcmp(number, name) == 0)
            return place;
    }
    return -1;
}

static bool take_section(const value *settings, setting_scope scope, value *to, char problem[PROBLEM_SIZE]) {
    document_check check = {scope_section(scope), "", problem};
    const value *said = find_member(settings, check.section);
    if (!said)
        return true;
    value *section = add_object(to, check.section);
    if (scope == setting_scope::GATEWAY)
        return take_place(&check, 0, said, section);
    if (said->kind != value_kind::OBJECT)
        return refuse(&check, "", "has to be an object");
    for (const value *object = said->first; object; object = object->next) {
        int place = place_number(scope, object->name);
        if (place < 0)
            return refuse(&check, object->name, "is not there: its members are %d to %d", places_of(scope).first,
                          places_of(scope).last);
        check.place = object->name;
        if (!take_place(&check, place, object, add_object(section, object->name)))
            return false;
    }
    return true;
}

static bool check_head(const value *settings, char problem[PROBLEM_SIZE]) {
    static const char *const known[] = {"schema", "program", "exported", "gateway", "radios", "vaps"};
    for (const value *member = settings->first; member; member = member->next) {
        bool is_known = false;
        for (const char *name : known)
            is_known = is_known || strcmp(name, member->name) == 0;
        if (!is_known) {
            snprintf(problem, PROBLEM_SIZE, "%.80s is no member of a document of settings", member->name);
            return false;
        }
    }
    const value *schema = find_member(settings, "schema");
    if (schema && schema->kind == value_kind::SIGNED && schema->number == DOCUMENT_SCHEMA)
        return true;
    snprintf(problem, PROBLEM_SIZE, "schema has to be %d: this is no document of settings that this client knows",
             static_cast<int>(DOCUMENT_SCHEMA));
    return false;
}

value *checked_settings(const value *document, char problem[PROBLEM_SIZE]) {
    const value *result = find_member(document, "result");
    const value *settings = result ? result : document;
    if (settings->kind != value_kind::OBJECT) {
        snprintf(problem, PROBLEM_SIZE, "the document is no object");
        return nullptr;
    }
    value *checked = new_object();
    if (check_head(settings, problem) && take_section(settings, setting_scope::GATEWAY, checked, problem) &&
        take_section(settings, setting_scope::RADIO, checked, problem) &&
        take_section(settings, setting_scope::VAP, checked, problem))
        return checked;
    free_value(checked);
    return nullptr;
}
