// JSON documents of settings: a file becomes a tree of values, and the tree is checked against the table of settings.
//
// The file is foreign data: its size, its depth and its number of values are bounded, and nothing in it is believed
// before it has been checked.
#pragma once

#include "client/settings.h"

// A document of a gateway with every list full has less than half of it.
constexpr size_t DOCUMENT_SIZE_MAX = size_t{4} << 20;

// The settings are four levels deep, their lists of stations six, and inside an answer seven.
constexpr size_t DOCUMENT_DEPTH_MAX = 16;

// The largest object, a VAP's, has fewer than a hundred settings, and a few of them in hexadecimal as well.
constexpr size_t DOCUMENT_MEMBERS_MAX = 256;

// The version of the shape that is written and read.
constexpr int64_t DOCUMENT_SCHEMA = 1;

// Whether this client can read documents at all.
extern const bool can_read_documents;

// The JSON text as a tree that the caller frees. nullptr with a sentence in `problem`: with line and column of what is
// wrong. Numbers that are no whole numbers of 64 bits are none here; of two members with one name, the second is wrong.
value *parse_document(const char *text, size_t length, char problem[PROBLEM_SIZE]);

// What messages call a file: its path, or "standard input" for "-".
const char *document_name(const char *path);

// Reads and parses a file; "-" is standard input. EXIT_STATUS_LOCAL when it cannot be read, EXIT_STATUS_USAGE when it
// is no JSON, with session->problem. The caller frees *document.
client_exit_status read_document(client_session *session, const char *path, value **document);

// The settings of a document, checked and in the form in which they are read from a gateway, so that both can be
// compared. Takes a document as `export` writes it, or the answer of `export -o json` around it. nullptr with a
// sentence in `problem` that names the place: "vaps.1.ssid is 5, but has to be text". The caller frees them.
value *checked_settings(const value *document, char problem[PROBLEM_SIZE]);
