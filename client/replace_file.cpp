#include "client/replace_file.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

// Whoever collects the file is another user than who writes it.
constexpr mode_t READABLE_FOR_ALL = 0644;

// In the same folder, since a file is renamed in one step within a file system only; hidden, and with an ending that
// collectors of *.prom do not take.
static bool name_temporary(replaced_file *file) {
    const char *slash = strrchr(file->path, '/');
    int folder = slash ? static_cast<int>(slash + 1 - file->path) : 0;
    int length = snprintf(file->temporary, sizeof file->temporary, "%.*s.%s.XXXXXX", folder, file->path,
                          slash ? slash + 1 : file->path);
    return length > 0 && static_cast<size_t>(length) < sizeof file->temporary;
}

// Keeps errno, which says what went wrong before.
static bool give_up(const replaced_file *file, int fd) {
    int error = errno;
    if (fd >= 0)
        close(fd);
    unlink(file->temporary);
    errno = error;
    return false;
}

bool begin_replacing(replaced_file *file, const char *path) {
    file->path = path;
    if (!name_temporary(file)) {
        errno = ENAMETOOLONG;
        return false;
    }
    int fd = mkostemp(file->temporary, O_CLOEXEC);
    if (fd < 0)
        return false;
    if (fchmod(fd, READABLE_FOR_ALL) != 0)
        return give_up(file, fd);
    file->stream = fdopen(fd, "w");
    return file->stream || give_up(file, fd);
}

bool end_replacing(replaced_file *file) {
    bool written = fflush(file->stream) == 0 && !ferror(file->stream);
    int error = errno;
    bool closed = fclose(file->stream) == 0;
    if (!written)
        errno = error;
    return (written && closed && rename(file->temporary, file->path) == 0) || give_up(file, -1);
}
