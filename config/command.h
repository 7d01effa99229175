// The doors through which the server runs shell commands: with captured output, with the beginning of it, without.
//
// Touches the platform shell. Service thread and lifecycle workers both call it; it keeps no state but the
// search path, which is set once.
#pragma once

#include <stddef.h>
#include <sys/types.h>

// Runs a shell command and captures its whole standard output.
//
// caller   name of the calling operation, used in messages only.
// output   receives a NUL-terminated heap text that the caller frees, also when -1 is returned and a buffer was
//          already there; null when nothing could be captured. A silent command yields an empty text, not null.
// Returns 0 when the command could be started and read, -1 when the pipe could not be opened or memory ran out.
// The command's exit status is not examined. A command that ends in '&' must not come here: the daemon would
// inherit the pipe and hold it open for ever; use run_shell.
int athcfg_executecmd(const char *caller, const char *command, char **output);

// The same with a formatted command. -1 and a null output also when the command text itself finds no memory.
int athcfg_executecmdf(const char *caller, char **output, const char *format, ...)
    __attribute__((format(printf, 3, 4)));

// The same where nobody wants the output: it is read, so that the command can end, and thrown away.
int athcfg_runcmdf(const char *caller, const char *format, ...) __attribute__((format(printf, 2, 3)));

// Runs a shell command with the server's own standard output and waits for it (a command that ends in '&' is not
// waited for). Returns what system() returns.
int run_shell(const char *command);

// Runs a shell command and reads the first bytes of its standard output, at most size of them; they are not terminated.
// The rest is not read: a command that goes on printing finds its pipe closed.
// Returns how many bytes there are, -1 when the command could not be started.
ssize_t read_command(const char *command, char *bytes, size_t size);

// Appends /etc/ath, where the driver's scripts live, to PATH unless PATH names it already. Only the first call
// does anything. Always returns 0.
int athcfg_set_path(void);
