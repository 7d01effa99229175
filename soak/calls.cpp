#include "soak/calls.h"

#include <limits.h>
#include <string.h>

#include "client/meanings.h"
#include "server/wire.h"
#include "tests/support/examples.h"

// Indices and numbers at which ranges end, or overflow. There are few of them, because a setter makes a line in the
// store of whatever index it gets, and the store shall not grow.
static const int ODD_NUMBERS[] = {INT_MIN, INT_MAX, -1, 0, 17, 100, 255, 256, 65535, 65536, INT_MIN + 1};

// Texts that a shell, a printf or a parser could take for something else. None of them does harm, or takes time, when a
// shell that is handed it unescaped runs it.
static const std::string ODD_TEXTS[] = {
    "",
    "\"; echo soak; \"",
    "$(id)",
    "`id`",
    "'",
    "\"",
    "\\",
    "| cat",
    "&",
    "> /dev/null",
    "*",
    "%s%n%99999d",
    "a\nb",
    "a\r\nb=c",
    "\x01\x02\x1b[31m\x7f",
    "\xff\xfe\x80 \xc3",
    "../../../etc/passwd",
    "KEY=VALUE",
    " leading and trailing ",
    std::string("in\0side", 7),
    std::string(33, 'x'),
    std::string(256, 'y'),
    std::string(4096, 'z'),
};

constexpr size_t VAPS = 16;

// More than the receive buffer of the server (UDPMSGSIZE) and less than a datagram can have.
constexpr size_t HUGE_DATAGRAM = 20000;

template <typename Item, size_t N>
static const Item &one_of(const Item (&items)[N], random_source *source) {
    return items[next_below(source, N)];
}

arguments_kind choose_kind(random_source *source) {
    size_t number = next_below(source, 20);
    return number < 8 ? arguments_kind::VALID : number < 18 ? arguments_kind::WRONG : arguments_kind::CUT_OFF;
}

static bytes choose_odd(const argument_row &argument, random_source *source) {
    if (argument.kind == argument_kind::TEXT)
        return xdr_string_bytes(one_of(ODD_TEXTS, source));
    return xdr_word(static_cast<uint32_t>(one_of(ODD_NUMBERS, source)));
}

static bytes choose_usual(const procedure_row &row, const argument_row &argument, random_source *source) {
    size_t vap = next_below(source, VAPS) + 1;
    if (argument.kind == argument_kind::VAP && !next_is_one_in(source, 2))
        return xdr_word(static_cast<uint32_t>(vap));
    return encoded_argument(argument.kind, meaning_of(&row, argument.name)->example);
}

bytes choose_arguments(const procedure_row &row, arguments_kind kind, random_source *source) {
    bytes arguments;
    size_t surely_odd = row.argument_count > 0 ? next_below(source, row.argument_count) : 0;
    for (size_t i = 0; i < row.argument_count; i++) {
        bool odd = kind == arguments_kind::WRONG && (i == surely_odd || next_is_one_in(source, 3));
        arguments += odd ? choose_odd(row.arguments[i], source) : choose_usual(row, row.arguments[i], source);
    }
    if (kind == arguments_kind::CUT_OFF && !arguments.empty())
        arguments.resize(next_below(source, arguments.size()));
    return arguments;
}

static bytes random_bytes(size_t count, random_source *source) {
    bytes text;
    while (text.size() < count)
        text += static_cast<char>(next_number(source) >> 56);
    return text;
}

// Those that the server does not look into have their xid all the same, so that no answer is taken for another's.
bytes choose_hostile_datagram(uint32_t xid, random_source *source) {
    const procedure_row &row = procedure_rows[next_below(source, procedure_row_count)];
    uint32_t number = static_cast<uint32_t>(next_number(source));
    bytes proper = call_header(xid, WLAN_CONFIG_RPC_PROG, WLAN_CONFIG_API_VERSION, row.number);
    switch (next_below(source, 11)) {
        case 0:  // garbage
            return xdr_word(xid) + random_bytes(next_below(source, 200), source);
        case 1:  // a header that ends too early
            return proper.substr(0, next_below(source, proper.size()));
        case 2:  // far too long
            return proper + random_bytes(HUGE_DATAGRAM, source);
        case 3:  // another program
            return call_header(xid, number, WLAN_CONFIG_API_VERSION, row.number);
        case 4:  // another version
            return call_header(xid, WLAN_CONFIG_RPC_PROG, number | 2, row.number);
        case 5:  // a procedure that is not there
            return call_header(xid, WLAN_CONFIG_RPC_PROG, WLAN_CONFIG_API_VERSION, number | 0x80000000);
        case 6:  // another version of the protocol itself
            return xdr_word(xid) + xdr_word(0) + xdr_word(number | 4) + proper.substr(12);
        case 7:  // an answer instead of a call
            return xdr_word(xid) + xdr_word(1) + xdr_word(0) + random_bytes(24, source);
        case 8:  // credentials that nobody knows
            return proper.substr(0, 24) + xdr_word(number) + xdr_word(16) + random_bytes(16, source) + xdr_word(0) +
                   xdr_word(0);
        case 9:  // credentials that are longer than the datagram
            return proper.substr(0, 24) + xdr_word(1) + xdr_word(number) + random_bytes(40, source);
        case 10:  // nothing at all
            break;
    }
    return "";
}

// The result record: a code, values behind their number, bytes behind theirs.
struct result_parts {
    bool whole;
    size_t values;  // how many
    bytes data;
};

static result_parts take_apart(const bytes &result) {
    size_t values = word_at(result, 4);
    if (result.size() < 12 || values > (result.size() - 12) / 4)
        return {false, 0, ""};
    size_t data = 8 + 4 * values;
    size_t length = word_at(result, data);
    bool whole = length <= result.size() && result.size() == data + 4 + (length + 3) / 4 * 4;
    return {whole, values, whole ? result.substr(data + 4, length) : ""};
}

static bool is_of_kind(const result_row &row, const result_parts &parts) {
    switch (row.kind) {
        case result_kind::CODE:
        case result_kind::ACTION:
            return false;
        case result_kind::INTEGERS:
            return parts.values == 4 * row.output_count && parts.data.empty();
        case result_kind::INTEGERS64:
            return parts.values == 8 * row.size && parts.data.empty();
        case result_kind::WORDS:
            return parts.values == row.size && parts.data.empty();
        case result_kind::STRING:
        case result_kind::LONG_STRING:
            return parts.values == 0 && parts.data.ends_with('\0');
        case result_kind::IMAGE:
            return parts.values == 0 && parts.data.size() == row.size;
        case result_kind::COUNTED_IMAGE:
            return parts.values == 4 && parts.data.size() == row.size;
    }
    return false;
}

std::string what_is_wrong(const procedure_row &row, const bytes &result) {
    if (row.result.kind == result_kind::CODE)
        return result.size() == 4 ? "" : "is no bare code";
    result_parts parts = take_apart(result);
    if (!parts.whole)
        return "is no whole record";
    bool empty = parts.values == 0 && parts.data.empty();
    return empty || is_of_kind(row.result, parts) ? "" : "has the payload of another kind";
}

text_answer text_answer_of(const bytes &result) {
    bytes data = take_apart(result).data;
    return {word_at(result, 0), data.substr(0, data.find('\0'))};
}

const procedure_row *row_named(const char *name) {
    for (size_t i = 0; i < procedure_row_count; i++)
        if (strcmp(procedure_rows[i].name, name) == 0)
            return &procedure_rows[i];
    return nullptr;
}
