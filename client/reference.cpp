#include "client/reference.h"

#include "client/names.h"
#include "client/operation_text.h"
#include "client/shell_texts.h"
#include "client/touches.h"

static const char REFERENCE_HEAD[] =
    "# Procedures\n"
    "\n"
    "This page is printed by `vlk_rpc_wlan_config_client reference`. Do not edit it: change `server/procedures.def`\n"
    "and print it again.\n"
    "\n"
    "Every procedure of the server has one row in `server/procedures.def`. Its other names are made from that row by\n"
    "the preprocessor and stand in no source file, so they are spelled out here, for whoever searches for one:\n"
    "\n"
    "- `PROC_wlan_x` is its number in C++, `WLAN_X` in `docs/wlan_config.x`;\n"
    "- `x` in camel case is its operation on the command line;\n"
    "- `_wlan_x_1`, the wrapper in `server/dispatch.cpp`, unpacks the arguments for the handler `wlan_x_1_svc`;\n"
    "- arguments travel as the record `wlan_x_1_argument` (a few procedures share one or have another name), a single\n"
    "  one mostly as a bare value, and `xdr_` and the record's name is the routine that encodes and decodes them;\n"
    "- the result is `wlan_config_return_code_e`, or `wlan_config_result_data_t` with the payload that is named;\n"
    "- an argument with *shell* behind it reaches the server's shell as it stands.\n"
    "\n"
    "Names are in `code` type; files are given from the root of the sources.\n"
    "\n"
    "| number | procedure | operation | wrapper, handler | arguments | result | back end | summary |\n"
    "|---|---|---|---|---|---|---|---|\n";

static const char *element_text(argument_kind kind) {
    switch (kind) {
        case argument_kind::VAP:
            return "VAP";
        case argument_kind::INT:
            return "int";
        case argument_kind::IGNORED:
            return "int, ignored:";
        case argument_kind::UINT:
            return "u_int";
        case argument_kind::USHORT:
            return "u_short";
        case argument_kind::BOOL:
            return "bool";
        case argument_kind::TEXT:
            return "string";
    }
    return "";
}

static void print_arguments_cell(FILE *out, const procedure_row *row) {
    if (row->argument_count == 0)
        fputs("void", out);
    for (size_t i = 0; i < row->argument_count; i++)
        fprintf(out, "%s%s %s%s", i ? ", " : "", element_text(row->arguments[i].kind), row->arguments[i].name,
                find_shell_row(row, row->arguments[i].name) ? " ([shell](security.md#texts-that-reach-a-shell))" : "");
    if (*row->record)
        fprintf(out, "; `%s`, `xdr_%s`", row->record, row->record);
}

static void print_result_cell(FILE *out, const result_row *result) {
    if (result->kind == result_kind::CODE) {
        fputs("`wlan_config_return_code_e`", out);
        return;
    }
    fputs("`wlan_config_result_data_t`: ", out);
    if (result->kind == result_kind::ACTION)
        fputs("nothing", out);
    else
        print_result_shape(out, result);
}

static void print_back_end_cell(FILE *out, const procedure_row *row) {
    if (has_back_end(row))
        fprintf(out, "`%s`, %s.cpp", row->back_end, row->room);
    else
        fputs("none", out);
}

static void print_reference_row(FILE *out, const procedure_row *row) {
    char name[OPERATION_NAME_SIZE];
    operation_name(row, name);
    fputs("| ", out);
    print_procedure_number(out, row->number);
    fprintf(out, " `PROC_%s` | `%s` | `%s` | `_%s_1`, `%s_1_svc` in %s | ", row->name, row->name, name, row->name,
            row->name, handler_file(row));
    print_arguments_cell(out, row);
    fputs(" | ", out);
    print_result_cell(out, &row->result);
    fputs(" | ", out);
    print_back_end_cell(out, row);
    fprintf(out, " | %s |\n", row->summary);
}

static void print_unassigned_row(FILE *out, const unassigned_range *range) {
    fputs("| ", out);
    print_procedure_number(out, range->first);
    if (range->last != range->first) {
        fputs(" to ", out);
        print_procedure_number(out, range->last);
    }
    fputs(" | *unassigned* | | | | | | |\n", out);
}

