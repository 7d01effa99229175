// Every room with back ends, for the handlers that call them.
#pragma once

#include "params/vap.h"
