#include "client/command_table.h"

#include <string.h>

#include "client/batch.h"
#include "client/completion.h"
#include "client/documents.h"
#include "client/lifecycle.h"
#include "client/list.h"
#include "client/metrics.h"
#include "client/radio.h"
#include "client/scan.h"
#include "client/settings_commands.h"
#include "client/shell.h"
#include "client/stations.h"
#include "client/status.h"
#include "client/vaps.h"
#include "client/watch.h"

const option_row global_options[] = {
    {"timeout", "SECONDS", "wait this long for each answer, 1 to 3600; 25 if not given", word_kind::NUMBER, 't'},
    {"server", "ADDRESS", "the server's address or name; 192.168.254.254 if not given", word_kind::TEXT, 's'},
    {"output", "FORMAT", "text, json, value (bare values) or dump (every byte of a result)", word_kind::FORMAT, 'o'},
    {"field", "NAME", "with -o value, which it implies: the values with this name, a line each", word_kind::FIELD, 'f'},
    {"color", "WHEN", "auto, always or never; auto is a terminal without NO_COLOR", word_kind::WHEN, '\0'},
    {"shell-text", nullptr, "send texts as they stand although the server's shell would obey them", word_kind::NONE,
     '\0'},
    {"help", nullptr, "what the command or operation does and takes", word_kind::NONE, 'h'},
};
const size_t global_option_count = sizeof global_options / sizeof *global_options;

const command_group_row command_groups[] = {
    {command_group::OPERATIONS, "Finding an operation"}, {command_group::GATEWAY, "The gateway at a glance"},
    {command_group::LIFECYCLE, "Wi-Fi down and up"},     {command_group::SETTINGS, "All settings at once"},
    {command_group::SCRIPTS, "Many commands"},           {command_group::DEVELOPERS, "For other programs"},
};
const size_t command_group_count = sizeof command_groups / sizeof *command_groups;

// A row's options and their number.
#define NO_OPTIONS nullptr, 0
#define OPTIONS(rows) rows, sizeof(rows) / sizeof *(rows)

static const option_row scan_options[] = {
    {"wait", "SECONDS", "for the survey to be complete, 1 to 3600; 30 if not given", word_kind::NUMBER, 'w'},
    {"cached", nullptr, "show the list of the last survey, and begin none", word_kind::NONE, 'c'},
};

static const option_row watch_options[] = {
    {"interval", "SECONDS", "between two runs, 0.1 to 86400; 2 if not given", word_kind::NUMBER, 'n'},
    {"count", "NUMBER", "end after so many runs", word_kind::NUMBER, 'c'},
    {"changes", nullptr, "show only what differs from the answer before", word_kind::NONE, 'd'},
};

static const option_row lifecycle_options[] = {
    {"wait", nullptr, "follow the driver until it is there", word_kind::NONE, 'w'},
    {"wait-for", "SECONDS", "the same, but no longer than this, 1 to 3600; 180 if not given", word_kind::NUMBER, '\0'},
};

static const option_row batch_options[] = {
    {"keep-going", nullptr, "go on with the next line when one fails", word_kind::NONE, 'k'},
    {"echo", nullptr, "print each line before its output; in JSON as \"input\"", word_kind::NONE, 'e'},
};

