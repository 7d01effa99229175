// The settings of the gateway: everything that can be set and read back, as rows, and what of it a gateway has now.
//
// Settings stand in a tree of the exported document's shape:
//
//   {"gateway":{"bs_enable":0,...},"radios":{"0":{"channel":6,...},"1":{...}},"vaps":{"1":{"ssid":"home",...},...}}
//
// A value is a boolean, a signed number, a text, an object with a member for each of several outputs, or a list with
// an element for each key or access category. Three settings are lists of stations. What the gateway does not tell is
// left out, in lists of four it is null. Calls go through client/ask.h; nothing else is touched.
#pragma once

#include "client/arguments.h"
#include "client/exit_status.h"
#include "client/operations.h"
#include "client/value.h"

struct client_session;

enum class setting_scope { GATEWAY, GATEWAY_BARE, RADIO, RADIO_KEYS, VAP, VAP_CATEGORIES, PAIR };

// In which order settings are set. Each phase is over for the whole gateway before the next begins.
enum class setting_phase {
    REGULATION,      // first: the country says which channels there are
    STANDARD,        // chooses the base mode and clears the pure switches
    CHANNEL,         // moves the base mode into its band
    WIDTH,           // is limited by what the channel can do
    SIDE,            // the extension channel is a part of the mode that the phases before rewrite
    PURE,            // was cleared by STANDARD
    RATE_CONTROL,    // automatic or fixed; which forms a fixed rate has is the mode's affair
    FIXED_RATE,      // switches rate control as well
    IDENTITY,        // before ENABLE, which gives a VAP without an SSID one of its own
    SECURITY,        // the family; resets its generation of WPA
    AUTHENTICATION,  // refines the family
    KEYS,            // never for a moment in force with another family than theirs
    PLAIN_VALUES,    // depend on nothing
    LISTS,
    STEERING,      // tells daemons, so after what they look at
    ENABLE,        // when the VAP is what it is to be
    WPS_METHODS,   // switches WPS of the first VAP of each radio
    WPS_IDENTITY,  // the model's name needs an enabled VAP; each restarts the authenticator where WPS is on
    WPS_SWITCH,    // after WPS_METHODS, which has switched it
    SWITCHES,      // last: the radio, and the enforcement of lists that are complete now
};
constexpr setting_phase LAST_SETTING_PHASE = setting_phase::SWITCHES;

// Settings of one place whose setters change one another.
enum class setting_family { ALONE, MODE, SECURITY, WPS };

enum setting_keeping : unsigned { OPEN = 0, SECRET = 1, LATE = 2, LATE_SECRET = SECRET | LATE };

struct setting_row;
struct call_plan;

// One difference between the gateway and what it is to be.
struct setting_change {
    const setting_row *setting;
    int place;         // 0 of the gateway, the radio 0 and 1, or the VAP
    int element;       // of a list of four, from 0; else 0
    bool expected;     // the gateway differs now; false: only if another setter of the family has changed it
    const value *now;  // nullptr or NOTHING when the gateway does not tell
    const value *then;
    const value *settings_now;  // the whole trees
    const value *settings_then;
};

// How what the gateway says and what the document says differ. Each may be nullptr.
struct setting_conversion {
    // Turns what the gateway says into what the document says. False: it says nothing that could be set.
    bool (*read)(value *found);
    // Checks what the document says and brings it into its one form. False: it is wrong; `wanted` says what it has to
    // be.
    bool (*accept)(value *said, const char **wanted);
    // The text that the setter takes; the caller frees it.
    char *(*write)(const setting_change *change);
    // Plans further calls behind that of the setter.
    void (*plan_more)(call_plan *plan, const setting_change *change);
};

// A setting that is a list of stations.
struct setting_list {
    client_exit_status (*read)(client_session *session, int index, value **found);
    bool (*accept)(value *said, const char **wanted);
    void (*plan)(call_plan *plan, const setting_change *change);
};

struct setting_row {
    const char *name;  // ssid
    uint32_t getter;
    uint32_t setter;                       // of a list 0
    const setting_conversion *conversion;  // never nullptr
    const setting_list *list;              // nullptr of all but the lists
    const char *example;                   // a value that is not the factory's
    setting_scope scope;
    setting_phase phase;
    setting_family family;
    unsigned keeping;  // of setting_keeping
};

extern const setting_row setting_rows[];
extern const size_t setting_row_count;

// A getter or setter that is no setting, or part of one, and why.
struct setting_exception {
    uint32_t procedure;
    const char *reason;
};
extern const setting_exception setting_exceptions[];
extern const size_t setting_exception_count;

// The member of the document where settings of this scope stand: gateway, radios or vaps.
const char *scope_section(setting_scope scope);

// The first and last place of a scope.
struct place_range {
    int first;
    int last;
};
place_range places_of(setting_scope scope);

// Of all scopes: the gateway, and the VAPs from 1 on.
constexpr int PLACES_MAX = 17;

// Whether the setting has four values, and how one of them is called: "key" or "category".
bool has_elements(const setting_row *setting);
const char *element_word(const setting_row *setting);
constexpr int SETTING_ELEMENTS = 4;

// What a switch, a number or a text is; of several outputs the kind of each.
argument_kind setting_kind(const setting_row *setting);

// The row with this name in a section; nullptr when there is none.
const setting_row *find_setting(const char *section, const char *name);

// The object of a place in a tree of settings, nullptr when it is not there.
const value *find_place(const value *settings, setting_scope scope, int place);
// The value of a setting, or of one of its elements. nullptr when it is not there or null.
const value *find_setting_value(const value *settings, const setting_row *setting, int place);
const value *find_setting_element(const value *settings, const setting_row *setting, int place, int element);

// "gateway", "radio 0", "vap 3", "vap 3 category 2".
constexpr size_t WHERE_SIZE = 32;
constexpr int WHOLE_SETTING = -1;  // for the element
void name_place(const setting_row *setting, int place, int element, char where[WHERE_SIZE]);

// Called for a getter that answered a failure.
using unread_setting = void (*)(void *context, const setting_row *setting, int place);

// Reads the settings: all of them, or those that stand in the tree `like` and the families that go with them. The
// caller frees *settings. Anything but EXIT_STATUS_SUCCESS ends the reading, with session->problem; a getter that fails
// is left out.
client_exit_status read_settings(client_session *session, const value *like, unread_setting unread, void *context,
                                 value **settings);

// Reads one setting at one place into *found, which the caller frees; nullptr when it says nothing.
client_exit_status read_setting(client_session *session, const setting_row *setting, int place, value **found);

// --- the calls that make a change ---

struct planned_call {
    setting_change change;
    const procedure_row *procedure;
    call_arguments arguments;  // whose texts belong to the plan
};

struct call_plan {
    planned_call *calls;
    size_t count;
    size_t room;
};

// Appends a call; texts are copied.
void plan_call(call_plan *plan, const setting_change *change, uint32_t procedure, const call_arguments *arguments);
// The calls that make one change.
void plan_change(call_plan *plan, const setting_change *change);
void free_plan(call_plan *plan);

// The index with which a place's getters and setters are called.
int call_index(const setting_row *setting, int place);
