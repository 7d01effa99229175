#include "client/colour.h"

const char *emphasis_begin(emphasis shown, bool colour) {
    if (!colour)
        return "";
    switch (shown) {
        case emphasis::NONE:
            return "";
        case emphasis::GOOD:
            return "\033[32m";
        case emphasis::WARNING:
            return "\033[33m";
        case emphasis::BAD:
            return "\033[31m";
        case emphasis::FAINT:
            return "\033[2m";
    }
    return "";
}

const char *emphasis_end(emphasis shown, bool colour) {
    return colour && shown != emphasis::NONE ? "\033[0m" : "";
}

const char *heading_begin(bool colour) {
    return colour ? "\033[1m" : "";
}

const char *heading_end(bool colour) {
    return colour ? "\033[0m" : "";
}
