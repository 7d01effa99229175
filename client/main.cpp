// The command-line client of the Wi-Fi configuration server. Besides people and scripts the server itself runs it, when
// a lifecycle worker wants the queue of waiting requests looked at.
#include <fcntl.h>
#include <locale.h>
#include <string.h>
#include <unistd.h>

#include "client/commands.h"

// Names of networks are UTF-8 in nearly all cases, also where nobody has chosen a language.
static void choose_character_set(void) {
    const char *chosen = setlocale(LC_CTYPE, "");
    if (!chosen || strcmp(chosen, "C") == 0 || strcmp(chosen, "POSIX") == 0)
        setlocale(LC_CTYPE, "C.UTF-8");
}

// Whoever starts the client with its standard streams closed must not find its socket or its files in their places,
// where output would go. Standard output that was closed cannot be written to.
static void occupy_standard_streams(void) {
    static const int modes[] = {O_RDONLY, O_RDONLY, O_WRONLY};
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; stream++)
        if (fcntl(stream, F_GETFD) < 0 && open("/dev/null", modes[stream]) < 0)  // the lowest free number
            return;
}

int main(int argc, char **argv) {
    occupy_standard_streams();
    choose_character_set();
    return run_client(argc, argv, &GATEWAY_ENDPOINT, stdout, stderr);
}
