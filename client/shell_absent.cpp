#include "client/shell.h"

client_exit_status run_shell(client_session *session, const command_line *) {
    return complain(session, EXIT_STATUS_LOCAL, "this client has been built without the shell, which needs libedit");
}