static const char TOUCHES_HEAD[] =
    "\n"
    "## What each procedure touches\n"
    "\n"
    "This was not written by hand: each procedure was called once, as shown, in a simulated gateway of its own, and\n"
    "these are the events of that gateway's journal (`client/touches.def` has them too). "
    "`scripts/update-documents.sh`\n"
    "records them anew. With other arguments, or on a gateway in another state, a procedure may touch more, or less.\n"
    "\n"
    "- **looks up, writes**: keys of the store. Index 1 has the bare key, and so have settings of the whole device;\n"
    "  index i is `KEY_i`. Settings of a radio stand under `KEY` for the 5 GHz radio and `KEY_2` for the 2.4 GHz "
    "radio,\n"
    "  to which VAP 1 belongs. A key that was looked up need not be there.\n"
    "- **runs**: shell commands as the server hands them over, each once, in the order of their first run. Keys are\n"
    "  written by `cfg -a`. `PID` stands for a process id. What scripts, tools and daemons do in their turn is not "
    "shown;\n"
    "  what the thread does that a lifecycle request starts is.\n"
    "- **files**: what the server opens itself below `/tmp` and `/nvram`, but for reading the store.\n"
    "- **ioctls**: the interface and the request; behind a dot the command of a request that has several.\n"
    "- **messages**: datagrams to helper daemons, the process and the text, and what goes to the event library.\n"
    "\n"
    "| number | call | looks up | writes | runs | files | ioctls | messages |\n"
    "|---|---|---|---|---|---|---|---|\n";

// A text in code type. A bar would end the cell.
static void print_code(FILE *out, const char *text) {
    putc('`', out);
    for (; *text; text++) {
        if (*text == '|')
            putc('\\', out);
        putc(*text, out);
    }
    putc('`', out);
}

// Items of a cell, behind those that are there already. Returns how many there are.
static size_t print_items(FILE *out, const char *const *items, const char *between, size_t count) {
    for (; *items; items++) {
        fputs(count++ ? between : "", out);
        print_code(out, *items);
    }
    return count;
}

static void print_touches_row(FILE *out, const procedure_row *row, const touch_row *touches) {
    fputs("| ", out);
    print_procedure_number(out, row->number);
    fputs(" | `", out);
    print_sample(out, row, touches);
    fputs("` | ", out);
    print_items(out, touches->reads, " ", 0);
    fputs(" | ", out);
    print_items(out, touches->writes, " ", 0);
    fputs(" | ", out);
    print_items(out, touches->commands, "<br>", 0);
    fputs(" | ", out);
    print_items(out, touches->files, "<br>", 0);
    fputs(" | ", out);
    print_items(out, touches->requests, "<br>", 0);
    fputs(" | ", out);
    size_t count = print_items(out, touches->datagrams, "<br>", 0);
    print_items(out, touches->messages, "<br>", count);
    fputs(" |\n", out);
}

static void print_touches_table(FILE *out) {
    fputs(TOUCHES_HEAD, out);
    for (size_t i = 0; i < procedure_row_count; i++) {
        const touch_row *touches = find_touches(procedure_rows[i].number);
        if (touches)
            print_touches_row(out, &procedure_rows[i], touches);
    }
}

// Both lists ascend, so each hole stands before the first procedure behind it.
static void print_names_table(FILE *out) {
    size_t hole = 0;
    for (size_t i = 0; i < procedure_row_count; i++) {
        for (; hole < unassigned_range_count && unassigned_ranges[hole].first < procedure_rows[i].number; hole++)
            print_unassigned_row(out, &unassigned_ranges[hole]);
        print_reference_row(out, &procedure_rows[i]);
    }
    for (; hole < unassigned_range_count; hole++)
        print_unassigned_row(out, &unassigned_ranges[hole]);
}

void print_reference(FILE *out) {
    fputs(REFERENCE_HEAD, out);
    print_names_table(out);
    print_touches_table(out);
}
