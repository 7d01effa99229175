// The WPS files as the tests of several rooms need them.
//
// Touches /nvram/etc/wpa2.
#pragma once

#include <errno.h>
#include <stdlib.h>

#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "config/wps_files.h"
#include "tests/support/platform.h"

// An empty directory of WPS files.
inline void reset_wps_files() {
    std::error_code error;
    std::filesystem::remove_all(WPS_DIRECTORY, error);
    std::filesystem::create_directories(WPS_DIRECTORY, error);
    if (error) {
        fprintf(stderr, "test platform: cannot make %s: %s\n", WPS_DIRECTORY, error.message().c_str());
        abort();
    }
}

// The file of an interface, which is the VAP's index less 1.
inline std::string wps_file(int interface) {
    return std::string(WPS_DIRECTORY) + "/WSC_ath" + std::to_string(interface) + ".conf";
}
