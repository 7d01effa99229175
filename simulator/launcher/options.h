// What the launcher is asked to do, and where everything is that it needs for that.
//
// Touches the environment (PATH) and looks at files. The launcher's outer process, and once more, where namespaces are
// refused, the one inside.
#pragma once

#include <limits.h>

// All paths are absolute and without links; empty means there is none.
struct options {
    char home[PATH_MAX];   // the launcher's own folder
    char parts[PATH_MAX];  // that of its tools, libraries, scenarios and tour
    char scenario[PATH_MAX];
    char server[PATH_MAX];
    char client[PATH_MAX];
    char rpcbind[PATH_MAX];
    char rpcinfo[PATH_MAX];  // empty unless it comes with a portmapper that is not installed
    char driver[PATH_MAX];
    char carrier[PATH_MAX];  // the library that everything has loaded where namespaces are refused
    char tools[PATH_MAX];
    char work[PATH_MAX];  // the caller's working directory
    bool bare;
    char **command;  // mode first: tour, shell or run
};

// Reads the command line and finds the rest. False after saying what is wrong or missing.
bool options_read(options *given, int argument_count, char **arguments);

// The path of `name` in the folder `home`, into `path` (PATH_MAX bytes); as it stands when nothing is there.
void set_beside(char *path, const char *home, const char *name);

// Finds a program as a shell would, in root's folders too, which an ordinary user's PATH leaves out. `path` has
// PATH_MAX bytes and is empty when there is none.
void find_program(const char *name, char *path);
