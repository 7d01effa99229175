#include "client/record_header.h"

#include <string.h>

#include "client/operation_text.h"
#include "client/operations.h"
#include "client/record_fields.h"
#include "server/wire.h"

// What the header says of a record, and how it calls the room of its list. A list's length is the record's own, so it
// is told in front of it.
struct record_text {
    const char *record;
    const char *maximum;  // of a record with a list, else ""
    const char *comment;
};

static const record_text record_texts[] = {
    {"wlan_basicStats_t", "",
     "Traffic of a VAP. Travels as integers in return_values, one a member, not as a memory image."},
    {"wlan_stats_t", "",
     "Errors and packets of a VAP. Travels as integers in return_values, one a member or element, not as a memory\n"
     " * image. The numbered words are 0; tx_multicast counts multicast and broadcast."},
    {"wlan_device_t", "",
     "One associated station. mac is six colon-separated hexadecimal pairs; interface is the VAP index - 1. What the\n"
     " * numbered members mean is the driver's."},
    {"wlan_assoc_devices_table", "WLAN_ASSOC_DEVICES_MAX", "The associated stations of a VAP."},
    {"scan_entry", "", "One neighbouring access point. What the numbered members mean is the driver's."},
    {"scan_table", "WLAN_SCAN_ENTRIES_MAX", "What a site survey has found."},
    {"wlan_sb_station_t", "", "One station on the soft-block list."},
    {"wlan_sb_station_list_t", "WLAN_SB_STATIONS_MAX", "The soft-block list. oldest is the index of the oldest entry."},
    {"wlan_5g_capable_table_t", "",
     "The stations of a BSS that can use 5 GHz. The entries are the driver's own; how many there are is also in\n"
     " * return_values."},
    {"wlan_2g_temp_blacklist_table_t", "",
     "The 2.4 GHz temporary black list of a BSS. The entries are the driver's own; how many there are is in\n"
     " * return_values."},
    {"wlan_airtime_sta_t", "", "One station with an airtime weight. index counts from 1."},
    {"wlan_airtime_sta_list_t", "WLAN_AIRTIME_STAS_MAX", "The stations with an airtime weight."},
    {"wlan_atf_station_t", "",
     "One connected station with its configured and its used airtime. Packed. index counts from 1; name is an SSID\n"
     " * or a group; share is the station's part, configured that of the SSID or group; the others are airtime."},
    {"wlan_atf_station_table_t", "WLAN_ATF_STATIONS_MAX",
     "The airtime of the connected stations. Packed: the entries follow each other without alignment."},
};

static const record_text NO_TEXT = {"", "", ""};

static const record_text *text_of(const record_row *record) {
    for (const record_text &text : record_texts)
        if (strcmp(text.record, record->name) == 0)
            return &text;
    return &NO_TEXT;
}

static const char HEADER_HEAD[] =
    "/*\n"
    " * The records of the Wi-Fi configuration server's results, for programs in C (C99 or later) and C++.\n"
    " *\n"
    " * Printed by `vlk_rpc_wlan_config_client records`. Do not edit it: change server/record_fields.def and print it\n"
    " * again.\n"
    " *\n"
    " * A record is the content of return_data: the server's memory image of it, in the byte order of the gateway. On "
    "a\n"
    " * machine of the same byte order (most gateways are little endian) it can be copied out with memcpy; on another\n"
    " * every member of more than one byte has to be turned round. Sizes and offsets are the same for 32 and for 64\n"
    " * bits. Check return_data_len against the record's size before you copy.\n"
    " *\n"
    " * Texts end with a NUL unless they fill their member. What is behind the entries that a list's count counts is "
    "0,\n"
    " * and so is padding.\n"
    " */\n"
    "#ifndef WLAN_CONFIG_RECORDS_H\n"
    "#define WLAN_CONFIG_RECORDS_H\n"
    "\n"
    "#include <stddef.h>\n"
    "#include <stdint.h>\n"
    "\n";

static const char HEADER_CODES[] =
    "\n"
    "/* What every result begins with: 0, or a failure. Treat every other value as a failure too. */\n"
    "enum wlan_return_code {\n"
    "    WLAN_RETURN_SUCCESS = 0,\n"
    "    WLAN_RETURN_FAILURE = -1\n"
    "};\n"
    "\n";

static const char HEADER_ASSERT[] =
    "/* Fails to compile where a compiler lays a record out in another way. */\n"
    "#define WLAN_CONFIG_CHECK(name, condition) typedef char wlan_config_check_##name[(condition) ? 1 : -1]\n"
    "#define WLAN_CONFIG_CHECK_MEMBER(record, member, offset) \\\n"
    "    WLAN_CONFIG_CHECK(record##_##member, offsetof(record, member) == (offset))\n";

