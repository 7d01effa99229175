// Every procedure called once over the wire, by calls and replies that the running server really exchanged.
#include <gtest/gtest.h>
#include <string.h>
#include <unistd.h>

#include <iterator>

#include "client/names.h"
#include "client/operations.h"
#include "server/wire.h"
#include "tests/dissector/dissection.h"
#include "tests/system/gateway.h"

namespace {

constexpr int ANSWER_TIMEOUT_MS = 10000;

// Different numbers, so that arguments that stand for each other are noticed.
bytes distinct_arguments(const procedure_row &row) {
    bytes arguments;
    for (uint32_t i = 0; i < row.argument_count; i++)
        switch (row.arguments[i].kind) {
            case argument_kind::VAP:
            case argument_kind::INT:
            case argument_kind::IGNORED:
            case argument_kind::UINT:
            case argument_kind::USHORT:
                arguments += xdr_word(i + 1);
                break;
            case argument_kind::BOOL:
                arguments += xdr_word(1);
                break;
            case argument_kind::TEXT:
                arguments += xdr_string_bytes("word " + std::to_string(i + 1));
                break;
        }
    return arguments;
}

struct exchange {
    const procedure_row *row;
    bytes arguments;
    bytes result;
    size_t call_frame;
    size_t reply_frame;
};

struct recorded_smoke_test {
    capture frames;
    std::vector<exchange> exchanges;
    std::vector<dissected_frame> dissected;
};

void exchange_one(int client, const procedure_row &row, recorded_smoke_test *smoke) {
    uint32_t xid = 0x10000 + row.number % 0x1000000;
    bytes arguments = distinct_arguments(row), answer;
    bytes call = call_header(xid, WLAN_CONFIG_RPC_PROG, WLAN_CONFIG_API_VERSION, row.number) + arguments;
    ASSERT_TRUE(send_datagram(client, call));
    ASSERT_TRUE(receive_datagram(client, &answer, ANSWER_TIMEOUT_MS)) << row.name;
    call_reply reply = parse_reply(answer);
    ASSERT_EQ(reply.outcome, call_outcome::SUCCESS) << row.name;
    size_t call_frame = add_call(&smoke->frames, call);
    size_t reply_frame = add_reply(&smoke->frames, answer);
    smoke->exchanges.push_back({&row, arguments, reply.result, call_frame, reply_frame});
}

// What starts and stops the driver, or restores its settings, comes last. Of those calls each returns at once in this
// order: the queue is empty, a reconnect starts, a load and two inits are parked, a reset empties the queue.
constexpr const char *LAST_PROCEDURES[] = {"wlan_set_restore_defaults",
                                           "wlan_check_thread_queue",
                                           "wlan_pci_reconnect",
                                           "wlan_load",
                                           "wlan_init",
                                           "wlan_restart",
                                           "wlan_reset"};
constexpr size_t TURNS = std::size(LAST_PROCEDURES) + 1;

size_t turn_of(const procedure_row &row) {
    for (size_t i = 0; i < std::size(LAST_PROCEDURES); i++)
        if (strcmp(row.name, LAST_PROCEDURES[i]) == 0)
            return i + 1;
    return 0;
}

// Called, recorded and dissected once, by whichever test comes first.
const recorded_smoke_test &smoke_test() {
    static recorded_smoke_test smoke;
    if (!smoke.frames.empty())
        return smoke;
    write_file("/tmp/wifi_defaults.dat", "");
    int client = open_client_socket();
    for (size_t turn = 0; turn < TURNS; turn++)
        for (size_t i = 0; i < procedure_row_count; i++)
            if (turn_of(procedure_rows[i]) == turn)
                exchange_one(client, procedure_rows[i], &smoke);
    close(client);
    smoke.dissected = dissect(smoke.frames);
    return smoke;
}

const dissected_frame &call_of(const exchange &exchange) {
    return smoke_test().dissected[exchange.call_frame - 1];
}

const dissected_frame &reply_of(const exchange &exchange) {
    return smoke_test().dissected[exchange.reply_frame - 1];
}

std::string operation_of(const procedure_row &row) {
    char name[OPERATION_NAME_SIZE];
    operation_name(&row, name);
    return name;
}

TEST(DissectedSmokeTest, HasEveryProcedureOfTheTable) {
    EXPECT_EQ(smoke_test().exchanges.size(), 340u);
    EXPECT_EQ(smoke_test().frames.size(), 680u);
}

TEST(DissectedSmokeTest, NamesOperationAndProcedureOfEachCallAndReply) {
    for (const exchange &exchange : smoke_test().exchanges)
        for (const dissected_frame *frame : {&call_of(exchange), &reply_of(exchange)}) {
            EXPECT_EQ((*frame)["wlan_config.operation"], operation_of(*exchange.row));
            EXPECT_EQ((*frame)["wlan_config.procedure_name"], exchange.row->name);
        }
}

TEST(DissectedSmokeTest, NumbersEachCall) {
    for (const exchange &exchange : smoke_test().exchanges)
        EXPECT_EQ(call_of(exchange)["wlan_config.procedure"], std::to_string(exchange.row->number));
}

TEST(DissectedSmokeTest, BeginsEachLineWithDirectionAndOperation) {
    for (const exchange &exchange : smoke_test().exchanges) {
        std::string name = operation_of(*exchange.row);
        EXPECT_EQ(call_of(exchange).title.find("Wi-Fi configuration, Call " + name), 0u) << call_of(exchange).title;
        EXPECT_EQ(reply_of(exchange).title.find("Wi-Fi configuration, Reply " + name), 0u) << reply_of(exchange).title;
    }
}

TEST(DissectedSmokeTest, ShowsEachArgumentAsItWasSent) {
    for (const exchange &exchange : smoke_test().exchanges)
        EXPECT_TRUE(same_fields(payload_of(call_of(exchange)), expected_arguments(*exchange.row, exchange.arguments)))
            << exchange.row->name;
}

TEST(DissectedSmokeTest, ShowsEachResultAsItWasReceived) {
    for (const exchange &exchange : smoke_test().exchanges)
        EXPECT_TRUE(same_fields(payload_of(reply_of(exchange)), expected_result(*exchange.row, exchange.result)))
            << exchange.row->name;
}

TEST(DissectedSmokeTest, FindsTheCallOfEachReplyAndTheTimeBetweenThem) {
    for (const exchange &exchange : smoke_test().exchanges) {
        EXPECT_EQ(reply_of(exchange)["wlan_config.call_in"], std::to_string(exchange.call_frame));
        EXPECT_EQ(reply_of(exchange)["wlan_config.time"], "0.001000000");
    }
}

TEST(DissectedSmokeTest, HasProblemsOnlyWhereTheServerAnsweredFailure) {
    size_t failures = 0;
    for (const exchange &exchange : smoke_test().exchanges) {
        bool failed = word_at(exchange.result, 0) != 0;
        failures += failed;
        EXPECT_TRUE(call_of(exchange).problems.empty()) << exchange.row->name;
        EXPECT_EQ(reply_of(exchange).problems, failed ? std::set<std::string>{"failure"} : std::set<std::string>{})
            << exchange.row->name;
    }
    EXPECT_GT(failures, 0u);
    EXPECT_LT(failures, 340u);
}

}  // namespace
