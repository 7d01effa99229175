// Stand-in for the device event library: notices and lines go to the system log.
#include "platform/platform.h"

#include <syslog.h>

int send_zubra_event(int type, int level, int flags, const char *text, int length) {
    syslog(LOG_NOTICE, "event %d %d %d: %.*s", type, level, flags, length, text);
    return 0;
}

int send_zubra_syslog(const char *line) {
    syslog(LOG_INFO, "%s", line);
    return 0;
}
