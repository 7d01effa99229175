#include "handlers/families.h"

#include <stdlib.h>
#include <string.h>

void pack_nothing(wlan_config_result_data_t *result) {
    result->return_values = {0, nullptr};
    result->return_data = {0, nullptr};
}

void pack_integers(wlan_config_result_data_t *result, const void *words, size_t count) {
    pack_nothing(result);
    u_int elements = static_cast<u_int>(count * sizeof(u_int));
    auto *values = static_cast<u_int *>(calloc(elements, sizeof(u_int)));
    if (!values)
        return;
    memcpy(values, words, count * sizeof(u_int));
    result->return_values = {elements, values};
}

void pack_integers64(wlan_config_result_data_t *result, const int64_t *values, size_t count) {
    pack_nothing(result);
    u_int elements = static_cast<u_int>(count * sizeof(int64_t));
    auto *words = static_cast<u_int *>(calloc(elements, sizeof(u_int)));
    if (!words)
        return;
    for (size_t i = 0; i < count; i++) {
        words[2 * i] = static_cast<u_int>(values[i]);
        words[2 * i + 1] = static_cast<u_int>(static_cast<uint64_t>(values[i]) >> 32);
    }
    result->return_values = {elements, words};
}

void pack_string(wlan_config_result_data_t *result, const char *text) {
    pack_image(result, text, strlen(text) + 1);
}

void pack_image(wlan_config_result_data_t *result, const void *record, size_t size) {
    pack_nothing(result);
    auto *data = static_cast<char *>(malloc(size));
    if (!data)
        return;
    memcpy(data, record, size);
    result->return_data = {static_cast<u_int>(size), data};
}

void pack_counted_image(wlan_config_result_data_t *result, int count, const void *record, size_t size) {
    wlan_config_result_data_t image;
    pack_image(&image, record, size);
    pack_integers(result, &count, 1);
    result->return_data = image.return_data;
}
