// The command-line client of the Wi-Fi configuration server. Besides people and scripts the server itself runs it, when
// a lifecycle worker wants the queue of waiting requests looked at.
#include <locale.h>
#include <string.h>

#include "client/commands.h"

// Names of networks are UTF-8 in nearly all cases, also where nobody has chosen a language.
static void choose_character_set(void) {
    const char *chosen = setlocale(LC_CTYPE, "");
    if (!chosen || strcmp(chosen, "C") == 0 || strcmp(chosen, "POSIX") == 0)
        setlocale(LC_CTYPE, "C.UTF-8");
}

int main(int argc, char **argv) {
    choose_character_set();
    return run_client(argc, argv, &GATEWAY_ENDPOINT, stdout, stderr);
}
