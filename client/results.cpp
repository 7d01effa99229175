#include "client/results.h"

#include <stdio.h>
#include <string.h>

// How many integers and bytes a row's result has at least; a text has its NUL.
struct payload_size {
    size_t integers;
    size_t bytes;
};

static payload_size promised_payload(const result_row *row) {
    switch (row->kind) {
        case result_kind::CODE:
        case result_kind::ACTION:
            return {0, 0};
        case result_kind::INTEGERS:
            return {row->output_count, 0};
        case result_kind::INTEGERS64:
            return {2 * row->size, 0};
        case result_kind::WORDS:
            return {row->size / sizeof(uint32_t), 0};
        case result_kind::STRING:
        case result_kind::LONG_STRING:
            return {0, 1};
        case result_kind::IMAGE:
            return {0, row->size};
        case result_kind::COUNTED_IMAGE:
            return {1, row->size};
    }
    return {0, 0};
}

static bool is_text(result_kind kind) {
    return kind == result_kind::STRING || kind == result_kind::LONG_STRING;
}

static bool is_empty(const wlan_config_result_data_t *result) {
    return result->return_values.return_values_len == 0 && result->return_data.return_data_len == 0;
}

bool check_result(const procedure_row *row, const wlan_config_result_data_t *result, char problem[PROBLEM_SIZE]) {
    payload_size promised = promised_payload(&row->result);
    size_t integers = result->return_values.return_values_len;
    size_t bytes = result->return_data.return_data_len;
    if (result->return_code != WLAN_CONFIG_SUCCESS && is_empty(result))
        return true;
    if (integers < promised.integers) {
        snprintf(problem, PROBLEM_SIZE, "the server's answer is damaged: %zu integers instead of %zu", integers,
                 promised.integers);
        return false;
    }
    if (is_text(row->result.kind)) {
        if (bytes > 0 && memchr(result->return_data.return_data_val, '\0', bytes))
            return true;
        snprintf(problem, PROBLEM_SIZE, "the server's answer is damaged: a text without an end (%zu bytes)", bytes);
        return false;
    }
    if (promised.bytes > 0 && bytes != promised.bytes) {
        snprintf(problem, PROBLEM_SIZE, "the server's answer is damaged: %zu bytes of %s instead of %zu", bytes,
                 row->result.type, promised.bytes);
        return false;
    }
    return true;
}

static bool all_zero(const char *bytes, size_t size) {
    for (size_t i = 0; i < size; i++)
        if (bytes[i])
            return false;
    return true;
}

bool says_something(const procedure_row *row, const wlan_config_result_data_t *result) {
    switch (row->result.kind) {
        case result_kind::CODE:
        case result_kind::ACTION:
            return false;
        case result_kind::INTEGERS:
        case result_kind::INTEGERS64:
        case result_kind::WORDS:
        case result_kind::COUNTED_IMAGE:
            return !is_empty(result);
        case result_kind::STRING:
        case result_kind::LONG_STRING:
            return !is_empty(result) && *result->return_data.return_data_val;
        case result_kind::IMAGE:
            return !is_empty(result) && !all_zero(result->return_data.return_data_val, row->result.size);
    }
    return false;
}

bool has_several_values(const procedure_row *row) {
    switch (row->result.kind) {
        case result_kind::CODE:
        case result_kind::ACTION:
        case result_kind::STRING:
        case result_kind::LONG_STRING:
            return false;
        case result_kind::INTEGERS:
            return row->result.output_count > 1;
        case result_kind::INTEGERS64:
            return row->result.size > 1;
        case result_kind::WORDS:
        case result_kind::IMAGE:
        case result_kind::COUNTED_IMAGE:
            return true;
    }
    return false;
}

static int64_t number64(const wlan_config_result_data_t *result, size_t place) {
    const u_int *words = result->return_values.return_values_val + 2 * place;
    return static_cast<int64_t>(uint64_t{words[1]} << 32 | words[0]);
}

int64_t result_number(const procedure_row *row, const wlan_config_result_data_t *result, size_t place) {
    u_int word = result->return_values.return_values_val[place];
    if (row->result.kind == result_kind::INTEGERS64)
        return number64(result, place);
    bool natural = row->result.kind == result_kind::WORDS ||
                   (row->result.kind == result_kind::INTEGERS && row->result.outputs[place].kind == output_kind::UINT);
    return natural ? int64_t{word} : int64_t{static_cast<int32_t>(word)};
}

static void add_integers64(value *to, const procedure_row *row, const wlan_config_result_data_t *result) {
    if (row->result.size == 1) {
        add_number(to, row->result.name, number64(result, 0));
        return;
    }
    value *list = add_list(to, row->result.name);
    for (size_t i = 0; i < row->result.size; i++)
        add_number(list, nullptr, number64(result, i));
}

static void add_image(value *to, const procedure_row *row, const void *image, size_t rows) {
    add_record(add_object(to, row->result.name), find_record(row->result.type), image, rows);
}

static void add_counted_image(value *to, const procedure_row *row, const wlan_config_result_data_t *result) {
    int64_t count = result_number(row, result, 0);
    add_number(to, "count", count);
    add_image(to, row, result->return_data.return_data_val, count > 0 ? static_cast<size_t>(count) : 0);
}

value *result_value(const procedure_row *row, const wlan_config_result_data_t *result) {
    value *made = new_object();
    if (is_empty(result))
        return made;
    switch (row->result.kind) {
        case result_kind::CODE:
        case result_kind::ACTION:
            break;
        case result_kind::INTEGERS:
            for (size_t i = 0; i < row->result.output_count; i++)
                add_number(made, row->result.outputs[i].name, result_number(row, result, i));
            break;
        case result_kind::INTEGERS64:
            add_integers64(made, row, result);
            break;
        case result_kind::WORDS:
            add_image(made, row, result->return_values.return_values_val, 0);
            break;
        case result_kind::STRING:
        case result_kind::LONG_STRING:
            add_string(made, row->result.name, result->return_data.return_data_val);
            break;
        case result_kind::IMAGE:
            add_image(made, row, result->return_data.return_data_val, 0);
            break;
        case result_kind::COUNTED_IMAGE:
            add_counted_image(made, row, result);
            break;
    }
    return made;
}
