// The examples that `describe` shows, typed as they stand, at the real server.
#include <gtest/gtest.h>
#include <unistd.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <set>

#include "client/description.h"
#include "client/meanings.h"
#include "client/render.h"
#include "tests/support/examples.h"
#include "tests/system/gateway.h"

namespace {

class ClientExamples : public testing::Test {
protected:
    void SetUp() override {
        kept.emplace();
        restart_driver();
        // An example starts a survey, which fails while one of a test before is running.
        while (run_command("vlk_rpc_wlan_config_client getApScanStatus 1").text == "1\n")
            usleep(100000);
    }

    void TearDown() override {
        run_command("killall -q radstat0");
        run_command("hostapd_cli -iath0 wps_cancel");
        kept->put_back();
        restart_driver();
    }

    std::optional<kept_settings> kept;
};

std::string printed(void (*print)(FILE *, const procedure_row *), const procedure_row *row) {
    char *text = nullptr;
    size_t size = 0;
    FILE *stream = open_memstream(&text, &size);
    print(stream, row);
    fclose(stream);
    std::string copy(text, size);
    free(text);
    return copy;
}

std::set<std::string> names_in(const nlohmann::json &object) {
    std::set<std::string> names;
    for (const auto &[name, value] : object.items())
        names.insert(name);
    return names;
}

std::set<std::string> names_of_example(const procedure_row *row) {
    std::set<std::string> names;
    value *result = example_result(row);
    for (const value *member = result ? result->first : nullptr; member; member = member->next)
        names.insert(member->name);
    free_value(result);
    return names;
}

TEST_F(ClientExamples, EveryExampleEndsWithTheStatusItSays) {
    for (const procedure_row *row : rows_in_working_order()) {
        std::string line = printed(print_example, row);
        command_output output = run_command(line);
        EXPECT_EQ(output.status, why_example_fails(row) ? 1 : 0) << line << "\n" << output.text << output.errors;
        bool says_ok = output.text == "ok\n";
        bool is_code = row->result.kind == result_kind::CODE || row->result.kind == result_kind::ACTION;
        if (output.status == 0) {
            EXPECT_EQ(says_ok, is_code) << line;
        }
    }
}

TEST_F(ClientExamples, ResultHasTheNamesThatTheExampleHas) {
    for (const procedure_row *row : rows_in_working_order()) {
        std::set<std::string> names = names_of_example(row);
        if (names.empty()) {
            call(row->number, encoded_arguments(*row, example_words(*row)));
            continue;
        }
        std::string line = printed(print_example, row) + " -o json";
        nlohmann::json answer = nlohmann::json::parse(run_command(line).text, nullptr, false);
        EXPECT_EQ(answer.contains("error"), why_example_fails(row) != nullptr) << line;
        if (!why_example_fails(row)) {
            EXPECT_EQ(names_in(answer["result"]), names) << line;
        }
    }
}

}  // namespace
