// A stream in memory: what the client prints, as a text.
#pragma once

#include <stdio.h>
#include <stdlib.h>

#include <string>

struct memory_stream {
    FILE *out;
    char *text;
    size_t length;
};

inline void open_memory(memory_stream *stream) {
    stream->out = open_memstream(&stream->text, &stream->length);
}

inline std::string close_memory(memory_stream *stream) {
    fclose(stream->out);
    std::string printed(stream->text, stream->length);
    free(stream->text);
    return printed;
}
