// What arguments and results have to look like, taken apart from their bytes by the table's rows.
#include <stdio.h>
#include <string.h>

#include "client/operations.h"
#include "client/record_fields.h"
#include "tests/dissector/dissection.h"

static bool is_plain(const bytes &text) {
    for (char c : text)
        if (c < ' ' || c > '~')
            return false;
    return true;
}

// What of a text is shown; one with other characters is shown with escapes, in whatever form.
static std::string shown_text(const bytes &text) {
    bytes shown = text.substr(0, text.find('\0'));
    return is_plain(shown) ? shown : ANY_VALUE;
}

static std::string shown_number(uint32_t value, bool is_signed) {
    return is_signed ? std::to_string(static_cast<int32_t>(value)) : std::to_string(value);
}

// Names that are texts in one row and numbers in another.
static bool is_number_elsewhere(const char *name, bool argument) {
    for (size_t i = 0; i < procedure_row_count; i++) {
        const procedure_row &row = procedure_rows[i];
        for (size_t n = 0; argument && n < row.argument_count; n++)
            if (row.arguments[n].kind != argument_kind::TEXT && strcmp(row.arguments[n].name, name) == 0)
                return true;
        for (size_t n = 0; !argument && n < row.result.output_count; n++)
            if (strcmp(row.result.outputs[n].name, name) == 0)
                return true;
    }
    return false;
}

static std::string text_field(const char *name, bool argument) {
    return std::string("wlan_config.") + (argument ? "arg." : "result.") + name +
           (is_number_elsewhere(name, argument) ? "_text" : "");
}

field_list expected_arguments(const procedure_row &row, const bytes &arguments) {
    field_list expected;
    size_t at = 0;
    for (size_t i = 0; i < row.argument_count; i++) {
        const argument_row &argument = row.arguments[i];
        uint32_t word = word_at(arguments, at);
        if (argument.kind == argument_kind::TEXT) {
            size_t size = 4 + (word + 3) / 4 * 4;
            expected.push_back({text_field(argument.name, true), shown_text(arguments.substr(at + 4, word)),
                                arguments.substr(at, size)});
            at += size;
        } else {
            bool is_signed = argument.kind != argument_kind::UINT && argument.kind != argument_kind::USHORT;
            expected.push_back({std::string("wlan_config.arg.") + argument.name, shown_number(word, is_signed),
                                arguments.substr(at, 4)});
            at += 4;
        }
    }
    return expected;
}

// A number of a record, in the byte order of this machine, which is the dissector's default.
static std::string shown_element(const record_field &field, const bytes &element) {
    uint64_t value = 0;
    memcpy(&value, element.data(), element.size());
    size_t shift = 64 - 8 * field.element_size;
    if (field.is_signed)
        return std::to_string(static_cast<int64_t>(value << shift) >> shift);
    return std::to_string(value);
}

