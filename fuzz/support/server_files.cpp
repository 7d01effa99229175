// The doors to files: what the server opens are texts in memory. Anything but the files that it is known to touch ends
// the process, and so does one that a child process would inherit.
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>

#include "fuzz/support/check.h"
#include "fuzz/support/platform.h"

// Far from descriptors of the process itself, so that a mistaken one is noticed.
constexpr int FIRST_DESCRIPTOR = 100000;

struct open_file {
    std::string path;
    size_t place;
    bool writes;
};

static std::map<int, open_file> open_files;
static size_t open_streams;

bool is_known_path(const std::string &path) {
    static const char *const beginnings[] = {
        "/tmp/.apcfg",    "/tmp/wifi_defaults.dat", "/nvram/5gcapabletable", "/nvram/etc/wpa2/WSC_ath",
        "/nvram/wlanlog", "/nvram/blackList.dat",   "/tmp/wlandbg",          "/var/run/radstat",
        "/tmp/rad_ctrl_", "/tmp/ssidsteering_",     "/tmp/wps_method",       "/tmp/conf_filename",
    };
    for (const char *beginning : beginnings) {
        if (path.compare(0, strlen(beginning), beginning) == 0) {
            return true;
        }
    }
    return false;
}

bool is_file_open() {
    return !open_files.empty() || open_streams != 0;
}

// Makes or empties a file as its way of opening says. False with errno.
static bool prepare(const std::string &path, bool create, bool truncate) {
    must(is_known_path(path), "the server opens only files that it is known to touch");
    if (platform.files.count(path) == 0) {
        if (!create || platform.storage_left == 0) {
            errno = create ? ENOSPC : ENOENT;
            return false;
        }
        platform.files[path] = "";
    }
    if (truncate) {
        platform.files[path].clear();
    }
    return true;
}

static long read_some(open_file *file, char *bytes, size_t size) {
    if (platform.reads_fail) {
        errno = EIO;
        return -1;
    }
    const std::string &content = platform.files[file->path];
    if (platform.read_step > 0 && size > platform.read_step) {
        size = platform.read_step;
    }
    if (file->place >= content.size()) {
        return 0;
    }
    size_t length = content.copy(bytes, size, file->place);
    file->place += length;
    return static_cast<long>(length);
}

static long write_some(open_file *file, const char *bytes, size_t size) {
    if (platform.storage_left == 0 || !file->writes) {
        errno = ENOSPC;
        return -1;
    }
    if (size > platform.storage_left) {
        size = platform.storage_left;
    }
    platform.storage_left -= size;
    std::string &content = platform.files[file->path];
    if (content.size() < file->place + size) {
        content.resize(file->place + size);
    }
    content.replace(file->place, size, bytes, size);
    file->place += size;
    return static_cast<long>(size);
}

int file_open(const std::string &path, int flags) {
    must((flags & O_CLOEXEC) != 0, "no child process inherits a file");
    if (!prepare(path, (flags & O_CREAT) != 0, (flags & O_TRUNC) != 0)) {
        return -1;
    }
    int descriptor = FIRST_DESCRIPTOR;
    while (open_files.count(descriptor) != 0) {
        descriptor++;
    }
    open_files[descriptor] = {path, 0, (flags & O_ACCMODE) != O_RDONLY};
    return descriptor;
}

static open_file *file_of(int descriptor) {
    auto found = open_files.find(descriptor);
    must(found != open_files.end(), "a file is open when it is used");
    return &found->second;
}

long file_read(int descriptor, void *bytes, size_t size) {
    return read_some(file_of(descriptor), static_cast<char *>(bytes), size);
}

long file_read_at(int descriptor, void *bytes, size_t size, long offset) {
    file_of(descriptor)->place = static_cast<size_t>(offset);
    return file_read(descriptor, bytes, size);
}

long file_write_at(int descriptor, const void *bytes, size_t size, long offset) {
    open_file *file = file_of(descriptor);
    file->place = static_cast<size_t>(offset);
    return write_some(file, static_cast<const char *>(bytes), size);
}

bool file_close(int descriptor) {
    return open_files.erase(descriptor) == 1;
}

// --- streams ---

static ssize_t stream_read(void *cookie, char *bytes, size_t size) {
    return read_some(static_cast<open_file *>(cookie), bytes, size);
}

static ssize_t stream_write(void *cookie, const char *bytes, size_t size) {
    long length = write_some(static_cast<open_file *>(cookie), bytes, size);
    return length < 0 ? 0 : length;
}

static int stream_seek(void *cookie, off64_t *offset, int whence) {
    open_file *file = static_cast<open_file *>(cookie);
    off64_t base = 0;
    if (whence == SEEK_CUR) {
        base = static_cast<off64_t>(file->place);
    } else if (whence == SEEK_END) {
        base = static_cast<off64_t>(platform.files[file->path].size());
    }
    if (base + *offset < 0) {
        errno = EINVAL;
        return -1;
    }
    *offset += base;
    file->place = static_cast<size_t>(*offset);
    return 0;
}

static int stream_close(void *cookie) {
    delete static_cast<open_file *>(cookie);
    open_streams--;
    return 0;
}

extern "C" FILE *door_fopen(const char *path, const char *mode) {
    must(strchr(mode, 'e') != nullptr, "no child process inherits a file");
    bool writes = strchr(mode, 'w') || strchr(mode, '+');
    if (!prepare(path, *mode == 'w', *mode == 'w')) {
        return nullptr;
    }
    open_streams++;
    open_file *file = new open_file{path, 0, writes};
    return fopencookie(file, writes ? "r+" : "r", {stream_read, stream_write, stream_seek, stream_close});
}
