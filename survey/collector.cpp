#include "survey/collector.h"

uint8_t buf_reply[2 * COLLECTOR_ANSWER_SIZE];
