#include "client/dissector.h"

#include "client/names.h"
#include "client/operation_text.h"
#include "client/operations.h"
#include "client/record_fields.h"
#include "server/wire.h"

// As many VAPs as a gateway has: their indices get the name of their interface.
constexpr int VAPS = 16;

static const char DISSECTOR_HEAD[] =
    "-- Wireshark dissector for the Wi-Fi configuration server: ONC RPC over UDP.\n"
    "--\n"
    "-- Printed by `vlk_rpc_wlan_config_client dissector`. Do not edit it: change server/procedures.def,\n"
    "-- server/record_fields.def or client/dissector_body.lua and print it again.\n"
    "--\n"
    "-- Put it into the folder for personal Lua plugins (Help, About Wireshark, Folders), or run\n"
    "-- tshark -X lua_script:wlan_config.lua. Everything is found under wlan_config, for example\n"
    "-- wlan_config.operation == \"setSsid\", wlan_config.arg.index == 3, wlan_config.return_code != 0,\n"
    "-- wlan_config.time > 1 or wlan_config.expert.repeated.\n"
    "\n";

// The code that follows the tables; written by hand, in client/dissector_body.lua.
static const char DISSECTOR_BODY[] =
#include "client/dissector_body.inc"
    ;

static void print_lua_string(FILE *out, const char *text) {
    putc('"', out);
    for (; *text; text++) {
        if (*text == '"' || *text == '\\')
            putc('\\', out);
        putc(*text, out);
    }
    putc('"', out);
}

static const char *argument_word(argument_kind kind) {
    switch (kind) {
        case argument_kind::VAP:
            return "VAP";
        case argument_kind::INT:
            return "INT";
        case argument_kind::IGNORED:
            return "IGNORED";
        case argument_kind::UINT:
            return "UINT";
        case argument_kind::BOOL:
            return "BOOL";
        case argument_kind::USHORT:
            return "USHORT";
        case argument_kind::TEXT:
            return "TEXT";
    }
    return "";
}

static const char *output_word(output_kind kind) {
    switch (kind) {
        case output_kind::INT:
            return "INT";
        case output_kind::UINT:
            return "UINT";
        case output_kind::BOOL:
            return "BOOL";
    }
    return "";
}

static void print_outputs(FILE *out, const output_row *outputs, size_t count) {
    fputs(", outputs = {", out);
    for (size_t i = 0; i < count; i++)
        fprintf(out, "%s { \"%s\", \"%s\" }", i ? "," : "", output_word(outputs[i].kind), outputs[i].name);
    fputs(" }", out);
}

// Texts of any length are one kind here, and so are images with and without a count, which is an ordinary output.
static void print_dissected_result(FILE *out, const result_row *result) {
    static const output_row image_count[] = {{output_kind::INT, "count"}};
    switch (result->kind) {
        case result_kind::CODE:
            fputs("kind = \"CODE\"", out);
            break;
        case result_kind::ACTION:
            fputs("kind = \"ACTION\"", out);
            break;
        case result_kind::INTEGERS:
            fputs("kind = \"INTEGERS\"", out);
            print_outputs(out, result->outputs, result->output_count);
            break;
        case result_kind::INTEGERS64:
            fprintf(out, "kind = \"INTEGERS64\", name = \"%s\", count = %zu", result->name, result->size);
            break;
        case result_kind::WORDS:
            fprintf(out, "kind = \"WORDS\", name = \"%s\", record = \"%s\"", result->name, result->type);
            break;
        case result_kind::STRING:
        case result_kind::LONG_STRING:
            fprintf(out, "kind = \"TEXT\", name = \"%s\"", result->name);
            break;
        case result_kind::COUNTED_IMAGE:
        case result_kind::IMAGE:
            fprintf(out, "kind = \"IMAGE\", name = \"%s\", record = \"%s\"", result->name, result->type);
            if (result->kind == result_kind::COUNTED_IMAGE)
                print_outputs(out, image_count, 1);
            break;
    }
}

// [22] = { procedure = "wlan_set_ssid", operation = "setSsid", summary = "set the SSID of the VAP",
//     arguments = { { "VAP", "index" }, { "TEXT", "ssid" } }, result = { kind = "CODE" } },
static void print_dissected_procedure(FILE *out, const procedure_row *row) {
    char name[OPERATION_NAME_SIZE];
    operation_name(row, name);
    fputs("    [", out);
    print_procedure_number(out, row->number);
    fprintf(out, "] = { procedure = \"%s\", operation = \"%s\", summary = ", row->name, name);
    print_lua_string(out, row->summary);
    fputs(",\n        arguments = {", out);
    for (size_t i = 0; i < row->argument_count; i++)
        fprintf(out, "%s { \"%s\", \"%s\" }", i ? "," : "", argument_word(row->arguments[i].kind),
                row->arguments[i].name);
    fputs(row->argument_count ? " }, result = { " : "}, result = { ", out);
    print_dissected_result(out, &row->result);
    fputs(" } },\n", out);
}

static const char *field_word(field_kind kind) {
    switch (kind) {
        case field_kind::NUMBER:
            return "NUMBER";
        case field_kind::TEXT:
            return "TEXT";
        case field_kind::MAC:
            return "MAC";
        case field_kind::OCTETS:
            return "OCTETS";
        case field_kind::LIST:
            return "LIST";
        case field_kind::PADDING:
            return "PADDING";
    }
    return "";
}

static void print_dissected_field(FILE *out, const record_field *field) {
    fprintf(out,
            "        { name = \"%s\", kind = \"%s\", offset = %zu, size = %zu, elements = %zu, element_size = %zu,\n"
            "            signed = %s, unit = ",
            field->name, field_word(field->kind), field->offset, field->size, field->elements, field->element_size,
            field->is_signed ? "true" : "false");
    print_lua_string(out, field->unit);
    if (field->kind == field_kind::LIST)
        fprintf(out, ", record = \"%s\", count = \"%s\"", field->record->name, field->count);
    fputs(" },\n", out);
}

static void print_dissected_record(FILE *out, const record_row *record) {
    fprintf(out, "    %s = { name = \"%s\", size = %zu, fields = {\n", record->name, record->name, record->size);
    for (size_t i = 0; i < record->field_count; i++)
        print_dissected_field(out, &record->fields[i]);
    fputs("    } },\n", out);
}

void print_dissector(FILE *out) {
    fputs(DISSECTOR_HEAD, out);
    fprintf(out, "local PROGRAM, VERSION, PORT, VAPS = 0x%08X, %u, %u, %d\n\nlocal PROCEDURES = {\n",
            WLAN_CONFIG_RPC_PROG, WLAN_CONFIG_API_VERSION, SERVICE_PORT, VAPS);
    for (size_t i = 0; i < procedure_row_count; i++)
        print_dissected_procedure(out, &procedure_rows[i]);
    fputs("}\n\n-- Records as they lie in return_data, in the gateway's byte order.\nlocal RECORDS = {\n", out);
    for (size_t i = 0; i < record_row_count; i++)
        print_dissected_record(out, record_rows[i]);
    fputs("}\n\n", out);
    fputs(DISSECTOR_BODY, out);
}
