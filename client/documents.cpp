#include "client/documents.h"

#include "client/dissector.h"
#include "client/record_header.h"
#include "client/reference.h"

client_exit_status run_reference(client_session *session, const command_line *) {
    print_reference(session->out);
    return EXIT_STATUS_SUCCESS;
}

client_exit_status run_interface(client_session *session, const command_line *) {
    print_interface(session->out);
    return EXIT_STATUS_SUCCESS;
}

client_exit_status run_dissector(client_session *session, const command_line *) {
    print_dissector(session->out);
    return EXIT_STATUS_SUCCESS;
}

client_exit_status run_records(client_session *session, const command_line *) {
    print_record_header(session->out);
    return EXIT_STATUS_SUCCESS;
}
