#include "client/manual.h"

#include <ctype.h>
#include <string.h>

#include "client/command_table.h"
#include "client/help.h"
#include "client/names.h"
#include "client/shell_texts.h"

// The day on which the page was last read from beginning to end.
static const char MANUAL_DATE[] = "November 21, 2026";

// Lines of the source are no longer than this; longer ones are bad style to the tools that check manual pages.
constexpr size_t LINE_LENGTH_MAX = 78;

// --- texts ---

// One character of running text: a backslash is none of the page's own.
static void print_character(FILE *out, char c) {
    if (c == '\\')
        fputs("\\e", out);
    else
        putc(c, out);
}

static void print_escaped(FILE *out, const char *text, size_t length) {
    if (length > 0 && (*text == '.' || *text == '\''))
        fputs("\\&", out);  // or the line would be a request
    for (size_t i = 0; i < length; i++)
        print_character(out, text[i]);
}

// Whether a sentence ends with this word: the next one begins a line of its own.
static bool ends_sentence(const char *word, size_t length) {
    return length > 0 && strchr(".!?", word[length - 1]);
}

// Words of a text as lines of the source.
static void print_words(FILE *out, const char *text, size_t length) {
    size_t column = 0;
    bool fresh = true;
    for (size_t at = 0; at < length;) {
        size_t word = 0;
        while (at + word < length && text[at + word] != ' ')
            word++;
        if (word > 0 && !fresh && column + 1 + word > LINE_LENGTH_MAX) {
            putc('\n', out);
            fresh = true;
        }
        if (word > 0) {
            if (fresh) {
                print_escaped(out, text + at, word);
                column = word;
            } else {
                putc(' ', out);
                for (size_t i = 0; i < word; i++)
                    print_character(out, text[at + i]);
                column += 1 + word;
            }
            fresh = ends_sentence(text + at, word);
            if (fresh)
                putc('\n', out);
        }
        at += word + 1;
    }
    if (!fresh)
        putc('\n', out);
}

// Lines that begin with a blank are shown as they stand, an empty line begins a paragraph, and everything else flows.
struct text_state {
    bool literal;
    bool paragraph;  // one is due before the next text
    bool any;
};

static void set_literal(FILE *out, text_state *state, bool literal) {
    if (literal != state->literal)
        fputs(literal ? ".Bd -literal -offset indent\n" : ".Ed\n", out);
    state->literal = literal;
}

static void print_line(FILE *out, text_state *state, const char *line, size_t length) {
    if (length == 0) {
        state->paragraph = state->any;
        return;
    }
    set_literal(out, state, *line == ' ');
    if (state->paragraph && !state->literal)
        fputs(".Pp\n", out);
    state->paragraph = false;
    state->any = true;
    if (!state->literal) {
        print_words(out, line, length);
        return;
    }
    size_t indentation = strspn(line, " ");
    print_escaped(out, line + indentation, length - indentation);
    putc('\n', out);
}

void print_manual_text(FILE *out, const char *text) {
    text_state state = {};
    while (*text) {
        size_t length = strcspn(text, "\n");
        print_line(out, &state, text, length);
        text += length + (text[length] == '\n');
    }
    set_literal(out, &state, false);
}

// An argument of a macro: quoted, since words of it may be the names of macros, or as long as the blanks in it count.
static void print_argument(FILE *out, const char *text) {
    fputs(" \"", out);
    for (; *text; text++) {
        if (*text == '"')
            fputs("\\(dq", out);
        else
            print_character(out, *text);
    }
    putc('"', out);
}

// --- commands and options ---

static void print_option(FILE *out, const option_row *option) {
    fputs(".It", out);
    if (option->letter)
        fprintf(out, " Fl %c ,", option->letter);
    fprintf(out, " Fl -%s", option->name);
    if (option->value_name)
        fprintf(out, " Ar %s", option->value_name);
    putc('\n', out);
    print_manual_text(out, option->summary);
}

static void print_options(FILE *out, const option_row *options, size_t count) {
    if (count == 0)
        return;
    fputs(".Bl -tag -width Ds\n", out);
    for (size_t i = 0; i < count; i++)
        print_option(out, &options[i]);
    fputs(".El\n", out);
}

