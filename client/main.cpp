// The command-line client of the Wi-Fi configuration server. Besides people and scripts the server itself runs it, when
// a lifecycle worker wants the queue of waiting requests looked at.
#include "client/commands.h"

int main(int argc, char **argv) {
    return run_client(argc, argv, &GATEWAY_ENDPOINT, stdout, stderr);
}