static std::string shown_mac(const bytes &octets) {
    char text[18];
    const uint8_t *mac = reinterpret_cast<const uint8_t *>(octets.data());
    snprintf(text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x", mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
    return text;
}

static void expect_record(const record_row &record, const bytes &image, field_list *expected);

static void expect_list(const record_row &record, const record_field &field, const bytes &image, field_list *expected) {
    const record_field *counter = find_field(&record, field.count);
    int64_t count = std::stoll(shown_element(*counter, image.substr(counter->offset, counter->size)));
    for (int64_t i = 0; i < count && i < static_cast<int64_t>(field.elements); i++)
        expect_record(*field.record,
                      image.substr(field.offset + static_cast<size_t>(i) * field.element_size, field.element_size),
                      expected);
}

static void expect_element(const record_row &record, const record_field &field, const bytes &element,
                           field_list *expected) {
    std::string name = std::string("wlan_config.") + record.name + "." + field.name;
    switch (field.kind) {
        case field_kind::NUMBER:
            expected->push_back({name, shown_element(field, element), element});
            break;
        case field_kind::TEXT:
            expected->push_back({name, shown_text(element), element});
            break;
        case field_kind::MAC:
            expected->push_back({name, shown_mac(element), element});
            break;
        case field_kind::OCTETS:
            if (field.elements == 1 || element != bytes(element.size(), '\0'))
                expected->push_back({name, ANY_VALUE, element});
            break;
        case field_kind::LIST:
        case field_kind::PADDING:
            break;
    }
}

static void expect_record(const record_row &record, const bytes &image, field_list *expected) {
    expected->push_back({std::string("wlan_config.") + record.name, "", ""});
    for (size_t i = 0; i < record.field_count; i++) {
        const record_field &field = record.fields[i];
        if (field.kind == field_kind::LIST)
            expect_list(record, field, image, expected);
        else
            for (size_t n = 0; n < field.elements; n++)
                expect_element(record, field, image.substr(field.offset + n * field.element_size, field.element_size),
                               expected);
    }
}

// Words of a record of numbers, big endian as all integers are.
static void expect_words(const record_row &record, const bytes &values, field_list *expected) {
    size_t at = 0;
    for (size_t i = 0; i < record.field_count; i++)
        for (size_t n = 0; n < record.fields[i].elements; n++, at += 4)
            expected->push_back({std::string("wlan_config.") + record.name + "." + record.fields[i].name,
                                 shown_number(word_at(values, at), false), values.substr(at, 4)});
}

static void expect_integers(const result_row &row, const bytes &values, field_list *expected) {
    for (size_t i = 0; i < row.output_count; i++)
        expected->push_back({std::string("wlan_config.result.") + row.outputs[i].name,
                             shown_number(word_at(values, 4 * i), row.outputs[i].kind != output_kind::UINT),
                             values.substr(4 * i, 4)});
}

static void expect_integers64(const result_row &row, const bytes &values, field_list *expected) {
    for (size_t i = 0; i < row.size; i++) {
        uint64_t wide = uint64_t{word_at(values, 8 * i + 4)} << 32 | word_at(values, 8 * i);
        expected->push_back({std::string("wlan_config.result.") + row.name, std::to_string(static_cast<int64_t>(wide)),
                             values.substr(8 * i, 8)});
    }
}

// Values and data of a result that has them.
static void expect_payload(const result_row &row, const bytes &values, const bytes &data, field_list *expected) {
    switch (row.kind) {
        case result_kind::CODE:
        case result_kind::ACTION:
            break;
        case result_kind::INTEGERS:
            expect_integers(row, values, expected);
            break;
        case result_kind::INTEGERS64:
            expect_integers64(row, values, expected);
            break;
        case result_kind::WORDS:
            expect_words(*find_record(row.type), values, expected);
            break;
        case result_kind::STRING:
        case result_kind::LONG_STRING:
            expected->push_back({text_field(row.name, false), shown_text(data), data});
            break;
        case result_kind::COUNTED_IMAGE:
            expected->push_back(
                {"wlan_config.result.count", shown_number(word_at(values, 0), true), values.substr(0, 4)});
            [[fallthrough]];
        case result_kind::IMAGE:
            expect_record(*find_record(row.type), data, expected);
            break;
    }
}

field_list expected_result(const procedure_row &row, const bytes &result) {
    field_list expected = {{"wlan_config.return_code", shown_number(word_at(result, 0), true), result.substr(0, 4)}};
    if (row.result.kind == result_kind::CODE)
        return expected;
    size_t count = word_at(result, 4);
    bytes values = result.substr(8, 4 * count);
    bytes data = result.substr(12 + 4 * count, word_at(result, 8 + 4 * count));
    if (!values.empty() || !data.empty())
        expect_payload(row.result, values, data, &expected);
    return expected;
}

static bool is_payload(const std::string &name) {
    for (const char *prefix : {"wlan_config.arg.", "wlan_config.result."})
        if (name.starts_with(prefix))
            return true;
    for (size_t i = 0; i < record_row_count; i++) {
        std::string record = std::string("wlan_config.") + record_rows[i]->name;
        if (name == record || name.starts_with(record + "."))
            return true;
    }
    return name == "wlan_config.return_code";
}

field_list payload_of(const dissected_frame &frame) {
    field_list payload;
    for (const dissected_field &field : frame.fields)
        if (is_payload(field.name))
            payload.push_back(field);
    return payload;
}

testing::AssertionResult same_fields(const field_list &found, const field_list &expected) {
    for (size_t i = 0; i < found.size() || i < expected.size(); i++) {
        dissected_field nothing = {"(none)", "", ""};
        const dissected_field &one = i < found.size() ? found[i] : nothing;
        const dissected_field &other = i < expected.size() ? expected[i] : nothing;
        bool same_value = other.show == ANY_VALUE || one.show == other.show;
        if (one.name != other.name || one.value != other.value || !same_value)
            return testing::AssertionFailure() << "field " << i << " is " << one << "\n instead of " << other;
    }
    return testing::AssertionSuccess();
}
