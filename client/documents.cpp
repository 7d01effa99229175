#include "client/documents.h"

#include "client/dissector.h"
#include "client/interface.h"
#include "client/manual.h"
#include "client/record_header.h"
#include "client/reference.h"

// A document goes out as it stands, for it is what becomes a file. In JSON, and where a member is asked for by its
// name, it is a text.
static client_exit_status show_document(client_session *session, void (*print)(FILE *out)) {
    if (wants_page(session)) {
        print(session->out);
        return EXIT_STATUS_SUCCESS;
    }
    printed_text text;
    value *result = new_object();
    begin_text(&text);
    print(text.out);
    add_printed(result, "text", &text);
    return show(session, result);
}

client_exit_status run_reference(client_session *session, const command_line *) {
    return show_document(session, print_reference);
}

client_exit_status run_interface(client_session *session, const command_line *) {
    return show_document(session, print_interface);
}

client_exit_status run_dissector(client_session *session, const command_line *) {
    return show_document(session, print_dissector);
}

client_exit_status run_records(client_session *session, const command_line *) {
    return show_document(session, print_record_header);
}

client_exit_status run_manual(client_session *session, const command_line *) {
    return show_document(session, print_manual);
}
