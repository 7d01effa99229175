// Airtime fairness: the switch of each radio.
//
// Touches the store. Runs on the service thread.
#include "steering/airtime.h"

#include "params/settings.h"
#include "params/vap.h"

// The suffix is part of the name here: VAP 1 stands for the key with it, VAP 9 for the bare one. It looks crossed, but
// do not mend it: the driver reads them so, as it does all settings of radio 0 and radio 1.
constexpr number_setting SWITCH_2G = {"AP_ENABLE_ATF_2", SCOPE_DEVICE, ANY_INDEX, ABSENT_FAILS, QUIET};
constexpr number_setting SWITCH_5G = {"AP_ENABLE_ATF", SCOPE_DEVICE, ANY_INDEX, ABSENT_FAILS, QUIET};

// The switch that a VAP stands for, null for one that stands for none.
static const number_setting *find_switch(int index) {
    if (index == FIRST_VAP_2G) {
        return &SWITCH_2G;
    }
    return index == FIRST_VAP_5G ? &SWITCH_5G : nullptr;
}

int wlan_getAirtimeEnable(int index, int *enabled) {
    const number_setting *setting = find_switch(index);
    return setting ? get_number(setting, __func__, index, enabled) : -1;
}

int wlan_setAirtimeEnable(int index, int enabled) {
    const number_setting *setting = find_switch(index);
    return setting ? set_number(setting, index, enabled) : -1;
}
