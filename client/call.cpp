#include "client/call.h"

#include <arpa/inet.h>
#include <errno.h>
#include <netdb.h>
#include <pthread.h>
#include <rpc/pmap_prot.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

const call_endpoint GATEWAY_ENDPOINT = {SERVICE_ADDRESS, PMAPPORT};

// A portmapper answers from memory. Asking it again does no harm, so a lost datagram costs a second only.
constexpr int PORTMAPPER_TIMEOUT_SECONDS = 5;
constexpr int PORTMAPPER_RETRY_SECONDS = 1;

__attribute__((format(printf, 2, 3))) static call_outcome outcome(call_status status, const char *format, ...) {
    call_outcome made = {status, ""};
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(made.problem, sizeof made.problem, format, arguments);
    va_end(arguments);
    return made;
}

// A client of one program at an address, nullptr with errno when there is no way to it. Its socket is connected, so
// that datagrams from elsewhere cannot pass for the answer.
static CLIENT *open_client(sockaddr_in *server, rpcprog_t program, rpcvers_t version, int retry_seconds) {
    int socket_fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, IPPROTO_UDP);
    if (socket_fd < 0)
        return nullptr;
    netbuf address = {sizeof *server, sizeof *server, server};
    CLIENT *client = nullptr;
    if (connect(socket_fd, reinterpret_cast<sockaddr *>(server), sizeof *server) == 0)
        client = clnt_dg_create(socket_fd, &address, program, version, 0, 0);
    if (!client) {
        int error = errno;
        close(socket_fd);
        errno = error;
        return nullptr;
    }
    timeval retry = {retry_seconds, 0};
    clnt_control(client, CLSET_FD_CLOSE, nullptr);
    clnt_control(client, CLSET_RETRY_TIMEOUT, &retry);
    return client;
}

struct pending_call {
    CLIENT *client;
    rpcproc_t procedure;
    xdrproc_t encode;
    void *arguments;
    xdrproc_t decode;
    void *result;
    timeval timeout;
    clnt_stat status;
};

static void *make_call(void *pending) {
    pending_call *call = static_cast<pending_call *>(pending);
    call->status = clnt_call(call->client, call->procedure, call->encode, static_cast<char *>(call->arguments),
                             call->decode, static_cast<char *>(call->result), call->timeout);
    return nullptr;
}

// Sends the call once: what became of it, and the system's error behind that. The library holds every signal of the
// thread that calls until the answer is there, so it gets a thread of its own: this one can be interrupted.
static rpc_err call_once(CLIENT *client, rpcproc_t procedure, xdrproc_t encode, void *arguments, xdrproc_t decode,
                         void *result, int timeout_seconds) {
    pending_call call = {client, procedure, encode, arguments, decode, result, {timeout_seconds, 0}, RPC_FAILED};
    pthread_t thread;
    if (pthread_create(&thread, nullptr, make_call, &call) == 0)
        pthread_join(thread, nullptr);
    else
        make_call(&call);
    rpc_err error = {};
    clnt_geterr(client, &error);
    error.re_status = call.status;
    return error;
}

static call_outcome unreachable(const char *address) {
    return outcome(call_status::NO_ANSWER, "cannot reach %s (%s): is the gateway's internal address configured?",
                   address, strerror(errno));
}

static call_outcome portmapper_failure(const call_endpoint *endpoint, const rpc_err *error) {
    const char *address = endpoint->address;
    if (error->re_status == RPC_TIMEDOUT)
        return outcome(call_status::NO_ANSWER,
                       "the portmapper at %s does not answer: does rpcbind or portmap hang there?", address);
    if (error->re_status == RPC_CANTRECV && error->re_errno == ECONNREFUSED)
        return outcome(call_status::NO_ANSWER, "there is no portmapper at %s: start rpcbind or portmap there", address);
    if (error->re_status == RPC_CANTSEND || error->re_status == RPC_CANTRECV)
        return outcome(call_status::NO_ANSWER, "cannot ask the portmapper at %s: %s", address,
                       strerror(error->re_errno));
    return outcome(call_status::NO_ANSWER, "the portmapper at %s does not tell the server's port: %s", address,
                   clnt_sperrno(error->re_status));
}

// The port of the server as its portmapper knows it.
static call_outcome ask_port(const call_endpoint *endpoint, sockaddr_in *portmapper, int timeout_seconds,
                             u_short *port) {
    CLIENT *client = open_client(portmapper, PMAPPROG, PMAPVERS, PORTMAPPER_RETRY_SECONDS);
    if (!client)
        return unreachable(endpoint->address);
    int timeout = timeout_seconds < PORTMAPPER_TIMEOUT_SECONDS ? timeout_seconds : PORTMAPPER_TIMEOUT_SECONDS;
    pmap wanted = {WLAN_CONFIG_RPC_PROG, WLAN_CONFIG_API_VERSION, IPPROTO_UDP, 0};
    *port = 0;
    rpc_err error =
        call_once(client, PMAPPROC_GETPORT, as_xdrproc(xdr_pmap), &wanted, as_xdrproc(xdr_u_short), port, timeout);
    clnt_destroy(client);
    if (error.re_status != RPC_SUCCESS)
        return portmapper_failure(endpoint, &error);
    if (*port == 0)
        return outcome(call_status::NO_ANSWER,
                       "the portmapper at %s does not know program 0x%x version %u: is the server running?",
                       endpoint->address, WLAN_CONFIG_RPC_PROG, WLAN_CONFIG_API_VERSION);
    return outcome(call_status::ANSWERED, "%s", "");
}

