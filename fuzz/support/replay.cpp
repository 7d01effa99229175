// Runs every target over its corpus, one process, no fuzzer: for the tests.
//
//   replay_corpora CORPUS [TARGET [FILE...]]
//
// CORPUS has a folder for each target; an empty one is a failure. With files, those instead of the corpus. An input
// that fails ends the process, after its name.
#include <signal.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#define TARGET(name)                                              \
    extern "C" int fuzz_##name(const uint8_t *data, size_t size); \
    extern "C" __attribute__((weak)) const char *shortfall_##name();
#include "fuzz/support/targets.def"
#undef TARGET

struct fuzz_target {
    const char *name;
    int (*run)(const uint8_t *data, size_t size);
    const char *(*shortfall)();  // what its corpus does not reach; nullptr for a target that does not look
};

static const fuzz_target targets[] = {
#define TARGET(name) {#name, fuzz_##name, shortfall_##name},
#include "fuzz/support/targets.def"
};

// The input that is being run. Whoever reads of a crash has to know it.
static const char *current_path = "";

static void name_input() {
    fprintf(stderr, "\nwhile running %s\n", current_path);
}

static void name_aborted_input(int) {
    name_input();
    signal(SIGABRT, SIG_DFL);
    abort();
}

static void run_file(const fuzz_target *target, const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    current_path = path.c_str();
    target->run(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size());
}

static std::vector<std::string> corpus_of(const std::string &folder) {
    std::vector<std::string> paths;
    std::error_code error;
    for (const auto &entry : std::filesystem::directory_iterator(folder, error)) {
        paths.push_back(entry.path().string());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

// Whether all of it was there.
static bool replay(const fuzz_target *target, const std::vector<std::string> &paths) {
    for (const std::string &path : paths) {
        run_file(target, path);
    }
    const char *shortfall = target->shortfall ? target->shortfall() : nullptr;
    if (paths.empty() || shortfall) {
        printf("%-10s FAILED: its corpus %s\n", target->name, shortfall ? shortfall : "is empty");
        return false;
    }
    printf("%-10s %4zu inputs\n", target->name, paths.size());
    return true;
}

// What the sanitizers call before they end the process.
extern "C" __attribute__((weak)) void __sanitizer_set_death_callback(void (*callback)());

int main(int argc, char **argv) {
    if (__sanitizer_set_death_callback) {
        __sanitizer_set_death_callback(name_input);
    }
    signal(SIGABRT, name_aborted_input);
    if (argc < 2) {
        fputs("replay_corpora CORPUS [TARGET [FILE...]]\n", stderr);
        return 2;
    }
    bool passed = true;
    bool is_known = false;
    for (const fuzz_target &target : targets) {
        if (argc > 2 && strcmp(argv[2], target.name) != 0) {
            continue;
        }
        is_known = true;
        if (argc > 3) {
            for (int i = 3; i < argc; i++) {
                run_file(&target, argv[i]);
            }
        } else {
            passed = replay(&target, corpus_of(std::string(argv[1]) + "/" + target.name)) && passed;
        }
    }
    if (!is_known) {
        fprintf(stderr, "replay_corpora: there is no target %s\n", argv[2]);
        return 2;
    }
    return passed ? 0 : 1;
}
