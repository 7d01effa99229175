// Calls for commands that make many: by procedure number, with plain numbers and buffers.
//
// Each sends one call and waits for its answer. All give EXIT_STATUS_SUCCESS, or else say in session->problem what was
// wrong and leave their outputs alone: EXIT_STATUS_FAILURE means that the server is there and answered a failure, and a
// command can go on without that one value.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "client/arguments.h"
#include "client/session.h"

// The row of a procedure of the table (PROC_wlan_get_ssid).
const procedure_row *row_of(uint32_t procedure);

// Calls with arguments as they stand and checks that the result is one of the row's kind. The result is to be released
// in any case; a failure may carry a payload too.
client_exit_status ask(client_session *session, const procedure_row *row, call_arguments *arguments,
                       wlan_config_result_data_t *result);

// Arguments of a row all of whose arguments are numbers; `numbers` has as many as the row.
call_arguments number_arguments(const procedure_row *row, const int64_t *numbers);

// A setter or an action of a VAP with nothing behind the index, or with one number or text; of rows without arguments
// use ask().
client_exit_status tell(client_session *session, uint32_t procedure, int index);
client_exit_status tell_number(client_session *session, uint32_t procedure, int index, int64_t number);
client_exit_status tell_text(client_session *session, uint32_t procedure, int index, const char *text);

// All integers of a result; `values` has room for `count`, which is at most as many as the row promises.
client_exit_status ask_numbers(client_session *session, uint32_t procedure, const int64_t *arguments, int64_t *values,
                               size_t count);

// Getters whose only argument is a VAP.
client_exit_status ask_number(client_session *session, uint32_t procedure, int index, int64_t *number);
client_exit_status ask_text(client_session *session, uint32_t procedure, int index, char *text, size_t size);
// A record that travels as words or as its memory image; `record` has the size of the row's record.
client_exit_status ask_record(client_session *session, uint32_t procedure, int index, void *record);

// The same of a getter with any numbers for arguments, as many as the row has.
client_exit_status ask_record_at(client_session *session, uint32_t procedure, const int64_t *arguments, void *record);
