#include "client/ask.h"

#include <string.h>

#include "client/names.h"
#include "client/results.h"

const procedure_row *row_of(uint32_t procedure) {
    for (size_t i = 0; i < procedure_row_count; i++)
        if (procedure_rows[i].number == procedure)
            return &procedure_rows[i];
    return nullptr;
}

static client_exit_status exit_status_of(call_status status) {
    switch (status) {
        case call_status::ANSWERED:
            return EXIT_STATUS_SUCCESS;
        case call_status::REFUSED:
            return EXIT_STATUS_REFUSED;
        case call_status::TOO_LARGE:
            return EXIT_STATUS_USAGE;
        case call_status::NO_ANSWER:
            return EXIT_STATUS_NO_ANSWER;
        case call_status::TIMED_OUT:
            return EXIT_STATUS_TIMED_OUT;
    }
    return EXIT_STATUS_REFUSED;
}

client_exit_status ask(client_session *session, const procedure_row *row, call_arguments *arguments,
                       wlan_config_result_data_t *result) {
    call_outcome outcome =
        call_procedure(session->connection, row, arguments, session->settings.timeout_seconds, result);
    if (outcome.status != call_status::ANSWERED) {
        snprintf(session->problem, sizeof session->problem, "%s", outcome.problem);
        return exit_status_of(outcome.status);
    }
    if (!check_result(row, result, session->problem))
        return EXIT_STATUS_REFUSED;
    if (result->return_code == WLAN_CONFIG_SUCCESS)
        return EXIT_STATUS_SUCCESS;
    snprintf(session->problem, sizeof session->problem, "the server answered failure (%d)", result->return_code);
    return EXIT_STATUS_FAILURE;
}

call_arguments number_arguments(const procedure_row *row, const int64_t *numbers) {
    call_arguments arguments = {row->argument_count, {}};
    for (size_t i = 0; i < row->argument_count; i++)
        arguments.values[i] = {row->arguments[i].kind, numbers[i], nullptr};
    return arguments;
}

static client_exit_status tell_all(client_session *session, const procedure_row *row, call_arguments *arguments) {
    wlan_config_result_data_t result;
    client_exit_status status = ask(session, row, arguments, &result);
    release_result(&result);
    return status;
}

client_exit_status tell(client_session *session, uint32_t procedure, int index) {
    const int64_t numbers[ARGUMENTS_MAX] = {index};
    call_arguments arguments = number_arguments(row_of(procedure), numbers);
    return tell_all(session, row_of(procedure), &arguments);
}

client_exit_status tell_number(client_session *session, uint32_t procedure, int index, int64_t number) {
    const int64_t numbers[ARGUMENTS_MAX] = {index, number};
    call_arguments arguments = number_arguments(row_of(procedure), numbers);
    return tell_all(session, row_of(procedure), &arguments);
}

client_exit_status tell_text(client_session *session, uint32_t procedure, int index, const char *text) {
    const int64_t numbers[ARGUMENTS_MAX] = {index};
    call_arguments arguments = number_arguments(row_of(procedure), numbers);
    arguments.values[1].text = const_cast<char *>(text);  // encoding reads it only
    return tell_all(session, row_of(procedure), &arguments);
}

client_exit_status ask_numbers(client_session *session, uint32_t procedure, const int64_t *arguments, int64_t *values,
                               size_t count) {
    const procedure_row *row = row_of(procedure);
    call_arguments numbers = number_arguments(row, arguments);
    wlan_config_result_data_t result;
    client_exit_status status = ask(session, row, &numbers, &result);
    for (size_t i = 0; status == EXIT_STATUS_SUCCESS && i < count; i++)
        values[i] = result_number(row, &result, i);
    release_result(&result);
    return status;
}

client_exit_status ask_number(client_session *session, uint32_t procedure, int index, int64_t *number) {
    const int64_t arguments[ARGUMENTS_MAX] = {index};
    return ask_numbers(session, procedure, arguments, number, 1);
}

client_exit_status ask_text(client_session *session, uint32_t procedure, int index, char *text, size_t size) {
    const int64_t numbers[ARGUMENTS_MAX] = {index};
    call_arguments arguments = number_arguments(row_of(procedure), numbers);
    wlan_config_result_data_t result;
    client_exit_status status = ask(session, row_of(procedure), &arguments, &result);
    if (status == EXIT_STATUS_SUCCESS)
        snprintf(text, size, "%s", result.return_data.return_data_val);
    release_result(&result);
    return status;
}

client_exit_status ask_record(client_session *session, uint32_t procedure, int index, void *record) {
    const int64_t arguments[ARGUMENTS_MAX] = {index};
    return ask_record_at(session, procedure, arguments, record);
}

client_exit_status ask_record_at(client_session *session, uint32_t procedure, const int64_t *arguments, void *record) {
    const procedure_row *row = row_of(procedure);
    call_arguments numbers = number_arguments(row, arguments);
    wlan_config_result_data_t result;
    client_exit_status status = ask(session, row, &numbers, &result);
    const void *payload = row->result.kind == result_kind::WORDS
                              ? static_cast<const void *>(result.return_values.return_values_val)
                              : result.return_data.return_data_val;
    if (status == EXIT_STATUS_SUCCESS)
        memcpy(record, payload, row->result.size);
    release_result(&result);
    return status;
}
