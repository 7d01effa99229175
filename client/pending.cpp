#include "client/pending.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <syslog.h>
#include <time.h>
#include <unistd.h>

#include "client/changes.h"
#include "client/help.h"
#include "client/render.h"

// How often the process looks whether it has been relieved by a confirmation.
constexpr int LOOK_MILLISECONDS = 200;

// A server that does not answer is asked again for five minutes at least: a gateway starts again within them.
constexpr int ATTEMPTS = 300;
constexpr unsigned ATTEMPT_PAUSE_SECONDS = 1;

// Files with settings that could not be put back: the oldest has no number, and none takes the place of another.
constexpr int LOST_FILES_MAX = 100;
constexpr int NUMBER_ROOM = 16;  // in a path, which is shorter by far

// What a client may have inherited from whoever started it: more than any shell opens.
constexpr int INHERITED_FILES_MAX = 1024;

struct pending_paths {
    char waiting[PATH_MAX];    // for its confirmation
    char restoring[PATH_MAX];  // too late
    char lost[PATH_MAX];       // nobody puts them back any more
    char unnamed[PATH_MAX];    // before it is whole
};

static bool find_paths(client_session *session, pending_paths *paths) {
    const char *folder = geteuid() == 0 ? "/run" : getenv("XDG_RUNTIME_DIR");
    if (!folder || *folder != '/') {
        snprintf(session->problem, sizeof session->problem,
                 "there is no place to keep the old settings in: XDG_RUNTIME_DIR is not set");
        return false;
    }
    char base[PATH_MAX / 2];
    snprintf(base, sizeof base, "%s/%s", folder, PROGRAM_NAME);
    snprintf(paths->waiting, sizeof paths->waiting, "%s.pending", base);
    snprintf(paths->restoring, sizeof paths->restoring, "%s.restoring", base);
    snprintf(paths->lost, sizeof paths->lost, "%s.lost", base);
    snprintf(paths->unnamed, sizeof paths->unnamed, "%s.%d", base, static_cast<int>(getpid()));
    return true;
}

// Whether a process keeps the file.
enum class file_state { ABSENT, KEPT, ABANDONED };

