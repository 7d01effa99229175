// A client that was built without a parser: it writes documents, and says that it cannot read them.
#include "client/settings_document.h"

#include <stdio.h>

const bool can_read_documents = false;

value *parse_document(const char *, size_t, char problem[PROBLEM_SIZE]) {
    snprintf(problem, PROBLEM_SIZE, "this client was built without reading documents (WLAN_CLIENT_DOCUMENTS)");
    return nullptr;
}
