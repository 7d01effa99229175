// Runs the system tests, but only where the fixed paths and the internal address are the simulated gateway's.
#include <gtest/gtest.h>

int main(int argc, char **argv) {
    if (!getenv("VLK_PRIVATE_NAMESPACE")) {
        fputs("system tests run inside the simulated gateway only: vlk_simulated_gateway run ...\n", stderr);
        return 2;
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
