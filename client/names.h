// Names of operations: what people type and what they are shown.
//
// Procedure wlan_check_thread_queue is operation checkThreadQueue. Its snake-case spellings and any capitalisation mean
// the same, with or without the leading wlan. Pure functions over the table; any thread may call them.
#pragma once

#include <stddef.h>

#include "client/operations.h"
#include "client/suggest.h"

// Room for the name of any operation and its NUL.
constexpr size_t OPERATION_NAME_SIZE = 64;
static_assert(OPERATION_NAME_SIZE <= SUGGESTION_SIZE);

// wlan_check_thread_queue becomes checkThreadQueue.
void operation_name(const procedure_row *row, char name[OPERATION_NAME_SIZE]);

// The row a word names, nullptr when there is none.
const procedure_row *find_operation(const char *word);

// Takes in the operations that a mistyped word may have meant, beside what else it may have.
void consider_operations(suggestions *found, const char *word);

// Whether no row before this one has its subject.
bool begins_its_subject(const procedure_row *row);

// Whether the word is part of a row's name, subject or summary, in whatever capitalisation.
bool operation_matches(const procedure_row *row, const char *word);