static void print_command(FILE *out, const command_row *row) {
    fprintf(out, ".It Cm %s", row->name);
    if (*row->synopsis) {
        fputs(" Ar", out);
        print_argument(out, row->synopsis);
    }
    putc('\n', out);
    print_manual_text(out, row->summary);
    if (*row->description) {
        fputs(".Pp\n", out);
        print_manual_text(out, row->description);
    }
    print_options(out, row->options, row->option_count);
}

static bool has_commands(command_group group) {
    for (size_t i = 0; i < command_row_count; i++)
        if (command_rows[i].group == group)
            return true;
    return false;
}

static void print_group(FILE *out, const command_group_row *group) {
    if (!has_commands(group->group))
        return;
    fprintf(out, ".Ss %s\n.Bl -tag -width Ds\n", group->title);
    for (size_t i = 0; i < command_row_count; i++)
        if (command_rows[i].group == group->group)
            print_command(out, &command_rows[i]);
    fputs(".El\n", out);
}

static void print_exit_statuses(FILE *out) {
    fputs(".Sh EXIT STATUS\n.Bl -tag -width Ds -compact\n", out);
    for (size_t i = 0; i < exit_status_row_count; i++) {
        fprintf(out, ".It %d\n", exit_status_rows[i].status);
        print_manual_text(out, exit_status_rows[i].meaning);
    }
    fputs(".El\n", out);
}

// MANUAL in capitals, as the title of a page has it.
static void print_title(FILE *out) {
    fprintf(out, ".\\\" Printed by `%s manual`.\n.Dd %s\n.Dt ", PROGRAM_NAME, MANUAL_DATE);
    for (const char *c = PROGRAM_NAME; *c; c++)
        putc(toupper(static_cast<unsigned char>(*c)), out);
    fputs(" 8\n.Os\n", out);
}

static const char HEAD[] =
    ".Sh NAME\n"
    ".Nm vlk_rpc_wlan_config_client\n"
    ".Nd call the Wi-Fi configuration server of a gateway\n"
    ".Sh SYNOPSIS\n"
    ".Nm\n"
    ".Op Ar option ...\n"
    ".Ar operation\n"
    ".Op Ar argument ...\n"
    ".Op Ar option ...\n"
    ".Nm\n"
    ".Op Ar option ...\n"
    ".Ar command\n"
    ".Op Ar word ...\n"
    ".Sh DESCRIPTION\n"
    ".Nm\n"
    "calls the operations of\n"
    ".Xr vlk_rpc_wlan_config_server 8\n"
    "and prints what they give.\n"
    "Its commands do with several operations what people want of a gateway.\n"
    ".Pp\n"
    "The operations are not described here:\n"
    ".Ql vlk_rpc_wlan_config_client list\n"
    "names all of them, and\n"
    ".Ql vlk_rpc_wlan_config_client describe setSsid\n"
    "tells everything about one: its arguments and results with their meaning,\n"
    "unit and range, and an example.\n"
    "getSsid, get_ssid and wlan_get_ssid name the same operation, in any\n"
    "capitalisation.\n"
    "As many words as the operation has arguments are its arguments, also those\n"
    "that begin with a minus sign.\n"
    ".Pp\n"
    "VAPs are numbered from 1 to 16: 1 to 8 on the 2.4 GHz radio, 9 to 16 on the\n"
    "5 GHz radio.\n"
    "A call is sent once and never again, since a setter that is repeated would be\n"
    "carried out twice.\n"
    ".Sh COMMANDS\n";

static const char OPTIONS_HEAD[] =
    ".Sh OPTIONS\n"
    "These stand before or behind a command or an operation.\n"
    "Behind it they hold for it alone.\n";

static const char OUTPUT[] =
    ".Sh OUTPUT\n"
    ".Bl -tag -width Ds\n"
    ".It Cm text\n"
    "For people: a single value alone, several with their names, lists as tables.\n"
    "An operation that has nothing to say but that it succeeded says\n"
    ".Ql ok .\n"
    "Errors go to standard error.\n"
    "On a terminal, control characters in texts are shown as\n"
    ".Ql \\ex1b .\n"
    ".It Cm json\n"
    "For programs: one object on one line of standard output, errors included.\n"
    "A stream has one object a line.\n"
    ".Bd -literal\n"
    "{\"operation\":\"getSsid\",\"code\":0,\"result\":{\"ssid\":\"home\"}}\n"
    "{\"command\":\"list\",\"result\":{\"operations\":[...]}}\n"
    "{\"operation\":\"getSsid\",\"error\":{\"status\":3,\"kind\":\"no-answer\",\n"
    "  \"message\":\"...\"}}\n"
    ".Ed\n"
    ".Pp\n"
    "The code is the server's, and 0 for success.\n"
    "The status is the exit status, the kind one of\n";

