// The driver's countries. See the header.
#include "params/countries.h"

#include <stdint.h>
#include <string.h>

// Two letters and room for a third, and the NUL.
constexpr size_t COUNTRY_TEXT_SIZE = 4;

constexpr size_t COUNTRY_COUNT = 143;

struct country {
    char text[COUNTRY_TEXT_SIZE];
    int32_t number;
};

// The numbers are the driver's regulatory codes. Not all are those of ISO 3166 (US, and the last five): do not mend
// them, the driver knows no others. The last entry, all bits set, ends the table and is no country.
static const country COUNTRIES[COUNTRY_COUNT + 1] = {
    {"AL", 8},    {"DZ", 12},   {"AS", 16},   {"AM", 51},   {"AT", 40},   {"AZ", 31},
    {"BS", 44},   {"BH", 48},   {"BD", 50},   {"BB", 52},   {"BY", 112},  {"BE", 56},
    {"BZ", 84},   {"BM", 60},   {"BO", 68},   {"BA", 70},   {"BR", 76},   {"BN", 96},
    {"BG", 100},  {"KH", 116},  {"KY", 136},  {"CL", 152},  {"CN", 156},  {"CO", 170},
    {"CR", 188},  {"HR", 191},  {"CY", 196},  {"CZ", 203},  {"DK", 208},  {"DO", 214},
    {"EC", 218},  {"EG", 818},  {"SV", 222},  {"ET", 231},  {"EE", 233},  {"FI", 246},
    {"FR", 250},  {"PF", 258},  {"GE", 268},  {"DE", 276},  {"GR", 300},  {"GL", 304},
    {"GD", 308},  {"GU", 316},  {"GT", 320},  {"HT", 332},  {"HN", 340},  {"HK", 344},
    {"HU", 348},  {"IS", 352},  {"IN", 356},  {"ID", 360},  {"IR", 364},  {"IQ", 368},
    {"IE", 372},  {"IL", 376},  {"IT", 380},  {"JM", 388},  {"JP", 392},  {"JO", 400},
    {"KZ", 398},  {"KE", 404},  {"KP", 408},  {"KR", 410},  {"KW", 414},  {"LV", 428},
    {"LB", 422},  {"LY", 434},  {"LI", 438},  {"LT", 440},  {"LU", 442},  {"MO", 446},
    {"MK", 807},  {"MW", 454},  {"MY", 458},  {"MV", 462},  {"MT", 470},  {"MU", 480},
    {"YT", 175},  {"MX", 484},  {"MC", 492},  {"MN", 496},  {"MA", 504},  {"NP", 524},
    {"NL", 528},  {"AN", 530},  {"AW", 533},  {"NZ", 554},  {"NI", 558},  {"NG", 566},
    {"NO", 578},  {"MP", 580},  {"OM", 512},  {"PK", 586},  {"PA", 591},  {"PG", 598},
    {"PY", 600},  {"PE", 604},  {"PH", 608},  {"PL", 616},  {"PT", 620},  {"PR", 630},
    {"QA", 634},  {"RO", 642},  {"RU", 643},  {"RW", 646},  {"WS", 882},  {"SA", 682},
    {"RS", 688},  {"ME", 499},  {"SG", 702},  {"SK", 703},  {"SI", 705},  {"ZA", 710},
    {"ES", 724},  {"LK", 144},  {"SR", 740},  {"SE", 752},  {"CH", 756},  {"SY", 760},
    {"TW", 158},  {"TZ", 834},  {"TH", 764},  {"TT", 780},  {"TN", 788},  {"TR", 792},
    {"AE", 784},  {"UG", 800},  {"UA", 804},  {"GB", 826},  {"US", 843},  {"UY", 858},
    {"UZ", 860},  {"VE", 862},  {"VN", 704},  {"VI", 850},  {"YE", 887},  {"ZW", 716},
    {"AU", 5000}, {"CA", 5001}, {"AR", 5003}, {"DF", 6000}, {"EU", 6001}, {{'\xff', '\xff', '\xff', '\xff'}, -1},
};

const char *country_text(int number) {
    for (size_t i = 0; i < COUNTRY_COUNT; i++) {
        if (COUNTRIES[i].number == number) {
            return COUNTRIES[i].text;
        }
    }
    return nullptr;
}

int country_number(const char *text) {
    for (size_t i = 0; i < COUNTRY_COUNT; i++) {
        if (strcmp(COUNTRIES[i].text, text) == 0) {
            return COUNTRIES[i].number;
        }
    }
    return -1;
}