static const char HEADER_TAIL[] =
    "\n"
    "#undef WLAN_CONFIG_CHECK\n"
    "#undef WLAN_CONFIG_CHECK_MEMBER\n"
    "\n"
    "#endif\n";

static void print_constants(FILE *out) {
    fprintf(out, "#define WLAN_CONFIG_PROGRAM 0x%08X\n", WLAN_CONFIG_RPC_PROG);
    fprintf(out, "#define WLAN_CONFIG_VERSION %u\n", WLAN_CONFIG_API_VERSION);
    fprintf(out, "#define WLAN_CONFIG_ADDRESS \"%s\"\n", SERVICE_ADDRESS);
    fprintf(out, "#define WLAN_CONFIG_PORT %u /* UDP */\n\n", SERVICE_PORT);
    fprintf(out, "/* The most that return_data carries, in bytes. */\n#define WLAN_CONFIG_DATA_MAX %u\n",
            RESULT_DATA_SIZE);
    fputs("\n/* As many entries as a record has room for. */\n", out);
    for (size_t i = 0; i < record_row_count; i++)
        for (size_t n = 0; n < record_rows[i]->field_count; n++)
            if (record_rows[i]->fields[n].kind == field_kind::LIST)
                fprintf(out, "#define %s %zu\n", text_of(record_rows[i])->maximum, record_rows[i]->fields[n].elements);
}

static void print_procedures(FILE *out) {
    fputs("/* The numbers of the procedures. */\nenum wlan_config_procedure {\n", out);
    for (size_t i = 0; i < procedure_row_count; i++) {
        fprintf(out, "    PROC_%s = ", procedure_rows[i].name);
        print_procedure_number(out, procedure_rows[i].number);
        fprintf(out, "%s /* %s */\n", i + 1 < procedure_row_count ? "," : "", procedure_rows[i].summary);
    }
    fputs("};\n\n", out);
}

// Whether a record needs packing for its members to lie where they lie: one of them is not aligned, the whole is not,
// or it contains such a record.
static bool is_packed(const record_row *record) {
    for (size_t i = 0; i < record->field_count; i++) {
        const record_field *field = &record->fields[i];
        if (field->kind == field_kind::NUMBER &&
            (field->offset % field->element_size != 0 || record->size % field->element_size != 0))
            return true;
        if (field->kind == field_kind::LIST && is_packed(field->record))
            return true;
    }
    return false;
}

static void print_member(FILE *out, const record_row *record, const record_field *field) {
    switch (field->kind) {
        case field_kind::NUMBER:
            fprintf(out, "    %sint%zu_t %s", field->is_signed ? "" : "u", 8 * field->element_size, field->name);
            if (field->elements > 1)
                fprintf(out, "[%zu]", field->elements);
            break;
        case field_kind::TEXT:
            fprintf(out, "    char %s[%zu]", field->name, field->size);
            break;
        case field_kind::MAC:
        case field_kind::OCTETS:
        case field_kind::PADDING:
            fprintf(out, "    uint8_t %s", field->name);
            if (field->elements > 1)
                fprintf(out, "[%zu]", field->elements);
            if (field->element_size > 1)
                fprintf(out, "[%zu]", field->element_size);
            break;
        case field_kind::LIST:
            fprintf(out, "    %s %s[%s]", field->record->name, field->name, text_of(record)->maximum);
            break;
    }
    putc(';', out);
}

static void print_member_comment(FILE *out, const record_field *field) {
    if (field->kind == field_kind::LIST)
        fprintf(out, " /* %s of them mean something */", field->count);
    else if (*field->unit)
        fprintf(out, " /* %s */", field->unit);
}

static void print_record(FILE *out, const record_row *record) {
    bool packed = is_packed(record);
    fprintf(out, "\n/*\n * %s\n */\n%stypedef struct %s {\n", text_of(record)->comment,
            packed ? "#pragma pack(push, 1)\n" : "", record->name);
    for (size_t i = 0; i < record->field_count; i++) {
        print_member(out, record, &record->fields[i]);
        print_member_comment(out, &record->fields[i]);
        putc('\n', out);
    }
    fprintf(out, "} %s;\n%s", record->name, packed ? "#pragma pack(pop)\n" : "");
    fprintf(out, "WLAN_CONFIG_CHECK(%s, sizeof(%s) == %zu);\n", record->name, record->name, record->size);
    for (size_t i = 0; i < record->field_count; i++)
        fprintf(out, "WLAN_CONFIG_CHECK_MEMBER(%s, %s, %zu);\n", record->name, record->fields[i].name,
                record->fields[i].offset);
}

void print_record_header(FILE *out) {
    fputs(HEADER_HEAD, out);
    print_constants(out);
    fputs(HEADER_CODES, out);
    print_procedures(out);
    fputs(HEADER_ASSERT, out);
    for (size_t i = 0; i < record_row_count; i++)
        print_record(out, record_rows[i]);
    fputs(HEADER_TAIL, out);
}
