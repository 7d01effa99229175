// Entry of the unit tests. They write fixed paths under /tmp and run tools by name, so they run only where somebody
// has said that nothing real is in reach.
#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

constexpr int EXIT_REFUSED = 2;

int main(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
    const char *permission = getenv("VLK_PRIVATE_NAMESPACE");
    bool allowed = permission && strcmp(permission, "1") == 0;
    // Listing the tests runs none of them.
    if (!allowed && !GTEST_FLAG_GET(list_tests)) {
        fputs(
            "unit_tests: refused: the tests write fixed paths under /tmp; run them in namespaces of their own "
            "(unshare -mnp --fork, a tmpfs over /tmp) with VLK_PRIVATE_NAMESPACE=1\n",
            stderr);
        return EXIT_REFUSED;
    }
    return RUN_ALL_TESTS();
}
