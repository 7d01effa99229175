#include "client/interface.h"

#include <ctype.h>

#include "client/operation_text.h"
#include "server/wire.h"

static const char INTERFACE_HEAD[] =
    "/*\n"
    " * The Wi-Fi configuration server of the gateway, for rpcgen -N.\n"
    " *\n"
    " * Printed by `vlk_rpc_wlan_config_client interface`. Do not edit it: change server/procedures.def and print it\n"
    " * again. The server answers over UDP only; ask the portmapper at 192.168.254.254 for its port. A call must not "
    "be\n"
    " * repeated when its answer is late, or a setter is carried out twice: set the retry timeout to the call's "
    "timeout.\n"
    " */\n"
    "\n"
    "/* The most that return_data carries. */\n";

static const char INTERFACE_TYPES[] =
    "\n"
    "/* Every value but 0 is a failure. */\n"
    "enum wlan_config_return_code_e {\n"
    "    WLAN_CONFIG_SUCCESS = 0,\n"
    "    WLAN_CONFIG_FAILURE = -1\n"
    "};\n"
    "\n"
    "/*\n"
    " * Integers are in return_values, texts and records in return_data; the comment behind each procedure says "
    "which.\n"
    " * return_values has four times as many elements as there are integers: the integers stand in front, the other\n"
    " * elements are 0 and mean nothing. A 64-bit integer takes two, the low word first.\n"
    " * A text ends with a NUL, which is part of return_data. A record is the server's memory image of it, in the "
    "byte\n"
    " * order of the gateway; wlan_config_records.h has the layouts.\n"
    " */\n"
    "struct wlan_config_result_data_t {\n"
    "    wlan_config_return_code_e return_code;\n"
    "    unsigned int return_values<>;\n"
    "    opaque return_data<RESULT_DATA_SIZE>;\n"
    "};\n"
    "\n"
    "program WLAN_CONFIG_RPC_PROG {\n"
    "    version WLAN_CONFIG_API_VERSION {\n";

static const char *interface_type(argument_kind kind) {
    switch (kind) {
        case argument_kind::VAP:
        case argument_kind::INT:
        case argument_kind::IGNORED:
            return "int";
        case argument_kind::UINT:
            return "unsigned int";
        case argument_kind::USHORT:
            return "unsigned short";
        case argument_kind::BOOL:
            return "bool";
        case argument_kind::TEXT:
            return "string";
    }
    return "";
}

// WLAN_GET_SSID
static void print_upper(FILE *out, const char *name) {
    for (; *name; name++)
        putc(toupper(static_cast<unsigned char>(*name)), out);
}

// A record of one member is the same on the wire as the bare value, so that is what it is declared as.
static void print_interface_procedure(FILE *out, const procedure_row *row) {
    bool bare = row->result.kind == result_kind::CODE;
    fprintf(out, "\n        /* %s", row->summary);
    if (!bare && row->result.kind != result_kind::ACTION) {
        fputs("; ", out);
        print_result_shape(out, &row->result);
    }
    fprintf(out, " */\n        %s ", bare ? "wlan_config_return_code_e" : "wlan_config_result_data_t");
    print_upper(out, row->name);
    fputs(row->argument_count == 0 ? "(void" : "(", out);
    for (size_t i = 0; i < row->argument_count; i++)
        fprintf(out, "%s%s /* %s */", i ? ", " : "", interface_type(row->arguments[i].kind), row->arguments[i].name);
    fputs(") = ", out);
    print_procedure_number(out, row->number);
    fputs(";\n", out);
}

void print_interface(FILE *out) {
    fputs(INTERFACE_HEAD, out);
    fprintf(out, "const RESULT_DATA_SIZE = %u;\n", RESULT_DATA_SIZE);
    fputs(INTERFACE_TYPES, out);
    for (size_t i = 0; i < procedure_row_count; i++)
        print_interface_procedure(out, &procedure_rows[i]);
    fprintf(out, "    } = %u;\n} = 0x%08X;\n", WLAN_CONFIG_API_VERSION, WLAN_CONFIG_RPC_PROG);
}