const command_row command_rows[] = {
    {"list",
     command_group::OPERATIONS,
     "[WORD]",
     {word_kind::SUBJECT},
     0,
     1,
     NO_OPTIONS,
     run_list,
     "the operations, all or those with WORD in name, subject or summary",
     ""},
    {"describe",
     command_group::OPERATIONS,
     "OPERATION",
     {word_kind::OPERATION},
     1,
     1,
     NO_OPTIONS,
     run_describe,
     "everything about one operation: arguments, result, what it touches",
     ""},
    {"help",
     command_group::OPERATIONS,
     "[COMMAND]",
     {word_kind::ANY_COMMAND},
     0,
     1,
     NO_OPTIONS,
     run_help,
     "how to use the client, a command or an operation",
     ""},
    {"status",
     command_group::GATEWAY,
     "",
     {word_kind::NONE},
     0,
     0,
     status_options,
     status_option_count,
     run_status,
     "radios and VAPs at a glance",
     "Shows every VAP that the server has, switched on or not. What belongs to an interface (bssid, channel, width,\n"
     "stations) is there while the VAP is up. utilisation is there while the radio's statistics collector runs."},
    {"stations",
     command_group::GATEWAY,
     "[VAP...]",
     {word_kind::VAP},
     0,
     VAP_COUNT_MAX,
     NO_OPTIONS,
     run_stations,
     "the associated stations of these VAPs, or of all",
     "In the order of the VAPs and, within one, of the addresses. connected_time is in seconds; what tx_rate and\n"
     "max_rate count is up to the driver."},
    {"radio",
     command_group::GATEWAY,
     "VAP",
     {word_kind::VAP},
     1,
     1,
     NO_OPTIONS,
     run_radio,
     "what a radio's statistics collector measures, with the RSSI of its stations",
     "Collectors belong to a VAP, usually the first one of each radio: 1 and 9. Where none runs, setRadStatEnable\n"
     "starts it. RSSI is in dB above the noise, and a line of the histogram counts the stations of two: the first\n"
     "entry (0-1) also those below it, the last one (72-73) also those above. Empty lines at both ends are left out."},
    {"metrics",
     command_group::GATEWAY,
     "",
     {word_kind::NONE},
     0,
     0,
     metrics_options,
     metrics_option_count,
     run_metrics,
     "the gateway's numbers as OpenMetrics text",
     "For a textfile collector, run it with --file FOLDER/wlan.prom: a reader never sees half of the file. When the\n"
     "server does not answer, the text says wlan_config_up 0 and nothing else, and the exit status says why."},
    {"scan",
     command_group::GATEWAY,
     "VAP",
     {word_kind::VAP},
     1,
     1,
     OPTIONS(scan_options),
     run_scan,
     "survey the air, and list the networks nearby by strength",
     "The radio of the VAP surveys all its channels; a survey that runs already is waited for.\n"
     "An answer has room for 64 networks. With --cached nobody can tell how old the list is.\n"
     "Ends with 4 when the survey is not complete in time."},
    {"load",
     command_group::LIFECYCLE,
     "[RADIO]",
     {word_kind::NUMBER},
     0,
     1,
     OPTIONS(lifecycle_options),
     run_load,
     "load the Wi-Fi driver",
     "Carries out the operation wlan_load; RADIO has no effect.\n"
     "With --wait: until a radio answers. The VAPs stay down until init."},
    {"init",
     command_group::LIFECYCLE,
     "",
     {word_kind::NONE},
     0,
     0,
     OPTIONS(lifecycle_options),
     run_init,
     "bring the Wi-Fi interfaces up",
     "Carries out the operation wlan_init, which loads the driver first when that is missing.\n"
     "With --wait: until every VAP that is switched on, on a radio that is, is up."},
    {"reset",
     command_group::LIFECYCLE,
     "",
     {word_kind::NONE},
     0,
     0,
     OPTIONS(lifecycle_options),
     run_reset,
     "take the Wi-Fi interfaces down and unload the driver",
     "Carries out the operation wlan_reset.\n"
     "With --wait: until no VAP is up and no radio answers."},
    {"reconnect",
     command_group::LIFECYCLE,
     "",
     {word_kind::NONE},
     0,
     0,
     OPTIONS(lifecycle_options),
     run_reconnect,
     "reset the Wi-Fi chips, and bring the interfaces up again",
     "Carries out the operation wlan_pci_reconnect; the gateway runs an init behind it.\n"
     "With --wait: until the driver has been gone, and then as init does."},
    {"export",
     command_group::SETTINGS,
     "",
     {word_kind::NONE},
     0,
     0,
     OPTIONS(export_options),
     run_export,
     "all settings of the gateway as one JSON document",
     "Everything that can be read and set again: the gateway's settings, those of both radios and those of\n"
     "the 16 VAPs. Keys, passphrases and PINs are in it as they are. A setting whose getter fails is left out\n"
     "and named on standard error. Two exports of one gateway differ in nothing but the line with the time."},
    {"diff",
     command_group::SETTINGS,
     "FILE",
     {word_kind::FILE_NAME},
     1,
     1,
     NO_OPTIONS,
     run_diff,
     "what applying an exported document would change",
     "Sets nothing. FILE may have any part of a document; - is standard input. Secrets are not shown. The exit\n"
     "status is 0 whether there are changes or not: programs look whether the list of changes is empty."},
    {"apply",
     command_group::SETTINGS,
     "FILE",
     {word_kind::FILE_NAME},
     1,
     1,
     OPTIONS(apply_options),
     run_apply,
     "make the gateway's settings those of an exported document",
     "Sets only what differs, in an order that works, and reads everything back afterwards. FILE may have any\n"
     "part of a document; - is standard input. A document with a mistake in it is refused as a whole. Stops at\n"
     "the first setting that cannot be set, and ends with the status of that call; with 1 when a setting does\n"
     "not read back as it was set. Most settings take effect when Wi-Fi is brought up again: see init. After\n"
     "factory settings the WPS files are missing until then: apply with --keep-going, init, and apply again.\n"
     "With --confirm-within a process of its own puts the old settings back when confirm does not come in time,\n"
     "and at once when this command is killed or interrupted before it is done."},
    {"confirm",
     command_group::SETTINGS,
     "",
     {word_kind::NONE},
     0,
     0,
     NO_OPTIONS,
     run_confirm,
     "keep the settings that `apply --confirm-within` has made",
     "Ends with 6 when nothing waits to be confirmed."},
    {"watch",
     command_group::SCRIPTS,
     "COMMAND...",
     {word_kind::COMMAND_LINE},
     1,
     ANY_NUMBER_OF_WORDS,
     OPTIONS(watch_options),
     run_watch,
     "any command or operation again and again",
     "Options of the watch stand before COMMAND. On a terminal each answer takes the place of the one before, below\n"
     "the time (UTC) and the command line. With -o json each answer is one line and has the member \"time\".\n"
     "Ends with the status of the last run, and with 0 when it is interrupted."},
    {"batch",
     command_group::SCRIPTS,
     "[FILE]",
     {word_kind::FILE_NAME},
     0,
     1,
     OPTIONS(batch_options),
     run_batch,
     "carry out commands and operations, a line each, of a file or of standard input",
     "Lines are split into words as a shell does it: blanks, '...', \"...\", $'...' with \\xHH, and backslashes; #\n"
     "begins a comment. Nothing is expanded. Options on a line hold for that line. Without FILE, and with -, lines\n"
     "are read from standard input and carried out as they arrive. The first line that fails ends the batch; its exit\n"
     "status is the batch's, also with --keep-going. With -o json each answer is one line and has the number of its\n"
     "line."},
    {"shell",
     command_group::SCRIPTS,
     "",
     {word_kind::NONE},
     0,
     0,
     NO_OPTIONS,
     run_shell,
     "type commands and operations one after the other, with history and completion",
     "TAB completes, Ctrl-C gives a new line or ends the command that is running, Ctrl-D or exit ends the shell. "
     "Lines\n"
     "are split as those of a batch. They are remembered in $XDG_STATE_HOME/vlk_wlan_config_history, or in\n"
     "~/.local/state, but for those with a key, passphrase or PIN. The exit status is that of the last command. When\n"
     "standard input is no terminal, this is batch --keep-going."},
    {"reference",
     command_group::DEVELOPERS,
     "",
     {word_kind::NONE},
     0,
     0,
     NO_OPTIONS,
     run_reference,
     "the page of all procedures, in Markdown",
     ""},
    {"interface",
     command_group::DEVELOPERS,
     "",
     {word_kind::NONE},
     0,
     0,
     NO_OPTIONS,
     run_interface,
     "the interface file for rpcgen",
     ""},
    {"dissector",
     command_group::DEVELOPERS,
     "",
     {word_kind::NONE},
     0,
     0,
     NO_OPTIONS,
     run_dissector,
     "the packet dissector for Wireshark, in Lua",
     ""},
    {"records",
     command_group::DEVELOPERS,
     "",
     {word_kind::NONE},
     0,
     0,
     NO_OPTIONS,
     run_records,
     "the C header with the records that results carry",
     ""},
    {"manual",
     command_group::HIDDEN,
     "",
     {word_kind::NONE},
     0,
     0,
     NO_OPTIONS,
     run_manual,
     "the client's manual page, in mdoc",
     ""},
    {"__complete",
     command_group::HIDDEN,
     "[WORD...]",
     {word_kind::RAW_WORDS},
     0,
     ANY_NUMBER_OF_WORDS,
     NO_OPTIONS,
     run_complete,
     "what the last word can become, for the completion scripts",
     ""},
    {"__complete_line",
     command_group::HIDDEN,
     "LINE",
     {word_kind::RAW_WORDS},
     0,
     ANY_NUMBER_OF_WORDS,
     NO_OPTIONS,
     run_complete_line,
     "the same for a line as it was typed",
     ""},
};
const size_t command_row_count = sizeof command_rows / sizeof *command_rows;

const command_row *find_command(const char *name) {
    for (const command_row &row : command_rows)
        if (strcmp(row.name, name) == 0)
            return &row;
    return nullptr;
}

const char *option_value(const command_line *line, const char *name) {
    for (size_t i = 0; i < COMMAND_OPTIONS_MAX && line->options; i++)
        if (line->values[i] && strcmp(line->options[i].name, name) == 0)
            return line->values[i];
    return nullptr;
}
