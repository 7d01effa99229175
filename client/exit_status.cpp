#include "client/exit_status.h"

const exit_status_row exit_status_rows[] = {
    {EXIT_STATUS_SUCCESS, "success", "done; the result is on standard output"},
    {EXIT_STATUS_FAILURE, "failure", "the server answered that it failed"},
    {EXIT_STATUS_USAGE, "usage", "the command line is wrong; nothing was changed"},
    {EXIT_STATUS_NO_ANSWER, "no-answer", "the server cannot be reached; nothing was carried out"},
    {EXIT_STATUS_TIMED_OUT, "timed-out", "no answer in time; the server may still carry the call out"},
    {EXIT_STATUS_REFUSED, "refused", "the call was refused by the RPC layer, or its answer is damaged"},
    {EXIT_STATUS_NOT_FOUND, "not-found", "what was asked for does not exist"},
    {EXIT_STATUS_LOCAL, "local", "the client itself failed: a file or its output could not be read or written"},
};
const size_t exit_status_row_count = sizeof exit_status_rows / sizeof *exit_status_rows;

const char *exit_status_word(client_exit_status status) {
    for (const exit_status_row &row : exit_status_rows)
        if (row.status == status)
            return row.word;
    return "";
}