static const char OUTPUT_REST[] =
    "A text that is no UTF-8 has U+FFFD for each byte that is none, and all its\n"
    "bytes in hexadecimal beside it, under its name with\n"
    ".Ql _hex\n"
    "behind it.\n"
    "MACs are texts in lower case.\n"
    "What could not be found out is null.\n"
    ".It Cm value\n"
    "The only value bare, or those that\n"
    ".Fl -field\n"
    "names, a line each; vaps.channel names what is called channel below what is\n"
    "called vaps.\n"
    ".It Cm dump\n"
    "Of an operation: every byte of its result.\n"
    ".El\n";

static const char ENVIRONMENT[] =
    ".Sh ENVIRONMENT\n"
    ".Bl -tag -width Ds\n"
    ".It Ev NO_COLOR\n"
    "When it is set and not empty there are no colours, unless\n"
    ".Fl -color Cm always\n"
    "asks for them.\n"
    ".El\n"
    ".Sh FILES\n"
    ".Bl -tag -width Ds\n"
    ".It Pa /tmp/wlandbg\n"
    "While it exists on the gateway, the server prints debug lines for each call.\n"
    ".El\n";

static const char EXAMPLES[] =
    ".Sh EXAMPLES\n"
    "Find the operations that have to do with channels, and read about one:\n"
    ".Bd -literal -offset indent\n"
    "vlk_rpc_wlan_config_client list channel\n"
    "vlk_rpc_wlan_config_client describe setChannel\n"
    ".Ed\n"
    ".Pp\n"
    "Name the network of VAP 3:\n"
    ".Bd -literal -offset indent\n"
    "vlk_rpc_wlan_config_client setSsid 3 \"Guest network\"\n"
    ".Ed\n"
    ".Pp\n"
    "The MACs of the stations of VAP 9, for a script:\n"
    ".Bd -literal -offset indent\n"
    "vlk_rpc_wlan_config_client --field mac getAssocDevicesTable 9\n"
    ".Ed\n"
    ".Sh SEE ALSO\n"
    ".Xr vlk_simulated_gateway 1 ,\n"
    ".Xr vlk_rpc_wlan_config_server 8\n";

static const char SHELL_HEAD[] =
    ".Sh SECURITY CONSIDERATIONS\n"
    "The texts of these arguments reach the shell of the server as they stand:\n"
    ".Pp\n"
    ".Bl -bullet -compact\n";

static const char SHELL_REST[] =
    ".El\n"
    ".Pp\n"
    "The client refuses characters in them that the shell would obey, unless they\n"
    "have a backslash in front or\n"
    ".Fl -shell-text\n"
    "is given; nothing is sent then.\n"
    "What has to be left out of the stations of the access list is told by\n"
    ".Ql describe setMacAddressControlAdd .\n"
    "Settings that are applied from a document are made such that the shell takes\n"
    "them for texts.\n";

static void print_output(FILE *out) {
    fputs(OUTPUT, out);
    for (size_t i = 0; i < exit_status_row_count; i++)
        if (exit_status_rows[i].status != EXIT_STATUS_SUCCESS)
            fprintf(out, ".Cm %s%s\n", exit_status_rows[i].word, i + 1 < exit_status_row_count ? " ," : " .");
    fputs(OUTPUT_REST, out);
}

static void print_shell_texts(FILE *out) {
    fputs(SHELL_HEAD, out);
    for (size_t i = 0; i < shell_row_count; i++) {
        char name[OPERATION_NAME_SIZE];
        operation_name(find_operation(shell_rows[i].procedure), name);
        fprintf(out, ".It\n%s <%s>\n", name, shell_rows[i].argument);
    }
    fputs(SHELL_REST, out);
}

void print_manual(FILE *out) {
    print_title(out);
    fputs(HEAD, out);
    for (size_t i = 0; i < command_group_count; i++)
        print_group(out, &command_groups[i]);
    fputs(OPTIONS_HEAD, out);
    print_options(out, global_options, global_option_count);
    print_output(out);
    fputs(ENVIRONMENT, out);
    print_exit_statuses(out);
    fputs(EXAMPLES, out);
    print_shell_texts(out);
}
