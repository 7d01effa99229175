// The document that export writes.
#pragma once

#include "client/value.h"

// A document of these settings, which belong to it from now on. The caller frees it.
value *new_document(value *settings);