static file_state state_of(const char *path) {
    int file = open(path, O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    if (file < 0)
        return file_state::ABSENT;
    bool kept = flock(file, LOCK_SH | LOCK_NB) != 0;  // shared, or two that look would take each other for the keeper
    close(file);
    return kept ? file_state::KEPT : file_state::ABANDONED;
}

static client_exit_status problem(client_session *session, client_exit_status status, const char *text,
                                  const char *path) {
    snprintf(session->problem, sizeof session->problem, "%s %.200s: %s", text, path, strerror(errno));
    return status;
}

// Gives a file the first name of lost ones that is free. False with that name in `name` when it cannot.
static bool keep_lost(const pending_paths *paths, const char *path, char name[PATH_MAX]) {
    snprintf(name, PATH_MAX, "%s", paths->lost);
    bool named = link(path, name) == 0;
    for (int i = 2; !named && errno == EEXIST && i <= LOST_FILES_MAX; i++) {
        snprintf(name, PATH_MAX, "%.*s.%d", PATH_MAX - NUMBER_ROOM, paths->lost, i);
        named = link(path, name) == 0;
    }
    return named && unlink(path) == 0;
}

static client_exit_status complain_of_others(client_session *session) {
    snprintf(session->problem, sizeof session->problem,
             "changes made before wait to be confirmed: confirm them, or wait until the old settings are back");
    return EXIT_STATUS_LOCAL;
}

client_exit_status check_nothing_pending(client_session *session, char lost[PATH_MAX]) {
    pending_paths paths;
    *lost = '\0';
    if (!find_paths(session, &paths))
        return EXIT_STATUS_SUCCESS;
    if (state_of(paths.restoring) == file_state::KEPT || state_of(paths.waiting) == file_state::KEPT)
        return complain_of_others(session);
    const char *const named[] = {paths.waiting, paths.restoring};
    for (const char *path : named) {
        if (state_of(path) != file_state::ABANDONED)
            continue;
        if (!keep_lost(&paths, path, lost))
            return problem(session, EXIT_STATUS_LOCAL, "cannot keep the settings from before other changes in", lost);
        remark(session,
               "Changes made before were neither confirmed nor taken back, since the process that waited was "
               "killed. The settings from before them are in %s\n",
               lost);
    }
    return EXIT_STATUS_SUCCESS;
}

// --- the process that waits ---

struct keeper {
    const pending_paths *paths;
    const value *old_settings;
    const change_list *changes;  // those that have been made, or some of them
    call_endpoint endpoint;
    client_settings settings;
    int64_t milliseconds;
    int file;
    int pipe;
};

static int64_t now_milliseconds(void) {
    timespec now = {};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1000000;
}

static bool is_confirmed(const keeper *kept) {
    struct stat status;
    return fstat(kept->file, &status) == 0 && status.st_nlink == 0;
}

// Waits until the changes are made. False when the client ended before.
static bool wait_for_the_changes(const keeper *kept) {
    char done;
    ssize_t length;
    do {
        length = read(kept->pipe, &done, 1);
    } while (length < 0 && errno == EINTR);
    return length == 1;
}

// False when the changes were confirmed.
static bool wait_for_the_end(const keeper *kept) {
    int64_t end = now_milliseconds() + kept->milliseconds;
    for (int64_t left = kept->milliseconds; left > 0; left = end - now_milliseconds()) {
        if (is_confirmed(kept))
            return false;
        poll(nullptr, 0, left < LOOK_MILLISECONDS ? static_cast<int>(left) : LOOK_MILLISECONDS);
    }
    return !is_confirmed(kept);
}

// Takes the file before anybody can confirm. False when somebody was faster.
static bool claim(const keeper *kept) {
    struct stat mine, taken;
    if (fstat(kept->file, &mine) != 0 || rename(kept->paths->waiting, kept->paths->restoring) != 0)
        return false;
    if (stat(kept->paths->restoring, &taken) == 0 && taken.st_ino == mine.st_ino)
        return true;
    rename(kept->paths->restoring, kept->paths->waiting);  // the changes of another
    return false;
}

// What is still not as it was. Settings that read back with the next init only cannot be looked at.
static size_t count_missing(const value *now, const value *then) {
    change_list changes = find_changes(now, then);
    size_t missing = 0;
    for (size_t i = 0; i < changes.count; i++)
        missing += changes.changes[i].expected && !(changes.changes[i].setting->keeping & LATE);
    free_changes(&changes);
    return missing;
}

// Reads what there is now, and how much of it is still not as it was.
static client_exit_status look(client_session *session, const value *then, value **now, size_t *missing) {
    client_exit_status status = read_settings(session, then, nullptr, nullptr, now);
    *missing = status == EXIT_STATUS_SUCCESS ? count_missing(*now, then) : 0;
    return status;
}

// What was set and reads back with the next init only looks as if it had never been set: it has to be set whatever is
// read.
static client_exit_status set_late_ones(client_session *session, const keeper *kept) {
    change_list late = {static_cast<setting_change *>(calloc(kept->changes->count, sizeof(setting_change))), 0, 0};
    if (!late.changes)
        return EXIT_STATUS_LOCAL;
    for (size_t i = 0; i < kept->changes->count; i++) {
        setting_change change = kept->changes->changes[i];
        if (!(change.setting->keeping & LATE) || !change.now)
            continue;
        change.then = change.now;
        change.now = nullptr;
        change.expected = true;
        late.changes[late.count++] = change;
    }
    client_exit_status status = make_changes(session, &late, true, nullptr, nullptr);
    free_changes(&late);
    return status;
}

// Whatever some setters answer, what counts is what the getters say afterwards.
static client_exit_status set_old(client_session *session, const value *now, const value *then) {
    change_list changes = find_changes(now, then);
    client_exit_status status = make_changes(session, &changes, true, nullptr, nullptr);
    free_changes(&changes);
    return status == EXIT_STATUS_FAILURE ? EXIT_STATUS_SUCCESS : status;
}

// Of a server that answers, *missing settings could not be put back.
static client_exit_status put_back_once(const keeper *kept, size_t *missing) {
    server_connection connection = new_connection(&kept->endpoint);
    client_session session = {&connection, kept->settings, stdout, stderr, nullptr, false, ""};
    value *now = nullptr;
    client_exit_status status = set_late_ones(&session, kept);
    if (status == EXIT_STATUS_SUCCESS || status == EXIT_STATUS_FAILURE)
        status = look(&session, kept->old_settings, &now, missing);
    // Once more when something is not right then: what was set later may have changed what was set before.
    for (int i = 0; i < 2 && status == EXIT_STATUS_SUCCESS && (i == 0 || *missing > 0); i++) {
        status = set_old(&session, now, kept->old_settings);
        free_value(now);
        now = nullptr;
        if (status == EXIT_STATUS_SUCCESS)
            status = look(&session, kept->old_settings, &now, missing);
    }
    free_value(now);
    close_connection(&connection);
    return status;
}

static void put_back(const keeper *kept) {
    size_t missing;
    openlog(PROGRAM_NAME, LOG_PID, LOG_DAEMON);
    client_exit_status status = put_back_once(kept, &missing);
    for (int i = 1; i < ATTEMPTS && status != EXIT_STATUS_SUCCESS; i++) {
        sleep(ATTEMPT_PAUSE_SECONDS);
        status = put_back_once(kept, &missing);
    }
    if (status == EXIT_STATUS_SUCCESS && missing == 0) {
        syslog(LOG_NOTICE, "changes were not confirmed: the old settings are back");
        unlink(kept->paths->restoring);
        return;
    }
    char lost[PATH_MAX];
    keep_lost(kept->paths, kept->paths->restoring, lost);
    if (status == EXIT_STATUS_SUCCESS)
        syslog(LOG_ERR, "changes were not confirmed, and %zu of the old settings cannot be put back: they are in %s",
               missing, lost);
    else
        syslog(LOG_ERR, "changes were not confirmed, and the old settings cannot be put back: they are in %s", lost);
}

[[noreturn]] static void keep(const keeper *kept) {
    signal(SIGHUP, SIG_IGN);
    bool done = wait_for_the_changes(kept);
    if ((!done || wait_for_the_end(kept)) && claim(kept))
        put_back(kept);
    _exit(EXIT_STATUS_SUCCESS);
}

// Whoever reads what the client prints must not wait for this process, and no folder stay in use because of it.
static void let_go(const keeper *kept) {
    int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (int standard = STDIN_FILENO; standard <= STDERR_FILENO && nowhere >= 0; standard++)
        dup2(nowhere, standard);
    for (int file = STDERR_FILENO + 1; file < INHERITED_FILES_MAX; file++)
        if (file != kept->file && file != kept->pipe)
            close(file);
    if (chdir("/") != 0)
        syslog(LOG_WARNING, "cannot leave the folder: %m");
}

// --- the client that makes the changes ---

// The file gets its name when it is whole and locked.
static client_exit_status write_state(client_session *session, const pending_paths *paths, const value *document,
                                      int *file) {
    unlink(paths->unnamed);
    *file = open(paths->unnamed, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (*file < 0)
        return problem(session, EXIT_STATUS_LOCAL, "cannot write", paths->unnamed);
    int copy = fcntl(*file, F_DUPFD_CLOEXEC, 0);
    FILE *out = copy >= 0 ? fdopen(copy, "w") : nullptr;
    if (out)
        render_json_document(out, document);
    bool written = out && fclose(out) == 0 && flock(*file, LOCK_EX | LOCK_NB) == 0;
    bool named = written && link(paths->unnamed, paths->waiting) == 0;
    client_exit_status status = EXIT_STATUS_SUCCESS;
    if (!named && errno == EEXIST)  // somebody was faster
        status = complain_of_others(session);
    else if (!named)
        status = problem(session, EXIT_STATUS_LOCAL, "cannot write", paths->waiting);
    unlink(paths->unnamed);
    if (!named)
        close(*file);
    return status;
}

// The process is the child of one that ends at once, so that nobody has to wait for it.
static bool start_keeper(const keeper *kept) {
    fflush(nullptr);
    pid_t child = fork();
    if (child < 0)
        return false;
    if (child == 0) {
        setsid();  // before the client goes on: a Ctrl-C is for the client alone
        pid_t grandchild = fork();
        if (grandchild != 0)
            _exit(grandchild < 0 ? EXIT_STATUS_LOCAL : EXIT_STATUS_SUCCESS);
        let_go(kept);
        keep(kept);
    }
    int status;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR)
        ;
    return WIFEXITED(status) && WEXITSTATUS(status) == EXIT_STATUS_SUCCESS;
}

client_exit_status begin_pending(client_session *session, const value *old_settings, const value *document,
                                 const change_list *changes, int seconds, pending_changes *pending) {
    pending_paths paths;
    *pending = {-1};
    if (!find_paths(session, &paths))
        return EXIT_STATUS_LOCAL;
    int file, ends[2];
    client_exit_status status = write_state(session, &paths, document, &file);
    if (status != EXIT_STATUS_SUCCESS)
        return status;
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) == 0) {
        const keeper kept = {
            &paths, old_settings, changes, session->connection->endpoint, session->settings, int64_t{seconds} * 1000,
            file,   ends[0]};
        if (start_keeper(&kept))
            pending->pipe = ends[1];
        else
            close(ends[1]);
        close(ends[0]);
    }
    close(file);
    if (pending->pipe >= 0)
        return EXIT_STATUS_SUCCESS;
    unlink(paths.waiting);
    return problem(session, EXIT_STATUS_LOCAL, "cannot start the process that waits for", "the confirmation");
}

void start_countdown(pending_changes *pending) {
    if (pending->pipe < 0)
        return;
    static const char done = '\n';
    send(pending->pipe, &done, 1, MSG_NOSIGNAL);  // without a reader nobody waits any more
    close(pending->pipe);
    pending->pipe = -1;
}

client_exit_status confirm_pending(client_session *session) {
    pending_paths paths;
    if (!find_paths(session, &paths))
        return EXIT_STATUS_LOCAL;
    if (state_of(paths.waiting) == file_state::KEPT && unlink(paths.waiting) == 0)
        return EXIT_STATUS_SUCCESS;
    bool late = state_of(paths.restoring) == file_state::KEPT;
    snprintf(session->problem, sizeof session->problem, "%s",
             late ? "too late: the old settings are being put back" : "nothing waits to be confirmed");
    return EXIT_STATUS_NOT_FOUND;
}