static call_outcome no_answer(const call_endpoint *endpoint, u_short port, const rpc_err *error, int timeout_seconds) {
    if (error->re_status == RPC_TIMEDOUT)
        return outcome(call_status::TIMED_OUT,
                       "no answer from %s port %u within %d s: the server is busy or hangs, and may still carry it out",
                       endpoint->address, port, timeout_seconds);
    if (error->re_errno == ECONNREFUSED)
        return outcome(call_status::NO_ANSWER,
                       "nothing answers at %s port %u, though the portmapper has it registered: has the server ended?",
                       endpoint->address, port);
    return outcome(call_status::NO_ANSWER, "no connection to %s port %u: %s", endpoint->address, port,
                   strerror(error->re_errno));
}

static call_outcome call_failure(const call_endpoint *endpoint, u_short port, const rpc_err *error,
                                 int timeout_seconds) {
    switch (error->re_status) {
        case RPC_TIMEDOUT:
        case RPC_CANTSEND:
        case RPC_CANTRECV:
            return no_answer(endpoint, port, error, timeout_seconds);
        case RPC_CANTENCODEARGS:
            return outcome(call_status::TOO_LARGE, "the arguments are longer than a call can be (%d bytes in all)",
                           UDPMSGSIZE);
        case RPC_CANTDECODERES:
            return outcome(call_status::REFUSED, "the server's answer is damaged: it is no result of this operation");
        case RPC_PROCUNAVAIL:
            return outcome(call_status::REFUSED, "the server does not offer this operation");
        case RPC_CANTDECODEARGS:
            return outcome(call_status::REFUSED, "the server cannot decode the arguments");
        case RPC_SYSTEMERROR:
            return outcome(call_status::REFUSED, "the server met a system error while answering");
        case RPC_PROGUNAVAIL:
        case RPC_PROGVERSMISMATCH:
            return outcome(call_status::REFUSED, "another program answers at %s port %u: %s", endpoint->address, port,
                           clnt_sperrno(error->re_status));
        default:  // what else the library knows: authentication, RPC versions, its own resources
            return outcome(call_status::REFUSED, "the call failed: %s", clnt_sperrno(error->re_status));
    }
}

// The endpoint's address, which may be given as a name.
static bool find_address(const call_endpoint *endpoint, sockaddr_in *found) {
    addrinfo wanted = {};
    wanted.ai_family = AF_INET;
    wanted.ai_socktype = SOCK_DGRAM;
    addrinfo *answer;
    if (getaddrinfo(endpoint->address, nullptr, &wanted, &answer) != 0)
        return false;
    memcpy(found, answer->ai_addr, sizeof *found);
    freeaddrinfo(answer);
    return true;
}

static call_outcome open_connection(server_connection *connection, int timeout_seconds) {
    const call_endpoint *endpoint = &connection->endpoint;
    sockaddr_in server = {};
    if (!find_address(endpoint, &server))
        return outcome(call_status::NO_ANSWER, "\"%s\" is neither an IPv4 address nor a name that has one",
                       endpoint->address);
    server.sin_port = htons(endpoint->portmapper_port);
    call_outcome asked = ask_port(endpoint, &server, timeout_seconds, &connection->port);
    if (asked.status != call_status::ANSWERED)
        return asked;
    server.sin_port = htons(connection->port);
    connection->client = open_client(&server, WLAN_CONFIG_RPC_PROG, WLAN_CONFIG_API_VERSION, timeout_seconds);
    return connection->client ? asked : unreachable(endpoint->address);
}

server_connection new_connection(const call_endpoint *endpoint) {
    return {*endpoint, nullptr, 0};
}

void close_connection(server_connection *connection) {
    CLIENT *client = connection->client;
    connection->client = nullptr;
    if (client)
        clnt_destroy(client);
}

call_outcome call_procedure(server_connection *connection, const procedure_row *row, call_arguments *arguments,
                            int timeout_seconds, wlan_config_result_data_t *result) {
    *result = {};
    if (!connection->client) {
        call_outcome opened = open_connection(connection, timeout_seconds);
        if (!connection->client)
            return opened;
    }
    // Retrying first after the whole time means never.
    CLIENT *client = connection->client;
    timeval retry = {timeout_seconds, 0};
    clnt_control(client, CLSET_RETRY_TIMEOUT, &retry);
    bool bare = row->result.kind == result_kind::CODE;
    xdrproc_t decode = bare ? as_xdrproc(xdr_wlan_config_return_code_e) : as_xdrproc(xdr_wlan_config_result_data_t);
    void *decoded = bare ? static_cast<void *>(&result->return_code) : result;
    rpc_err error =
        call_once(client, row->number, as_xdrproc(xdr_call_arguments), arguments, decode, decoded, timeout_seconds);
    if (error.re_status == RPC_SUCCESS)
        return outcome(call_status::ANSWERED, "%s", "");
    call_outcome failed = call_failure(&connection->endpoint, connection->port, &error, timeout_seconds);
    // A server that has been started again may have another port. And a late answer must not meet the next call: the
    // library passes over it, but counts the whole time as waited.
    if (failed.status == call_status::NO_ANSWER || failed.status == call_status::TIMED_OUT)
        close_connection(connection);
    return failed;
}

void release_result(wlan_config_result_data_t *result) {
    xdr_free(as_xdrproc(xdr_wlan_config_result_data_t), result);
    *result = {};
}
