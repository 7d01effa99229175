// The calls that changes are made with, shown instead of made: for people as command lines that a shell takes.
#pragma once

#include "client/changes.h"

client_exit_status show_calls(client_session *session, const change_list *changes);
