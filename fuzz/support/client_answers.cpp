// What the server answers to the client of a target. See the header.
#include "fuzz/support/client_answers.h"

#include "client/operations.h"
#include "fuzz/support/calls.h"
#include "fuzz/support/check.h"

enum answer_kind : uint8_t {
    FAILURE = 0xDF,
    ANY_BYTES = 0xE0,
    NOT_ANSWERED = 0xF0,
};

static clnt_stat failure_of(uint8_t kind) {
    static const clnt_stat failures[] = {RPC_TIMEDOUT,    RPC_CANTSEND,        RPC_CANTRECV,    RPC_CANTENCODEARGS,
                                         RPC_PROCUNAVAIL, RPC_CANTDECODEARGS,  RPC_SYSTEMERROR, RPC_PROGUNAVAIL,
                                         RPC_AUTHERROR,   RPC_PROGVERSMISMATCH};
    return failures[(kind - NOT_ANSWERED) % (sizeof(failures) / sizeof(*failures))];
}

// A text of the input repeated to a record's size.
static std::string fill(size_t size) {
    std::string pattern = take_text(&client_answers);
    std::string filled;
    while (!pattern.empty() && filled.size() < size) {
        filled += pattern;
    }
    filled.resize(size);
    return filled;
}

static uint32_t take_value() {
    uint8_t byte = take_byte(&client_answers);
    return byte < 0xF0 ? byte : take_u32(&client_answers);
}

static void put_values(std::string *bytes, size_t count) {
    put_number(bytes, static_cast<uint32_t>(count * 4));
    for (size_t i = 0; i < count * 4; i++) {
        put_number(bytes, i < count ? take_value() : 0);
    }
}

// The payload that the row of a procedure promises.
static void put_payload(std::string *bytes, const result_row *row) {
    std::string values, data;
    put_number(&values, 0);
    switch (row->kind) {
        case result_kind::CODE:
            return;
        case result_kind::ACTION:
            break;
        case result_kind::INTEGERS:
            values.clear();
            put_values(&values, row->output_count);
            break;
        case result_kind::INTEGERS64:
            values.clear();
            put_values(&values, 2 * row->size);
            break;
        case result_kind::WORDS:
            values.clear();
            put_values(&values, row->size / sizeof(uint32_t));
            break;
        case result_kind::STRING:
        case result_kind::LONG_STRING:
            data = take_text(&client_answers);
            data.push_back('\0');
            break;
        case result_kind::IMAGE:
            data = fill(row->size);
            break;
        case result_kind::COUNTED_IMAGE:
            values.clear();
            put_values(&values, 1);
            data = fill(row->size);
            break;
    }
    bytes->append(values);
    put_counted(bytes, data);
}

static const result_row *result_of(uint32_t procedure) {
    for (size_t i = 0; i < procedure_row_count; i++) {
        if (procedure_rows[i].number == procedure) {
            return &procedure_rows[i].result;
        }
    }
    fail("the client calls only procedures that there are");
}

server_answer answer_call(uint32_t procedure) {
    constexpr uint32_t SERVER_PORT = 60001;
    server_answer answer = {RPC_SUCCESS, ""};
    if (procedure == 0) {
        put_number(&answer.bytes, SERVER_PORT);
        return answer;
    }
    const result_row *row = result_of(procedure);
    uint8_t kind = take_byte(&client_answers);
    if (kind >= NOT_ANSWERED) {
        return {failure_of(kind), ""};
    }
    if (kind >= ANY_BYTES) {
        return {RPC_SUCCESS, take_text(&client_answers)};
    }
    put_number(&answer.bytes, kind == FAILURE ? ~0u : 0u);
    put_payload(&answer.bytes, row);
    return answer;
}
