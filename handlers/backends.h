// Every room with back ends, for the handlers that call them.
#pragma once

#include "config/factory_defaults.h"
#include "lifecycle/requests.h"
#include "params/rates.h"
#include "params/security.h"
#include "params/tuning.h"
#include "params/vap.h"
#include "params/wmm.h"
#include "params/wps.h"
#include "steering/airtime.h"
#include "steering/band_steering.h"
#include "steering/channel_switch.h"
#include "steering/mac_list.h"
#include "steering/soft_block.h"
#include "survey/collector.h"
#include "survey/site_survey.h"
