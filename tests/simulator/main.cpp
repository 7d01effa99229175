// Runs the tests of the simulator that change its files: inside a gateway only.
#include <gtest/gtest.h>
#include <stdio.h>
#include <unistd.h>

#include "simulator/paths.h"

int main(int argument_count, char **arguments) {
    testing::InitGoogleTest(&argument_count, arguments);
    if (access(GATEWAY_JOURNAL, W_OK) != 0) {
        fprintf(stderr, "run this as: vlk_simulated_gateway --bare run %s\n", arguments[0]);
        return 1;
    }
    return RUN_ALL_TESTS();
}
