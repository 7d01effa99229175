#include "client/replace_file.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

// A path that is there but leads nowhere by name is an open file without one, such as /dev/stdout of a pipe.
static bool find_target(replaced_file *file, const char *path) {
    struct stat found;
    if (realpath(path, file->target)) {
        file->in_place = stat(file->target, &found) == 0 && !S_ISREG(found.st_mode);
        return true;
    }
    file->in_place = lstat(path, &found) == 0;
    int length = snprintf(file->target, sizeof file->target, "%s", path);
    return static_cast<size_t>(length) < sizeof file->target;
}

// In the same folder, since a file is renamed in one step within a file system only; hidden, and with an ending that
// collectors of *.prom do not take.
static bool name_temporary(replaced_file *file) {
    const char *slash = strrchr(file->target, '/');
    int folder = slash ? static_cast<int>(slash + 1 - file->target) : 0;
    int length = snprintf(file->temporary, sizeof file->temporary, "%.*s.%s.XXXXXX", folder, file->target,
                          slash ? slash + 1 : file->target);
    return static_cast<size_t>(length) < sizeof file->temporary;
}

// Keeps errno, which says what went wrong before.
static bool give_up(const replaced_file *file, int fd) {
    int error = errno;
    if (fd >= 0)
        close(fd);
    if (!file->in_place)
        unlink(file->temporary);
    errno = error;
    return false;
}

bool begin_replacing(replaced_file *file, const char *path, mode_t mode) {
    if (!find_target(file, path) || !name_temporary(file)) {
        errno = ENAMETOOLONG;
        return false;
    }
    int fd =
        file->in_place ? open(file->target, O_WRONLY | O_CLOEXEC | O_NOCTTY) : mkostemp(file->temporary, O_CLOEXEC);
    if (fd < 0)
        return false;
    if (!file->in_place && fchmod(fd, mode) != 0)
        return give_up(file, fd);
    file->stream = fdopen(fd, "w");
    return file->stream || give_up(file, fd);
}

bool end_replacing(replaced_file *file) {
    bool written = fflush(file->stream) == 0 && !ferror(file->stream);
    written = written && (file->in_place || fsync(fileno(file->stream)) == 0);
    int error = errno;
    bool closed = fclose(file->stream) == 0;
    if (!written)
        errno = error;
    written = written && closed && (file->in_place || rename(file->temporary, file->target) == 0);
    return written || give_up(file, -1);
}
