// What the client's ways out lead to instead (client_doors.txt): a server that answers as the input says, a clock that
// moves whenever it is looked at, and refusals.
#include <errno.h>
#include <netdb.h>
#include <netinet/in.h>
#include <pthread.h>
#include <rpc/rpc.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include <type_traits>

#include "fuzz/support/check.h"
#include "fuzz/support/client_answers.h"
#include "server/wire.h"

fuzz_input client_answers;
static int64_t client_clock_ms;

// What else the client would do to the machine is refused.
#define REFUSED(name)                      \
    extern "C" long client_door_##name() { \
        errno = EPERM;                     \
        return -1;                         \
    }
#define REFUSED_POINTER(name)               \
    extern "C" void *client_door_##name() { \
        errno = EPERM;                      \
        return nullptr;                     \
    }
REFUSED(chdir)
REFUSED(close)
REFUSED(dup2)
REFUSED(fchmod)
REFUSED(fcntl)
REFUSED(flock)
REFUSED(fork)
REFUSED(fstat)
REFUSED(fsync)
REFUSED(getpid)
REFUSED(getppid)
REFUSED(kill)
REFUSED(link)
REFUSED(lstat)
REFUSED(mkdir)
REFUSED(mkostemp)
REFUSED(open)
REFUSED(openlog)
REFUSED(pipe2)
REFUSED(poll)
REFUSED(prctl)
REFUSED(read)
REFUSED(rename)
REFUSED(send)
REFUSED(setsid)
REFUSED(sigaction)
REFUSED(sigprocmask)
REFUSED(sigtimedwait)
REFUSED(sleep)
REFUSED(socketpair)
REFUSED(stat)
REFUSED(syslog)
REFUSED(unlink)
REFUSED(waitpid)
REFUSED(write)
REFUSED_POINTER(el_init)
REFUSED_POINTER(fdopen)
REFUSED_POINTER(fopen)
REFUSED_POINTER(opendir)
REFUSED_POINTER(realpath)
REFUSED_POINTER(signal)

extern "C" {

void client_door_exit(int) {
    fail("the client does not end itself");
}

void client_door__exit(int) {
    fail("the client does not end itself");
}

time_t client_door_time(time_t *) {
    return 0;
}

// Each look takes a while, so that whoever waits for a time comes to an end.
int client_door_clock_gettime(clockid_t, timespec *now) {
    client_clock_ms += 100;
    now->tv_sec = client_clock_ms / 1000;
    now->tv_nsec = client_clock_ms % 1000 * 1000000;
    return 0;
}

int client_door_clock_nanosleep(clockid_t, int flags, const timespec *wanted, timespec *) {
    int64_t ms = wanted->tv_sec * 1000 + wanted->tv_nsec / 1000000;
    client_clock_ms = flags == TIMER_ABSTIME ? ms : client_clock_ms + ms;
    return 0;
}

int client_door_pthread_create(pthread_t *thread, const pthread_attr_t *, void *(*routine)(void *), void *argument) {
    *thread = {};
    routine(argument);
    return 0;
}

int client_door_pthread_join(pthread_t, void **) {
    return 0;
}

// --- the way to the server ---

int client_door_getaddrinfo(const char *, const char *, const addrinfo *, addrinfo **found) {
    static sockaddr_in address;
    static addrinfo answer;
    address.sin_family = AF_INET;
    answer.ai_addr = reinterpret_cast<sockaddr *>(&address);
    answer.ai_addrlen = sizeof(address);
    *found = &answer;
    return 0;
}

void client_door_freeaddrinfo(addrinfo *) {}

int client_door_socket(int, int type, int) {
    must((type & SOCK_CLOEXEC) != 0, "no child process inherits a socket");
    return 0;
}

int client_door_connect(int, const sockaddr *, socklen_t) {
    return 0;
}

static clnt_stat call_server(CLIENT *client, rpcproc_t procedure, xdrproc_t encode, void *arguments, xdrproc_t decode,
                             void *result, timeval) {
    static char sent[UDPMSGSIZE];
    XDR stream;
    xdrmem_create(&stream, sent, sizeof(sent), XDR_ENCODE);
    if (!encode(&stream, arguments)) {
        return RPC_CANTENCODEARGS;
    }
    bool for_portmapper = client->cl_private != nullptr;
    server_answer answer = answer_call(for_portmapper ? 0 : static_cast<uint32_t>(procedure));
    if (answer.status != RPC_SUCCESS) {
        return answer.status;
    }
    xdrmem_create(&stream, answer.bytes.data(), static_cast<u_int>(answer.bytes.size()), XDR_DECODE);
    return decode(&stream, result) ? RPC_SUCCESS : RPC_CANTDECODERES;
}

static void tell_error(CLIENT *, rpc_err *error) {
    *error = {};
    error->re_errno = ECONNREFUSED;
}

static bool_t free_result(CLIENT *, xdrproc_t decode, void *result) {
    xdr_free(decode, result);
    return TRUE;
}

static void destroy(CLIENT *client) {
    free(client);
}

static bool_t control(CLIENT *, u_int, void *) {
    return TRUE;
}

CLIENT *client_door_clnt_dg_create(int, const netbuf *, rpcprog_t program, rpcvers_t, u_int, u_int) {
    static std::remove_pointer_t<decltype(CLIENT::cl_ops)> operations = {call_server, nullptr, tell_error,
                                                                         free_result, destroy, control};
    static char portmapper[] = "portmapper";
    CLIENT *client = static_cast<CLIENT *>(calloc(1, sizeof(CLIENT)));
    client->cl_ops = &operations;
    client->cl_private = program == WLAN_CONFIG_RPC_PROG ? nullptr : portmapper;
    return client;
}
}
